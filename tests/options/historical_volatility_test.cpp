// Historical volatility: options/historical_volatility.cpp.  The figures are worked by hand: ln(1.1) is
// 0.0953101798, and from 17 September to 30 November are 73 days, a fifth of a year.

#include "engine/engine_data.h"
#include "options/option_value.h"
#include "tests/values.h"

namespace {

// NULL where there is no cell.
double volatility(const char* firstDate, const std::vector<const char*>& prices) {
    tarnEngineData record;
    const auto store = [&](std::int32_t column, std::size_t row, const char* content) {
        const auto cell = tarntest::text(content);
        if (content != nullptr) record.storeMultiData(column, static_cast<std::int32_t>(row), &cell, 0);
    };
    store(737, 0, firstDate);
    for (std::size_t row = 0; row < prices.size(); ++row) store(336, row, prices[row]);
    return doCalculateHistoricalVolatility(&record);
}

TEST(HistoricalVolatility, FigureWorkedByHandIsMissed) {
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    const tarntest::HeldClock clock(1999, 11, 30);
    EXPECT_NEAR(volatility("09/17/99", {"100", "110"}), 0.213120041, 1e-9);
    EXPECT_NEAR(volatility("11/30/1900", {"100", "110"}), 0.009579033, 1e-9);
    EXPECT_NEAR(volatility("11/30/98", {"1", "1 1/2", "3"}), 0.603164962, 1e-9);
    EXPECT_NEAR(volatility("09/17/99", {"0", "50", "100"}), 1.549924214, 1e-9);
    EXPECT_NEAR(volatility("09/17/99", {"100", nullptr, "-5", "110", "121"}), 0.213120041, 1e-9);
    EXPECT_EQ(volatility("11/30/99", {"100", "110"}), 0.114);
    EXPECT_EQ(volatility("11/30/99", {"100", "abc"}), -1);  // a bad price comes before a span of nothing
    EXPECT_EQ(volatility("09/17/99", {"100"}), -1);
    EXPECT_EQ(volatility(nullptr, {"100", "110"}), -1);
    EXPECT_EQ(volatility("12/01/99", {"100", "110"}), -1);
    EXPECT_EQ(doCalculateHistoricalVolatility(nullptr), -1);
}

}  // namespace
