// One column: cells of a keyed list whose key is the row number.
// Tests: tests/engine/multi_data_test.cpp.

#include "engine/column.h"

#include <utility>

#include "core/cells.h"

namespace tarn {

OwnedValue newColumn() {
    OwnedValue column(new MOLTVARIANT);
    column->payload.multi = new multiColumn{nullptr};
    column->tag = tagMulti;
    column->payload.multi->nodes = new nodeList;
    return column;
}

void addCell(nodeList& column, std::int32_t row, MOLTVARIANT& content) {
    std::swap(Cells::add(column, row), content);
}

void putCell(nodeList& column, std::int32_t row, MOLTVARIANT& content) {
    nodeCell** const slot = Cells::isBehindAll(column, row) ? nullptr : column.find(row);
    std::swap(slot == nullptr ? Cells::add(column, row) : Cells::valueOf(**slot), content);
}

void insertCell(nodeList& column, std::int32_t row, MOLTVARIANT& content) {
    column.reserve(1);
    column.shiftKeys(column.findInsertPosition(row), column.count, 1);
    addCell(column, row, content);
}

nodeCell* takeRow(nodeList& column, std::int32_t row, std::int32_t& position) {
    nodeCell** const slot = column.find(row);
    position =
        slot == nullptr ? column.findInsertPosition(row) : static_cast<std::int32_t>(slot - column.cells);
    return slot == nullptr ? nullptr : Cells::take(column, position);
}

std::int32_t removeRow(nodeList& column, std::int32_t row) {
    std::int32_t position = 0;
    nodeCell* const cell = takeRow(column, row, position);
    if (cell != nullptr) Cells::destroy(column, cell);
    return position;
}

std::int32_t lastRow(nodeList& column) {
    column.sort();
    return column.cells[column.count - 1]->key.number;
}

}  // namespace tarn
