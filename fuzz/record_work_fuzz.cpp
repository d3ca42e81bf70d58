// Sequences of a record's operations.  Inputs that begin with `w` work wildly, on any rows, where the record
// has to find what a walk over its cells finds; all others work on low rows and against a model of standard
// containers.  A step is an operation, a field and whether to compare, two rows and a value.

#include "fuzz/record_file.h"
#include "tests/plain/record_model.h"

namespace {

using tarntest::Owned;

Owned valueOf(unsigned byte) {
    if (byte % 16 == 0) return {};
    if (byte % 4 == 1) return tarntest::text(std::string(byte / 4, 'x').c_str());
    if (byte % 4 == 2)
        return tarntest::vectorOf({tarntest::text("element"), tarntest::number(tagShort, byte)});
    return tarntest::number(byte % 4 == 3 ? tagDouble : tagLong, byte);
}

// Every row is below the number of rows.
bool isOrderly(const tarnplain::RecordModel& model) {
    return std::all_of(model.columns.begin(), model.columns.end(), [&](const auto& each) {
        return each.second.empty() || each.second.rbegin()->first < model.rows;
    });
}

// Of an orderly one.
void append(tarnplain::RecordModel& model, tarnplain::RecordModel other) {
    const std::int32_t base = model.rows;
    for (const auto& [id, column] : other.columns) {
        for (const auto& [row, value] : column) {
            if (value == "empty" || value == tarnplain::RecordModel::noValue) continue;
            model.columns[id][tarn::wrappingSum(base, row)] = value;
            model.raiseRows(tarn::wrappingSum(base, row));
        }
    }
    model.values[-26] = other.values.contains(-26) ? other.values[-26] : "empty";
}

// A record and its model, which doesn't count in wild work.
struct Work {
    bool isWild;
    tarnEngineData record{};
    tarnplain::RecordModel model{};

    void take(unsigned operation, std::int32_t id, std::int32_t row, std::int32_t to, const Owned& value) {
        const bool isTwice = operation == 0 && model.hasRow(id, row);
        const bool hasNoRow = operation == 4 && model.rows == 0;
        if (!isWild && (isTwice || hasNoRow)) return;
        tarnplain::work(record, operation, id, row, to, &value);
        tarnplain::work(model, operation, id, row, to, &value);
    }
    void takeAll(Work& other) {
        if (model.rows > 100 || (!isWild && !isOrderly(model))) return;
        record.appendMultiData(&other.record);
        append(model, other.model);
    }
    // The record's own cell becomes a field, and its content once more its content.
    void storeOwnParts(std::int32_t id, std::int32_t row) {
        MOLTVARIANT view;
        record.getMultiData(id, row, &view);
        model.storeData(id, &view);
        record.storeData(id, &view);
        if (isWild) record.setRootData(Owned(record.getRootData()).release());
    }
    void step(unsigned operation, std::int32_t id, std::int32_t row, std::int32_t to, const Owned& value) {
        switch (operation) {
            case 8:
                if (row % 4 == 0) take(operation, id, row, to, value);
                return;
            case 9: return takeAll(*this);
            case 10: {
                Work other{isWild};
                other.take(6, -26, 0, 0, value);
                other.take(1, id, to, 0, value);
                return takeAll(other);
            }
            case 11: return storeOwnParts(id, row);
            default: return take(operation, id, row, to, value);
        }
    }
    void compare() {
        const auto [found, expected] = model.answersOf(record);
        tarnfuzz::requireSame(found, expected, "the record holds what its model does");
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
        work.step(operation % 12, id, row, isHigh ? ~rows : rows >> 4 & 15, valueOf(input.byte()));
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
