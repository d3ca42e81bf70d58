// Rows of a column stored in other orders than ascending, inserted and removed at its front, and whole
// records copied, destroyed and loaded from their text form.  They are beside the same in ascending order and
// the plain work that no column gets around: one move of all pointers and one walk over the keys that change.

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "engine/engine_data.h"
#include "options/option_value.h"
#include "support.h"

namespace {

using bench::require;
using Order = std::vector<std::int32_t>;

constexpr std::int32_t column = 336;

MOLTVARIANT doubleOf(std::int32_t number) {
    MOLTVARIANT value;
    value.tag = tagDouble;
    value.payload.doubleValue = number;
    return value;
}

// --------------------------------------------------------------------------------------- rows in some order

Order ascending(std::int32_t rows) {
    Order order(static_cast<std::size_t>(rows));
    std::iota(order.begin(), order.end(), 0);
    return order;
}

Order descending(std::int32_t rows) {
    Order order = ascending(rows);
    std::ranges::reverse(order);
    return order;
}

Order shuffled(std::int32_t rows) {
    Order order = ascending(rows);
    std::ranges::shuffle(order, std::mt19937(1));
    return order;
}

// A history filled page by page, the newest page first, ascending within each.
Order newestPageFirst(std::int32_t rows) {
    constexpr std::ptrdiff_t page = 50;
    Order order = descending(rows);
    for (auto first = order.begin(); first != order.end();) {
        const auto end = first + std::min(page, order.end() - first);
        std::reverse(first, end);
        first = end;
    }
    return order;
}

// Stores rows, and looks each one up, as a table on a screen does.
void store(benchmark::State& state, Order (*orderOf)(std::int32_t)) {
    const Order order = orderOf(static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) {
        tarnEngineData record;
        MOLTVARIANT view;
        for (const std::int32_t row : order) {
            const MOLTVARIANT value = doubleOf(row);
            record.storeMultiData(column, row, &value, 0);
            record.getMultiData(column, row, &view);
            benchmark::DoNotOptimize(view);
        }
        record.getMultiData(column, order.back(), &view);
        require(view.payload.doubleValue == order.back(), "a row that was stored");
    }
}

void registerStores() {
    const struct {
        const char* job;
        Order (*orderOf)(std::int32_t);
    } jobs[] = {
        {"rows_descending", descending}, {"rows_shuffled", shuffled}, {"rows_by_page", newestPageFirst}};
    for (const auto& [job, orderOf] : jobs) {
        const std::string name(job);
        benchmark::RegisterBenchmark((name + "/ours").c_str(), store, orderOf)->Arg(64000);
        benchmark::RegisterBenchmark((name + "/ascending").c_str(), store, ascending)->Arg(64000);
    }
}

// ------------------------------------------------------------------------- rows inserted and removed in front

void insertOurs(benchmark::State& state) {
    for (auto _ : state) {
        tarnEngineData record;
        for (std::int32_t i = 0; i < state.range(0); ++i) {
            const MOLTVARIANT value = doubleOf(i);
            record.insertMultiData(column, 0, &value);
        }
        require(record.getNumMulti() == state.range(0), "the rows that were inserted");
    }
}

struct PlainCell {
    double value;
    std::int32_t row;
};

void insertPlain(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<PlainCell> cells(static_cast<std::size_t>(state.range(0)));
        std::vector<PlainCell*> pointers;
        pointers.reserve(cells.size());
        for (PlainCell& cell : cells) {
            for (PlainCell* const each : pointers) ++each->row;
            pointers.insert(pointers.begin(), &cell);
        }
        require(pointers.back()->row == state.range(0) - 1, "the rows that were inserted");
    }
}

void removeOurs(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        tarnEngineData record;
        for (std::int32_t row = 0; row < state.range(0); ++row) {
            const MOLTVARIANT value = doubleOf(row);
            record.storeMultiData(column, row, &value, 0);
        }
        state.ResumeTiming();
        while (record.getNumMulti() > 0) record.removeMultiData(0);
    }
}

