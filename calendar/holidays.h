#pragma once

// Internal to the library; users want calendar/market_calendar.h.  The days on which the market doesn't
// trade, and those on which it trades but nothing settles, beside the weekends.  No listed day falls on a
// weekend, and none is listed twice.

#include <algorithm>
#include <cstdint>
#include <span>

#include "calendar/date_text.h"

namespace tarn {

struct MonthDay {
    std::int8_t month, day;

    friend constexpr bool operator==(const MonthDay&, const MonthDay&) = default;
};

struct HolidaysOfYear {
    std::int32_t year;
    std::span<const MonthDay> days;  // in order
};

inline constexpr MonthDay closedIn1997[] = {{1, 1}, {2, 17}, {3, 28},  {5, 26},
                                            {7, 4}, {9, 1},  {11, 27}, {12, 25}};
inline constexpr MonthDay closedIn1998[] = {{1, 1}, {1, 19}, {2, 16},  {4, 10}, {5, 25},
                                            {7, 3}, {9, 7},  {11, 26}, {12, 25}};
inline constexpr MonthDay closedIn1999[] = {{1, 1}, {1, 18}, {2, 15},  {4, 2},  {5, 31},
                                            {7, 5}, {9, 6},  {11, 25}, {12, 24}};
inline constexpr MonthDay closedIn2000[] = {{1, 17}, {2, 21}, {4, 21},  {5, 29},
                                            {7, 4},  {9, 4},  {11, 23}, {12, 25}};

inline constexpr HolidaysOfYear marketHolidays[] = {
    {1997, closedIn1997}, {1998, closedIn1998}, {1999, closedIn1999}, {2000, closedIn2000}};

inline constexpr MonthDay unsettledIn1998[] = {{11, 11}};
inline constexpr MonthDay unsettledIn1999[] = {{10, 11}, {11, 11}};
inline constexpr MonthDay unsettledIn2000[] = {{10, 11}};

inline constexpr HolidaysOfYear settlementHolidays[] = {
    {1998, unsettledIn1998}, {1999, unsettledIn1999}, {2000, unsettledIn2000}};

constexpr bool fallOnWeekdays(std::span<const HolidaysOfYear> table) {
    return std::ranges::all_of(table, [](const HolidaysOfYear& year) {
        return std::ranges::none_of(year.days, [&year](const MonthDay& day) {
            return isWeekend(dayNumber({year.year, day.month, day.day}));
        });
    });
}
static_assert(fallOnWeekdays(marketHolidays) && fallOnWeekdays(settlementHolidays));

}  // namespace tarn
