// Historical volatility: options/historical_volatility.cpp.  The figures of tests/options/histories.txt are
// worked by hand.

#include "engine/engine_data.h"
#include "options/option_value.h"
#include "tests/values.h"

namespace {

constexpr char histories[] =
#include "tests/options/histories.txt"
    ;

std::string volatility(const std::string& firstDate, const std::string& prices) {
    tarnEngineData record;
    const auto date = tarntest::valueOf("17:" + firstDate);
    if (!firstDate.empty()) record.storeMultiData(737, 0, &date, 0);
    std::int32_t row = 0;
    for (const std::string& cell : tarntest::split(prices, ',')) {
        const auto price = tarntest::valueOf(cell == "?" ? "5:5" : "10:" + cell);
        if (!cell.empty()) record.storeMultiData(336, row, &price, 0);
        ++row;
    }
    return tarntest::shown(doCalculateHistoricalVolatility(&record));
}

TEST(HistoricalVolatilityTest, FiguresWorkedByHand) {
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    const tarntest::HeldClock clock(1999, 11, 30);
    tarntest::expectAnswers(histories, [](auto&, auto& cells) { return volatility(cells[0], cells[1]); });
}

}  // namespace
