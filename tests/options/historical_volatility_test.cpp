// Historical volatility: options/historical_volatility.cpp.

#include <cmath>
#include <string>
#include <vector>

#include "engine/engine_data.h"
#include "options/option_value.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::HeldClock;
using Prices = std::vector<const char*>;

double volatility(const char* firstDate, const Prices& prices) {
    const HeldClock clock(1999, 11, 30);
    tarnEngineData record;
    if (firstDate != nullptr) {
        const auto date = tarntest::text(firstDate);
        record.storeMultiData(737, 0, &date, 0);
    }
    for (std::size_t row = 0; row < prices.size(); ++row) {
        const auto price = tarntest::text(prices[row]);
        record.storeMultiData(336, static_cast<std::int32_t>(row), &price, 0);
    }
    return doCalculateHistoricalVolatility(&record);
}

TEST(HistoricalVolatilityTest, FiguresWorkedByHand) {
    if (!HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    const double change = std::log(1.1);
    const double rise = std::log(2.0);
    const struct {
        const char* firstDate;
        Prices prices;
        double result;
    } rows[] = {
        {"09/17/99", {"100", "110"}, std::sqrt(change * change / 2 / 0.1)},   // 73 days of 30-day months
        {"9/17/1999", {"100", "110"}, std::sqrt(change * change / 2 / 0.1)},  // a full year is understood
        {"11/30/98",
         {"1", "1 1/2", "3"},
         std::sqrt((std::pow(std::log(1.5), 2) + rise * rise) / 2 * 3 - std::pow(std::log(3.0), 2) / 2)},
        {"11/30/99", {"100", "110"}, 0.114},
        {"11/30/99", {"100", "abc"}, -1},  // a bad price comes before a span of nothing
        {"09/17/99", {"100"}, -1},
        {"09/17/99", {}, -1},
        {"12/01/99", {"100", "110"}, -1},  // tomorrow
        {"09/17", {"100", "110"}, -1},
        {nullptr, {"100", "110"}, -1},
        {"09/17/99", {"100", "100"}, 0},
        {"09/17/99", {"0", "110"}, 0},  // from nothing: no change
        {"09/17/99", {"110", "0"}, 0},
        {"09/17/99", {"110", "-5"}, 0},
        {"09/17/99", {"0", "50", "100"}, std::sqrt((rise * rise / 2 - rise * rise / 6) * 3 / 0.2)},
    };
    for (const auto& row : rows) {
        EXPECT_NEAR(volatility(row.firstDate, row.prices), row.result, 1e-12)
            << (row.firstDate == nullptr ? "NULL" : row.firstDate);
    }
    EXPECT_EQ(doCalculateHistoricalVolatility(nullptr), -1);
}

TEST(HistoricalVolatilityTest, MissingCellsAndOtherTagsCountAsNoPrice) {
    if (!HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    const HeldClock clock(1999, 11, 30);
    tarnEngineData record;
    const auto date = tarntest::text("09/17/99", tagString);
    const auto price = tarntest::number(tagDouble, 5);
    record.storeMultiData(737, 0, &date, 0);
    record.storeMultiData(336, 2, &price, 0);
    EXPECT_EQ(doCalculateHistoricalVolatility(&record), 0);
}

}  // namespace
