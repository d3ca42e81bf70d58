#pragma once

// Internal: what the record and its loader do with one column.  Users want the rows of engine/engine_data.h.

#include <cstdint>

#include "base/wrapping.h"
#include "core/containers.h"
#include "core/value_owner.h"

namespace tarn {

// A new value of tag 21 without cells.
OwnedValue newColumn();

// Puts a cell at the end, whether or not the column has the row.
void addCell(nodeList& column, std::int32_t row, OwnedValue value);

// Puts a cell in place of the row's, or adds it.
void putCell(nodeList& column, std::int32_t row, OwnedValue value);

// Moves the cells from `row` on up by one row and puts a cell there, at the end of the cells.
void insertCell(nodeList& column, std::int32_t row, OwnedValue value);

// Takes the cell of a row out.  Answers its value, NULL if the column lacks the row, and the position at
// which the cells behind the row begin then.
OwnedValue takeRow(nodeList& column, std::int32_t row, std::int32_t& position);

// The highest row of a column with cells.
std::int32_t lastRow(nodeList& column);

}  // namespace tarn
