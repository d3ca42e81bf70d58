// Trading days and settlement: calendar/trading_days.cpp, calendar/settlement.cpp, calendar/holidays.h, and
// the count of days in calendar/date_text.h.  The weekdays come from std::chrono.
// Moments in each part of the market's week are among the seeds of fuzz/date_fuzz.cpp.

#include "calendar/date_text.h"
#include "calendar/market_calendar.h"
#include "tests/plain/calendar.h"
#include "tests/support.h"

namespace {

using namespace std::chrono;
using tarnplain::trades;

std::string textOf(const char* format, year_month_day date) {
    char text[32];
    std::snprintf(text, sizeof text, format, unsigned{date.month()}, unsigned{date.day()}, int{date.year()});
    return text;
}

TEST(TradingDays, DayOfTwoCenturiesIsMisjudged) {
    for (int y = 1899; y <= 2101; ++y) {
        for (unsigned monthAndDay = 0; monthAndDay < 14 * 33; ++monthAndDay) {
            const year_month_day date = year(y) / month(monthAndDay / 33) / day(monthAndDay % 33);
            const std::string text = textOf("%02u%02u%04d", date);
            ASSERT_EQ(isValidDate(text.c_str()), date.ok() && y >= 1900) << text;
            ASSERT_EQ(isValidTradeDate(text.c_str()), trades(date)) << text;
            if (y >= 1970 && y <= 2097 && date.ok()) {
                const unsigned fields = monthAndDay / 33 << 5 | monthAndDay % 33;
                const PKDATE packed{static_cast<std::uint16_t>((y - 1970) * 512 + static_cast<int>(fields))};
                ASSERT_EQ(DateToJulian(packed), 2440588 + sys_days(date).time_since_epoch().count()) << text;
            }
        }
    }
}

std::string tradingDay(int year, int month, int day, const char* today) {
    const tarntest::HeldClock clock(year, month, day);
    const int fourDigitYear = std::strlen(today) == 10 ? 1 : 0;
    char text[11];
    EXPECT_STREQ(getCurrentDate(text, fourDigitYear), today);
    return getCurrentTradingDate(text, fourDigitYear);
}

TEST(TradingDays, TodayOrItsTradingDayIsAnother) {
    EXPECT_EQ(getCurrentDate(nullptr, 1), nullptr);
    EXPECT_EQ(getCurrentTradingDate(nullptr, 1), nullptr);
    EXPECT_EQ(getUpdateTime(static_cast<const std::tm*>(nullptr)), eUpdateWeekend);
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    EXPECT_EQ(tradingDay(1999, 12, 24, "12/24/1999"), "12/27/1999");
    EXPECT_EQ(tradingDay(1999, 10, 11, "10/11/99"), "10/11/99");  // a holiday of settlement alone
    EXPECT_EQ(tradingDay(2004, 2, 28, "02/28/04"), "03/01/04");
    EXPECT_EQ(tradingDay(2005, 12, 31, "12/31/2005"), "01/02/2006");
    EXPECT_EQ(tradingDay(12345, 1, 1, "01/01/345"), "01/01/345");  // behind the calendar's end
}

std::string settlement(const std::string& date, std::int32_t count, int fourDigitYear = 1) {
    testing::internal::CaptureStdout();
    const std::unique_ptr<char[]> result(getSettlementDate(date.c_str(), count, fourDigitYear));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(result.get()) + " \n");
    return result.get();
}

TEST(Settlement, UnusualTextOrEndOfTheCalendarIsReadOtherwise) {
    EXPECT_EQ(settlement("01/01/90", 0), "01/01/2090");
    EXPECT_EQ(settlement("01-01-", 0), "01/01/0020");    // columns are read, and nothing between them
    EXPECT_EQ(settlement("02/31/99", 1), "03/01/1999");  // a day that its month doesn't have
    EXPECT_EQ(settlement("04/31/99", -1), "04/30/1999");
    EXPECT_EQ(settlement("02/-9/99", -1), "01/29/1999");
    EXPECT_EQ(settlement("13/05/1999 16:05:00", 1), "13/05/1999");
    EXPECT_EQ(settlement("12/30/9999", 1), "12/31/9999");
    EXPECT_EQ(settlement("01/03/0001", -4, 0), "12/28/00");
    EXPECT_EQ(settlement("01/01/-1234", 0), "01/01/-123");
    EXPECT_EQ(getSettlementDate(nullptr, 1, 1), nullptr);
}

}  // namespace
