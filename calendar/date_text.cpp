// Date text: validation, century rules, and the way to a tm and to seconds.  There is no one century rule;
// each reader has the one that its texts were written by.  A slashed text is scanned as sscanf scans
// "%d/%d/%d", by hand, since the scan would otherwise cost more than the mktime that follows.
// Tests: tests/calendar/date_text_test.cpp.

#include "calendar/date_text.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>

#include "base/ascii.h"
#include "calendar/market_calendar.h"
#include "core/century.h"
#include "core/number_text.h"
#include "platform/win32.h"

namespace tarn {

namespace {

void putTwoDigits(char* at, std::int32_t number) {
    at[0] = static_cast<char>('0' + number / 10);
    at[1] = static_cast<char>('0' + number % 10);
}

}  // namespace

CalendarDate dateOfDay(std::int64_t day) {
    // Neri and Schneider, "Euclidean affine functions and their application to calendar algorithms",
    // Software: Practice and Experience 53 (2023), figure 12: years begin in March, so that the leap day is
    // the last of its year, and each division by a length of time is one multiplication.
    constexpr std::int64_t firstOfMarch = dayNumber({0, 3, 1});
    const std::int64_t cycle = floorDivide(day - firstOfMarch, daysOfCycle);
    const auto dayOfCycle =
        static_cast<std::uint32_t>(day - firstOfMarch - daysOfCycle * cycle);           // [0, 146096]
    const std::int64_t century = (4 * dayOfCycle + 3) / daysOfCycle;                    // [0, 3]
    const std::uint32_t dayOfCentury = (4 * dayOfCycle + 3) % daysOfCycle / 4;          // [0, 36524]
    const std::uint64_t scaledYears = std::uint64_t{2939745} * (4 * dayOfCentury + 3);  // 2^32 make a year
    const auto dayOfYear = static_cast<std::uint32_t>(scaledYears) / 2939745 / 4;       // [0, 365]
    const std::uint32_t scaledMonths = 2141 * dayOfYear + 197913;                       // 2^16 make a month
    const bool afterNewYear = dayOfYear >= 306;
    return {
        400 * cycle + 100 * century + static_cast<std::int64_t>(scaledYears >> 32) + (afterNewYear ? 1 : 0),
        static_cast<std::int32_t>(scaledMonths >> 16) - (afterNewYear ? 12 : 0),
        static_cast<std::int32_t>((scaledMonths & 0xFFFF) / 2141) + 1};
}

CalendarDate dayAfter(const CalendarDate& date) {
    if (date.day < monthLength(date.year, date.month)) return {date.year, date.month, date.day + 1};
    if (date.month < 12) return {date.year, date.month + 1, 1};
    return {date.year + 1, 1, 1};
}

std::int32_t numberInColumns(const char* text, std::size_t from, std::size_t to) {
    std::int32_t number = 0;
    for (std::size_t column = from; column < to; ++column) {
        if (!isDigit(text[column])) return readLong(std::string(text + from, to - from).c_str());
        number = number * 10 + (text[column] - '0');
    }
    return number;
}

bool readCompactDate(const char* text, CalendarDate& date) {
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    if (length != 6 && length != 8) return false;
    date = {numberInColumns(text, 4, length), numberInColumns(text, 0, 2), numberInColumns(text, 2, 4)};
    if (length == 6) date.year += centuryOf(date.year);
    return true;
}

void writeDate(const CalendarDate& date, bool fourDigitYear, char* out) {
    const auto twoDigits = [](std::int32_t number) { return number >= 0 && number <= 99; };
    if (twoDigits(date.month) && twoDigits(date.day) && date.year >= 0 && date.year <= lastCalendarYear) {
        const auto year = static_cast<std::int32_t>(date.year);
        putTwoDigits(out, date.month);
        out[2] = '/';
        putTwoDigits(out + 3, date.day);
        out[5] = '/';
        putTwoDigits(out + 6, fourDigitYear ? year / 100 : year % 100);
        if (fourDigitYear) {
            putTwoDigits(out + 8, year % 100);
        } else {
            out[8] = '\0';
        }
        out[dateTextSize - 1] = '\0';
        return;
    }
    char year[24];
    std::snprintf(year, sizeof year, "%.4" PRId64, date.year);
    char text[64] = {};
    std::snprintf(text, sizeof text, "%.2d/%.2d/%s", date.month, date.day, fourDigitYear ? year : year + 2);
    std::memcpy(out, text, dateTextSize - 1);
    out[dateTextSize - 1] = '\0';
}

std::int32_t secondsSince1970(std::tm& moment) {
    const std::tm asGiven = moment;
    const std::int64_t seconds = std::mktime(&moment);
    if (seconds < 0 || seconds > std::numeric_limits<std::int32_t>::max()) {
        moment = asGiven;
        return -1;
    }
    return static_cast<std::int32_t>(seconds);
}

namespace {

void overwriteNoDate(char* text, std::size_t length) {
    if (length >= 8 && std::memcmp(text, "12/31/69", 8) == 0) {
        std::memcpy(text, "00/00/00", 8);
    } else if (length >= 10 && std::memcmp(text, "12/31/1969", 10) == 0) {
        std::memcpy(text, "00/00/1900", 10);
    }
}

// What separates the numbers of a date text of this length; empty if no date text has this length.
std::string_view separatorsOf(std::size_t length) {
    if (length == 8 || length == 10) return "//";
    if (length == 17 || length == 19) return "// ::";
    return {};
}

// scanLong, quicker for the usual two digits.
const char* scanField(const char* text, std::int32_t& number) {
    if (!isDigit(text[0]) || !isDigit(text[1]) || isDigit(text[2])) return scanLong(text, number);
    number = (text[0] - '0') * 10 + (text[1] - '0');
    return text + 2;
}

}  // namespace

int scanNumbers(const char* text, std::string_view separators, std::int32_t* numbers) {
    const char* at = scanField(text, *numbers);
    if (at == nullptr) return text[std::strspn(text, " \t\n\v\f\r")] == '\0' ? -1 : 0;
    int found = 1;
    for (const char separator : separators) {
        // A blank means any white space, which the next number passes over itself.
        if (separator != ' ' && *at++ != separator) break;
        at = scanField(at, *++numbers);
        if (at == nullptr) break;
        ++found;
    }
    return found;
}

namespace {

constexpr std::int32_t noSeconds = -1;  // of a moment before 1970 or after 2038

// gettmstruct with the result of its mktime, which is what a second mktime of `out` would answer.
std::int32_t readMoment(char* text, std::tm& out) {
    if (text == nullptr) return noSeconds;
    out = {};
    const std::size_t length = std::strlen(text);
    overwriteNoDate(text, length);
    const std::string_view separators = separatorsOf(length);
    std::int32_t numbers[6] = {};
    if (separators.empty() || scanNumbers(text, separators, numbers) < 0) return noSeconds;  // all 0 is 1899
    const auto [month, day, year, hour, minute, second] = numbers;
    out.tm_sec = second;
    out.tm_min = minute;
    out.tm_hour = hour;
    out.tm_mday = day;
    out.tm_mon = month == 0 ? 0 : std::max(month, std::numeric_limits<std::int32_t>::min() + 1) - 1;
    out.tm_year = year > 1900 ? year - 1900 : year;
    out.tm_isdst = -1;
    return secondsSince1970(out);
}

}  // namespace

}  // namespace tarn

