#pragma once

// Slow plain forms of calendar/market_calendar.h, for tests and fuzz targets.  The weekdays come from
// std::chrono.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <span>
#include <string>
#include <tuple>

namespace tarnplain {

// By tools/quantlib_calendar.cpp.
constexpr int closings[] = {19970101, 19970217, 19970328, 19970526, 19970704, 19970901, 19971127,
                            19971225, 19980101, 19980119, 19980216, 19980410, 19980525, 19980703,
                            19980907, 19981126, 19981225, 19990101, 19990118, 19990215, 19990402,
                            19990531, 19990705, 19990906, 19991125, 19991224, 20000117, 20000221,
                            20000421, 20000529, 20000704, 20000904, 20001123, 20001225};
constexpr int unsettled[] = {19981111, 19991011, 19991111, 20001011};

// Markets are closed on the closings; business days don't count on the other days either.
inline bool trades(std::chrono::year_month_day date, std::span<const int> closed = closings) {
    const int number =
        int{date.year()} * 10000 + static_cast<int>(unsigned{date.month()} * 100 + unsigned{date.day()});
    return date.ok() && std::chrono::weekday(date).c_encoding() % 6 != 0 &&
           std::ranges::count(closed, number) == 0;
}

// The `count`th business day after or, below 0, before a day, by a walk.
inline std::chrono::sys_days settlementDay(std::chrono::sys_days day, int count) {
    for (int left = std::abs(count); left > 0; left -= trades(day) && trades(day, unsettled) ? 1 : 0)
        day += std::chrono::days(count < 0 ? -1 : 1);
    return day;
}

inline auto fieldsOf(std::tm& moment) {
    return std::tie(moment.tm_sec, moment.tm_min, moment.tm_hour, moment.tm_mday, moment.tm_mon,
                    moment.tm_year, moment.tm_wday, moment.tm_yday, moment.tm_isdst);
}

inline std::int64_t mktimeOf32Bits(std::tm& moment) {
    std::tm normalised = moment;
    const std::int64_t seconds = std::mktime(&normalised);
    if (seconds < 0 || seconds > INT32_MAX) return -1;
    moment = normalised;
    return seconds;
}

// gettmstruct on the C library's sscanf.
inline void scan(std::string& text, std::tm& out) {
    out = {};
    if (text.starts_with("12/31/69")) text.replace(0, 8, "00/00/00");
    if (text.starts_with("12/31/1969")) text.replace(0, 10, "00/00/1900");
    long long numbers[6] = {};
    auto& [month, day, year, hour, minute, second] = numbers;
    const int found = std::sscanf(text.c_str(), "%lld/%lld/%lld %lld:%lld:%lld", &month, &day, &year, &hour,
                                  &minute, &second);
    const std::size_t size = text.size();
    if (found == -1 || (size != 8 && size != 10 && size != 17 && size != 19)) return;
    if (size <= 10) hour = minute = second = 0;
    for (auto& number : numbers) number = std::clamp<long long>(number, INT32_MIN, INT32_MAX);
    if (month != 0) month = std::max<long long>(month, -INT32_MAX) - 1;
    if (year > 1900) year -= 1900;
    fieldsOf(out) = std::tuple(second, minute, hour, day, month, year, 0, 0, -1);
    mktimeOf32Bits(out);
}

}  // namespace tarnplain
