// Sequences of a record's operations against a model of standard containers.  The first byte of an input
// tells tame work, on few fields and low rows and held to the model, from wild work on any of them, where the
// record has to stay whole; every further step is an operation, an id, a row, another row and a value.

#include <algorithm>
#include <iterator>
#include <vector>

#include "engine/engine_data.h"
#include "fuzz/property.h"
#include "fuzz/record_file.h"
#include "tests/plain/column.h"
#include "tests/plain/values.h"

namespace {

using tarnfuzz::require;
using tarntest::describe;
using tarntest::Owned;

constexpr int mostSteps = 128;

struct Step {
    unsigned operation;
    std::int32_t id, row, other;
    Owned value;
};

Owned valueOf(unsigned byte) {
    if (byte % 16 == 0) return {};
    if (byte % 4 == 1) return tarntest::text(std::string(byte / 4, 'x').c_str());
    if (byte % 4 == 2) {
        Owned vector;
        vector.payload.vector = new MOLTVARIANT* [3] {
            tarntest::text("element").release(), tarntest::number(tagShort, byte).release(), nullptr
        };
        vector.tag = tagVector;
        return vector;
    }
    return tarntest::number(byte % 4 == 3 ? tagDouble : tagLong, byte);
}

// Fields in their order, columns among them.
struct Model {
    struct Field {
        std::int32_t id;
        bool isColumn;
        std::string value;
        tarnplain::Column<std::string> column;
    };
    std::vector<Field> fields;
    std::int32_t rows = 0;

    Field* find(std::int32_t id, bool isColumn) {
        const auto place = std::find_if(fields.begin(), fields.end(), [&](const Field& field) {
            return field.id == id && field.isColumn == isColumn;
        });
        return place == fields.end() ? nullptr : &*place;
    }
    Field& findOrMake(std::int32_t id, bool isColumn) {
        Field* const field = find(id, isColumn);
        return field != nullptr ? *field : fields.emplace_back(Field{id, isColumn, {}, {}});
    }
    void raiseRows(std::int32_t row) { rows = std::max(rows, row + 1); }
    // Whether every row lies below `rows`, as long as nobody removed a row that wasn't there.
    [[nodiscard]] bool isOrderly() const {
        return std::all_of(fields.begin(), fields.end(), [&](const Field& field) {
            return field.column.empty() || field.column.rbegin()->first < rows;
        });
    }

    void store(std::int32_t id, std::int32_t row, const std::string& value) {
        findOrMake(id, true).column[row] = value;
        raiseRows(row);
    }
    void insert(std::int32_t id, std::int32_t row, const std::string& value) {
        auto& column = findOrMake(id, true).column;
        tarnplain::put(column, row, std::optional(value));
        raiseRows(column.rbegin()->first);
    }
    void removeRow(std::int32_t row) {
        for (Field& field : fields) tarnplain::taken(field.column, row);
        --rows;
    }
    void moveRow(std::int32_t from, std::int32_t to) {
        for (Field& field : fields)
            if (field.isColumn) tarnplain::put(field.column, to, tarnplain::taken(field.column, from));
    }
    void append(const Model& other, const std::string& empty) {
        const std::int32_t base = rows;
        for (const Field& field : std::vector<Field>(other.fields)) {
            for (const auto& [row, value] : field.column)
                if (value && *value != empty) store(field.id, base + row, *value);
        }
        const auto taken = std::find_if(other.fields.begin(), other.fields.end(), [](const Field& field) {
            return field.id == -26 && !field.isColumn;
        });
        const std::string value = taken == other.fields.end() ? empty : taken->value;
        findOrMake(-26, false).value = value;
    }
};

class Work {
  public:
    void take(const Step& step);
    void compare();
    // Saving leaves out empty cells, and columns without any other.
    void saveAndLoad();

