// Sequences of a record's operations.  Inputs that begin with `w` work wildly, on any rows, where the record
// has to find what a walk over its cells finds; all others work on low rows and against a model of standard
// containers.  A step is an operation, a field and whether to compare, two rows and a value.

#include "fuzz/record_file.h"
#include "tests/plain/record_model.h"

namespace {

using tarnfuzz::requireSame;
using tarntest::Owned;
using tarntest::readable;

Owned valueOf(unsigned byte) {
    if (byte % 16 == 0) return {};
    if (byte % 4 == 1) return tarntest::text(std::string(byte / 4, 'x').c_str());
    if (byte % 4 == 2)
        return tarntest::vectorOf({tarntest::text("element"), tarntest::number(tagShort, byte)});
    return tarntest::number(byte % 4 == 3 ? tagDouble : tagLong, byte);
}

// A record and its model, which doesn't count in wild work.
struct Work {
    bool isWild;
    tarnEngineData record{};
    tarnplain::RecordModel model{};

    void take(unsigned operation, std::int32_t id, std::int32_t row, std::int32_t to, const Owned& value) {
        const std::string shown = readable(&value);
        MOLTVARIANT view;  // of the record's own
        switch (operation % 12) {
            case 0:
                if (!isWild && model.hasRow(id, row)) return;
                record.storeMultiData(id, row, &value, 1);
                return model.store(id, row, shown);
            case 1: record.storeMultiData(id, row, &value, 0); return model.store(id, row, shown);
            case 2: record.insertMultiData(id, row, &value); return model.insert(id, row, shown);
            case 3: record.removeMultiData(id, row); return model.removeCell(id, row);
            case 4:
                if (!isWild && model.rows == 0) return;
                record.removeMultiData(row);
                return model.removeRow(row);
            case 5: record.moveMultiData(row, to); return model.moveRow(row, to);
            case 6: record.storeData(id, &value); return model.storeValue(id, shown);
            case 7: record.removeData(id); return model.removeValue(id);
            case 8:
                if (row % 4 != 0) return;
                record.removeMultiData();
                return model.removeColumns();
            case 9: return append(*this);
            case 10: {
                Work other{isWild};
                other.take(6, -26, 0, 0, value);
                other.take(1, id, to, 0, value);
                return append(other);
            }
            default:
                record.getMultiData(id, row, &view);
                record.storeData(id, &view);
                if (isWild) record.setRootData(Owned(record.getRootData()).release());
                return model.storeValue(id, model.cell(id, row));
        }
    }
    void append(Work& other) {
        if (model.rows > 100 || (!isWild && !model.isOrderly())) return;
        record.appendMultiData(&other.record);
        model.append(other.model);
    }

    void compare() {
        tarnfuzz::require(record.getNumMulti() == model.rows, "the rows are counted");
        const std::size_t fields = model.values.size() + model.columns.size();
        tarnfuzz::require(record.fields->count == static_cast<std::int32_t>(fields), "so are the fields");
        MOLTVARIANT out;
        for (const auto& [id, value] : model.values) {
            record.getData(id, &out);
            requireSame(readable(&out), value, "a field has its value");
        }
        for (const auto& [id, column] : model.columns) {
            for (std::int32_t row = 0; row <= model.rows + 1; ++row) {
                record.getMultiData(id, row, &out);
                requireSame(readable(&out), model.cell(id, row), "a cell has its value");
            }
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    Work work{input.byte() == 'w'};
    for (int steps = 0; steps < 128 && !input.isEmpty(); ++steps) {
        const unsigned operation = input.byte(), place = input.byte();
        const auto rows = static_cast<std::int32_t>(work.isWild ? input.word() : input.byte());
        const bool isHigh = work.isWild && place >= 128;
        const std::int32_t id = static_cast<std::int32_t>(place % 4) - 26, row = isHigh ? rows : rows & 15;
        work.take(operation, id, row, isHigh ? ~rows : rows >> 4 & 15, valueOf(input.byte()));
        if (work.isWild) {
            tarnfuzz::checkWalk(work.record, id, row);
            tarnfuzz::checkWalk(work.record, id, row);  // the first look may have sorted the column
        } else if (place >= 128) {
            work.compare();
        }
    }
    tarnfuzz::checkCopy(work.record);
    if (!work.isWild) work.compare();
    tarnfuzz::checkSaving(work.record);
    return 0;
}
