// Price text: the first line of an input is a price, behind it is a denominator.
// Prices read as the plain forms read them, and a fraction shows the nearest 256th.

#include <cmath>

#include "base/ascii.h"
#include "core/variant.h"
#include "fintext/financial_text.h"
#include "fuzz/property.h"
#include "tests/plain/price.h"

namespace {

using tarn::isDigit;
using tarnfuzz::require;
using tarnfuzz::requireSame;
using tarnfuzz::Text;
using tarnfuzz::wholeNumber;

// As strToDouble reads: up to three whole numbers of 32 bits, each of which is open until it is above 0.
double plainPrice(const std::string& text) {
    const std::string number = text.substr(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = number.starts_with('-'), hasSign = isNegative || number.starts_with('+');
    double numbers[4] = {};
    std::size_t closed = 0;
    std::int64_t open = 0;
    for (const char c : number.substr(hasSign ? 1 : 0) + ' ') {
        if (closed == 3) break;
        if (c == '.') return tarnfuzz::decimal(text);
        if (isDigit(c)) open = static_cast<std::int32_t>(static_cast<std::uint32_t>(open * 10 + c - '0'));
        numbers[closed] = static_cast<double>(open);
        if (isDigit(c) || open <= 0) continue;
        ++closed;
        open = 0;
    }
    const auto [a, b, c, none] = numbers;
    const double value = b == 0 ? a : c > 0 ? a + b / c : c == 0 && b > 0 ? a / b : 0;
    return isNegative ? -value : value;
}

void checkFraction(double price) {
    char shown[40];
    asFraction(shown, price);
    if (!(std::fabs(price) < 8388607)) return;
    const double back = strToDouble(shown);
    require(std::fabs(back) * 256 == std::floor(std::fabs(price) * 256 + 0.5), "it is the nearest 256th");
    require((shown[0] == '-') == (price < 0), "with its sign");
    const Text reduced("", std::strlen(shown) + 2);
    requireSame(asReducedFraction(reduced.get(), shown), shown, "in lowest terms");
}

// The fraction of a text, halved as often as both numbers are even.
void checkReduction(const std::string& text) {
    const std::size_t slash = text.find('/');
    std::size_t start = std::min(slash, text.size());
    while (start > 0 && isDigit(text[start - 1])) --start;
    std::int32_t above = slash == text.npos ? 0 : wholeNumber(text.substr(start));
    std::int32_t below = slash == text.npos ? 0 : wholeNumber(text.substr(slash + 1));
    const bool isChanged = above > 0 && above % 2 == 0;
    for (; below > 0 && above % 2 == 0 && below % 2 == 0; below /= 2) above /= 2;
    const std::string reduced = text.substr(0, start) + std::to_string(above) + '/' + std::to_string(below);
    const Text target(text, 1);
    asReducedFraction(target.get(), text.c_str());
    requireSame(target.copy(), isChanged ? reduced : text, "a fraction is reduced");
}

void checkUniform(const std::string& text, std::int32_t denominator) {
    const Text shown("", text.size() + 20);
    asUniformFraction(shown.get(), text.c_str(), denominator);
    const std::string answer = shown.copy();
    const std::size_t point = text.find('.');
    const bool isPlain = point == text.npos && text.find('/') == text.npos;
    if (denominator < 2 || denominator > 512 || isPlain)
        return requireSame(answer, text, "a text without a fraction stays");
    if (point == text.npos) return;
    require(answer.ends_with('/' + std::to_string(denominator)), "a decimal gets the denominator");
    requireSame(answer.substr(0, point), text.substr(0, point), "and keeps its whole part");
    const double decimals = tarnfuzz::decimal(text.substr(point));
    const double numerator = tarnfuzz::decimal(answer.substr(point));
    require(decimals >= 1 || std::fabs(numerator - decimals * denominator) <= 0.5, "to the nearest");
}

void checkSigns(const std::string& text) {
    const Text flipped(text, 1), marked(text, 1);
    flipSign(flipped.get());
    const std::string other = text.starts_with('-') ? text.substr(1) : '-' + text;
    requireSame(flipped.copy(), wholeNumber(text) == 0 ? text : other, "a sign is flipped, but for 0");
    const bool isNone = text.empty() || text == "0", isDown = text.starts_with('-');
    require(signPriceChange(marked.get()) == (isNone   ? ePriceUnchanged
                                              : isDown ? ePriceDown
                                                       : ePriceUp),
            "a change has its direction");
    requireSame(marked.copy(), (isNone || isDown ? "" : "+") + text.substr(0, 14), "and its sign");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const std::string price = input.text();
    const Text block(price);
    double number = 77, expected = 77;
    require(convertToDouble(block.get(), number) == tarnplain::price(price, expected), "a price is one");
    require(tarnfuzz::sameNumber(number, expected), "and reads as by the plain form");
    require(tarnfuzz::sameNumber(strToDouble(block.get()), plainPrice(price)), "in the other dialect too");
    checkFraction(number);
    checkFraction(strToDouble(block.get()));
    checkReduction(price);
    checkUniform(price, static_cast<std::int32_t>(input.word() % 520));
    checkSigns(price);
    return 0;
}
