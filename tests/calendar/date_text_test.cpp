// Date text and packed dates: calendar/date_text.cpp, calendar/packed_dates.cpp.  More texts are among the seeds
// of fuzz/date_fuzz.cpp, which knows what each means.

#include "calendar/market_calendar.h"
#include "tests/plain/calendar.h"
#include "tests/support.h"

namespace {

using tarnplain::fieldsOf;
using tarnplain::mktimeOf32Bits;
using tarnplain::scan;

TEST(DateText, CompactDateIsReadOtherwise) {
    const struct {
        const char* text;
        int isValid, trades, isAhead;  // of 30 November 1999
    } rows[] = {
        {"010190", 1, 0, 1},  // 2090, a Sunday
        {"010191", 1, 1, 0}, {"113099", 1, 1, 0}, {"13452099", 0, 0, 1}, {" 1+12001", 1, 1, 1},
    };
    const tarntest::HeldClock clock(1999, 11, 30);
    for (const auto& each : rows) {
        EXPECT_EQ(isValidDate(each.text), each.isValid) << each.text;
        EXPECT_EQ(isValidTradeDate(each.text), each.trades) << each.text;
        EXPECT_EQ(clock.possible ? isFutureDate(each.text) : each.isAhead, each.isAhead) << each.text;
    }
    for (const auto ask : {isValidDate, isValidTradeDate, isFutureDate}) EXPECT_EQ(ask(nullptr), 0);
}

std::string widened(const char* text, int yearFirst, int lowPivot) {
    char out[40];
    std::strcpy(out, text);
    EXPECT_EQ(convert2DigitYrTo4(nullptr, out, yearFirst, lowPivot), 0);
    EXPECT_EQ(convert2DigitYrTo4(text, nullptr, yearFirst, lowPivot), 0);
    convert2DigitYrTo4(out, out, yearFirst, lowPivot);
    return out;
}

TEST(DateText, YearIsWidenedToAnotherCentury) {
    EXPECT_EQ(widened("113090", 0, 0), "11301990");
    EXPECT_EQ(widened("11/30/10", 0, 1), "11/30/1910");
    EXPECT_EQ(widened("991130", 1, 0), "19991130");
    EXPECT_EQ(widened("11/30/99 16:05:00", 0, 0), "11/30/1999 16:05:00");
    EXPECT_EQ(widened("11301999", 0, 0), "11301999");
}

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
