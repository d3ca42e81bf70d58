// The calendar against the best hand-written forms of the same jobs, and against QuantLib's calendar of the
// New York exchange.  Every form is checked to give the same answers before it is timed.

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <ql/time/calendars/bespokecalendar.hpp>
#include <ql/time/calendars/jointcalendar.hpp>
#include <ql/time/calendars/unitedstates.hpp>
#include <ql/version.hpp>
#include <random>
#include <vector>

#include "calendar/market_calendar.h"
#include "support.h"

namespace {

using bench::require;

constexpr std::size_t sampleSize = 1024;

struct Day {
    int year, month, day;
};

std::vector<Day> randomDays(int firstYear, int lastYear) {
    std::mt19937 random(5);
    std::vector<Day> days;
    for (std::size_t i = 0; i < sampleSize; ++i) {
        days.push_back({std::uniform_int_distribution<>(firstYear, lastYear)(random),
                        std::uniform_int_distribution<>(1, 12)(random),
                        std::uniform_int_distribution<>(1, 28)(random)});
    }
    return days;
}

std::vector<std::string> texts(const std::vector<Day>& days, const char* format) {
    std::vector<std::string> result;
    for (const Day& day : days) {
        char text[32];
        std::snprintf(text, sizeof text, format, day.month, day.day, day.year);
        result.emplace_back(text);
    }
    return result;
}

// Sends standard output to /dev/null as long as the object lives.
class SilencedOutput {
  public:
    SilencedOutput() {
        std::fflush(stdout);
        kept_ = ::dup(1);
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, 1);
        ::close(nowhere);
    }
    ~SilencedOutput() {
        std::fflush(stdout);
        ::dup2(kept_, 1);
        ::close(kept_);
    }
    SilencedOutput(const SilencedOutput&) = delete;
    SilencedOutput& operator=(const SilencedOutput&) = delete;

  private:
    int kept_;
};

// -------------------------------------------------------------------------------------------- by hand

int two(const char* text) {
    return (text[0] - '0') * 10 + (text[1] - '0');
}

