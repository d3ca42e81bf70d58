// Rows and fields of a record looked up, beside an indexed vector, the ordered and the hashed map, and a
// search through the bare ids; and the memory that a row takes.  Every answer is checked before it is timed.

#include <malloc.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <unordered_map>
#include <vector>

#include "engine/engine_data.h"
#include "support.h"

namespace {

using bench::require;

constexpr std::int32_t column = 7;

using Order = std::vector<std::int32_t> (*)(std::int32_t rows);

std::vector<std::int32_t> inOrder(std::int32_t rows) {
    std::vector<std::int32_t> order(static_cast<std::size_t>(rows));
    std::iota(order.begin(), order.end(), 0);
    return order;
}

// Each row once, in an order that no prefetcher guesses.
std::vector<std::int32_t> scattered(std::int32_t rows) {
    std::vector<std::int32_t> order = inOrder(rows);
    std::ranges::shuffle(order, std::mt19937(1));
    return order;
}

// ------------------------------------------------------------------------------------------------- rows

// A column whose row n holds the number n, in each form.
struct RecordColumn {
    tarnEngineData record;
    MOLTVARIANT view;

    explicit RecordColumn(std::int32_t rows) { fill(record, rows); }
    static void fill(tarnEngineData& record, std::int32_t rows) {
        MOLTVARIANT value;
        value.tag = tagDouble;
        for (std::int32_t row = 0; row < rows; ++row) {
            value.payload.doubleValue = row;
            record.storeMultiData(column, row, &value, 0);
        }
    }
    double at(std::int32_t row) {
        record.getMultiData(column, row, &view);
        return view.payload.doubleValue;
    }
};

struct VectorColumn {
    std::vector<double> values;

    explicit VectorColumn(std::int32_t rows) : values(static_cast<std::size_t>(rows)) {
        std::iota(values.begin(), values.end(), 0.0);
    }
    // A call with a check of the row, since a record's look-up is one.
    [[gnu::noinline]] double at(std::int32_t row) {
        const auto index = static_cast<std::size_t>(row);
        return index < values.size() ? values[index] : 0;
    }
};

template <typename Map>
struct MapColumn {
    Map values;

    explicit MapColumn(std::int32_t rows) {
        for (std::int32_t row = 0; row < rows; ++row) values.emplace(row, row);
    }
    double at(std::int32_t row) { return values.find(row)->second; }
};

template <typename Column>
void rows(benchmark::State& state, Order orderOf) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Column values(count);
    const std::vector<std::int32_t> order = orderOf(count);
    for (const std::int32_t row : order) require(values.at(row) == row, "a row");
    for (auto _ : state) {
        double sum = 0;
        for (const std::int32_t row : order) sum += values.at(row);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * count);
}

// ------------------------------------------------------------------------------------------------ fields

std::int32_t idOf(std::int32_t field) {
    return field * 7;
}

// Fields whose value is their id.
struct RecordFields {
    tarnEngineData record;
    MOLTVARIANT view;

    explicit RecordFields(std::int32_t count) {
        view.tag = tagLong;
        for (std::int32_t field = 0; field < count; ++field) {
            view.payload.longValue = idOf(field);
            record.storeData(idOf(field), &view);
        }
    }
    std::int32_t at(std::int32_t id) {
        record.getData(id, &view);
        return view.payload.longValue;
    }
};

struct IdFields {
    std::vector<std::int32_t> ids, values;

    explicit IdFields(std::int32_t count) {
        for (std::int32_t field = 0; field < count; ++field) ids.push_back(idOf(field));
        values = ids;
    }
    std::int32_t at(std::int32_t id) {
        return values[static_cast<std::size_t>(std::find(ids.begin(), ids.end(), id) - ids.begin())];
    }
};

template <typename Map>
struct MapFields {
    Map values;

    explicit MapFields(std::int32_t count) {
        for (std::int32_t field = 0; field < count; ++field) values.emplace(idOf(field), idOf(field));
    }
    std::int32_t at(std::int32_t id) { return values.find(id)->second; }
};

template <typename Fields>
void fields(benchmark::State& state) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    Fields values(count);
    std::vector<std::int32_t> ids;
    for (const std::int32_t field : scattered(count)) ids.push_back(idOf(field));
    for (const std::int32_t id : ids) require(values.at(id) == id, "a field");
    for (auto _ : state) {
        for (const std::int32_t id : ids) benchmark::DoNotOptimize(values.at(id));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

// ------------------------------------------------------------------------------------------------ memory

// Bytes of heap that one row takes; the time means nothing here.
void memory(benchmark::State& state, void (*fill)(tarnEngineData&, std::int32_t)) {
    const auto count = static_cast<std::int32_t>(state.range(0));
    const auto heap = [] {
        const struct mallinfo2 info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    for (auto _ : state) {
        const double before = heap();
        tarnEngineData record;
        fill(record, count);
        require(record.getNumMulti() == count, "the number of rows");
        state.counters["bytes_per_row"] = (heap() - before) / count;
    }
}

void fillTexts(tarnEngineData& record, std::int32_t count) {
    char text[24];
    MOLTVARIANT value;
    value.tag = tagText;
    value.payload.text = text;
    for (std::int32_t row = 0; row < count; ++row) {
        std::snprintf(text, sizeof text, "%d", row);
        record.storeMultiData(column, row, &value, 0);
        std::snprintf(text, sizeof text, "price %d", row);
        record.storeMultiData(column + 1, row, &value, 0);
    }
}

void sizes(benchmark::internal::Benchmark* job) {
    job->Arg(1000)->Arg(32'000)->Arg(1'000'000);
}

void fieldCounts(benchmark::internal::Benchmark* job) {
    job->Arg(4)->Arg(40)->Arg(400)->Arg(4000);
}

void addRows(const std::string& job, Order order) {
    sizes(benchmark::RegisterBenchmark((job + "/ours").c_str(), rows<RecordColumn>, order));
    sizes(benchmark::RegisterBenchmark((job + "/vector").c_str(), rows<VectorColumn>, order));
    using Ordered = std::map<std::int32_t, double>;
    sizes(benchmark::RegisterBenchmark((job + "/map").c_str(), rows<MapColumn<Ordered>>, order));
    using Hashed = std::unordered_map<std::int32_t, double>;
    sizes(benchmark::RegisterBenchmark((job + "/unordered_map").c_str(), rows<MapColumn<Hashed>>, order));
}

using OrderedFields = MapFields<std::map<std::int32_t, std::int32_t>>;
using HashedFields = MapFields<std::unordered_map<std::int32_t, std::int32_t>>;

BENCHMARK(fields<RecordFields>)->Name("field_lookup/ours")->Apply(fieldCounts);
BENCHMARK(fields<IdFields>)->Name("field_lookup/find_in_ids")->Apply(fieldCounts);
BENCHMARK(fields<OrderedFields>)->Name("field_lookup/map")->Apply(fieldCounts);
BENCHMARK(fields<HashedFields>)->Name("field_lookup/unordered_map")->Apply(fieldCounts);
BENCHMARK_CAPTURE(memory, doubles, RecordColumn::fill)
    ->Name("memory_doubles/ours")
    ->Iterations(1)
    ->Apply(sizes);
BENCHMARK_CAPTURE(memory, texts, fillTexts)->Name("memory_texts/ours")->Iterations(1)->Apply(sizes);

}  // namespace

int main(int argc, char** argv) {
    addRows("row_in_order", inOrder);
    addRows("row_scattered", scattered);
    return bench::run(argc, argv, {});
}