void removePlain(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<PlainCell> cells(static_cast<std::size_t>(state.range(0)));
        std::vector<PlainCell*> pointers;
        for (PlainCell& cell : cells) pointers.push_back(&cell);
        state.ResumeTiming();
        while (!pointers.empty()) {
            pointers.erase(pointers.begin());
            for (PlainCell* const each : pointers) --each->row;
        }
        benchmark::DoNotOptimize(cells.data());
    }
}

BENCHMARK(insertOurs)->Name("rows_inserted/ours")->Arg(32000)->Iterations(1);
BENCHMARK(insertPlain)->Name("rows_inserted/plain")->Arg(32000)->Iterations(1);
BENCHMARK(removeOurs)->Name("rows_removed/ours")->Arg(32000)->Iterations(1);
BENCHMARK(removePlain)->Name("rows_removed/plain")->Arg(32000)->Iterations(1);

// ------------------------------------------------------------------------------------------- whole records

// The price history of examples/data, in both forms.
struct History {
    bench::Folder folder;
    std::string text = TARN_HISTORY;
    std::string indexed = folder.file("history.dat");
    tarnEngineData record;

    History() {
        require(record.loadData(text.c_str(), loadReplace) == 1, "loading the history");
        require(record.saveData(indexed.c_str()) == 1, "saving it");
    }
};

void load(benchmark::State& state, std::string History::*form) {
    History history;
    for (auto _ : state) {
        tarnEngineData record;
        require(record.loadData((history.*form).c_str(), loadReplace) == 1, "loading");
        require(record.getNumMulti() == history.record.getNumMulti(), "all rows");
    }
}

void copy(benchmark::State& state) {
    History history;
    for (auto _ : state) {
        auto copy = std::make_unique<tarnEngineData>(&history.record);
        benchmark::DoNotOptimize(copy.get());
        state.PauseTiming();
        copy.reset();
        state.ResumeTiming();
    }
}

void destroy(benchmark::State& state) {
    History history;
    for (auto _ : state) {
        state.PauseTiming();
        auto copy = std::make_unique<tarnEngineData>(&history.record);
        state.ResumeTiming();
        copy.reset();
    }
}

// What examples/option_sheet.cpp does, without its printing: load, volatility, a chain of calls and puts, save
// and load again.
void mainJob(benchmark::State& state) {
    History history;
    for (auto _ : state) {
        tarnEngineData record;
        require(record.loadData(history.text.c_str(), loadReplace) == 1, "loading");
        const double volatility = doCalculateHistoricalVolatility(&record);
        require(volatility > 0, "a volatility");
        for (int i = 0; i < 40; ++i) {
            double gamma, theta, vega, delta, value, implied;
            doCalculateBSValue(i % 2, 2800 + 5 * i, 0.015, 0, volatility, nullptr, nullptr, 0, 0, 0, 0, 0, 1,
                               100, 2874.56, 63, &gamma, &theta, &vega, &delta, &value, &implied);
            benchmark::DoNotOptimize(implied);
        }
        require(record.saveData(history.indexed.c_str()) == 1, "saving");
        tarnEngineData again;
        require(again.loadData(history.indexed.c_str(), loadReplace) == 1, "loading again");
    }
}

BENCHMARK_CAPTURE(load, text, &History::text)->Name("history_text_load/ours");
BENCHMARK_CAPTURE(load, indexed, &History::indexed)->Name("history_text_load/indexed_form");
BENCHMARK(copy)->Name("history_copy/ours");
BENCHMARK_CAPTURE(load, again, &History::indexed)->Name("history_copy/indexed_load");
BENCHMARK(destroy)->Name("history_destroy/ours");
BENCHMARK(mainJob)->Name("main_job/ours");

}  // namespace

int main(int argc, char** argv) {
    registerStores();
    return bench::run(argc, argv, {});
}
