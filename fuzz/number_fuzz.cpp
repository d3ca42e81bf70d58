// Number text: the first line of an input is a number, the second a pattern, behind them are a count of
// decimals and the bytes of a double.  Reading and writing agree with the C library, amounts with plain
// loops.

#include <bit>
#include <cmath>

#include "core/number_text.h"
#include "core/string.h"
#include "fintext/financial_text.h"
#include "fuzz/property.h"

namespace {

using tarnfuzz::require;
using tarnfuzz::requireSame;
using tarnfuzz::Text;

void checkReading(const std::string& text) {
    const Text block(text);
    require(tarnfuzz::sameNumber(tarn::readDouble(block.get()), tarnfuzz::decimal(text)), "as by strtod");
    char* end = nullptr;
    std::strtoll(text.c_str(), &end, 10);
    std::int32_t number = 0;
    const char* const behind = tarn::scanLong(block.get(), number);
    require(number == tarnfuzz::wholeNumber(text), "a whole number reads as by strtoll");
    require(behind == (end == text.c_str() ? nullptr : block.get() + (end - text.c_str())), "up to its end");
}

void checkWriting(double value, std::uint32_t decimals) {
    if (std::isnan(value)) return;
    const Text fixed("", tarn::fixedRoom(decimals));
    tarn::writeFixed(fixed.get(), value, decimals);
    char expected[400];
    std::snprintf(expected, sizeof expected, "%.*f", static_cast<int>(decimals), value);
    requireSame(fixed.copy(), expected, "a number is written as by printf");
    require(tarn::cutToLong(value) == std::trunc(std::clamp(value, -0x1p31, 0x1p31 - 1)), "it is cut");
}

void checkAmounts(const std::string& text) {
    std::string digits = text.substr(0, text.find_first_not_of("0123456789,"));
    std::string rest = text.substr(digits.size());
    std::erase(digits, ',');
    const auto scaled = [&](auto number) {
        const auto isLetter = [&](std::size_t i, char c) { return (rest.c_str()[i] | 32) == c; };
        if (!isLetter(0, 'k') && !isLetter(0, 'm')) return number;
        return isLetter(0, 'm') && isLetter(1, 'm') ? number * 1'000'000 : number * 1000;
    };
    const Text block(text);
    const auto whole = static_cast<std::uint32_t>(std::strtoull(digits.c_str(), nullptr, 10));
    const bool isRight = static_cast<std::uint32_t>(fmtToLong(block.get())) == scaled(whole);
    require(digits.size() > 19 || isRight, "an amount reads as its digits");
    const std::size_t end = rest.starts_with('.') ? rest.find_first_not_of("0123456789", 1) : 0;
    digits += rest.substr(0, end);
    rest.erase(0, end);
    const double number = fmtToDouble(block.get()), expected = scaled(tarnfuzz::decimal(digits));
    require(number == expected || std::fabs(number - expected) <= 1e-13 * expected, "with its decimals");
}

// Operations in place against the same on strings.
void checkTrimming(const std::string& text) {
    const auto requireAfter = [&](auto operation, const std::string& expected) {
        const Text block(text, 1);
        operation(block.get());
        requireSame(block.copy(), expected, "the ends of a number are trimmed");
    };
    const auto from = [&](std::size_t place) { return text.substr(std::min(place, text.size())); };
    const std::size_t point = text.find('.');
    std::string bare = from(text.find_first_not_of(' ')),
                ended = text.substr(0, text.find_last_not_of("0 ") + 1);
    if (point != text.npos) bare.erase(bare.find_last_not_of('0') + 1);
    if (point != text.npos && bare.back() == '.') bare.pop_back();
    requireAfter(stripLeadZeros, from(text.find_first_not_of("0 ")));
    requireAfter(stripTrailZeros, ended.ends_with('.') ? ended + '0' : ended);
    requireAfter([](char* all) { stripTrailDecimalZeros(all, 0); }, bare);
}

// Nothing but the address checks judges it.
void runPattern(const std::string& text, const std::string& pattern, unsigned negative) {
    const Text source(text, 1), target("", (text.size() + 4) * (pattern.size() + 4));
    formatStringWithPattern(source.get(), pattern.c_str(), target.get(), static_cast<eNegType>(negative % 5));
}

void checkMoney(const std::string& text, int style) {
    tarnString target;
    formatToMoneyFormat(text.c_str(), target, style);
    const std::size_t whole = text.starts_with('-') ? 1 : 0;
    const std::size_t point = std::min(text.find('.', whole), text.size());
    std::string expected = text.empty() ? "$0.00" : text;
    if (point > whole && text.find(',') == text.npos) {
        const bool hasOneDecimal = point + 2 == text.size() && text.back() >= '0' && text.back() <= '9';
        expected += hasOneDecimal ? "0" : point == text.size() && style != 0 ? ".00" : "";
        for (std::size_t at = point; at > whole + 3;) expected.insert(at -= 3, ",");
        if (style == 1) expected.insert(whole, "$");
    }
    requireSame(target.text, expected, "money is grouped by three");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const std::string text = input.text(), pattern = input.text();
    const unsigned choice = input.byte();
    std::uint64_t bits = input.word();
    bits |= std::uint64_t{input.word()} << 32;
    checkReading(text);
    checkWriting(std::bit_cast<double>(bits), choice % 40);
    checkWriting(static_cast<double>(bits >> 16) / 1024.0, choice % 40);  // short ones, with many halves
    checkAmounts(text);
    checkTrimming(text);
    runPattern(text.substr(0, 64), pattern.substr(0, 64), choice);
    checkMoney(text, static_cast<int>(choice % 3));
    return 0;
}