bool leap(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr unsigned bit(int day) {
    return 1U << day;
}

// Bit `day` of [year - 1997][month - 1].
constexpr unsigned marketClosed[4][12] = {
    {bit(1), bit(17), bit(28), 0, bit(26), 0, bit(4), 0, bit(1), 0, bit(27), bit(25)},
    {bit(1) | bit(19), bit(16), 0, bit(10), bit(25), 0, bit(3), 0, bit(7), 0, bit(26), bit(25)},
    {bit(1) | bit(18), bit(15), 0, bit(2), bit(31), 0, bit(5), 0, bit(6), 0, bit(25), bit(24)},
    {bit(17), bit(21), 0, bit(21), bit(29), 0, bit(4), 0, bit(4), 0, bit(23), bit(25)}};
constexpr unsigned unsettled[4][12] = {{},
                                       {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, bit(11), 0},
                                       {0, 0, 0, 0, 0, 0, 0, 0, 0, bit(11), bit(11), 0},
                                       {0, 0, 0, 0, 0, 0, 0, 0, 0, bit(11), 0, 0}};
constexpr unsigned char lengths[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int weekdayByHand(int year, int month, int day) {
    static constexpr unsigned char shift[12] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    if (month < 3) --year;
    return (year + year / 4 - year / 100 + year / 400 + shift[month - 1] + day) % 7;
}

int tradingDayByHand(const char* text) {
    const std::size_t length = std::strlen(text);
    int year = 0;
    if (length == 8) {
        year = two(text + 4) * 100 + two(text + 6);
    } else if (length == 6) {
        year = two(text + 4);
        year += year <= 90 ? 2000 : 1900;
    } else {
        return 0;
    }
    const int month = two(text);
    const int day = two(text + 2);
    if (month < 1 || month > 12 || day < 1) return 0;
    if (day > lengths[month] + (month == 2 && leap(year) ? 1 : 0)) return 0;
    const int weekday = weekdayByHand(year, month, day);
    if (weekday == 0 || weekday == 6) return 0;
    if (year < 1997 || year > 2000) return 1;
    return (marketClosed[year - 1997][month - 1] & bit(day)) == 0 ? 1 : 0;
}

void putTwo(char* at, int number) {
    at[0] = static_cast<char>('0' + number / 10);
    at[1] = static_cast<char>('0' + number % 10);
}

char* settlementText(int month, int day, int year) {
    char* const result = new char[11];
    putTwo(result, month);
    result[2] = '/';
    putTwo(result + 3, day);
    result[5] = '/';
    putTwo(result + 6, year / 100);
    putTwo(result + 8, year % 100);
    result[10] = '\0';
    return result;
}

// Prints as getSettlementDate does, a date and a line end, at the least cost.
char* printed(char* date) {
    char line[12];
    std::memcpy(line, date, 10);
    line[10] = ' ';
    line[11] = '\n';
    std::fwrite(line, 1, sizeof line, stdout);
    return date;
}

char* settlementUnprinted(const char* text, int businessDays) {
    int month = two(text);
    int day = two(text + 3);
    int year = two(text + 6);
    year = text[8] == '\0' ? year + (year > 90 ? 1900 : 2000) : year * 100 + two(text + 8);
    int length = lengths[month] + (month == 2 && leap(year) ? 1 : 0);
    int weekday = weekdayByHand(year, month, day);
    while (businessDays > 0) {
        weekday = weekday == 6 ? 0 : weekday + 1;
        if (day < length) {
            ++day;
        } else {
            day = 1;
            if (++month > 12) {
                month = 1;
                ++year;
            }
            length = lengths[month] + (month == 2 && leap(year) ? 1 : 0);
        }
        if (weekday == 0 || weekday == 6) continue;
        if (year >= 1997 && year <= 2000 &&
            ((marketClosed[year - 1997][month - 1] | unsettled[year - 1997][month - 1]) & bit(day)) != 0) {
            continue;
        }
        --businessDays;
    }
    return settlementText(month, day, year);
}

char* settlementByHand(const char* text, int businessDays) {
    return printed(settlementUnprinted(text, businessDays));
}

std::time_t toMomentByHand(const char* text, std::tm& out) {
    out = {};
    const std::size_t length = std::strlen(text);
    if (length != 19 || std::memcmp(text, "12/31/1969", 10) == 0) std::abort();  // nothing else is timed
    out.tm_mon = two(text) - 1;
    out.tm_mday = two(text + 3);
    out.tm_year = two(text + 6) * 100 + two(text + 8) - 1900;
    out.tm_hour = two(text + 11);
    out.tm_min = two(text + 14);
    out.tm_sec = two(text + 17);
    out.tm_isdst = -1;
    return std::mktime(&out);
}

void toMomentByScan(const char* text, std::tm& out) {
    out = {};
    std::sscanf(text, "%d/%d/%d %d:%d:%d", &out.tm_mon, &out.tm_mday, &out.tm_year, &out.tm_hour, &out.tm_min,
                &out.tm_sec);
    out.tm_mon -= 1;
    out.tm_year -= 1900;
    out.tm_isdst = -1;
    std::mktime(&out);
}

std::time_t toMomentByStrptime(const char* text, std::tm& out) {
    out = {};
    ::strptime(text, "%m/%d/%Y %H:%M:%S", &out);
    out.tm_isdst = -1;
    return std::mktime(&out);
}

// ------------------------------------------------------------------------------------------ trading days

template <typename Function>
void eachText(benchmark::State& state, const std::vector<std::string>& sample, Function function) {
    std::size_t next = 0;
    for (auto step : state) {
        (void)step;
        benchmark::DoNotOptimize(function(sample[next].c_str()));
        next = (next + 1) % sampleSize;
    }
}

const std::vector<std::string>& tradingTexts() {
    static const auto sample = texts(randomDays(1997, 2000), "%02d%02d%04d");
    return sample;
}

void tradingOurs(benchmark::State& state) {
    for (const auto& text : tradingTexts()) {
        require(isValidTradeDate(text.c_str()) == tradingDayByHand(text.c_str()), "tradingday");
    }
    eachText(state, tradingTexts(), isValidTradeDate);
}
BENCHMARK(tradingOurs)->Name("tradingday/ours");

void tradingByHand(benchmark::State& state) {
    eachText(state, tradingTexts(), tradingDayByHand);
}
BENCHMARK(tradingByHand)->Name("tradingday/hand_written");

void tradingQuantLib(benchmark::State& state) {
    const QuantLib::UnitedStates market(QuantLib::UnitedStates::NYSE);
    std::vector<QuantLib::Date> dates;
    for (const Day& day : randomDays(1997, 2000)) {
        dates.emplace_back(day.day, static_cast<QuantLib::Month>(day.month), day.year);
    }
    for (std::size_t i = 0; i < sampleSize; ++i) {
        require(market.isBusinessDay(dates[i]) == (isValidTradeDate(tradingTexts()[i].c_str()) == 1),
                "quantlib");
    }
    std::size_t next = 0;
    for (auto step : state) {
        (void)step;
        benchmark::DoNotOptimize(market.isBusinessDay(dates[next]));
        next = (next + 1) % sampleSize;
    }
}
BENCHMARK(tradingQuantLib)->Name("tradingday/quantlib");

// -------------------------------------------------------------------------------------------- settlement

const std::vector<std::string>& settlementTexts() {
    static const auto sample = texts(randomDays(1997, 2000), "%02d/%02d/%04d");
    return sample;
}

char* settlementOurs(const char* text, int businessDays) {
    return getSettlementDate(text, businessDays, 1);
}

// The exchange's calendar with the days on which trades aren't settled.
QuantLib::Calendar settlementCalendar() {
    QuantLib::BespokeCalendar banks;
    for (int year = 1997; year <= 2000; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= 31; ++day) {
                if ((unsettled[year - 1997][month - 1] & bit(day)) == 0) continue;
                banks.addHoliday({day, static_cast<QuantLib::Month>(month), year});
            }
        }
    }
    return QuantLib::JointCalendar(QuantLib::UnitedStates(QuantLib::UnitedStates::NYSE), banks,
                                   QuantLib::JoinHolidays);
}

