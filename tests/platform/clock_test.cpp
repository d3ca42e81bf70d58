// The clock: platform/clock.cpp.

#if !defined(_WIN32)

#include <chrono>

#include "tests/support.h"

namespace {

TEST(Clock, TodayIsAnotherDay) {
    SYSTEMTIME now{};
    const auto before = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
    GetSystemTime(&now);
    const auto after = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
    const auto shown = std::chrono::sys_days(std::chrono::year(now.wYear) / now.wMonth / now.wDay);
    EXPECT_GE(shown, before);
    EXPECT_LE(shown, after);
    EXPECT_EQ(std::chrono::weekday(shown).c_encoding(), now.wDayOfWeek);
}

// Former faults
TEST(Clock, LocalTimeStaysInTheZoneOfTheFirstCall) {
    const tarntest::HeldZone restored("UTC0");
    for (const int hoursBehind : {0, 5, 11}) {
        ::setenv("TZ", ("XYZ" + std::to_string(hoursBehind)).c_str(), 1);  // and no tzset
        SYSTEMTIME utc{};
        SYSTEMTIME local{};
        SYSTEMTIME after{};
        do {
            GetSystemTime(&utc);
            GetLocalTime(&local);
            GetSystemTime(&after);
        } while (utc.wHour != after.wHour);
        EXPECT_EQ((local.wHour + hoursBehind) % 24, utc.wHour);
        EXPECT_EQ(local.wMinute == utc.wMinute ? utc.wMinute : after.wMinute, local.wMinute);
    }
}

}  // namespace

#endif
