// One column: cells of a keyed list whose key is the row number.
// Tests: tests/engine/multi_data_test.cpp.

#include "engine/column.h"

namespace tarn {

OwnedValue newColumn() {
    OwnedValue column(new MOLTVARIANT);
    column->payload.multi = new multiColumn{nullptr};
    column->tag = tagMulti;
    column->payload.multi->nodes = new nodeList;
    return column;
}

void addCell(nodeList& column, std::int32_t row, OwnedValue value) {
    column.add(value.get(), row);
    value.release();
}

void putCell(nodeList& column, std::int32_t row, OwnedValue value) {
    nodeCell** const slot = column.find(row);
    if (slot == nullptr) return addCell(column, row, std::move(value));
    const OwnedValue old((*slot)->value);
    (*slot)->value = value.release();
}

void insertCell(nodeList& column, std::int32_t row, OwnedValue value) {
    column.reserve(1);
    column.shiftKeys(column.findInsertPosition(row), column.count, 1);
    addCell(column, row, std::move(value));
}

OwnedValue takeRow(nodeList& column, std::int32_t row, std::int32_t& position) {
    nodeCell** const slot = column.find(row);
    position =
        slot == nullptr ? column.findInsertPosition(row) : static_cast<std::int32_t>(slot - column.cells);
    return OwnedValue(slot == nullptr ? nullptr : column.removeCell(position));
}

std::int32_t lastRow(nodeList& column) {
    column.sort();
    return column.cells[column.count - 1]->key.number;
}

}  // namespace tarn
