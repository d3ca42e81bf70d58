#pragma once

// A record as standard containers, with the operations of engine/engine_data.h: the model of tests and fuzz
// targets.  Values are what tarntest::readable shows of them.

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "base/wrapping.h"
#include "engine/engine_data.h"
#include "tests/plain/values.h"

namespace tarnplain {

struct RecordModel {
    using Column = std::map<std::int32_t, std::string>;

    static constexpr const char* noValue =
        "no value, empty";  // of a row that isn't there, also once it moves

    std::map<std::int32_t, std::string> values;
    std::map<std::int32_t, Column> columns;
    std::int32_t rows = 0;

    bool hasRow(std::int32_t id, std::int32_t row) {
        return columns.contains(id) && columns[id].contains(row);
    }
    void raiseRows(std::int32_t row) {
        if (row >= rows) rows = tarn::wrappingSum(row, 1);
    }
    void storeData(std::int32_t id, const MOLTVARIANT* value) { values[id] = tarntest::readable(value); }
    void removeData(std::int32_t id) { values.erase(id); }
    // Not for a row that is there if it is to be added.
    void storeMultiData(std::int32_t id, std::int32_t row, const MOLTVARIANT* value, int /*appendOnly*/) {
        columns[id][row] = tarntest::readable(value);
        raiseRows(row);
    }
    void insertMultiData(std::int32_t id, std::int32_t row, const MOLTVARIANT* value) {
        put(columns[id], row, tarntest::readable(value));
        raiseRows(columns[id].rbegin()->first);
    }
    void removeMultiData(std::int32_t id, std::int32_t row) {
        if (columns.contains(id)) columns[id].erase(row);
    }
    void removeMultiData(std::int32_t row) {
        for (auto& [id, column] : columns) taken(column, row);
        rows = tarn::wrappingSum(rows, -1);
    }
    void removeMultiData() {
        columns.clear();
        rows = 0;
    }
    void moveMultiData(std::int32_t from, std::int32_t to) {
        for (auto& [id, column] : columns) put(column, to, taken(column, from));
    }

    // What a record answers, and what one of this content does.
    std::pair<std::string, std::string> answersOf(tarnEngineData& record) {
        auto found = std::to_string(record.getNumMulti()) + ", " + std::to_string(record.fields->count);
        auto expected = std::to_string(rows) + ", " + std::to_string(values.size() + columns.size());
        MOLTVARIANT out;
        const auto add = [&](std::int32_t index, const std::string& value) {
            found += (index < 0 ? "; no value, " : "; ") + tarntest::readable(&out);
            expected += "; " + value;
        };
        for (const auto& [id, value] : values) add(record.getData(id, &out), value);
        for (auto& [id, column] : columns)
            for (std::int32_t row = 0; row < std::max(rows, 15) + 2; ++row)
                add(record.getMultiData(id, row, &out), hasRow(id, row) ? column[row] : noValue);
        return {found, expected};
    }

  private:
    static void shift(Column& column, std::int32_t from, std::int32_t by) {
        Column shifted;
        for (const auto& [row, value] : column)
            shifted[row >= from ? tarn::wrappingSum(row, by) : row] = value;
        column = shifted;
    }
    static void put(Column& column, std::int32_t row, const std::string& value) {
        shift(column, row, 1);
        column[row] = value;
    }
    // What a row had; the rows behind it close up.
    static std::string taken(Column& column, std::int32_t row) {
        const auto cell = column.extract(row);
        shift(column, row, -1);
        return cell.empty() ? noValue : cell.mapped();
    }
};

// One of the operations 0 to 8, on a record or on its model.
template <class Record>
void work(Record& record, unsigned operation, std::int32_t id, std::int32_t row, std::int32_t to,
          const MOLTVARIANT* value) {
    switch (operation) {
        case 0: return record.storeMultiData(id, row, value, 1);
        case 1: return record.storeMultiData(id, row, value, 0);
        case 2: return record.insertMultiData(id, row, value);
        case 3: return record.removeMultiData(id, row);
        case 4: return record.removeMultiData(row);
        case 5: return record.moveMultiData(row, to);
        case 6: return record.storeData(id, value);
        case 7: return record.removeData(id);
        default: return record.removeMultiData();
    }
}

}  // namespace tarnplain
