// Price text: the first line of an input is a price, the second a change, behind them stands a denominator.
// Prices read as the plain forms read them, and a fraction shows the nearest 256th.

#include <cctype>
#include <cmath>

#include "core/variant.h"
#include "fintext/financial_text.h"
#include "fuzz/property.h"
#include "tests/plain/price.h"

namespace {

using tarnfuzz::require;
using tarnfuzz::requireSame;
using tarnfuzz::Text;

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// The told reading of strToDouble: up to three whole numbers of 32 bits, each open until it is above 0.
double plainPrice(const std::string& text) {
    std::size_t at = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (negative || text[at] == '+')) ++at;
    double numbers[3] = {};
    int closed = 0;
    std::int32_t open = 0;
    for (; closed < 3 && at < text.size(); ++at) {
        if (text[at] == '.') {
            char* end = nullptr;
            const double decimal = std::strtod(text.c_str(), &end);
            return end == text.c_str() ? 0 : decimal;
        }
        if (isDigit(text[at])) {
            open = static_cast<std::int32_t>(
                static_cast<std::uint32_t>(std::int64_t{open} * 10 + text[at] - '0'));
        } else if (open > 0) {
            numbers[closed++] = std::exchange(open, 0);
        }
    }
    if (closed < 3) numbers[closed] = open;
    const auto [a, b, c] = numbers;
    double value = a;
    if (b != 0) value = c > 0 ? a + b / c : c == 0 && b > 0 ? a / b : 0;
    return negative ? -value : value;
}

void checkFraction(double price) {
    constexpr double largest = 8388608;
    char shown[40];
    asFraction(shown, price);
    require(std::strlen(shown) < 32, "a fraction is short");
    if (!(std::fabs(price) < largest - 1)) return;
    const double back = strToDouble(shown);
    require(std::fabs(back) * 256 == std::floor(std::fabs(price) * 256 + 0.5), "it is the nearest 256th");
    require(shown[0] == '-' ? price < 0 : !(price < 0), "with its sign");
    Text reduced("", std::strlen(shown) + 2);
    requireSame(asReducedFraction(reduced.get(), shown), shown, "in lowest terms");
}

void checkReduction(const std::string& text) {
    const Text once(text, 1), twice(text, 1);
    asReducedFraction(once.get(), text.c_str());
    asReducedFraction(twice.get(), once.get());
    requireSame(twice.copy(), once.copy(), "a reduced fraction stays");
    const std::size_t slash = text.find('/');
    if (slash == text.npos) return requireSame(once.copy(), text, "a text without a fraction stays");
    std::size_t start = slash;
    while (start > 0 && isDigit(text[start - 1])) --start;
    requireSame(once.copy().substr(0, start), text.substr(0, start), "what stands in front stays");
    const std::string number = text.substr(start, slash - start), below = text.substr(slash + 1);
    if (number.size() > 9 || below.size() > 9 || std::atoi(number.c_str()) < 1 ||
        std::atoi(below.c_str()) < 1)
        return;
    const std::string shown = once.copy().substr(start);
    const std::int64_t a = std::atoi(shown.c_str()), b = std::atoi(shown.substr(shown.find('/') + 1).c_str());
    require(a * std::atoi(below.c_str()) == b * std::atoi(number.c_str()), "the fraction's value stays");
    require(a % 2 != 0 || b % 2 != 0, "and it is halved as often as may be");
}

void checkUniform(const std::string& text, std::int32_t denominator) {
    const Text shown("", text.size() + 20);
    asUniformFraction(shown.get(), text.c_str(), denominator);
    const std::string answer = shown.copy();
    const std::size_t slash = text.find('/'), point = text.find('.');
    const bool changes = denominator >= 2 && denominator <= 512 && (slash != text.npos || point != text.npos);
    if (!changes) return requireSame(answer, text, "a text without a fraction stays");
    if (point == text.npos) return;
    require(answer.ends_with('/' + std::to_string(denominator)), "a decimal gets the denominator");
    requireSame(answer.substr(0, point), text.substr(0, point), "and keeps its whole part");
    const double decimals = std::strtod(text.c_str() + point, nullptr);
    const double numerator = std::strtod(answer.c_str() + point, nullptr);
    if (decimals < 1)
        require(std::fabs(numerator - decimals * denominator) <= 0.5, "to the nearest numerator");
}

void checkChanges(const std::string& price, const std::string& net, std::int32_t decimals) {
    char shown[400], expected[400];
    const double change = plainPrice(net), previous = plainPrice(price) - change;
    percentChange(shown, decimals, price.c_str(), net.c_str());
    std::snprintf(expected, sizeof expected, "%.*f", decimals < 1 || decimals > 9 ? 1 : decimals,
                  change / previous * 100);
    if (std::fabs(previous) < 0.000001) std::strcpy(expected, " ");
    if (!std::isnan(change / previous)) requireSame(shown, expected, "a change in percent is printf's");
    asPercentChange(shown, "%.2f", price.c_str(), net.c_str());
    std::snprintf(expected, sizeof expected, change > 0 ? "+%.2f" : "%.2f", change * 100 / previous);
    if (change == 0) std::strcpy(expected, "unch");
    if (previous == 0) *expected = '\0';
    requireSame(shown, expected, "and with a sign");
}

void checkSigns(const std::string& text) {
    const Text flipped(text, 1), marked(text, 1);
    flipSign(flipped.get());
    const bool isNumber = std::strtoll(text.c_str(), nullptr, 10) != 0;
    if (!isNumber) requireSame(flipped.copy(), text, "what is 0 has no sign");
    if (isNumber) {
        requireSame(flipped.copy(), text[0] == '-' ? text.substr(1) : '-' + text, "a sign is flipped");
        if (text[0] == '-' || isDigit(text[0])) flipSign(flipped.get());
        if (text[0] == '-' || isDigit(text[0])) requireSame(flipped.copy(), text, "and flipped back");
    }
    const ePriceChange kind = signPriceChange(marked.get());
    const bool isNone = text.empty() || text == "0", isDown = text.starts_with('-');
    require(kind == (isNone ? ePriceUnchanged : isDown ? ePriceDown : ePriceUp), "a change goes its way");
    requireSame(marked.copy(), isNone || isDown ? text.substr(0, 14) : '+' + text.substr(0, 14),
                "with its sign");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const std::string price = input.text(), change = input.text();
    const auto denominator = static_cast<std::int32_t>(input.word() % 520);
    const Text block(price);
    double number = 77, expected = 77;
    require(convertToDouble(block.get(), number) == tarnplain::price(price, expected),
            "a price is one plainly");
    require(tarnfuzz::sameNumber(number, expected), "and reads plainly");
    require(tarnfuzz::sameNumber(strToDouble(block.get()), plainPrice(price)), "in the other dialect too");
    checkFraction(number);
    checkFraction(strToDouble(block.get()));
    checkReduction(price);
    checkUniform(price, denominator);
    checkChanges(price, change, denominator % 12);
    checkSigns(price);
    return 0;
}
