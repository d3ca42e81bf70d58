// Trading days, today and settlement: calendar/trading_days.cpp, calendar/settlement.cpp; the count of days
// in calendar/date_text.h.  The closings come from tools/quantlib_calendar.cpp, the weekdays from
// std::chrono.

#include <algorithm>
#include <chrono>
#include <memory>
#include <span>

#include "calendar/date_text.h"
#include "calendar/market_calendar.h"
#include "tests/support.h"

namespace {

using std::chrono::day, std::chrono::days, std::chrono::month, std::chrono::sys_days, std::chrono::weekday,
    std::chrono::year, std::chrono::year_month_day;

constexpr int closings[] = {19970101, 19970217, 19970328, 19970526, 19970704, 19970901, 19971127,
                            19971225, 19980101, 19980119, 19980216, 19980410, 19980525, 19980703,
                            19980907, 19981126, 19981225, 19990101, 19990118, 19990215, 19990402,
                            19990531, 19990705, 19990906, 19991125, 19991224, 20000117, 20000221,
                            20000421, 20000529, 20000704, 20000904, 20001123, 20001225};
constexpr int unsettled[] = {19981111, 19991011, 19991111, 20001011};

bool contains(std::span<const int> list, year_month_day date) {
    const int number =
        int{date.year()} * 10000 + static_cast<int>(unsigned{date.month()} * 100 + unsigned{date.day()});
    return std::ranges::find(list, number) != list.end();
}
bool trades(year_month_day date) {
    return date.ok() && weekday(date).c_encoding() % 6 != 0 && !contains(closings, date);
}

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
            const std::string text = textOf("%02u%02u%04d", date),
                              shortText = textOf("%02u%02u%02d", date, 100);
            ASSERT_EQ(isValidDate(text.c_str()), date.ok() && y >= 1900) << text;
            ASSERT_EQ(isValidTradeDate(text.c_str()), trades(date)) << text;
            if (y < 1991 || y > 2090) continue;
            ASSERT_EQ(isValidDate(shortText.c_str()), date.ok()) << shortText;
            ASSERT_EQ(isValidTradeDate(shortText.c_str()), trades(date)) << shortText;
        }
    }
}

TEST(TradingDays, DaysAreCountedWithoutGapsFromBeforeTheYearOne) {
    const std::int64_t first = tarn::dayNumber({-1200, 1, 1});
    for (int i = 0; i < 1'300'000; ++i) {
        const year_month_day expected{sys_days(year(-1200) / 1 / 1) + days(i)};
        const tarn::CalendarDate date = tarn::dateOfDay(first + i);
        ASSERT_EQ(year(static_cast<int>(date.year)) / date.month / date.day, expected);
        ASSERT_EQ(tarn::dayNumber(date), first + i);
        ASSERT_EQ(tarn::isWeekend(first + i), weekday(expected).c_encoding() % 6 == 0);
    }
}

TEST(TradingDays, TodayIsWrittenMovesToTheNextTradingDayAndCountsToExpiration) {
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the system's clock can't be held";
    // clang-format off
    const struct {
        int year, month, day, fourDigitYear; const char *today, *trading; std::uint16_t swapped; int days; } rows[] = {
        {1999, 11, 30, 1, "11/30/1999", "11/30/1999", 0x353C, 52}, {1999, 11, 25, 0, "11/25/99", "11/26/99", 0x7E3B, 5},
        {1999, 12, 24, 1, "12/24/1999", "12/27/1999", 0x353C, 28}, {1999, 10, 11, 0, "10/11/99", "10/11/99", 0x4B3B, 0},
        {2005, 12, 31, 1, "12/31/2005", "01/02/2006", 0x9F47, 0},  {2004, 2, 28, 0, "02/28/04", "03/01/04", 0x5B44, -1},
        {2098, 1, 1, 0, "01/01/98", "01/01/98", 0x2100, 0},        {2000, 1, 21, 0, "01/21/00", "01/21/00", 0, -2451565},
        {12345, 1, 1, 1, "01/01/1234", "01/01/1234", 0x210E, 0},   {12345, 1, 1, 0, "01/01/345", "01/01/345", 0x210E, 0},
        {9999, 12, 40, 1, "12/40/9999", "01/01/1000", 0, -2474897}, {1999, 0, 9, 0, "00/09/99", "00/09/99", 0, 0},
        {9999, 65520, 65535, 1, "65520/6553", "65520/6553", 0, 0}};
    // clang-format on
    for (const auto& row : rows) {
        const tarntest::HeldClock clock(row.year, row.month, row.day);
        char buffer[12] = "~~~~~~~~~~~";
        EXPECT_STREQ(getCurrentDate(buffer, row.fourDigitYear), row.today);
        EXPECT_STREQ(getCurrentTradingDate(buffer, row.fourDigitYear), row.trading);
        EXPECT_TRUE(buffer[10] == '\0' && buffer[11] == '\0');
        EXPECT_EQ(calculateDaystoExpiration(row.swapped), row.days) << row.today;
    }
    EXPECT_TRUE(getCurrentDate(nullptr, 1) == nullptr && getCurrentTradingDate(nullptr, 1) == nullptr);
}

