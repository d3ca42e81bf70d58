// Records: building, saving and loading two columns of texts, and looking rows and fields up.  Beside them
// the least that the machine can do: one block of text with offsets, fwrite and fread of the same bytes, an
// indexed vector, a search through the bare ids.  Every answer is checked before it is timed.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "core/string.h"
#include "engine/engine_data.h"

namespace {

constexpr std::int32_t columns[] = {7, 8};

void require(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "record_bench: %s is wrong\n", what);
    std::exit(1);
}

std::string path(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

// The texts of all cells, row by row, in one block with offsets.
struct Texts {
    std::vector<char> block;
    std::vector<std::uint32_t> offsets;

    explicit Texts(std::int32_t rows) {
        char text[24];
        for (std::int32_t row = 0; row < rows; ++row) {
            for (const std::int32_t column : columns) {
                std::snprintf(text, sizeof text, column == 7 ? "%d" : "price %d", row);
                offsets.push_back(static_cast<std::uint32_t>(block.size()));
                block.insert(block.end(), text, text + std::strlen(text) + 1);
            }
        }
    }
    char* at(std::int32_t row, std::size_t column) {
        return &block[offsets[static_cast<std::size_t>(row) * 2 + column]];
    }
};

void build(tarnEngineData& record, Texts& texts, std::int32_t rows) {
    MOLTVARIANT value;
    value.tag = tagText;
    for (std::int32_t row = 0; row < rows; ++row) {
        for (const std::size_t column : {0, 1}) {
            value.payload.text = texts.at(row, column);
            record.storeMultiData(columns[column], row, &value, 0);
        }
    }
}

bool isComplete(tarnEngineData& record, Texts& texts, std::int32_t rows) {
    MOLTVARIANT view;
    for (std::int32_t row = 0; row < rows; ++row) {
        for (const std::size_t column : {0, 1}) {
            if (record.getMultiData(columns[column], row, &view) < 0) return false;
            if (std::strcmp(view.payload.text, texts.at(row, column)) != 0) return false;
        }
    }
    return record.getNumMulti() == rows;
}

void buildOurs(benchmark::State& state) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    Texts texts(rows);
    for (auto _ : state) {
        auto record = std::make_unique<tarnEngineData>();
        build(*record, texts, rows);
        state.PauseTiming();
        record.reset();
        state.ResumeTiming();
    }
}

// The same texts into one block with offsets: no value by itself, and nothing can be replaced.
void buildTextBlock(benchmark::State& state) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    Texts texts(rows);
    for (auto _ : state) {
        std::vector<char> block;
        std::vector<std::uint32_t> offsets;
        for (std::int32_t row = 0; row < rows; ++row) {
            for (const std::size_t column : {0, 1}) {
                const char* const text = texts.at(row, column);
                offsets.push_back(static_cast<std::uint32_t>(block.size()));
                block.insert(block.end(), text, text + std::strlen(text) + 1);
            }
        }
        benchmark::DoNotOptimize(block.data());
        benchmark::DoNotOptimize(offsets.data());
    }
}

// A saved record of so many rows, which was loaded again and checked.
const std::string& savedFile(std::int32_t rows) {
    static std::string name;
    static std::int32_t savedRows = 0;
    if (savedRows == rows) return name;
    name = path("tarnutil-bench.dat");
    Texts texts(rows);
    tarnEngineData record;
    build(record, texts, rows);
    require(record.saveData(name.c_str()) == 1, "saving");
    tarnEngineData loaded;
    require(loaded.loadData(name.c_str(), loadReplace) == 1 && isComplete(loaded, texts, rows), "loading");
    savedRows = rows;
    return name;
}

std::string bytesOf(const std::string& name) {
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void saveOurs(benchmark::State& state) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    tarnEngineData record;
    require(record.loadData(savedFile(rows).c_str(), loadReplace) == 1, "loading");
    const std::string name = path("tarnutil-bench-out.dat");
    for (auto _ : state) require(record.saveData(name.c_str()) == 1, "saving");
    require(bytesOf(name) == bytesOf(savedFile(rows)), "the saved file");
}

void saveFwrite(benchmark::State& state) {
    const std::string bytes = bytesOf(savedFile(static_cast<std::int32_t>(state.range(0))));
    const std::string name = path("tarnutil-bench-out.dat");
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "wb");
        require(std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size(), "fwrite");
        std::fclose(file);
    }
}

void loadOurs(benchmark::State& state) {
    const std::string& name = savedFile(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) {
        auto record = std::make_unique<tarnEngineData>();
        require(record->loadData(name.c_str(), loadReplace) == 1, "loading");
        state.PauseTiming();
        record.reset();
        state.ResumeTiming();
    }
}

void loadFread(benchmark::State& state) {
    const std::string& name = savedFile(static_cast<std::int32_t>(state.range(0)));
    std::vector<char> bytes(std::filesystem::file_size(name));
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "rb");
        require(std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size(), "fread");
        std::fclose(file);
        benchmark::ClobberMemory();
    }
}

