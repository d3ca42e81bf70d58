// Packed dates and day numbers.  A day number is counted in years that begin in March, so that the leap day
// is the last of its year and the lengths of the months follow from one division.
// Tests: tests/calendar/date_text_test.cpp, tests/calendar/trading_days_test.cpp.

#include <cstdint>

#include "calendar/date_text.h"
#include "calendar/market_calendar.h"
#include "platform/win32.h"

PKDATE tarn::packedToday() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    PKDATE today{};
    today.parts.day = now.wDay & 31;
    today.parts.month = now.wMonth & 15;
    today.parts.year = (now.wYear - 1970) & 127;
    return today;
}

std::int32_t DateToJulian(PKDATE date) {
    std::int32_t year = date.parts.year + 1970;
    std::int32_t month = date.parts.month;
    if (month < 1 || month > 12) return 0;
    if (month <= 2) {
        month += 9;
        --year;
    } else {
        month -= 3;
    }
    const std::int32_t century = year / 100;
    return 146097 * century / 4 + 1461 * (year % 100) / 4 + (153 * month + 2) / 5 + date.parts.day + 1721119;
}

std::int32_t calculateDaystoExpiration(std::uint16_t swappedDate) {
    PKDATE date{};
    date.value = static_cast<std::uint16_t>(swappedDate << 8 | swappedDate >> 8);
    return DateToJulian(date) - DateToJulian(tarn::packedToday());
}
