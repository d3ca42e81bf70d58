// Settlement dates.  Weekdays, Monday to Friday, are numbered without gaps, and a business day is a weekday
// that isn't listed as a holiday.  Counting business days is then one addition to a weekday's number, plus
// one more for each listed holiday on the way:
//
//   day      24 Wed  25 Thu   26 Fri  27 Sat  28 Sun  29 Mon  30 Tue        November 1999
//   number     n      n + 1   n + 2                   n + 3   n + 4
//   count            holiday    1                       2       3
//
// so that a count of a billion takes no longer than a count of one.
// Tests: tests/calendar/trading_days_test.cpp.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string>

#include "calendar/date_text.h"
#include "calendar/holidays.h"
#include "calendar/market_calendar.h"
#include "core/century.h"
#include "core/number_text.h"

namespace tarn {

namespace {

// The number of the last weekday up to `day`, itself included.
constexpr std::int64_t weekdayNumber(std::int64_t day) {
    const std::int64_t week = floorDivide(day, 7);
    return 5 * week + std::min<std::int64_t>(day - 7 * week, 5);  // Sunday 0, Saturday 6
}

constexpr std::int64_t dayOfWeekday(std::int64_t number) {
    const std::int64_t week = floorDivide(number - 1, 5);
    return 7 * week + (number - 5 * week);
}

constexpr std::size_t listedDays(std::span<const HolidaysOfYear> table) {
    std::size_t days = 0;
    for (const auto& year : table) days += year.days.size();
    return days;
}

// The weekday numbers of all listed holidays, in order.
constexpr auto closings = [] {
    std::array<std::int32_t, listedDays(marketHolidays) + listedDays(settlementHolidays)> numbers{};
    auto next = numbers.begin();
    constexpr std::span<const HolidaysOfYear> tables[] = {marketHolidays, settlementHolidays};
    for (const auto& table : tables) {
        for (const auto& year : table) {
            for (const auto& [month, day] : year.days) {
                *next++ = static_cast<std::int32_t>(weekdayNumber(dayNumber({year.year, month, day})));
            }
        }
    }
    std::ranges::sort(numbers);
    return numbers;
}();

// How many closings are on weekday `number` or before.  A search's branches would be mispredicted, and there
// are so few that comparing with all of them is quicker.
std::ptrdiff_t closingsUpTo(std::int64_t number) {
    const auto limit = static_cast<std::int32_t>(std::clamp<std::int64_t>(number, 0, closings.back()));
    return std::ranges::count_if(closings, [limit](std::int32_t closing) { return closing <= limit; });
}

// The `count`th business day after weekday `from`, by number.
std::int64_t countForward(std::int64_t from, std::int64_t count) {
    std::int64_t number = from + count;
    for (auto closing = closings.begin() + closingsUpTo(from); closing != closings.end(); ++closing) {
        if (*closing > number) break;
        ++number;
    }
    return number;
}

// The `count`th business day before weekday `from`.
std::int64_t countBackward(std::int64_t from, std::int64_t count) {
    std::int64_t number = from - count;
    for (auto closing = closings.begin() + closingsUpTo(from - 1); closing != closings.begin();) {
        if (*--closing < number) break;
        --number;
    }
    return number;
}

// `start` itself never counts.  Nothing where the count leads beyond the calendar.
std::optional<CalendarDate> businessDaysFrom(CalendarDate start, std::int64_t count) {
    if (count == 0) return start;
    if (!hasRealMonth(start)) return std::nullopt;
    constexpr std::int64_t lastDay = dayNumber({lastCalendarYear, 12, 31});
    // A day that its month doesn't have is placed before the first or after the last.
    const std::int32_t length = monthLength(start.year, start.month);
    std::int64_t day = 0;
    if (count > 0) {
        start.day = std::clamp(start.day, 0, length);
        day = dayOfWeekday(countForward(weekdayNumber(dayNumber(start)), count));
        if (day > lastDay) return std::nullopt;
    } else {
        start.day = std::clamp(start.day, 1, length + 1);
        const std::int64_t before = std::min(dayNumber(start) - 1, lastDay);
        day = dayOfWeekday(countBackward(weekdayNumber(before) + 1, -count));
    }
    return dateOfDay(day);
}

// The year, from a text that is widened in front if it is too short to have a century.
std::int32_t readYear(const char* text, std::size_t length) {
    if (length == 4) return numberInColumns(text, 0, length);
    const std::int32_t year = readLong(text);
    if (length > 4) return year;
    return readLong(std::to_string(centuryOf(year) / 100).append(text, length).c_str());
}

std::optional<CalendarDate> settlementDate(const char* text, std::size_t length, std::int32_t businessDays) {
    if (length < 6) return std::nullopt;
    const CalendarDate start{readYear(text + 6, length - 6), numberInColumns(text, 0, 2),
                             numberInColumns(text, 3, 5)};
    return businessDaysFrom(start, businessDays);
}

// printf("%s \n"), at a third of its cost.
void printLine(const char (&text)[dateTextSize]) {
    char line[dateTextSize + 2];
    std::memcpy(line, text, dateTextSize);
    const std::size_t length = std::strlen(line);
    line[length] = ' ';
    line[length + 1] = '\n';
    std::fwrite(line, 1, length + 2, stdout);
}

}  // namespace

}  // namespace tarn

char* getSettlementDate(const char* date, std::int32_t businessDays, int fourDigitYear) {
    if (date == nullptr) return nullptr;
    char text[tarn::dateTextSize] = {};
    const std::size_t length = std::strlen(date);
    if (const auto found = tarn::settlementDate(date, length, businessDays)) {
        tarn::writeDate(*found, fourDigitYear != 0, text);
    } else {
        std::memcpy(text, date, std::min(length, tarn::dateTextSize - 1));
    }
    auto* const result = new char[tarn::dateTextSize];
    std::memcpy(result, text, tarn::dateTextSize);
    tarn::printLine(text);
    return result;
}
