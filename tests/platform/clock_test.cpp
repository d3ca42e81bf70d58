// The clock: platform/clock.cpp.

#if !defined(_WIN32)

#include "tests/support.h"

namespace {

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
