#pragma once

// Internal to the library; users want calendar/market_calendar.h.  What the sources of calendar/ have in
// common: a date in three numbers, its place in an unbroken count of days, and how it is read and written.

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string_view>

#include "calendar/market_calendar.h"

namespace tarn {

// Three numbers as read from a text: month and day may be anything.
struct CalendarDate {
    std::int64_t year;  // 64 bits, since two billion business days lead beyond the 32-bit years
    std::int32_t month;
    std::int32_t day;
};

constexpr std::int64_t lastCalendarYear = 9999;
constexpr std::size_t dateTextSize = 11;  // of every buffer that receives a written date

// Days of a common year before each month, counted from 0; the last entry is the whole year.
inline constexpr std::int32_t daysBeforeMonth[13] = {0,   31,  59,  90,  120, 151, 181,
                                                     212, 243, 273, 304, 334, 365};

constexpr bool isLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

// `month` from 1 to 12.
constexpr std::int32_t monthLength(std::int64_t year, std::int32_t month) {
    return daysBeforeMonth[month] - daysBeforeMonth[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

constexpr bool hasRealMonth(const CalendarDate& date) {
    return date.month >= 1 && date.month <= 12;
}

constexpr bool isRealDate(const CalendarDate& date) {
    return hasRealMonth(date) && date.day >= 1 && date.day <= monthLength(date.year, date.month);
}

constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return (value < 0 ? value - (divisor - 1) : value) / divisor;
}

constexpr std::int32_t daysOfCycle = 146097;  // 400 years, 20871 weeks

// The place of a date with a real month in an unbroken count of days, in which multiples of 7 are Sundays.
// It is 365 y + y / 4 - y / 100 + y / 400 and the day of the year, less the leap day that is still to come;
// whole cycles of 400 years are counted apart, so that the quotients are right for negative years too.
constexpr std::int64_t dayNumber(const CalendarDate& date) {
    const std::int64_t cycle = floorDivide(date.year, 400);
    const std::int64_t year = date.year - 400 * cycle;  // [0, 399]
    const std::int32_t leapDayAhead = date.month <= 2 && isLeapYear(year) ? 1 : 0;
    return cycle * daysOfCycle + 365 * year + year / 4 - year / 100 + daysBeforeMonth[date.month - 1] +
           date.day - 1 - leapDayAhead;
}

constexpr bool isWeekend(std::int64_t dayNumber) {
    const std::int64_t weekday = dayNumber - 7 * floorDivide(dayNumber, 7);
    return weekday == 0 || weekday == 6;  // Sunday, Saturday
}

// The date that dayNumber numbers so.
CalendarDate dateOfDay(std::int64_t day);

// The day after; the date has a real month.  A day beyond the end of its month is followed by the first of
// the next month.
CalendarDate dayAfter(const CalendarDate& date);

// What atol reads in the columns `from` up to `to`, at most 9, which the text must have.
std::int32_t numberInColumns(const char* text, std::size_t from, std::size_t to);

// Reads month, day and year of 6 or 8 characters; a two-digit year up to 90 is 20xx, from 91 on 19xx.
// Answers false for NULL and every other length.
bool readCompactDate(const char* text, CalendarDate& date);

// Writes 11/30/1999, or 11/30/99, into `dateTextSize` bytes.  Other numbers are written as "%.2d/%.2d/%.4d"
// writes them, without the year's first two characters in the short form, and cut after 10 characters.  The
// last byte is always 0.
void writeDate(const CalendarDate& date, bool fourDigitYear, char* out);

// Scans numbers with these separators between them, as sscanf scans "%d/%d/%d" for "//"; a blank means
// any white space.  `numbers` has one place more than there are separators and keeps what isn't found.
// Answers how many were found, and -1 for a text of white space alone.
int scanNumbers(const char* text, std::string_view separators, std::int32_t* numbers);

// Today's local date, with the year taken modulo 128 as the packed field is.
PKDATE packedToday();

// mktime with a 32-bit result: normalises `moment`, taken as local time, and answers its seconds since 1970.
// A moment outside 1970 to 2038 answers -1 and leaves `moment` alone.
std::int32_t secondsSince1970(std::tm& moment);

}  // namespace tarn
