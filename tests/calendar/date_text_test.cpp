// Date text and packed dates: calendar/date_text.cpp, calendar/packed_dates.cpp.  The calls and answers of
// tests/calendar/examples.txt, for all sources of calendar/.

#include <optional>

#include "calendar/market_calendar.h"
#include "tests/plain/calendar.h"
#include "tests/support.h"

namespace {

using tarnplain::fieldsOf;
using tarnplain::mktimeOf32Bits;
using tarnplain::scan;

constexpr char examples[] =
#include "tests/calendar/examples.txt"
    ;

std::string answerOf(const std::string& function, const std::vector<std::string>& cells) {
    std::string text = cells[0];
    std::int32_t n[5] = {};
    for (std::size_t i = 0; i + 1 < cells.size(); ++i)
        n[i] = static_cast<std::int32_t>(std::strtoll(cells[i].c_str(), nullptr, 0));
    if (function == "settle") {
        testing::internal::CaptureStdout();
        const std::unique_ptr<char[]> result(getSettlementDate(text.c_str(), n[1], n[2]));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(result.get()) + " \n");
        return result.get();
    }
    if (function == "part") return std::to_string(getUpdateTime(text.data()));
    if (function == "compact") {
        const char* const date = text.c_str();
        const int future = tarntest::HeldClock::possible ? isFutureDate(date) : cells[1][2] - '0';
        return std::to_string(1000 + isValidDate(date) * 100 + isValidTradeDate(date) * 10 + future)
            .substr(1);
    }
    char out[80] = "~~~~~~~~~~~";
    if (function == "widen") {
        std::strcpy(out, text.c_str());
        EXPECT_EQ(convert2DigitYrTo4(out, out, n[1], n[2]), text == cells[3] ? 0 : 1);
        return out;
    }
    if (!tarntest::HeldClock::possible) return cells.back();
    const tarntest::HeldClock clock(n[0], n[1], n[2]);
    text = getCurrentDate(out, n[3]);
    text += std::string(" ") + getCurrentTradingDate(out, n[3]);
    return text + ' ' + std::to_string(calculateDaystoExpiration(static_cast<std::uint16_t>(n[4])));
}

TEST(CalendarText, ExampleAnswersOtherwise) {
    const tarntest::HeldClock clock(1999, 11, 30);
    const tarntest::HeldZone zone("UTC0");
    tarntest::expectAnswers(examples, answerOf);
}

// Spoiled texts around the ends of 32-bit time and the hours that daylight saving skips and repeats.
TEST(DateText, ScanAndComparisonAgreeWithSscanfAndDoubleMktime) {
    const std::string bases[] = {
        "11/30/99",   "04/04/1999 02:30:00", "10/31/1999 01:30:00", "1/2/-2147483649 5:6",
        "          ", "01/19/2038 03:14:07", "01/02/70 00:00:00",   "99999999999/1/2 3:4"};
    std::mt19937 random(17);
    std::string winter = "01/01/1999", text = winter;
    std::optional<tarntest::HeldZone> zone;
    for (int round = 0; round < 80000; ++round) {
        const char* const zones[] = {"UTC0", "EST5EDT,M4.1.0,M10.5.0", "America/New_York",
                                     "Australia/Lord_Howe"};
        if (round % 20000 == 0) zone.reset(), zone.emplace(zones[round / 20000]);
        std::string previous = text;
        text = bases[random() % std::size(bases)];
        for (auto left = random() % 4; left > 0; --left)
            text[random() % text.size()] = "0123456789/: -+\tx"[random() % 17];
        if (random() % 20 == 0) text.pop_back();
        std::tm expected, other, actual;
        scan(winter, actual);  // in an hour that comes twice, mktime answers by the moment it saw last
        scan(text, expected);
        scan(previous, other);
        const std::int64_t difference = mktimeOf32Bits(expected) - mktimeOf32Bits(other);
        gettmstruct(winter.data(), actual);
        ASSERT_EQ(datecmp(text.data(), previous.data()), std::min<std::int64_t>(difference, INT32_MAX))
            << text << previous;
        gettmstruct(winter.data(), actual);
        gettmstruct(text.data(), actual);
        ASSERT_EQ(fieldsOf(actual), fieldsOf(expected)) << text;
    }
}

}  // namespace
