#pragma once

// What the targets of both forms of a record's file share: what the file holds, as the plain reader told it,
// goes into a record by the public operations, one by one, and every way through the library has to lead to
// an equal record.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine_data.h"
#include "fuzz/property.h"
#include "tests/plain/values.h"

namespace tarnfuzz {

struct PlainFile {
    struct Field {
        std::int32_t id;
        tarntest::Owned value;
    };
    struct Cell {
        std::int32_t id, row;
        tarntest::Owned value;
    };
    std::vector<Field> fields;
    std::vector<Cell> cells;
    bool inOrder = true;  // or it ended where the text wasn't
};

inline void store(tarnEngineData& record, const PlainFile& file, eLoadType mode) {
    const std::int32_t base = mode == loadAppend ? std::max(record.getNumMulti(), 0) : 0;
    if (record.isEmpty() != 0) {
        for (const auto& field : file.fields) record.storeData(field.id, &field.value);
    }
    for (const auto& cell : file.cells) {
        if (mode == loadInsert) {
            record.insertMultiData(cell.id, cell.row, &cell.value);
        } else {
            record.storeMultiData(cell.id, base + cell.row, &cell.value, 0);
        }
    }
}

inline std::string described(tarnEngineData& record) {
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        if (record.isMulti(i) != 0) record.fields->values->getAt(i)->payload.multi->nodes->sort();
    }
    return tarntest::describe(record.getRootData()) + " " + std::to_string(record.getNumMulti());
}

// A copy is equal, with an empty value for a cell that has none.
inline void checkCopy(tarnEngineData& record) {
    const tarntest::Owned none;
    const std::string gap = "=none", empty = '=' + tarntest::describe(&none);
    tarnEngineData copy(&record);
    std::string expected = described(record);
    for (std::size_t at = 0; (at = expected.find(gap, at)) != expected.npos; at += empty.size())
        expected.replace(at, gap.size(), empty);
    requireSame(described(copy), expected, "a copy is equal");
}

// A record that is saved loads, but for what has no form in a file; that record loads equal and saves to the
// same bytes.
inline void checkSaving(tarnEngineData& record) {
    static const MemoryFile saved;
    constexpr std::int64_t mostValues = 5000;  // a column's file has a value for each row
    if (std::int64_t{record.getNumMulti()} * record.fields->count > mostValues) return;
    require(record.saveData(saved.path()) == 1, "a record saves");
    tarnEngineData loaded;
    require(loaded.loadData(saved.path(), loadReplace) == 1, "a saved record loads");
    require(loaded.saveData(saved.path()) == 1, "a loaded record saves");
    const std::string bytes = saved.content();
    tarnEngineData again;
    require(again.loadData(saved.path(), loadReplace) == 1, "and loads");
    requireSame(described(again), described(loaded), "equal");
    require(again.saveData(saved.path()) == 1 && saved.content() == bytes, "and saves to the same bytes");
}

// Loads the file twice, the second time in a mode of its own and into a record that has changed meanwhile.
//   file     what it holds for an empty record
//   further  what it holds for one with fields, for which its single fields aren't looked at
inline void checkLoading(const char* path, std::size_t fileSize, std::size_t timesTheFile,
                         const PlainFile& file, const PlainFile& further, eLoadType mode) {
    constexpr std::size_t mostInserted = 400;  // each moves all those behind it
    if (mode == loadInsert && further.cells.size() > mostInserted) mode = loadAppend;
    tarnEngineData record;
    std::unique_ptr<tarnEngineData> expected;
    for (const eLoadType each : {loadReplace, mode}) {
        const MemoryWatch watch;
        const PlainFile& meant = each == loadReplace ? file : further;
        require(record.loadData(path, each) == (meant.inOrder ? 1 : 0), "a file in order loads");
        watch.requireWithin(timesTheFile, fileSize);
        if (each == loadReplace) expected = std::make_unique<tarnEngineData>();
        store(*expected, meant, each);
        requireSame(described(record), described(*expected), "a record holds what its files do");
        const tarntest::Owned changed = tarntest::text("changed");
        for (tarnEngineData* const both : {&record, expected.get()}) {
            both->storeData(file.fields.empty() ? 1 : file.fields[0].id, &changed);
            both->storeMultiData(file.cells.empty() ? 1 : file.cells.back().id, 3, &changed, 0);
        }
    }
    checkSaving(record);
}

}  // namespace tarnfuzz
