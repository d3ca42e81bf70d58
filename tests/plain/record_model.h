#pragma once

// A record as standard containers, under the operations of engine/engine_data.h: the model of tests and fuzz
// targets.  Values are what tarntest::readable shows of them.

#include <algorithm>
#include <map>
#include <optional>
#include <string>

#include "base/wrapping.h"

namespace tarnplain {

struct RecordModel {
    using Column = std::map<std::int32_t, std::optional<std::string>>;  // a row may have no value

    std::map<std::int32_t, std::string> values;
    std::map<std::int32_t, Column> columns;
    std::int32_t rows = 0;

    bool hasRow(std::int32_t id, std::int32_t row) {
        return columns.contains(id) && columns[id].contains(row);
    }
    std::string cell(std::int32_t id, std::int32_t row) {
        return hasRow(id, row) ? columns[id][row].value_or("empty") : "empty";
    }
    [[nodiscard]] bool isOrderly() const {  // every row is below the number of rows
        return std::all_of(columns.begin(), columns.end(), [&](const auto& each) {
            return each.second.empty() || each.second.rbegin()->first < rows;
        });
    }
    void raiseRows(std::int32_t row) {
        if (row >= rows) rows = tarn::wrappingSum(row, 1);
    }

    void store(std::int32_t id, std::int32_t row, const std::string& value) {
        columns[id][row] = value;
        raiseRows(row);
    }
    void insert(std::int32_t id, std::int32_t row, const std::string& value) {
        put(columns[id], row, value);
        raiseRows(columns[id].rbegin()->first);
    }
    void storeValue(std::int32_t id, const std::string& value) { values[id] = value; }
    void removeValue(std::int32_t id) { values.erase(id); }
    void removeColumns() {
        columns.clear();
        rows = 0;
    }
    void removeCell(std::int32_t id, std::int32_t row) {
        if (columns.contains(id)) columns[id].erase(row);
    }
    void removeRow(std::int32_t row) {
        for (auto& [id, column] : columns) taken(column, row);
        rows = tarn::wrappingSum(rows, -1);
    }
    void moveRow(std::int32_t from, std::int32_t to) {
        for (auto& [id, column] : columns) put(column, to, taken(column, from));
    }
    // Of an orderly one.
    void append(RecordModel other) {
        const std::int32_t base = rows;
        for (const auto& [id, column] : other.columns) {
            for (const auto& [row, value] : column) {
                if (value.value_or("empty") != "empty") store(id, tarn::wrappingSum(base, row), *value);
            }
        }
        values[-26] = other.values.contains(-26) ? other.values[-26] : "empty";
    }

  private:
    static void shift(Column& column, std::int32_t from, std::int32_t by) {
        Column shifted;
        for (const auto& [row, value] : column)
            shifted[row >= from ? tarn::wrappingSum(row, by) : row] = value;
        column = shifted;
    }
    static void put(Column& column, std::int32_t row, const std::optional<std::string>& value) {
        shift(column, row, 1);
        column[row] = value;
    }
    // What a row had; the rows behind it close up.
    static std::optional<std::string> taken(Column& column, std::int32_t row) {
        const auto cell = column.find(row);
        const std::optional<std::string> value = cell == column.end() ? std::nullopt : cell->second;
        column.erase(row);
        shift(column, row, -1);
        return value;
    }
};

}  // namespace tarnplain
