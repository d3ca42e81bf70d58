// Date text: the first line of an input is one date, the second another, behind them stand a count of
// business days and a packed date.  Answers are held to the C library's scan, to std::chrono and to walks day
// by day.

#include <vector>

#include "calendar/market_calendar.h"
#include "fuzz/property.h"
#include "platform/host.h"
#include "tests/plain/calendar.h"

namespace {

using namespace std::chrono;
using tarnfuzz::require;

constexpr year_month_day today{1999y / 11 / 30};

std::int64_t numberIn(const std::string& text) {
    return std::clamp<long long>(std::strtoll(text.c_str(), nullptr, 10), INT32_MIN, INT32_MAX);
}

struct Date {
    std::int64_t month, day, year;

    [[nodiscard]] bool isOf(std::int64_t firstYear, std::int64_t lastYear) const {
        return year >= firstYear && year <= lastYear && month >= 1 && month <= 12 && day >= 1 && day <= 31;
    }
    [[nodiscard]] year_month_day chrono() const {
        return std::chrono::year(static_cast<int>(year)) / static_cast<int>(month) / static_cast<int>(day);
    }
};

void checkCompact(const std::string& text) {
    const bool isCompact = text.size() == 6 || text.size() == 8;
    Date date{};
    if (isCompact)
        date = {numberIn(text.substr(0, 2)), numberIn(text.substr(2, 2)), numberIn(text.substr(4))};
    if (text.size() == 6) date.year += date.year <= 90 ? 2000 : 1900;
    const bool isReal = isCompact && date.isOf(-999, 9999) && date.chrono().ok();
    const tarnfuzz::Text block(text);
    require(isValidDate(block.get()) == (isReal && date.year >= 1900 ? 1 : 0), "a date is valid plainly");
    require(isValidTradeDate(block.get()) == (isReal && tarnplain::trades(date.chrono()) ? 1 : 0),
            "a day trades plainly");
    const auto later = std::tuple(date.year, date.month, date.day) > std::tuple(1999, 11, 30);
    require(isFutureDate(block.get()) == (isCompact && later ? 1 : 0), "a day lies ahead plainly");
}

void checkMoments(const std::string& text, const std::string& other) {
    const tarnfuzz::Text first(text), second(other);
    std::tm expected{}, otherExpected{}, moment{};
    const auto noDate = [](std::string of) {
        const std::size_t length = of.starts_with("12/31/69") ? 8 : of.starts_with("12/31/1969") ? 10 : 0;
        return of.replace(0, length, length == 8 ? "00/00/00" : length == 10 ? "00/00/1900" : "");
    };
    tarnplain::scan(noDate(text), expected);
    tarnplain::scan(noDate(other), otherExpected);
    gettmstruct(first.get(), moment);
    tarnfuzz::requireSame(first.copy(), noDate(text), "just the no-date is rewritten");
    require(tarnplain::fieldsOf(moment) == tarnplain::fieldsOf(expected), "a moment is read as by sscanf");
    const std::int64_t seconds =
        tarnplain::mktimeOf32Bits(expected) - tarnplain::mktimeOf32Bits(otherExpected);
    require(datecmp(first.get(), second.get()) == std::min<std::int64_t>(seconds, INT32_MAX),
            "moments are apart as by mktime");
    const bool isWeekend = expected.tm_wday == 0 || expected.tm_wday == 6;
    const int part = isWeekend ? 4 : expected.tm_hour < 9 ? 2 : expected.tm_hour < 17 ? 1 : 3;
    require(getUpdateTime(first.get()) == part, "a moment lies in its part of the week");
}

void checkWidening(const std::string& text, bool yearFirst, bool lowPivot) {
    const bool widens =
        text.size() == 6 || (text.size() == 8 && text.find('/') != text.npos) || text.size() == 17;
    std::string expected = text;
    if (widens) {
        const std::size_t place = yearFirst ? 0 : text.size() == 6 ? 4 : 6;
        expected.insert(place, text[place] < (lowPivot ? '1' : '9') ? "20" : "19");
    }
    const tarnfuzz::Text out(text, 20);
    require(convert2DigitYrTo4(out.get(), out.get(), yearFirst, lowPivot) == (widens ? 1 : 0),
            "a year widens");
    tarnfuzz::requireSame(out.copy(), expected, "by its century");
}

void checkSettlement(const std::string& text, std::int32_t count) {
    const tarnfuzz::Text block(text);
    const std::unique_ptr<char[]> result(getSettlementDate(block.get(), count, 1));
    const std::string answer = result.get();
    require(answer.size() <= 10, "a settlement date has its ten characters");
    if (text.size() < 10) return;
    const Date date{numberIn(text.substr(0, 2)), numberIn(text.substr(3, 2)), numberIn(text.substr(6))};
    constexpr std::int32_t mostWalked = 300;
    if (std::abs(count / 2) > mostWalked || !date.isOf(1000, 9000) || !date.chrono().ok()) return;
    const year_month_day expected(tarnplain::settlementDay(sys_days(date.chrono()), count));
    char shown[40];
    std::snprintf(shown, sizeof shown, "%02u/%02u/%04d", unsigned{expected.month()}, unsigned{expected.day()},
                  int{expected.year()});
    tarnfuzz::requireSame(answer, shown, "business days are counted as by a walk");
}

// The day numbers of all packed dates, from a walk over the months.
std::vector<std::int32_t> walkedDays() {
    std::vector<std::int32_t> numbers(65536);
    std::int32_t first = 2440588;  // 1 January 1970
    for (unsigned y = 0; y < 128; ++y) {
        for (unsigned m = 1; m <= 12; ++m) {
            for (unsigned d = 0; d < 32; ++d)
                numbers[y << 9 | m << 5 | d] = first + static_cast<std::int32_t>(d) - 1;
            const year_month_day_last last = year(static_cast<int>(1970 + y)) / month(m) / std::chrono::last;
            first += static_cast<std::int32_t>(unsigned{last.day()});
        }
    }
    return numbers;
}

void checkPacked(std::uint16_t packed) {
    static const std::vector<std::int32_t> numbers = walkedDays();
    require(DateToJulian(PKDATE{packed}) == numbers[packed], "a packed date has its walked day");
    const std::int32_t now = 2440588 + static_cast<std::int32_t>(sys_days(today).time_since_epoch().count());
    const auto swapped = static_cast<std::uint16_t>(packed >> 8 | packed << 8);
    require(calculateDaystoExpiration(swapped) == numbers[packed] - now, "and its distance from today");
}

bool prepare() {
    ::setenv("TZ", "UTC0", 1);
    ::tzset();
    const SYSTEMTIME clock{1999, 11, 2, 30, 12, 0, 0, 0};
    tarn::setClock(&clock, &clock);
    return std::freopen("/dev/null", "w", stdout) != nullptr;  // for getSettlementDate tells its answer
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isPrepared = prepare();
    require(isPrepared, "the target is prepared");
    tarnfuzz::Input input(data, size);
    const std::string text = input.text(), other = input.text();
    const auto count = static_cast<std::int32_t>(input.word());
    const auto packed = static_cast<std::uint16_t>(input.byte() | input.byte() << 8);
    checkCompact(text);
    checkMoments(text, other);
    checkWidening(text, (packed & 1) != 0, (packed & 2) != 0);
    checkSettlement(text, count);
    checkSettlement(text, count % 64);
    checkPacked(packed);
    return 0;
}