int isValidDate(const char* text) {
    tarn::CalendarDate date;
    if (!tarn::readCompactDate(text, date)) return 0;
    return date.year >= 1900 && date.year <= tarn::lastCalendarYear && tarn::isRealDate(date) ? 1 : 0;
}

int isFutureDate(const char* text) {
    tarn::CalendarDate date;
    if (!tarn::readCompactDate(text, date)) return 0;
    SYSTEMTIME today;
    GetSystemTime(&today);
    return std::tuple(date.year, date.month, date.day) > std::tuple(today.wYear, today.wMonth, today.wDay)
               ? 1
               : 0;
}

void gettmstruct(char* text, std::tm& out) {
    tarn::readMoment(text, out);
}

std::int32_t datecmp(char* first, char* second) {
    std::tm moment;
    const std::int64_t firstSeconds = tarn::readMoment(first, moment);
    const std::int64_t difference = firstSeconds - tarn::readMoment(second, moment);  // [-2^31, 2^31]
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(difference, std::numeric_limits<std::int32_t>::max()));
}

int convert2DigitYrTo4(const char* in, char* out, int yearFirst, int lowPivot) {
    if (in == nullptr || out == nullptr) return 0;
    const std::size_t length = std::strlen(in);
    const bool widens = length == 6 || (length == 8 && std::strchr(in, '/') != nullptr) || length == 17;
    if (!widens) {
        std::memmove(out, in, length + 1);
        return 0;
    }
    std::size_t yearAt = 0;
    if (yearFirst == 0) yearAt = length == 6 ? 4 : 6;
    const char* const century = in[yearAt] < (lowPivot != 0 ? '1' : '9') ? "20" : "19";
    std::memmove(out + yearAt + 2, in + yearAt, length - yearAt + 1);
    std::memmove(out, in, yearAt);
    std::memcpy(out + yearAt, century, 2);
    return 1;
}