// Rows in an order that no prefetcher guesses.
std::vector<std::int32_t> scattered(std::int32_t rows) {
    std::vector<std::int32_t> order(static_cast<std::size_t>(rows));
    std::uint32_t state = 1;
    for (std::int32_t& row : order) {
        state = state * 1664525 + 1013904223;
        row = static_cast<std::int32_t>((std::uint64_t{state} * static_cast<std::uint32_t>(rows)) >> 32);
    }
    return order;
}

void fillDoubles(tarnEngineData& record, std::int32_t rows) {
    MOLTVARIANT value;
    value.tag = tagDouble;
    for (std::int32_t row = 0; row < rows; ++row) {
        value.payload.doubleValue = row;
        record.storeMultiData(7, row, &value, 0);
    }
}

std::vector<std::int32_t> inOrder(std::int32_t rows) {
    std::vector<std::int32_t> order(static_cast<std::size_t>(rows));
    std::iota(order.begin(), order.end(), 0);
    return order;
}

using Order = std::vector<std::int32_t> (*)(std::int32_t rows);

void rowOurs(benchmark::State& state, Order orderOf) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    tarnEngineData record;
    fillDoubles(record, rows);
    const std::vector<std::int32_t> order = orderOf(rows);
    MOLTVARIANT view;
    for (auto _ : state) {
        double sum = 0;
        for (const std::int32_t row : order) {
            record.getMultiData(7, row, &view);
            sum += view.payload.doubleValue;
        }
        benchmark::DoNotOptimize(sum);
    }
}

void rowVector(benchmark::State& state, Order orderOf) {
    const auto rows = static_cast<std::int32_t>(state.range(0));
    std::vector<double> column(static_cast<std::size_t>(rows), 1.0);
    const std::vector<std::int32_t> order = orderOf(rows);
    for (auto _ : state) {
        double sum = 0;
        for (const std::int32_t row : order) sum += column[static_cast<std::size_t>(row)];
        benchmark::DoNotOptimize(sum);
    }
}

constexpr std::int32_t fieldCount = 40;

void fieldOurs(benchmark::State& state) {
    tarnEngineData record;
    MOLTVARIANT value;
    value.tag = tagLong;
    for (std::int32_t id = 0; id < fieldCount; ++id) record.storeData(id * 7, &value);
    const std::vector<std::int32_t> order = scattered(fieldCount);
    for (auto _ : state) {
        for (const std::int32_t field : order) benchmark::DoNotOptimize(record.getData(field * 7, &value));
    }
}

void fieldCompare(benchmark::State& state) {
    std::vector<std::int32_t> ids;
    for (std::int32_t id = 0; id < fieldCount; ++id) ids.push_back(id * 7);
    const std::vector<std::int32_t> order = scattered(fieldCount);
    for (auto _ : state) {
        for (const std::int32_t field : order) {
            auto found = std::find(ids.begin(), ids.end(), field * 7);
            benchmark::DoNotOptimize(found);
        }
    }
}

// Bytes of heap that one row takes; the time means nothing here.
void memory(benchmark::State& state, void (*fill)(tarnEngineData&, std::int32_t)) {
    constexpr std::int32_t rows = 1'000'000;
    const auto heap = [] {
        const struct mallinfo2 info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    for (auto _ : state) {
        const double before = heap();
        tarnEngineData record;
        fill(record, rows);
        state.counters["bytes_per_row"] = (heap() - before) / rows;
    }
}

void memoryDoubles(benchmark::State& state) {
    memory(state, fillDoubles);
}

void memoryTexts(benchmark::State& state) {
    memory(state, [](tarnEngineData& record, std::int32_t rows) {
        require(record.loadData(savedFile(rows).c_str(), loadReplace) == 1, "loading");
    });
}

void sizes(benchmark::internal::Benchmark* job) {
    job->Arg(1000)->Arg(32'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(buildOurs)->Name("record_build/ours")->Apply(sizes);
BENCHMARK(buildTextBlock)->Name("record_build/text_block")->Apply(sizes);
BENCHMARK(saveOurs)->Name("record_save/ours")->Apply(sizes);
BENCHMARK(saveFwrite)->Name("record_save/fwrite")->Apply(sizes);
BENCHMARK(loadOurs)->Name("record_load/ours")->Apply(sizes);
BENCHMARK(loadFread)->Name("record_load/fread")->Apply(sizes);
BENCHMARK_CAPTURE(rowOurs, inOrder, inOrder)->Name("row_in_order/ours")->Apply(sizes);
BENCHMARK_CAPTURE(rowVector, inOrder, inOrder)->Name("row_in_order/vector")->Apply(sizes);
BENCHMARK_CAPTURE(rowOurs, scattered, scattered)->Name("row_scattered/ours")->Apply(sizes);
BENCHMARK_CAPTURE(rowVector, scattered, scattered)->Name("row_scattered/vector")->Apply(sizes);
BENCHMARK(fieldOurs)->Name("field_lookup/ours");
BENCHMARK(fieldCompare)->Name("field_lookup/find_in_ids");
BENCHMARK(memoryDoubles)->Name("memory_doubles/ours")->Iterations(1);
BENCHMARK(memoryTexts)->Name("memory_texts/ours")->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
