#pragma once

// Internal: what the record and its loader do with one column.  Users want the rows of engine/engine_data.h.

#include <cstdint>

#include "base/wrapping.h"
#include "core/containers.h"
#include "core/value_owner.h"

namespace tarn {

// A new value of tag 21 without cells.
OwnedValue newColumn();

// Each of these gives a cell this content, in exchange for what the cell held: nothing if it is new.

// Puts a cell at the end, whether or not the column has the row.
void addCell(nodeList& column, std::int32_t row, MOLTVARIANT& content);

// Takes the row's cell, or adds one.
void putCell(nodeList& column, std::int32_t row, MOLTVARIANT& content);

// Moves the cells from `row` on up by one row and puts a cell there, at the end of the cells.
void insertCell(nodeList& column, std::int32_t row, MOLTVARIANT& content);

// Takes the cell of a row out.  Answers it, NULL if the column lacks the row, and the position at which the
// cells behind the row begin then.  It is the caller's until it is put back or destroyed (core/cells.h).
nodeCell* takeRow(nodeList& column, std::int32_t row, std::int32_t& position);

// Takes the cell of a row out and destroys it.  Answers the position at which the cells behind the row begin
// then.
std::int32_t removeRow(nodeList& column, std::int32_t row);

// The highest row of a column with cells.
std::int32_t lastRow(nodeList& column);

}  // namespace tarn
