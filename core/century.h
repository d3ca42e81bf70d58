#pragma once

// Internal: the century of a year that a date text gives with two digits.  Users want parseDate in
// core/date.h or the readers of calendar/market_calendar.h.

#include <cstdint>

namespace tarn {

// A year up to 90 is one of 20xx, from 91 on one of 19xx.
constexpr std::int32_t centuryOf(std::int64_t twoDigitYear) {
    return twoDigitYear <= 90 ? 2000 : 1900;
}

}  // namespace tarn
