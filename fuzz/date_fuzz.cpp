// Date text: the first line of an input is one date, the second another, behind them are a count of business
// days and a choice of centuries.  Answers have to agree with the C library's scan, with std::chrono and with
// walks day by day.

#include <optional>

#include "calendar/market_calendar.h"
#include "fuzz/property.h"
#include "platform/host.h"
#include "tests/plain/calendar.h"

namespace {

using namespace std::chrono;
using tarnfuzz::require;
using tarnfuzz::wholeNumber;

std::optional<year_month_day> realDate(std::int64_t month, std::int64_t day, std::int64_t ofYear) {
    if (month < 1 || month > 12 || day < 1 || day > 31 || ofYear < -999 || ofYear > 9999) return std::nullopt;
    const auto date = year(static_cast<int>(ofYear)) / static_cast<int>(month) / static_cast<int>(day);
    return date.ok() ? std::optional(date) : std::nullopt;
}

void checkCompact(const std::string& text) {
    const bool isCompact = text.size() == 6 || text.size() == 8;
    const std::string padded = text + "        ";
    const std::int64_t month = wholeNumber(padded.substr(0, 2)), day = wholeNumber(padded.substr(2, 2));
    std::int64_t ofYear = wholeNumber(padded.substr(4));
    if (text.size() == 6) ofYear += ofYear <= 90 ? 2000 : 1900;
    const auto date = isCompact ? realDate(month, day, ofYear) : std::nullopt;
    const bool isLater = isCompact && std::tuple(ofYear, month, day) > std::tuple(1999, 11, 30);
    const tarnfuzz::Text block(text);
    require(isValidDate(block.get()) == (date && ofYear >= 1900 ? 1 : 0), "a date is valid if it is real");
    require(isValidTradeDate(block.get()) == (date && tarnplain::trades(*date) ? 1 : 0), "or trades");
    require(isFutureDate(block.get()) == (isLater ? 1 : 0), "or is after today");
}

void checkMoments(std::string text, std::string other) {
    const tarnfuzz::Text first(text), second(other);
    std::tm expected{}, otherExpected{}, moment{};
    tarnplain::scan(text, expected);
    tarnplain::scan(other, otherExpected);
    gettmstruct(first.get(), moment);
    tarnfuzz::requireSame(first.copy(), text, "only the no-date is rewritten");
    require(tarnplain::fieldsOf(moment) == tarnplain::fieldsOf(expected), "a moment is read as by sscanf");
    const std::int64_t seconds =
        tarnplain::mktimeOf32Bits(expected) - tarnplain::mktimeOf32Bits(otherExpected);
    require(datecmp(first.get(), second.get()) == std::min<std::int64_t>(seconds, INT32_MAX),
            "moments are apart as by mktime");
    const bool isWeekend = expected.tm_wday == 0 || expected.tm_wday == 6;
    const int part = isWeekend ? 4 : expected.tm_hour < 9 ? 2 : expected.tm_hour < 17 ? 1 : 3;
    require(getUpdateTime(first.get()) == part, "a moment is in its part of the week");
}

void checkWidening(const std::string& text, bool yearFirst, bool lowPivot) {
    const std::size_t size = text.size();
    const bool widens = size == 6 || size == 17 || (size == 8 && text.find('/') != text.npos);
    std::string expected = text;
    const std::size_t place = yearFirst ? 0 : text.size() == 6 ? 4 : 6;
    if (widens) expected.insert(place, text[place] < (lowPivot ? '1' : '9') ? "20" : "19");
    const tarnfuzz::Text out(text, 20);
    require(convert2DigitYrTo4(out.get(), out.get(), yearFirst, lowPivot) == (widens ? 1 : 0),
            "a year of two digits widens");
    tarnfuzz::requireSame(out.copy(), expected, "by its century");
}

void checkSettlement(const std::string& text, std::int32_t count) {
    const tarnfuzz::Text block(text);
    const std::unique_ptr<char[]> result(getSettlementDate(block.get(), count, 1));
    if (text.size() < 10 || std::abs(count / 2) > 300) return;
    const auto date =
        realDate(wholeNumber(text.substr(0, 2)), wholeNumber(text.substr(3, 2)), wholeNumber(text.substr(6)));
    if (!date || date->year() < 1000y || date->year() > 9000y) return;
    const year_month_day day(tarnplain::settlementDay(sys_days(*date), count));
    char expected[40];
    std::snprintf(expected, sizeof expected, "%02u/%02u/%04d", unsigned{day.month()}, unsigned{day.day()},
                  int{day.year()});
    tarnfuzz::requireSame(result.get(), expected, "business days are counted as by a walk");
}

bool prepare() {
    ::setenv("TZ", "UTC0", 1);
    const SYSTEMTIME clock{1999, 11, 2, 30, 12, 0, 0, 0};
    tarn::setClock(&clock, &clock);
    return std::freopen("/dev/null", "w", stdout) != nullptr;  // getSettlementDate prints its answer
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] static const bool isPrepared = prepare();
    tarnfuzz::Input input(data, size);
    const std::string text = input.text(), other = input.text();
    const auto count = static_cast<std::int32_t>(input.word());
    const unsigned choice = input.byte();
    checkCompact(text);
    checkMoments(text, other);
    checkWidening(text, (choice & 1) != 0, (choice & 2) != 0);
    checkSettlement(text, count);
    checkSettlement(text, count % 64);
    return 0;
}
