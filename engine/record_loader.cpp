// Putting a file's content into a record.  See the header for the one idea; the difficult case is loadInsert,
// whose outcome is that of inserting cell after cell: each new cell at row r moves every cell at r or behind
// it up by one.  Rows come in ascending order, so a cell that a new row has passed never moves again, and the
// others have moved by as many cells as came since.
// Tests: tests/engine/record_files_test.cpp.

#include "engine/record_loader.h"

#include <algorithm>
#include <bit>

#include "engine/column.h"
#include "engine/field_lookup.h"

namespace tarn {

FieldFinder::FieldFinder(const tarnFieldList& fields) {
    for (std::int32_t i = 0; i < fields.count; ++i) {
        const MOLTVARIANT* const value = fields.values->getAt(i);
        if (value != nullptr) add(fields.ids->getAt(i), value->tag == tagMulti, i);
    }
}

std::int32_t FieldFinder::find(std::int32_t id, bool column) const {
    const std::int64_t key = keyOf(id, column);
    auto run = entries_.begin();
    for (std::size_t length = std::bit_floor(entries_.size()); length != 0; length /= 2) {
        if ((entries_.size() & length) == 0) continue;
        const auto end = run + static_cast<std::ptrdiff_t>(length);
        const auto found = std::lower_bound(
            run, end, key, [](const Entry& entry, std::int64_t wanted) { return entry.key < wanted; });
        if (found != end && found->key == key) return found->index;
        run = end;
    }
    return -1;
}

void FieldFinder::add(std::int32_t id, bool column, std::int32_t index) {
    entries_.push_back({keyOf(id, column), index});
    const auto carries = std::countr_zero(entries_.size());
    for (std::ptrdiff_t half = 1; half < std::ptrdiff_t{1} << carries; half *= 2) {
        const auto end = entries_.end();
        // Equal keys keep the order of their fields.
        std::inplace_merge(end - 2 * half, end - half, end,
                           [](const Entry& a, const Entry& b) { return a.key < b.key; });
    }
}

RecordLoader::RecordLoader(tarnEngineData& record, eLoadType mode)
    : record_(prepared(record, mode)),
      inserts_(mode == loadInsert),
      takesFields_(record.isEmpty() != 0),
      base_(mode == loadAppend ? std::max(record.numMulti, 0) : 0),
      finder_(*record.fields) {}

tarnEngineData& RecordLoader::prepared(tarnEngineData& record, eLoadType mode) {
    if (mode == loadReplace) record.makeEmpty();
    return record;
}

RecordLoader::~RecordLoader() {
    for (Insertion& insertion : insertions_) {
        // A column without a cell is one whose first cell found no memory.
        if (insertion.column == nullptr || insertion.column->count == 0) continue;
        insertion.finish();
        record_.raiseNumMulti(lastRow(*insertion.column));
    }
}

void RecordLoader::storeField(std::int32_t id, MOLTVARIANT& content) {
    std::int32_t index = finder_.find(id, false);
    if (index < 0) {
        index = record_.fields->count;
        OwnedValue added(new MOLTVARIANT);
        finder_.add(id, false, index);
        record_.fields->add(id, added.get());
        added.release();
    }
    std::swap(*record_.fields->values->getAt(index), content);
}

// Files repeat their columns in the same order row after row, so the column behind the last one is tried
// first.
std::int32_t RecordLoader::columnIndex(std::int32_t id) {
    for (std::int32_t i = lastColumn_; i <= lastColumn_ + 1; ++i) {
        if (i < record_.fields->count && record_.isMulti(i) != 0 && record_.fields->ids->getAt(i) == id) {
            return lastColumn_ = i;
        }
    }
    std::int32_t index = finder_.find(id, true);
    if (index < 0) {
        index = record_.addColumn(id);
        finder_.add(id, true, index);
    }
    return lastColumn_ = index;
}

void RecordLoader::reserveCells(std::int32_t id, std::int32_t cells) {
    if (nodeList* const column = record_.columnAt(columnIndex(id)); column != nullptr) column->reserve(cells);
}

void RecordLoader::storeCell(std::int32_t id, std::int32_t row, MOLTVARIANT& content) {
    const std::int32_t index = columnIndex(id);
    if (inserts_) return insertCell(index, row, content);
    nodeList* const column = record_.columnAt(index);
    if (column == nullptr) return;
    putCell(*column, wrappingSum(base_, row), content);
    record_.raiseNumMulti(wrappingSum(base_, row));
}

void RecordLoader::insertCell(std::int32_t index, std::int32_t row, MOLTVARIANT& content) {
    nodeList* const column = record_.columnAt(index);
    if (column == nullptr) return;
    const auto place = static_cast<std::size_t>(index);
    if (place >= insertions_.size()) insertions_.resize(place + 1);
    Insertion& insertion = insertions_[place];
    if (insertion.column == nullptr) insertion.begin(*column);
    insertion.insert(row, content);
}

void RecordLoader::Insertion::begin(nodeList& cells) {
    column = &cells;
    column->sort();
    oldCells = column->count;
}

void RecordLoader::Insertion::insert(std::int32_t row, MOLTVARIANT& content) {
    settleBefore(row);
    column->reserve(1);
    recent.push_back({column->count, moved + 1});
    addCell(*column, row, content);
    ++moved;
}

// Gives the cells that are in front of a row now their final rows.
void RecordLoader::Insertion::settleBefore(std::int64_t row) {
    const auto keyAt = [this](std::int32_t position) {
        return std::int64_t{column->cells[position]->key.number};
    };
    while (!recent.empty()) {
        const auto [position, movedThen] = recent.back();
        const std::int32_t since = moved - movedThen;
        if (keyAt(position) + since >= row) return;
        column->shiftKeys(position, position + 1, since);
        recent.pop_back();
    }
    std::int32_t end = settled;
    while (end < oldCells && keyAt(end) + moved < row) ++end;
    column->shiftKeys(settled, end, moved);
    settled = end;
}

void RecordLoader::Insertion::finish() {
    settleBefore(INT64_MAX);
    column->sort();
}

}  // namespace tarn
