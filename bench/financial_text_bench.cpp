// Prices from text, to text, and from text to text with rounding, against hand-written forms for plain prices
// and the standard library.  Every peer's answers are compared before anything is timed.  One iteration
// processes a whole book of prices with one to five digits in front of the point and two to four behind it.

#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/number_text.h"
#include "core/variant.h"
#include "fintext/financial_text.h"
#include "support.h"

namespace {

using bench::require;

constexpr std::uint32_t decimalsShown = 2;
constexpr double powersOfTen[] = {1, 10, 100, 1000, 10000};

struct Price {
    char text[16];
    double value;
};

std::vector<Price> book(std::int64_t size) {
    std::mt19937 random(20240101);
    std::vector<Price> prices(static_cast<std::size_t>(size));
    for (Price& price : prices) {
        const int digits = 1 + static_cast<int>(random() % 5);
        const int decimals = 2 + static_cast<int>(random() % 3);
        const double whole = std::floor(std::pow(10.0, digits) * static_cast<double>(random() % 1000) / 1000);
        const double rest = static_cast<double>(random() % 10000) / 10000;
        std::snprintf(price.text, sizeof price.text, "%.*f", decimals, whole + rest);
        price.value = std::strtod(price.text, nullptr);
    }
    return prices;
}

// ---------------------------------------------------------------------------------------------- reading

double readOurs(const Price& price) {
    double number = 0;
    convertToDouble(price.text, number);
    return number;
}

double readOursFractions(const Price& price) {
    return strToDouble(price.text);
}

double readByHand(const Price& price) {
    const char* text = price.text;
    std::uint64_t digits = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        digits = digits * 10 + static_cast<std::uint64_t>(*text - '0');
    if (*text != '.') return static_cast<double>(digits);
    const char* const point = text++;
    for (; *text >= '0' && *text <= '9'; ++text)
        digits = digits * 10 + static_cast<std::uint64_t>(*text - '0');
    return static_cast<double>(digits) / powersOfTen[text - point - 1];
}

// Behind one copy, without the commas that a price may have.
double readFromChars(const Price& price) {
    char plain[sizeof price.text];
    char* end = plain;
    for (const char* text = price.text; *text != '\0'; ++text) {
        if (*text != ',') *end++ = *text;
    }
    double number = 0;
    std::from_chars(plain, end, number);
    return number;
}

double readStrtod(const Price& price) {
    return std::strtod(price.text, nullptr);
}

// ---------------------------------------------------------------------------------------------- writing

struct Shown {
    char text[40];
};

// Writes a number of units of the last place.
void writeUnits(std::uint64_t units, std::uint32_t decimals, char* target) {
    char digits[24];
    char* const end = digits + sizeof digits;
    char* start = end;
    for (std::uint32_t i = 0; i < decimals; ++i, units /= 10) *--start = static_cast<char>('0' + units % 10);
    *--start = '.';
    do *--start = static_cast<char>('0' + units % 10);
    while ((units /= 10) != 0);
    std::memcpy(target, start, static_cast<std::size_t>(end - start));
    target[end - start] = '\0';
}

void writeOurs(const Price& price, Shown& shown) {
    tarn::writeFixed(shown.text, price.value, decimalsShown);
}

void writeByHand(const Price& price, Shown& shown) {
    const double scaled = price.value * powersOfTen[decimalsShown];
    writeUnits(static_cast<std::uint64_t>(std::nearbyint(scaled)), decimalsShown, shown.text);
}

void writeToChars(const Price& price, Shown& shown) {
    const auto end = std::to_chars(shown.text, shown.text + sizeof shown.text, price.value,
                                   std::chars_format::fixed, static_cast<int>(decimalsShown));
    *end.ptr = '\0';
}

void writePrintf(const Price& price, Shown& shown) {
    std::snprintf(shown.text, sizeof shown.text, "%.*f", static_cast<int>(decimalsShown), price.value);
}

// ------------------------------------------------------------------------------------- rounding a text

void roundOurs(const Price& price, Shown& shown) {
    formatStringToFloatWithRounding(price.text, shown.text, decimalsShown);
}

// Rounds in decimal digits: a half in the first dropped place is rounded up.
void roundByHand(const Price& price, Shown& shown) {
    const char* text = price.text;
    std::uint64_t units = 0;
    for (; *text >= '0' && *text <= '9'; ++text) units = units * 10 + static_cast<std::uint64_t>(*text - '0');
    if (*text == '.') ++text;
    std::uint32_t decimals = 0;
    for (; decimals < decimalsShown && *text >= '0' && *text <= '9'; ++text, ++decimals) {
        units = units * 10 + static_cast<std::uint64_t>(*text - '0');
    }
    for (; decimals < decimalsShown; ++decimals) units *= 10;
    if (*text >= '5' && *text <= '9') ++units;
    writeUnits(units, decimalsShown, shown.text);
}

// Rounds as the header documents it: prints, reads back, compares, and prints again if a half was dropped.
void roundPrintf(const Price& price, Shown& shown) {
    constexpr double half = 0.005;
    const double value = readStrtod(price);
    std::snprintf(shown.text, sizeof shown.text, "%.*f", static_cast<int>(decimalsShown), value);
    const double printed = std::atof(shown.text);
    if (printed + half > value) return;
    std::snprintf(shown.text, sizeof shown.text, "%.*f", static_cast<int>(decimalsShown), printed + 2 * half);
}

// ---------------------------------------------------------------------------------------------- running

using Read = double (*)(const Price&);
using Write = void (*)(const Price&, Shown&);

template <Read read>
void run(benchmark::State& state) {
    const std::vector<Price> prices = book(state.range(0));
    for (auto _ : state) {
        for (const Price& price : prices) benchmark::DoNotOptimize(read(price));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <Write write>
void run(benchmark::State& state) {
    const std::vector<Price> prices = book(state.range(0));
    Shown shown{};
    for (auto _ : state) {
        for (const Price& price : prices) {
            write(price, shown);
            benchmark::DoNotOptimize(shown);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

std::string shownBy(Write write, const Price& price) {
    Shown shown{};
    write(price, shown);
    return shown.text;
}

// A decimal half: the hand-written forms round its digits or its scaled double, and not the number itself.
bool isHalf(const Price& price) {
    const char* const dropped = std::strchr(price.text, '.') + 1 + decimalsShown;
    return *dropped == '5' && dropped[1 + std::strspn(dropped + 1, "0")] == '\0';
}

void sizes(benchmark::internal::Benchmark* job) {
    job->Arg(32)->Arg(1024)->Arg(32'768);
}

void checkAnswers() {
    for (const Price& price : book(32'768)) {
        for (const Read read : {readOurs, readOursFractions, readByHand, readFromChars, readStrtod}) {
            require(read(price) == price.value, "a reader answers otherwise");
        }
        const std::string printed = shownBy(writePrintf, price);
        require(shownBy(writeOurs, price) == printed, "ours writes otherwise");
        require(shownBy(writeToChars, price) == printed, "to_chars writes otherwise");
        const std::string rounded = shownBy(roundPrintf, price);
        require(shownBy(roundOurs, price) == rounded, "ours rounds otherwise");
        if (isHalf(price)) continue;
        require(shownBy(writeByHand, price) == printed, "by hand writes otherwise");
        require(shownBy(roundByHand, price) == rounded, "by hand rounds otherwise");
    }
}

}  // namespace

BENCHMARK(run<readOurs>)->Name("price_read/ours")->Apply(sizes);
BENCHMARK(run<readByHand>)->Name("price_read/hand_written")->Apply(sizes);
BENCHMARK(run<readFromChars>)->Name("price_read/from_chars")->Apply(sizes);
BENCHMARK(run<readStrtod>)->Name("price_read/strtod")->Apply(sizes);
BENCHMARK(run<readOursFractions>)->Name("price_or_fraction_read/ours")->Apply(sizes);
BENCHMARK(run<readByHand>)->Name("price_or_fraction_read/hand_written")->Apply(sizes);
BENCHMARK(run<writeOurs>)->Name("price_write/ours")->Apply(sizes);
BENCHMARK(run<writeByHand>)->Name("price_write/hand_written")->Apply(sizes);
BENCHMARK(run<writeToChars>)->Name("price_write/to_chars")->Apply(sizes);
BENCHMARK(run<writePrintf>)->Name("price_write/printf")->Apply(sizes);
BENCHMARK(run<roundOurs>)->Name("round_text/ours")->Apply(sizes);
BENCHMARK(run<roundByHand>)->Name("round_text/hand_written")->Apply(sizes);
BENCHMARK(run<roundPrintf>)->Name("round_text/printf")->Apply(sizes);

int main(int argc, char** argv) {
    checkAnswers();
    return bench::run(argc, argv, {});
}
