// Record files of both forms in all three modes: what was loaded saves and loads again to the same file.

#include "engine/engine_data.h"
#include "fuzz/property.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using tarnfuzz::require;
    if (size == 0) return 0;
    const std::string input = tarnfuzz::file(".in"), saved = tarnfuzz::file(".1"),
                      again = tarnfuzz::file(".2");
    tarnfuzz::fill(input, data + 1, size - 1);
    tarnEngineData record;
    record.loadData(input.c_str(), loadReplace);
    record.loadData(input.c_str(), static_cast<eLoadType>(data[0] % 3));
    if (record.getNumMulti() > 100'000) return 0;  // rows far apart: a column's file has one value for each
    require(record.saveData(saved.c_str()) == 1, "a record saves");
    tarnEngineData loaded;
    require(loaded.loadData(saved.c_str(), loadReplace) == 1, "a saved record loads");
    require(loaded.saveData(again.c_str()) == 1, "a loaded record saves");
    tarnEngineData twice;
    require(twice.loadData(again.c_str(), loadReplace) == 1, "it loads again");
    require(twice.saveData(saved.c_str()) == 1, "and saves again");
    require(tarnfuzz::contentOf(saved) == tarnfuzz::contentOf(again), "to the same bytes");
    return 0;
}
