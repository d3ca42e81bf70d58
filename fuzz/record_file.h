#pragma once

// What the targets of both forms of a record's file share: what the file holds according to a plain reader is
// put into a record by the public operations, one by one, and every way through the library has to lead to an
// equal record.

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine_data.h"
#include "fuzz/property.h"
#include "tests/plain/values.h"

namespace tarnfuzz {

struct PlainFile {
    struct Cell {
        std::int32_t id, row;
        tarntest::Owned value;
    };
    std::vector<std::pair<std::int32_t, tarntest::Owned>> fields;
    std::vector<Cell> cells;
    bool isWhole = true;  // what was read up to a fault counts all the same
};

inline void store(tarnEngineData& record, const PlainFile& file, eLoadType mode) {
    const std::int32_t base = mode == loadAppend ? std::max(record.getNumMulti(), 0) : 0;
    if (record.isEmpty() != 0) {
        for (const auto& [id, value] : file.fields) record.storeData(id, &value);
    }
    for (const auto& cell : file.cells) {
        if (mode == loadInsert) {
            record.insertMultiData(cell.id, cell.row, &cell.value);
        } else {
            record.storeMultiData(cell.id, base + cell.row, &cell.value, 0);
        }
    }
}

// All that a record holds, its columns in the order of their rows.
inline std::string shown(tarnEngineData& record) {
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        if (record.isMulti(i) != 0) record.fields->values->getAt(i)->payload.multi->nodes->sort();
    }
    return tarntest::readable(record.getRootData()) + ", rows " + std::to_string(record.getNumMulti());
}

// A copy is equal, with an empty value for a cell that has none.
inline void checkCopy(tarnEngineData& record) {
    tarnEngineData copy(&record);
    std::string expected = shown(record);
    for (std::size_t at = 0; (at = expected.find(": none", at)) != expected.npos;)
        expected.replace(at, 6, ": empty");
    requireSame(shown(copy), expected, "a copy is equal");
}

// A cell is that of a walk over its column, which has been sorted: the one that was stored first.
inline void checkWalk(tarnEngineData& record, std::int32_t id, std::int32_t row) {
    MOLTVARIANT found;
    record.getMultiData(id, row, &found);
    std::string walked = "empty";
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        if (record.isMulti(i) == 0 || record.getId(i) != id) continue;
        const nodeList& nodes = *record.fields->values->getAt(i)->payload.multi->nodes;
        std::int32_t at = 0;
        while (at < nodes.count && nodes.cells[at]->key.number != row) ++at;
        if (at < nodes.count) walked = tarntest::readable(nodes.cells[at]->value);
    }
    requireSame(tarntest::readable(&found), walked == "none" ? "empty" : walked, "a cell is that of a walk");
}

// A record that is saved loads with the cells that are found; what has loaded saves, loads equal and saves to
// the same bytes.
inline void checkSaving(tarnEngineData& record) {
    static const MemoryFile saved;
    constexpr std::int64_t mostValues = 5000;  // a column's file has a value for each row
    if (std::int64_t{record.getNumMulti()} * record.fields->count > mostValues) return;
    require(record.saveData(saved.path()) == 1, "a record saves");
    tarnEngineData loaded;
    require(loaded.loadData(saved.path(), loadReplace) == 1, "a saved record loads");
    MOLTVARIANT before, after;
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        const std::int32_t id = record.getId(i);
        for (std::int32_t row = 0; record.isMulti(i) != 0 && row < record.getNumMulti(); ++row) {
            record.getMultiData(id, row, &before);
            loaded.getMultiData(id, row, &after);
            requireSame(tarntest::readable(&after), tarntest::readable(&before), "with its cells");
        }
        record.getData(id, &before);
        loaded.getData(id, &after);
        requireSame(tarntest::readable(&after), tarntest::readable(&before), "and its fields");
    }
    require(loaded.saveData(saved.path()) == 1, "a loaded record saves");
    const std::string bytes = saved.content();
    tarnEngineData again;
    require(again.loadData(saved.path(), loadReplace) == 1, "and loads");
    require(again.saveData(saved.path()) == 1, "and saves again");
    require(saved.content() == bytes, "to the same bytes");
}

// Loads the file twice, the second time in a mode of its own and into a record that has changed meanwhile.
//   file        what it holds for an empty record
//   further     what it holds for one with fields, for which its single fields aren't looked at
//   times, size, more  what a load may take of memory (MemoryWatch)
inline void checkLoading(const char* path, std::size_t times, std::size_t size, std::size_t more,
                         const PlainFile& file, const PlainFile& further, eLoadType mode) {
    constexpr std::size_t mostInserted = 400;  // each moves all those behind it
    if (mode == loadInsert && further.cells.size() > mostInserted) mode = loadAppend;
    tarnEngineData record;
    std::unique_ptr<tarnEngineData> expected;
    for (const eLoadType each : {loadReplace, mode}) {
        const MemoryWatch watch;
        const PlainFile& meant = each == loadReplace ? file : further;
        require(record.loadData(path, each) == (meant.isWhole ? 1 : 0), "a whole file loads");
        watch.requireWithin(times, size, more);
        if (each == loadReplace) expected = std::make_unique<tarnEngineData>();
        store(*expected, meant, each);
        requireSame(shown(record), shown(*expected), "a record holds what its files do");
        const tarntest::Owned changed = tarntest::text("changed");
        for (tarnEngineData* const both : {&record, expected.get()}) {
            both->storeData(file.fields.empty() ? 1 : file.fields[0].first, &changed);
            both->storeMultiData(file.cells.empty() ? 1 : file.cells.back().id, 3, &changed, 0);
        }
    }
    checkSaving(record);
}

// However often a column recurs within a row, a load takes time in proportion to the file: inserting takes no
// more than ten times what appending takes.
inline void checkGrowth(std::string bytes) {
    const std::size_t end = bytes.find_last_not_of('^');
    const std::size_t before = bytes.rfind('^', end);
    const std::string field = bytes.substr(before == bytes.npos ? 0 : before + 1);
    for (int i = 0; i < 10'000; ++i) bytes += field;
    static const MemoryFile file;
    file.fill(bytes);
    const auto timeOf = [&](eLoadType mode) {
        tarnEngineData record;
        const std::clock_t start = std::clock();
        record.loadData(file.path(), mode);
        return std::clock() - start;
    };
    require(timeOf(loadInsert) <= 10 * timeOf(loadAppend) + CLOCKS_PER_SEC / 20,
            "a recurring column loads in time");
}

}  // namespace tarnfuzz