char* settlementQuantLib(const char* text, int businessDays) {
    static const QuantLib::Calendar calendar = settlementCalendar();
    const QuantLib::Date start(two(text + 3), static_cast<QuantLib::Month>(two(text)),
                               two(text + 6) * 100 + two(text + 8));
    const QuantLib::Date end = calendar.advance(start, businessDays, QuantLib::Days);
    return printed(settlementText(end.month(), end.dayOfMonth(), end.year()));
}

// QuantLib's calendar knows holidays from 2001 on, too.
bool isBuiltIn(const char* settlementDate) {
    return std::atoi(settlementDate + 6) <= 2000;
}

void settlement(benchmark::State& state, char* (*function)(const char*, int)) {
    const SilencedOutput silenced;
    const int days = static_cast<int>(state.range(0));
    for (const auto& text : settlementTexts()) {
        char* const ours = settlementOurs(text.c_str(), days);
        char* const other = function(text.c_str(), days);
        const bool compared = function != settlementQuantLib || isBuiltIn(ours);
        require(!compared || std::strcmp(ours, other) == 0, "settlement");
        delete[] ours;
        delete[] other;
    }
    eachText(state, settlementTexts(), [&](const char* text) {
        const char* const result = function(text, days);
        const char first = result[0];
        delete[] result;
        return first;
    });
}
BENCHMARK_CAPTURE(settlement, ours, settlementOurs)->Name("settlement/ours")->Arg(3)->Arg(30)->Arg(3000);
BENCHMARK_CAPTURE(settlement, hand_written, settlementByHand)
    ->Name("settlement/hand_written")
    ->Arg(3)
    ->Arg(30)
    ->Arg(3000);
