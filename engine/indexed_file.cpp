// The record's indexed form (store/index_data_file.h): an index record of type 0 for a single field, with one
// value, and of type 1 for a column, with a value for every row of the record.
// Tests: tests/engine/record_files_test.cpp.

#include <algorithm>
#include <utility>
#include <vector>

#include "engine/column.h"
#include "engine/engine_data.h"
#include "engine/field_lookup.h"
#include "engine/record_loader.h"
#include "store/index_file_reader.h"
#include "store/index_file_writer.h"

using tarn::OwnedContent;

namespace {

constexpr std::int32_t typeField = 0;  // on disk
constexpr std::int32_t typeColumn = 1;

struct SavedField {
    std::int32_t id;
    std::int32_t type;
    const MOLTVARIANT* value;
};

// The fields that have a value, in order.  Should there be a pair of id and kind twice, in a list that a
// client built by hand, the last value takes the place of the first.
std::vector<SavedField> fieldsToSave(const tarnFieldList& fields) {
    std::vector<SavedField> saved;
    saved.reserve(static_cast<std::size_t>(fields.count));
    for (std::int32_t i = 0; i < fields.count; ++i) {
        const MOLTVARIANT* const value = fields.values->getAt(i);
        if (value != nullptr)
            saved.push_back({fields.ids->getAt(i), value->tag == tagMulti ? typeColumn : typeField, value});
    }
    std::vector<std::size_t> order(saved.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto keys = [&](std::size_t i) { return std::pair(saved[i].id, saved[i].type); };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return keys(a) < keys(b); });
    for (std::size_t i = 0, first = 0; i < order.size(); ++i) {
        if (keys(order[i]) != keys(order[first])) first = i;
        if (i == first) continue;
        saved[order[first]].value = saved[order[i]].value;
        saved[order[i]].value = nullptr;
    }
    std::erase_if(saved, [](const SavedField& field) { return field.value == nullptr; });
    return saved;
}

// Gives a writer the values of rows 0 up to `rows`, an empty one for a row without a cell.
template <class Target>
void writeRows(Target& target, nodeList* column, std::int32_t rows) {
    std::int32_t row = 0;
    const std::int32_t count = column == nullptr ? 0 : column->count;
    for (std::int32_t i = count == 0 ? 0 : column->findInsertPosition(0); i < count; ++i) {
        const nodeCell& cell = *column->cells[i];
        if (cell.key.number >= rows) break;
        if (cell.key.number < row) continue;  // a row that is there twice
        target.writeEmptyValues(cell.key.number - row);
        target.writeValue(cell.value);
        row = cell.key.number + 1;
    }
    target.writeEmptyValues(rows - row);
}

// Single fields come before all columns, wherever the file has their values: they are made empty first.
void makeFields(const std::vector<_IndexRecord>& records, tarn::RecordLoader& loader) {
    for (const _IndexRecord& record : records) {
        MOLTVARIANT empty;
        if (record.type == typeField && record.repeats > 0) loader.storeField(record.id, empty);
    }
}

// Reads a record's values, of which a field has the first alone, and another type none.
void loadField(tarn::IndexFileReader& file, const _IndexRecord& record, tarn::RecordLoader& loader) {
    for (std::int32_t i = 0; i < record.repeats && !file.atEnd(); ++i) {
        OwnedContent value;
        file.read(value);
        if (i == 0 && record.type == typeField && loader.takesFields()) loader.storeField(record.id, value);
    }
}

void loadColumn(tarn::IndexFileReader& file, const _IndexRecord& record, tarn::RecordLoader& loader) {
    bool isMade = false;
    for (std::int32_t row = 0; row < record.repeats && !file.atEnd(); ++row) {
        OwnedContent value;
        file.read(value);
        if (value.tag == tagEmpty) continue;
        if (!isMade) loader.reserveCells(record.id, 1 + file.countFilled(record.repeats - row - 1));
        isMade = true;
        loader.storeCell(record.id, row, value);
    }
}

}  // namespace

int tarnEngineData::saveBinaryData(const char* fileName) {
    if (fields == nullptr) return 0;
    const std::vector<SavedField> saved = fieldsToSave(*fields);
    std::vector<_IndexRecord> index;
    index.reserve(saved.size());
    for (const SavedField& field : saved) {
        index.push_back({field.id, field.type, field.type == typeColumn ? numMulti : 1, 0});
    }
    const bool written = tarn::writeIndexFile(fileName, index, [&](auto& target) {
        for (const SavedField& field : saved) {
            target.beginRecord();
            if (field.type == typeField) {
                target.writeValue(field.value);
            } else {
                writeRows(target, tarn::cellsOf(*field.value), numMulti);
            }
        }
    });
    return written ? 1 : 0;
}

int tarnEngineData::saveData(const char* fileName) {
    return saveBinaryData(fileName);
}

int tarnEngineData::loadBinaryData(const char* fileName, eLoadType mode) {
    tarn::IndexFileReader file(fileName);
    tarn::RecordLoader loader(*this, mode);
    if (loader.takesFields()) makeFields(file.records(), loader);
    for (const _IndexRecord& record : file.records()) {
        if (record.type == typeColumn) {
            loadColumn(file, record, loader);
        } else {
            loadField(file, record, loader);
        }
    }
    return file.isRead() ? 1 : 0;
}