  private:
    tarnEngineData record_;
    Model model_;
    std::string empty_ = describe(&static_cast<const MOLTVARIANT&>(Owned()));
};

void Work::take(const Step& step) {
    const std::string value = describe(&step.value);
    Model::Field* const column = model_.find(step.id, true);
    switch (step.operation % 13) {
        case 0:
        case 1:
            record_.storeMultiData(step.id, step.row, &step.value, 0);
            return model_.store(step.id, step.row, value);
        case 2:
            if (column != nullptr && column->column.contains(step.row)) return;
            record_.storeMultiData(step.id, step.row, &step.value, 1);
            return model_.store(step.id, step.row, value);
        case 3:
            record_.insertMultiData(step.id, step.row, &step.value);
            return model_.insert(step.id, step.row, value);
        case 4:
            record_.removeMultiData(step.id, step.row);
            if (column != nullptr) column->column.erase(step.row);
            return;
        case 5:
            if (model_.rows == 0) return;
            record_.removeMultiData(step.row);
            return model_.removeRow(step.row);
        case 6: record_.moveMultiData(step.row, step.other); return model_.moveRow(step.row, step.other);
        case 7:
        case 8:
            record_.storeData(step.id, &step.value);
            model_.findOrMake(step.id, false).value = value;
            return;
        case 9:
            record_.removeData(step.id);
            std::erase_if(model_.fields,
                          [&](const Model::Field& f) { return f.id == step.id && !f.isColumn; });
            return;
        case 10:
            if (step.row % 4 != 0) return;
            record_.removeMultiData();
            std::erase_if(model_.fields, [](const Model::Field& field) { return field.isColumn; });
            model_.rows = 0;
            return;
        case 11: {
            constexpr std::int32_t mostRows = 100;
            if (!model_.isOrderly() || model_.rows > mostRows) return;
            if (step.row % 2 == 0) {
                record_.appendMultiData(&record_);
                return model_.append(Model(model_), empty_);
            }
            tarnEngineData other;
            other.storeData(-26, &step.value);
            other.storeMultiData(step.id, step.other, &step.value, 0);
            Model otherModel;
            otherModel.findOrMake(-26, false).value = value;
            otherModel.store(step.id, step.other, value);
            record_.appendMultiData(&other);
            return model_.append(otherModel, empty_);
        }
        default: {
            MOLTVARIANT view;  // of the record's own
            record_.getMultiData(step.id, step.row, &view);
            const std::string seen = describe(&view);
            record_.storeData(step.id, &view);
            model_.findOrMake(step.id, false).value = seen;
        }
    }
}

void Work::compare() {
    require(record_.getNumMulti() == model_.rows, "the rows are counted");
    require(record_.fields->count == static_cast<std::int32_t>(model_.fields.size()), "so are the fields");
    for (std::size_t i = 0; i < model_.fields.size(); ++i) {
        const Model::Field& field = model_.fields[i];
        const auto index = static_cast<std::int32_t>(i);
        require(record_.getId(index) == field.id && record_.isMulti(index) == (field.isColumn ? 1 : 0),
                "a field keeps its place");
        MOLTVARIANT out;
        if (!field.isColumn) {
            require(record_.getData(field.id, &out) == index, "a field is found");
            tarnfuzz::requireSame(describe(&out), field.value, "with its value");
            continue;
        }
        const std::int32_t end = field.column.empty() ? 0 : field.column.rbegin()->first;
        for (std::int32_t row = 0; row <= end + 1; ++row) {
            const auto cell = field.column.find(row);
            const bool isThere = cell != field.column.end() && cell->second.has_value();
            require(record_.getMultiData(field.id, row, &out) == (isThere ? index : -1), "a cell is found");
            tarnfuzz::requireSame(describe(&out), isThere ? *cell->second : empty_, "with its value");
        }
    }
    tarnfuzz::checkCopy(record_);
}

void Work::saveAndLoad() {
    static const tarnfuzz::MemoryFile file;
    require(record_.saveData(file.path()) == 1 && record_.loadData(file.path(), loadReplace) == 1,
            "a record saves and loads");
    std::int32_t rows = 0;
    std::stable_partition(model_.fields.begin(), model_.fields.end(),
                          [](const Model::Field& field) { return !field.isColumn; });
    for (Model::Field& field : model_.fields) {
        std::erase_if(field.column, [&](const auto& cell) {
            return cell.first >= model_.rows || !cell.second || *cell.second == empty_;
        });
        if (!field.column.empty()) rows = std::max(rows, field.column.rbegin()->first + 1);
    }
    std::erase_if(model_.fields, [](const Model::Field& f) { return f.isColumn && f.column.empty(); });
    model_.rows = rows;
}

// The cell of a row that was stored first, by a walk over the column, which has been sorted.
std::string walkedCell(tarnEngineData& record, std::int32_t id, std::int32_t row) {
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        if (record.isMulti(i) == 0 || record.getId(i) != id) continue;
        const nodeList& nodes = *record.fields->values->getAt(i)->payload.multi->nodes;
        for (std::int32_t cell = 0; cell < nodes.count; ++cell) {
            if (nodes.cells[cell]->key.number == row && nodes.cells[cell]->value != nullptr)
                return describe(nodes.cells[cell]->value);
            if (nodes.cells[cell]->key.number == row) break;
        }
    }
    const Owned none;
    return describe(&none);
}

