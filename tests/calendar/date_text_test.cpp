// Date text and packed dates: calendar/date_text.cpp, calendar/packed_dates.cpp.
// Compact dates, and years to be widened, are among the seeds of fuzz/date_fuzz.cpp, which knows what each
// means.

#include "calendar/market_calendar.h"
#include "tests/plain/calendar.h"
#include "tests/support.h"

namespace {

using tarnplain::fieldsOf;
using tarnplain::mktimeOf32Bits;
using tarnplain::scan;

// Spoiled texts around the ends of 32-bit time and the hours that daylight saving skips and repeats.
TEST(DateText, ScanOrComparisonDiffersFromSscanfAndMktime) {
    const std::string bases[] = {
        "12/31/69",   "04/04/1999 02:30:00", "10/31/1999 01:30:00", "1/2/-2147483649 5:6",
        "12/31/1969", "01/02/70 00:00:00",   "01/19/2038 03:14:07", "99999999999/1/2 3:4",
        "          "};
    std::mt19937 random(17);
    std::string winter = "01/01/1999";
    for (const char* const zone :
         {"UTC0", "EST5EDT,M4.1.0,M10.5.0", "America/New_York", "Australia/Lord_Howe"}) {
        const tarntest::HeldZone held(zone);
        std::string text = winter;
        for (int round = 0; round < 20000; ++round) {
            std::string previous = text;
            text = bases[random() % std::size(bases)];
            for (auto left = random() % 4; left > 0; --left)
                text[random() % text.size()] = "0123456789/: -+\tx"[random() % 17];
            if (random() % 20 == 0) text.pop_back();
            std::tm expected;
            std::tm other;
            std::tm actual;
            scan(winter, actual);  // in an hour that comes twice, mktime answers by the moment it saw last
            std::string rewritten = text;
            scan(rewritten, expected);
            scan(previous, other);
            const std::int64_t difference = mktimeOf32Bits(expected) - mktimeOf32Bits(other);
            gettmstruct(winter.data(), actual);
            ASSERT_EQ(datecmp(text.data(), previous.data()), std::min<std::int64_t>(difference, INT32_MAX))
                << text << ", " << previous << ", " << zone;
            gettmstruct(winter.data(), actual);
            gettmstruct(text.data(), actual);
            ASSERT_EQ(fieldsOf(actual), fieldsOf(expected)) << text << ", " << zone;
            ASSERT_EQ(text, rewritten) << zone;
        }
    }
    EXPECT_LT(datecmp(nullptr, winter.data()), 0);
}

TEST(PackedDates, DaysAreCountedFromAnotherDay) {
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    const auto daysFrom = [](int year, int month, int day, std::uint16_t swappedDate) {
        const tarntest::HeldClock clock(year, month, day);
        return calculateDaystoExpiration(swappedDate);
    };
    EXPECT_EQ(daysFrom(1999, 11, 30, 0x353C), 52);
    EXPECT_EQ(daysFrom(2098, 1, 1, 0x2100), 0);  // as packed, 2098 is 1970
    EXPECT_EQ(daysFrom(2000, 1, 21, 0), -2451565);
}

}  // namespace