TEST(TradingDays, OnlyWholeHoursDecideThePartOfTheWeek) {
    // clang-format off
    const struct { std::string text; eUpdateTime part; } rows[] = {
        {"11/30/1999 16:59:59", eUpdateDuringMarket}, {"11/30/1999 17:00:00", eUpdateAfterMarket},
        {"11/30/1999 08:59:59", eUpdateBeforeMarket}, {"11/30/1999 09:00:00", eUpdateDuringMarket},
        {"11/27/1999 12:00:00", eUpdateWeekend}, {"11/28/99 20:00:00", eUpdateWeekend},
        {"11/30/1999", eUpdateBeforeMarket}, {"11/30/1960 12:00:00", eUpdateWeekend}};
    // clang-format on
    tarntest::setTimeZone("UTC0");
    for (auto row : rows) EXPECT_EQ(getUpdateTime(row.text.data()), row.part) << row.text;
    EXPECT_EQ(getUpdateTime(static_cast<char*>(nullptr)), eUpdateWeekend);
    EXPECT_EQ(getUpdateTime(static_cast<std::tm*>(nullptr)), eUpdateWeekend);
}

std::string settle(const std::string& date, std::int32_t businessDays, int fourDigitYear) {
    const std::unique_ptr<char[]> result(getSettlementDate(date.c_str(), businessDays, fourDigitYear));
    return result.get();
}

// Centuries, days outside their month, months that are none, short texts, the ends of the calendar, and
// counts of 400 years, which have 104355 weekdays.
TEST(Settlement, OddTextsAndCountsHaveAnAnswer) {
    // clang-format off
    const struct { const char* date; std::int32_t businessDays; int fourDigitYear; const char* result; } rows[] = {
        {"10/08/99", 1, 0, "10/12/99"}, {"03/01/00", -1, 1, "02/29/2000"}, {"11/27/99", 0, 1, "11/27/1999"},
        {"11/24/1999", 1, 0, "11/26/99"}, {"01/01/90", 0, 1, "01/01/2090"},
        {"01/01/91", 0, 1, "01/01/1991"}, {"01/01/9", 0, 1, "01/01/0209"}, {"01/01/", 0, 1, "01/01/0020"},
        {"01/01/-5", 0, 1, "01/01/0020"}, {"01/01/ 99", 0, 1, "01/01/0019"},
        {"01/01/099", 0, 1, "01/01/1909"}, {"01/01/099", 0, 0, "01/01/099"},
        {"01/01/99 16:05:00", 0, 1, "01/01/0099"}, {"02/31/99", 1, 1, "03/01/1999"},
        {"04/31/99", -1, 1, "04/30/1999"}, {"02/00/99", 1, 1, "02/01/1999"},
        {"02/-9/99", -1, 1, "01/29/1999"}, {"13/05/99", 0, 1, "13/05/1999"}, {"13/05/99", 1, 1, "13/05/99"},
        {"00/05/1999 16:05:00", -1, 0, "00/05/1999"}, {"11/30", 1, 1, "11/30"}, {"", 0, 1, ""},
        {"12/30/9999", 1, 1, "12/31/9999"}, {"12/31/9999", 1, 0, "12/31/9999"},
        {"01/01/2000", 2147483647, 1, "01/01/2000"}, {"06/05/99999999999", -1, 1, "12/31/9999"},
        {"01/03/0001", -4, 0, "12/28/00"}, {"01/01/-1234", 0, 1, "01/01/-123"},
        {"-1/-1/-1234", 0, 1, "-01/-01/-1"}, {"01/01/1990", -104355 * 9582, 1, "01/01/-383"},
        {"01/01/1990", -104355 * 9582, 0, "01/01/8308"}, {"01/01/2001", 104355 * 19, 1, "01/01/9601"},
        {"01/01/-99999999999", -2147483647 - 1, 1, "04/04/-215"}};
    // clang-format on
    for (const auto& row : rows) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(settle(row.date, row.businessDays, row.fourDigitYear), row.result)
            << row.date << ", " << row.businessDays;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(row.result) + " \n");
    }
    EXPECT_EQ(getSettlementDate(nullptr, 1, 1), nullptr);
}

TEST(Settlement, CountsAgreeWithAWalkDayByDay) {
    std::mt19937 random(3);
    testing::internal::CaptureStdout();
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        const sys_days start = sys_days(year(1996) / 6 / 1) + days(random() % 1950);
        const int count = static_cast<int>(random() % (round % 4 == 0 ? 1500 : 12)) + 1,
                  step = round % 2 == 0 ? 1 : -1;
        sys_days expected = start;
        for (int left = count; left > 0;) {
            expected += days(step);
            if (trades(expected) && !contains(unsettled, expected)) --left;
        }
        const std::string from = textOf("%02u/%02u/%04d", start);
        EXPECT_EQ(settle(from, step * count, 1), textOf("%02u/%02u/%04d", expected)) << from;
    }
    testing::internal::GetCapturedStdout();
}

}  // namespace