// A file has the cells that are found, row by row.
void checkSavedRows(tarnEngineData& record) {
    static const tarnfuzz::MemoryFile file;
    require(record.saveData(file.path()) == 1, "a record saves");
    tarnEngineData loaded;
    loaded.loadData(file.path(), loadReplace);
    for (std::int32_t id = 0; id < 4; ++id) {
        for (std::int32_t row = 0; row < record.getNumMulti(); ++row) {
            MOLTVARIANT cell;
            loaded.getMultiData(id, row, &cell);
            tarnfuzz::requireSame(describe(&cell), walkedCell(record, id, row),
                                  "a saved row is the one found");
        }
    }
}

// Any ids and rows: the record stays whole, and a copy of it is equal.
void workWildly(tarnfuzz::Input& input) {
    tarnEngineData record;
    for (int i = 0; i < mostSteps && !input.isEmpty(); ++i) {
        const unsigned operation = input.byte();
        const auto id = static_cast<std::int32_t>(input.byte() % 4);
        const std::uint32_t limit = operation < 128 ? UINT32_MAX : 5;
        const auto row = static_cast<std::int32_t>(input.word() % limit);
        const auto other = static_cast<std::int32_t>(input.word() % limit);
        const Owned value = valueOf(operation);
        MOLTVARIANT out;
        switch (operation % 10) {
            case 0:
            case 1: record.storeMultiData(id, row, &value, static_cast<int>(operation % 2)); break;
            case 2: record.insertMultiData(id, row, &value); break;
            case 3: record.removeMultiData(id, row); break;
            case 4: record.removeMultiData(row); break;
            case 5: record.moveMultiData(row, other); break;
            case 6: record.setNumMulti(row); break;
            case 7: record.findMultiData(id, &value); break;
            case 8: record.setRootData(Owned(record.getRootData()).release()); break;
            default:
                record.storeMultiData(id, row, &value, 0);
                require(record.getMultiData(id, row, &out) >= 0, "what is stored is found");
                tarnfuzz::requireSame(describe(&out), describe(&value), "with its value");
        }
        for (int look = 0; look < 2; ++look) {  // the first one may sort the column
            require(record.getMultiData(id, row, &out) < record.fields->count, "a field has an index");
            tarnfuzz::requireSame(describe(&out), walkedCell(record, id, row), "a cell is that of a walk");
        }
    }
    tarnfuzz::checkCopy(record);
    constexpr std::int32_t mostRows = 1000;
    if (record.getNumMulti() > mostRows) return;
    tarnfuzz::checkSaving(record);
    checkSavedRows(record);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    if (input.byte() == 'w') {
        workWildly(input);
        return 0;
    }
    Work work;
    for (int i = 0; i < mostSteps && !input.isEmpty(); ++i) {
        const unsigned operation = input.byte(), place = input.byte(), row = input.byte();
        work.take({operation, static_cast<std::int32_t>(place % 4) - 26, static_cast<std::int32_t>(row % 16),
                   static_cast<std::int32_t>(row / 16), valueOf(input.byte())});
        if (place >= 128) work.compare();
    }
    work.compare();
    work.saveAndLoad();
    work.compare();
    return 0;
}
