// Which days the market trades, today's date as text, and the part of the market's week.
// Tests: tests/calendar/trading_days_test.cpp.

#include <algorithm>

#include "calendar/date_text.h"
#include "calendar/holidays.h"
#include "calendar/market_calendar.h"
#include "platform/win32.h"

namespace tarn {

namespace {

bool isMarketHoliday(const CalendarDate& date) {
    const auto* const year = std::ranges::find(marketHolidays, date.year, &HolidaysOfYear::year);
    if (year == std::end(marketHolidays)) return false;
    const MonthDay day{static_cast<std::int8_t>(date.month), static_cast<std::int8_t>(date.day)};
    return std::ranges::find(year->days, day) != year->days.end();
}

bool isTradingDay(const CalendarDate& date) {
    return date.year <= lastCalendarYear && isRealDate(date) && !isWeekend(dayNumber(date)) &&
           !isMarketHoliday(date);
}

CalendarDate today() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    return {now.wYear, now.wMonth, now.wDay};
}

}  // namespace

}  // namespace tarn

int isValidTradeDate(const char* text) {
    tarn::CalendarDate date;
    return tarn::readCompactDate(text, date) && tarn::isTradingDay(date) ? 1 : 0;
}

char* getCurrentDate(char* buffer, int fourDigitYear) {
    if (buffer != nullptr) tarn::writeDate(tarn::today(), fourDigitYear != 0, buffer);
    return buffer;
}

char* getCurrentTradingDate(char* buffer, int fourDigitYear) {
    if (buffer == nullptr) return buffer;
    tarn::CalendarDate date = tarn::today();
    const auto mayTrade = [&date] { return date.year <= tarn::lastCalendarYear && tarn::hasRealMonth(date); };
    while (mayTrade() && !tarn::isTradingDay(date)) date = tarn::dayAfter(date);
    tarn::writeDate(date, fourDigitYear != 0, buffer);
    return buffer;
}

eUpdateTime getUpdateTime(const std::tm* moment) {
    constexpr int openingHour = 9;
    constexpr int closingHour = 17;
    if (moment == nullptr || moment->tm_wday == 0 || moment->tm_wday == 6) return eUpdateWeekend;
    if (moment->tm_hour >= closingHour) return eUpdateAfterMarket;
    if (moment->tm_hour < openingHour) return eUpdateBeforeMarket;
    return eUpdateDuringMarket;
}

eUpdateTime getUpdateTime(char* text) {
    std::tm moment{};
    gettmstruct(text, moment);
    return getUpdateTime(&moment);
}
