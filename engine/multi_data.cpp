// Columns of rows.  A column's cells carry their row number as key and are sorted lazily, so positions in
// `cells` and row numbers are two things; every operation below says which it means.  Row numbers wrap at 32
// bits.
// Tests: tests/engine/multi_data_test.cpp.

#include <algorithm>

#include "core/cells.h"
#include "core/value_owner.h"
#include "engine/column.h"
#include "engine/engine_data.h"
#include "engine/field_lookup.h"

using tarn::OwnedContent;
using tarn::OwnedValue;
using tarn::wrappingSum;

namespace {

constexpr std::int32_t fieldTakenOver = -26;  // by appendMultiData

}  // namespace

nodeList* tarnEngineData::findColumn(std::int32_t id) {
    const std::int32_t index = findField(fields, id, 1);
    return index < 0 ? nullptr : columnAt(index);
}

std::int32_t tarnEngineData::addColumn(std::int32_t id) {
    OwnedValue column = tarn::newColumn();
    fields->add(id, column.get());
    column.release();
    return fields->count - 1;
}

nodeList* tarnEngineData::findOrMakeColumn(std::int32_t id) {
    const std::int32_t index = findField(fields, id, 1);
    return columnAt(index >= 0 ? index : addColumn(id));
}

void tarnEngineData::raiseNumMulti(std::int32_t row) {
    if (row >= numMulti) numMulti = wrappingSum(row, 1);
}

void tarnEngineData::storeMultiData(std::int32_t id, std::int32_t row, const MOLTVARIANT* value,
                                    int appendOnly) {
    nodeList* const column = fields == nullptr ? nullptr : findOrMakeColumn(id);
    if (column == nullptr) return;
    OwnedContent copy(value);
    if (appendOnly != 0) {
        tarn::addCell(*column, row, copy);
    } else {
        tarn::putCell(*column, row, copy);
    }
    raiseNumMulti(row);
}

void tarnEngineData::insertMultiData(std::int32_t id, std::int32_t row, const MOLTVARIANT* value) {
    nodeList* const column = fields == nullptr ? nullptr : findOrMakeColumn(id);
    if (column == nullptr) return;
    OwnedContent copy(value);
    tarn::insertCell(*column, row, copy);
    raiseNumMulti(tarn::lastRow(*column));
}

std::int32_t tarnEngineData::getMultiData(std::int32_t id, std::int32_t row, MOLTVARIANT* out) {
    const std::int32_t index = findField(fields, id, 1);
    nodeList* const column = index < 0 ? nullptr : tarn::cellsOf(*fields->values->data[index]);
    nodeCell** const slot = column == nullptr ? nullptr : column->find(row);
    const bool found = slot != nullptr && (*slot)->value != nullptr;
    if (out != nullptr) *out = found ? *(*slot)->value : MOLTVARIANT();
    return found ? index : -1;
}

std::int32_t tarnEngineData::findMultiData(std::int32_t id, const MOLTVARIANT* value) {
    const nodeList* const column = value == nullptr ? nullptr : findColumn(id);
    if (column == nullptr) return -1;
    for (std::int32_t position = 0; position < column->count; ++position) {
        const MOLTVARIANT* const cell = column->cells[position]->value;
        if (cell != nullptr && isVarEqual(*cell, *value) != 0) return position;
    }
    return -1;
}

void tarnEngineData::removeMultiData(std::int32_t id, std::int32_t row) {
    if (fields == nullptr) return;
    for (std::int32_t i = fields->count - 1; i >= 0; --i) {
        nodeList* const column = fields->ids->getAt(i) == id ? columnAt(i) : nullptr;
        if (column != nullptr) tarn::removeRow(*column, row);
    }
}

void tarnEngineData::removeMultiData(std::int32_t row) {
    for (std::int32_t i = fields == nullptr ? -1 : fields->count - 1; i >= 0; --i) {
        nodeList* const column = columnAt(i);
        if (column == nullptr) continue;
        column->shiftKeys(tarn::removeRow(*column, row), column->count, -1);
    }
    numMulti = wrappingSum(numMulti, -1);
}

void tarnEngineData::removeMultiData() {
    for (std::int32_t i = fields == nullptr ? -1 : fields->count - 1; i >= 0; --i) {
        if (isMulti(i) == 0) continue;
        const OwnedValue removed(fields->values->removeAt(i));
        fields->ids->removeAt(i);
        --fields->count;
    }
    numMulti = 0;
}

void tarnEngineData::moveMultiData(std::int32_t from, std::int32_t to) {
    const std::int32_t last = fields == nullptr ? -1 : fields->count - 1;
    // What can fail comes first, so that no row is moved in some of its columns only.
    for (std::int32_t i = last; i >= 0; --i) {
        if (nodeList* const column = columnAt(i); column != nullptr) column->reserve(1);
    }
    for (std::int32_t i = last; i >= 0; --i) {
        nodeList* const column = columnAt(i);
        if (column == nullptr) continue;
        std::int32_t position = 0;
        nodeCell* const moved = tarn::takeRow(*column, from, position);
        column->shiftKeys(position, column->count, -1);
        column->shiftKeys(column->findInsertPosition(to), column->count, 1);
        if (moved == nullptr) {
            column->add(nullptr, to);
        } else {
            tarn::Cells::putBack(*column, moved, to);
        }
    }
}

void tarnEngineData::appendMultiData(tarnEngineData* other) {
    if (other == nullptr || other->fields == nullptr) return;
    const std::int32_t base = numMulti;
    const std::int32_t rows = other->numMulti;
    const std::int32_t fieldCount = other->fields->count;
    for (std::int32_t i = 0; i < fieldCount; ++i) {
        const nodeList* const column = other->columnAt(i);
        if (column == nullptr) continue;
        const std::int32_t id = other->fields->ids->getAt(i);
        const std::int32_t cellCount = std::min(rows, column->count);
        for (std::int32_t position = 0; position < cellCount; ++position) {
            const nodeCell* const cell = column->cells[position];
            if (cell->value == nullptr || cell->value->tag == tagEmpty) continue;
            storeMultiData(id, wrappingSum(cell->key.number, base), cell->value, 1);
        }
    }
    MOLTVARIANT view;
    other->getData(fieldTakenOver, &view);
    storeData(fieldTakenOver, &view);
}

std::int32_t tarnEngineData::getNumMulti() const {
    return numMulti;
}
void tarnEngineData::setNumMulti(std::int32_t rows) {
    numMulti = rows;
}
