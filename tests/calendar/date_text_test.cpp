// Date text and packed dates: calendar/date_text.cpp, calendar/packed_dates.cpp.

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <tuple>

#include "calendar/market_calendar.h"
#include "tests/support.h"

namespace {

constexpr std::int64_t largestLong = std::numeric_limits<std::int32_t>::max();

auto fieldsOf(std::tm& moment) {
    return std::tie(moment.tm_sec, moment.tm_min, moment.tm_hour, moment.tm_mday, moment.tm_mon,
                    moment.tm_year, moment.tm_wday, moment.tm_yday, moment.tm_isdst);
}

TEST(DateText, OddCompactTextsReadAsAtolReadsThem) {
    // clang-format off
    const struct { const char* text; int valid, trades, future; } rows[] = {  // as of 30 November 1999
        {"022900", 1, 1, 1},   {"02291900", 0, 0, 0}, {"022999", 0, 0, 0},   {"112999", 1, 1, 0},
        {"1231199", 0, 0, 0},  {"11/30/99", 0, 0, 0}, {"010190", 1, 0, 1},   {"010191", 1, 1, 0},
        {"113099", 1, 1, 0},   {"120199", 1, 1, 1},   {"13452099", 0, 0, 1}, {"00451999", 0, 0, 0},
        {"1130200x", 0, 0, 0}, {" 1+12001", 1, 1, 1}, {"0101-5", 1, 0, 0},   {"\t1\n1 200", 0, 1, 0},
        {"12319999", 1, 1, 1}, {"101199", 1, 1, 0},   {"01010000", 0, 0, 0}, {"01030000", 0, 1, 0},
        {"0101-001", 0, 1, 0}, {"0102-001", 0, 0, 0}, {"", 0, 0, 0},         {nullptr, 0, 0, 0}};
    // clang-format on
    const tarntest::HeldClock clock(1999, 11, 30);
    for (const auto& row : rows) {
        EXPECT_EQ(isValidDate(row.text), row.valid) << row.text;
        EXPECT_EQ(isValidTradeDate(row.text), row.trades) << row.text;
        if (!tarntest::HeldClock::possible) continue;
        EXPECT_EQ(isFutureDate(row.text), row.future) << row.text;
    }
}

std::int64_t mktimeOf32Bits(std::tm& moment) {
    std::tm normalised = moment;
    const std::int64_t seconds = std::mktime(&normalised);
    if (seconds < 0 || seconds > largestLong) return -1;
    moment = normalised;
    return seconds;
}

// gettmstruct on the C library's sscanf.
void scan(const std::string& text, std::tm& out) {
    out = {};
    long long n[6] = {};
    const auto found =
        std::sscanf(text.c_str(), "%lld/%lld/%lld %lld:%lld:%lld", &n[0], &n[1], &n[2], &n[3], &n[4], &n[5]);
    const std::size_t size = text.size();
    if (found == -1 || (size != 8 && size != 10 && size != 17 && size != 19)) return;
    if (size <= 10) n[3] = n[4] = n[5] = 0;
    for (auto& number : n) number = std::clamp<long long>(number, -largestLong - 1, largestLong);
    const long long month = n[0] == 0 ? 0 : std::max<long long>(n[0], -largestLong) - 1;
    fieldsOf(out) = std::tuple(n[5], n[4], n[3], n[1], month, n[2] > 1900 ? n[2] - 1900 : n[2], 0, 0, -1);
    mktimeOf32Bits(out);
}

// Spoiled texts around the ends of 32-bit time and the hours that daylight saving skips and repeats.
TEST(DateText, ScanAndComparisonAgreeWithSscanfAndDoubleMktime) {
    const std::string bases[] = {
        "11/30/99",   "04/04/1999 02:30:00", "10/31/1999 01:30:00", "1/2/-2147483649 5:6",
        "          ", "01/19/2038 03:14:07", "01/02/70 00:00:00",   "99999999999/1/2 3:4"};
    std::mt19937 random(17);
    std::string winter = "01/01/1999", text = winter;
    for (int round = 0; round < 60000; ++round) {
        const char* const zones[] = {"UTC0", "EST5EDT,M4.1.0,M10.5.0", "America/New_York"};
        if (round % 20000 == 0) tarntest::setTimeZone(zones[round / 20000]);
        std::string previous = text;
        text = bases[random() % std::size(bases)];
        for (auto left = random() % 4; left > 0; --left) {
            text[random() % text.size()] = "0123456789/: -+\tx"[random() % 17];
        }
        if (random() % 20 == 0) text.pop_back();
        std::tm expected, other, actual;
        scan(winter, actual);  // in an hour that comes twice, mktime answers by the moment it saw last
        scan(text, expected);
        scan(previous, other);
        const std::int64_t difference = mktimeOf32Bits(expected) - mktimeOf32Bits(other);
        gettmstruct(winter.data(), actual);
        ASSERT_EQ(datecmp(text.data(), previous.data()), std::min(difference, largestLong))
            << text << previous;
        gettmstruct(winter.data(), actual);
        gettmstruct(text.data(), actual);
        ASSERT_EQ(fieldsOf(actual), fieldsOf(expected)) << text;
    }
}

TEST(DateText, TextsBecomeKnownMomentsAndTheNoDateIsRewritten) {
    // clang-format off
    struct { std::string text, rewritten; std::tuple<int, int, int, int, int, int, int, int, int> fields; } rows[] = {
        {"11/30/1999 16:05:00", "11/30/1999 16:05:00", {0, 5, 16, 30, 10, 99, 2, 333, 0}},
        {"11/30/99", "11/30/99", {0, 0, 0, 30, 10, 99, 2, 333, 0}},
        {"12/31/69", "00/00/00", {0, 0, 0, 0, 0, 0, 0, 0, -1}},
        {"12/31/1969 01:02:03", "00/00/1900 01:02:03", {3, 2, 1, 0, 0, 1900, 0, 0, -1}},
        {"12/31/69+", "00/00/00+", {0, 0, 0, 0, 0, 0, 0, 0, 0}}};
    // clang-format on
    tarntest::setTimeZone("UTC0");
    for (auto& row : rows) {
        std::tm moment;
        gettmstruct(row.text.data(), moment);
        EXPECT_EQ(row.text, row.rewritten);
        gettmstruct(nullptr, moment);  // leaves it untouched
        EXPECT_EQ(fieldsOf(moment), row.fields) << row.text;
    }
    EXPECT_EQ(datecmp(rows[2].text.data(), rows[3].text.data()), 0);
    EXPECT_EQ(datecmp(rows[0].text.data(), nullptr), 943977901);
}

TEST(DateText, YearsWidenByTheirFirstDigitWhereverTheyStand) {
    // clang-format off
    const struct { const char* in; int yearFirst, lowPivot, widened; const char* out; } rows[] = {
        {"113099", 0, 0, 1, "11301999"},     {"113001", 0, 0, 1, "11302001"},     {"113089", 0, 0, 1, "11302089"},
        {"11/30/09", 0, 1, 1, "11/30/2009"}, {"11/30/19", 0, 1, 1, "11/30/1919"}, {"991130", 1, 0, 1, "19991130"},
        {"09/11/30", 1, 1, 1, "2009/11/30"}, {"11301999", 0, 0, 0, "11301999"},   {"", 0, 0, 0, ""},
        {"11/30/99 16:05:00", 0, 0, 1, "11/30/1999 16:05:00"},
        {"99/11/30 16:05:00", 1, 0, 1, "1999/11/30 16:05:00"},
        {"11/30/1999 16:05:00, a Tuesday", 0, 0, 0, "11/30/1999 16:05:00, a Tuesday"}};
    // clang-format on
    for (const auto& row : rows) {
        char out[40], inPlace[40];
        EXPECT_EQ(convert2DigitYrTo4(row.in, out, row.yearFirst, row.lowPivot), row.widened);
        convert2DigitYrTo4(std::strcpy(inPlace, row.in), inPlace, row.yearFirst, row.lowPivot);
        EXPECT_STREQ(out, row.out);
        EXPECT_STREQ(inPlace, row.out);
    }
    EXPECT_EQ(convert2DigitYrTo4(nullptr, nullptr, 0, 0), 0);
}

TEST(PackedDates, EveryPackedDateHasTheDayNumberOfItsMonthAndDay) {
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const std::chrono::month month(value >> 5 & 15);
        const auto first = std::chrono::year(static_cast<int>(value >> 9) + 1970) / month / 1;
        const std::int64_t days = month.ok() ? std::chrono::sys_days(first).time_since_epoch().count() : 0;
        PKDATE date;
        date.value = static_cast<std::uint16_t>(value);
        ASSERT_EQ(DateToJulian(date), month.ok() ? days + 2440587 + (value & 31) : 0) << value;
    }
}

}  // namespace
