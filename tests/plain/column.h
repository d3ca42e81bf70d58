#pragma once

// A record's column as an ordered map from rows to values: the model of tests and fuzz targets.

#include <cstdint>
#include <map>
#include <optional>

namespace tarnplain {

template <class Value>
using Column = std::map<std::int32_t, std::optional<Value>>;  // a row may be there without a value

template <class Value>
void shift(Column<Value>& column, std::int32_t from, std::int32_t by) {
    Column<Value> shifted;
    for (const auto& [row, value] : column) shifted[row >= from ? row + by : row] = value;
    column = shifted;
}

// What a row was taken from, no value for a gap; the rows behind it close up.
template <class Value>
std::optional<Value> taken(Column<Value>& column, std::int32_t row) {
    const auto cell = column.find(row);
    const std::optional<Value> value = cell == column.end() ? std::nullopt : cell->second;
    column.erase(row);
    shift(column, row, -1);
    return value;
}

template <class Value>
void put(Column<Value>& column, std::int32_t row, const std::optional<Value>& value) {
    shift(column, row, 1);
    column[row] = value;
}

}  // namespace tarnplain
