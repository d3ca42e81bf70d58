// Trading days and settlement: calendar/trading_days.cpp, calendar/settlement.cpp;
// the count of days in calendar/date_text.h.  The weekdays come from std::chrono.

#include <chrono>
#include <span>

#include "calendar/date_text.h"
#include "calendar/market_calendar.h"
#include "tests/plain/calendar.h"
#include "tests/support.h"

namespace {

using namespace std::chrono;
using tarnplain::trades;

std::string textOf(const char* format, year_month_day date, int modulus = 10000) {
    char text[32];
    std::snprintf(text, sizeof text, format, unsigned{date.month()}, unsigned{date.day()},
                  int{date.year()} % modulus);
    return text;
}

TEST(TradingDays, EveryDayOfTwoCenturiesIsValidAndTradesAsItShould) {
    for (int y = 1899; y <= 2101; ++y) {
        for (unsigned monthAndDay = 0; monthAndDay < 14 * 33; ++monthAndDay) {
            const year_month_day date = year(y) / month(monthAndDay / 33) / day(monthAndDay % 33);
            const std::string text = textOf("%02u%02u%04d", date), cut = textOf("%02u%02u%02d", date, 100);
            ASSERT_EQ(isValidDate(text.c_str()), date.ok() && y >= 1900) << text;
            ASSERT_EQ(isValidTradeDate(text.c_str()), trades(date)) << text;
            if (y >= 1970 && y <= 2097 && date.ok()) {
                const unsigned fields =
                    static_cast<unsigned>(y - 1970) << 9 | monthAndDay / 33 << 5 | monthAndDay % 33;
                const PKDATE packed{static_cast<std::uint16_t>(fields)};
                ASSERT_EQ(DateToJulian(packed), 2440588 + sys_days(date).time_since_epoch().count()) << text;
            }
            if (y < 1991 || y > 2090) continue;
            ASSERT_EQ(isValidDate(cut.c_str()), date.ok()) << cut;
            ASSERT_EQ(isValidTradeDate(cut.c_str()), trades(date)) << cut;
        }
    }
}

TEST(TradingDays, DaysAreCountedWithoutGapsFromBeforeTheYearOne) {
    for (std::int64_t i = tarn::dayNumber({-1200, 1, 1}), n = 0; n < 1'300'000; ++i, ++n) {
        const year_month_day expected{sys_days(year(-1200) / 1 / 1) + days(n)};
        const tarn::CalendarDate date = tarn::dateOfDay(i);
        ASSERT_EQ(year(static_cast<int>(date.year)) / date.month / date.day, expected);
        ASSERT_TRUE(tarn::dayNumber(date) == i &&
                    tarn::isWeekend(i) == (weekday(expected).c_encoding() % 6 == 0));
    }
}

TEST(Settlement, CountsAgreeWithAWalkDayByDay) {
    std::mt19937 random(3);
    testing::internal::CaptureStdout();
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        const sys_days start = sys_days(year(1996) / 6 / 1) + days(random() % 1950);
        const int count = static_cast<int>(random() % (round % 4 == 0 ? 1500 : 12)) + 1,
                  step = round % 2 * 2 - 1;
        const sys_days expected = tarnplain::settlementDay(start, step * count);
        const std::string from = textOf("%02u/%02u/%04d", start);
        const std::unique_ptr<char[]> to(getSettlementDate(from.c_str(), step * count, 1));
        EXPECT_EQ(to.get(), textOf("%02u/%02u/%04d", expected)) << from;
    }
    testing::internal::GetCapturedStdout();
}

}  // namespace