BENCHMARK_CAPTURE(settlement, unprinted, settlementUnprinted)
    ->Name("settlement/without_printing")
    ->Arg(3)
    ->Arg(30)
    ->Arg(3000);
BENCHMARK_CAPTURE(settlement, quantlib, settlementQuantLib)->Name("settlement/quantlib")->Arg(3)->Arg(30);

// ------------------------------------------------------------------------------------------- text to tm

std::vector<std::string> momentTexts() {
    return texts(randomDays(1971, 2037), "%02d/%02d/%04d 16:05:00");
}

void setZone() {
    ::setenv("TZ", "EST5EDT,M4.1.0,M10.5.0", 1);
    ::tzset();
}

template <typename Function>
void moments(benchmark::State& state, Function function) {
    setZone();
    auto sample = momentTexts();
    for (auto& text : sample) {
        std::tm ours{};
        gettmstruct(text.data(), ours);
        for (const auto peer : {toMomentByHand, toMomentByStrptime}) {
            std::tm other{};
            require(peer(text.c_str(), other) == std::mktime(&ours), "tmtext");
            require(ours.tm_yday == other.tm_yday && ours.tm_isdst == other.tm_isdst, "tmtext");
        }
    }
    std::size_t next = 0;
    std::tm out{};
    for (auto step : state) {
        (void)step;
        function(sample[next].data(), out);
        benchmark::DoNotOptimize(out);
        next = (next + 1) % sampleSize;
    }
}

void momentOurs(benchmark::State& state) {
    moments(state, gettmstruct);
}
BENCHMARK(momentOurs)->Name("tmtext/ours");

void momentByHand(benchmark::State& state) {
    moments(state, toMomentByHand);
}
BENCHMARK(momentByHand)->Name("tmtext/hand_written");

void momentByScan(benchmark::State& state) {
    moments(state, toMomentByScan);
}
BENCHMARK(momentByScan)->Name("tmtext/sscanf");

void momentByStrptime(benchmark::State& state) {
    moments(state, toMomentByStrptime);
}
BENCHMARK(momentByStrptime)->Name("tmtext/strptime");

void momentMktimeAlone(benchmark::State& state) {
    moments(state, [](const char* text, std::tm& out) {
        out = {};
        out.tm_mon = text[1] - '0';
        out.tm_mday = text[4] - '0';
        out.tm_year = 71 + text[9] - '0';
        out.tm_isdst = -1;
        std::mktime(&out);
    });
}
BENCHMARK(momentMktimeAlone)->Name("tmtext/mktime_alone");

// ---------------------------------------------------------------------------------- one moment from another

using Moment = std::time_t (*)(const char* text, std::tm& out);

template <Moment moment>
std::int32_t compareBy(char* first, char* second) {
    std::tm out{};
    const std::time_t from = moment(second, out);
    const std::time_t difference = moment(first, out) - from;
    return static_cast<std::int32_t>(std::min<std::time_t>(difference, INT32_MAX));
}

void compare(benchmark::State& state, std::int32_t (*function)(char*, char*)) {
    setZone();
    auto sample = momentTexts();
    const auto following = [&](std::size_t i) { return sample[(i + 1) % sampleSize].data(); };
    for (std::size_t i = 0; i < sampleSize; ++i) {
        require(function(sample[i].data(), following(i)) == datecmp(sample[i].data(), following(i)),
                "datecmp");
    }
    std::size_t next = 0;
    for (auto step : state) {
        (void)step;
        benchmark::DoNotOptimize(function(sample[next].data(), following(next)));
        next = (next + 1) % sampleSize;
    }
}
BENCHMARK_CAPTURE(compare, ours, datecmp)->Name("datecmp/ours");
BENCHMARK_CAPTURE(compare, hand_written, compareBy<toMomentByHand>)->Name("datecmp/hand_written");
BENCHMARK_CAPTURE(compare, strptime, compareBy<toMomentByStrptime>)->Name("datecmp/strptime");

}  // namespace

int main(int argc, char** argv) {
    return bench::run(argc, argv, {{"QuantLib", QL_VERSION}});
}
