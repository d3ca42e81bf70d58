#pragma once

// Internal: puts the content of a file into a record, in one of the three modes.  Users want
// tarnEngineData::loadData in engine/engine_data.h.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/value_owner.h"
#include "engine/engine_data.h"

namespace tarn {

// Finds fields by id and kind while a load adds more of them.  They are kept in sorted runs whose lengths are
// the powers of two that add up to their number: n fields are added in O(n log n), and one is found by a
// binary search in each run.
class FieldFinder {
  public:
    explicit FieldFinder(const tarnFieldList& fields);

    // Answers the first field of this id and kind, or -1.
    [[nodiscard]] std::int32_t find(std::int32_t id, bool column) const;
    void add(std::int32_t id, bool column, std::int32_t index);

  private:
    struct Entry {
        std::int64_t key;  // id and kind
        std::int32_t index;
    };
    static std::int64_t keyOf(std::int32_t id, bool column) {
        return std::int64_t{id} * 2 + (column ? 1 : 0);
    }

    std::vector<Entry> entries_;
};

// What a load stores ends up as storeData, storeMultiData and insertMultiData would leave it, but values are
// handed over instead of copied, and with loadInsert the old rows of a column move up once instead of at
// every new row.
class RecordLoader {
  public:
    // Empties the record for loadReplace.
    RecordLoader(tarnEngineData& record, eLoadType mode);
    RecordLoader(const RecordLoader&) = delete;
    RecordLoader& operator=(const RecordLoader&) = delete;
    // Completes the rows, also those of a load that fails.
    ~RecordLoader();

    // Whether single fields of the file are wanted: the record had no field at all.
    [[nodiscard]] bool takesFields() const { return takesFields_; }
    // Gives the field this content, in exchange for what it held: nothing if it is new.
    void storeField(std::int32_t id, MOLTVARIANT& content);

    // The same with a cell, in a row of the file, counted from 0.  Rows come in ascending order.
    void storeCell(std::int32_t id, std::int32_t row, MOLTVARIANT& content);

    // Makes room for this many cells of one column.
    void reserveCells(std::int32_t id, std::int32_t cells);

  private:
    // The rows of one column under loadInsert, of which `moved` have come.  Old cells before position
    // `settled` have their final row, those behind it, up to `oldCells`, are `moved` rows short of it.  The
    // new cells follow them; those that the rows to come may still move wait in `recent`, the highest row
    // first.
    struct Insertion {
        struct NewCell {
            std::int32_t position;
            std::int32_t movedThen;  // `moved` when it had come
        };
        nodeList* column = nullptr;
        std::int32_t oldCells = 0;
        std::int32_t settled = 0;
        std::int32_t moved = 0;
        std::vector<NewCell> recent;

        void begin(nodeList& cells);
        void insert(std::int32_t row, MOLTVARIANT& content);
        void settleBefore(std::int64_t row);
        void finish();
    };

    // The record, emptied for loadReplace.
    static tarnEngineData& prepared(tarnEngineData& record, eLoadType mode);
    std::int32_t columnIndex(std::int32_t id);
    void insertCell(std::int32_t index, std::int32_t row, MOLTVARIANT& content);

    tarnEngineData& record_;
    bool inserts_;
    bool takesFields_;
    std::int32_t base_;
    FieldFinder finder_;
    std::int32_t lastColumn_ = -1;
    std::vector<Insertion> insertions_;  // by field index
};

}  // namespace tarn
