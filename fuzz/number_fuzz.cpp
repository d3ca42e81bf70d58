// Number text: the first line of an input is a number, the second a pattern, behind them stand a count of
// decimals and the bytes of a double.  Reading and writing agree with the C library, amounts with plain
// loops.

#include <algorithm>
#include <cctype>
#include <cmath>

#include "core/number_text.h"
#include "core/string.h"
#include "fintext/financial_text.h"
#include "fuzz/property.h"
#include "tests/plain/price.h"

namespace {

using tarnfuzz::require;
using tarnfuzz::requireSame;
using tarnfuzz::Text;

constexpr std::uint32_t mostDecimals = 40;

std::string fixed(double value, std::uint32_t decimals) {
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", static_cast<int>(decimals), value);
    return text;
}

void checkReading(const std::string& text) {
    const Text block(text);
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    require(tarnfuzz::sameNumber(tarn::readDouble(block.get()), end == text.c_str() ? 0.0 : expected),
            "a number reads as by strtod");
    const long long whole = std::strtoll(text.c_str(), &end, 10);
    const auto clamped = static_cast<std::int32_t>(std::clamp<long long>(whole, INT32_MIN, INT32_MAX));
    require(tarn::readLong(block.get()) == clamped, "a whole number reads as by strtoll");
    std::int32_t scanned = 77;
    const char* const behind = tarn::scanLong(block.get(), scanned);
    require(behind == (end == text.c_str() ? nullptr : block.get() + (end - text.c_str())), "up to its end");
    require(scanned == (behind == nullptr ? 77 : clamped), "or not at all");
}

void checkWriting(double value, std::uint32_t decimals) {
    const Text target("", tarn::fixedRoom(decimals));
    const char* end = tarn::writeFixed(target.get(), value, decimals);
    require(*end == '\0', "a number ends in a NUL");
    if (!std::isnan(value)) requireSame(target.copy(), fixed(value, decimals), "and is written as by printf");
    char general[64], expected[64];
    std::snprintf(expected, sizeof expected, "%.16g", value);
    tarn::writeGeneral(general, value, 16);
    if (!std::isnan(value)) requireSame(general, expected, "with 16 digits too");
    if (std::isfinite(value)) {
        std::snprintf(expected, sizeof expected, "%.17g", value);
        tarn::writeGeneral(general, value, 17);
        require(tarn::readDouble(general) == value, "17 digits read back");
    }
    const std::int32_t cut = tarn::cutToLong(value);
    require(std::isnan(value) ? cut == 0 : cut == std::trunc(std::clamp(value, -0x1p31, 0x1p31 - 1)),
            "it is cut");
    tarn::writeLong(general, cut);
    requireSame(general, std::to_string(cut), "and written");
}

void checkAmounts(const std::string& text) {
    const Text block(text);
    std::uint32_t value = 0;
    std::size_t at = 0;
    double number = 0, factor = 0.1;
    for (; at < text.size() && (std::isdigit(static_cast<unsigned char>(text[at])) != 0 || text[at] == ',');
         ++at) {
        if (text[at] == ',') continue;
        value = value * 10 + static_cast<std::uint32_t>(text[at] - '0');
        number = number * 10 + (text[at] - '0');
    }
    const auto scale = [&](std::size_t place) {
        std::string letters = text.substr(place, 2);
        for (char& c : letters) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return letters == "mm" ? 1'000'000 : letters.starts_with('k') || letters.starts_with('m') ? 1000 : 1;
    };
    require(
        static_cast<std::uint32_t>(fmtToLong(block.get())) == value * static_cast<std::uint32_t>(scale(at)),
        "an amount reads plainly");
    if (at < text.size() && text[at] == '.') {
        for (++at; at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0;
             ++at, factor *= 0.1)
            number += (text[at] - '0') * factor;
    }
    const double answer = fmtToDouble(block.get()), expected = number * scale(at);
    require(answer == expected || std::fabs(answer - expected) <= 1e-15 * std::fabs(expected),
            "with its scale");
}

// Operations in place against the same on strings.
void checkTrimming(const std::string& text, std::uint32_t decimals) {
    const std::size_t point = text.find('.');
    const auto after = [&](auto operation) {
        const Text block(text, 1);
        operation(block.get());
        return block.copy();
    };
    std::string expected = text.substr(std::min(text.find_first_not_of("0 "), text.size()));
    requireSame(after(stripLeadZeros), expected, "zeros in front go");

    expected = text;
    if (point != text.npos && text.size() - point - 1 > decimals) expected.resize(point + 1 + decimals);
    requireSame(after([&](char* t) { stripTrailDecimal(t, decimals); }), expected, "decimals are cut");

    expected = text.substr(std::min(text.find_first_not_of(' '), text.size()));
    if (point != text.npos) {
        expected.erase(expected.find_last_not_of('0') + 1);
        if (expected.back() == '.') expected.pop_back();
    }
    requireSame(after([](char* t) { stripTrailDecimalZeros(t, 0); }), expected, "zeros at the end go");

    expected = text.substr(0, text.find_last_not_of("0 ") + 1);
    if (expected.ends_with('.')) expected += '0';
    requireSame(after(stripTrailZeros), expected, "zeros and blanks at the end go");

    const auto isAlphaNumeric = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    require((isAlphaNum(text.c_str()) != 0) == std::all_of(text.begin(), text.end(), isAlphaNumeric),
            "letters");
}

void checkFormats(const std::string& text, std::uint32_t decimals) {
    double number = 0;
    const bool isPrice = tarnplain::price(text, number) != 0;
    if (std::isnan(number)) return;
    const std::size_t room = tarn::fixedRoom(decimals);
    const Text plain("", text.size() + room), rounding("", text.size() + room);
    formatStringToFloat(text.c_str(), plain.get(), decimals);
    if (!text.empty())
        requireSame(plain.copy(), isPrice && text.find('.') != text.npos ? fixed(number, decimals) : text,
                    "a price gets its decimals");

    formatStringToFloatWithRounding(text.c_str(), rounding.get(), decimals);
    std::string expected = text;
    if (isPrice && !text.empty()) {
        double power = 1;
        for (std::uint32_t i = 0; i <= decimals; ++i) power *= 10;
        expected = fixed(number, decimals);
        const double shown = std::strtod(expected.c_str(), nullptr), half = 5 / power;
        if (!(shown + half > number)) expected = fixed(shown + 2 * half, decimals);
    }
    requireSame(rounding.copy(), expected, "a half goes up");
}

std::string without(std::string text, std::string_view characters) {
    std::erase_if(text, [&](char c) { return characters.find(c) != characters.npos; });
    return text;
}

void checkPatterns(const std::string& text, const std::string& pattern, unsigned negative) {
    constexpr std::size_t longest = 64;
    if (text.size() > longest || pattern.size() > longest) return;
    const Text source(text, 1), target("", (text.size() + 2) * (pattern.size() + 2));
    formatStringWithPattern(source.get(), pattern.c_str(), target.get(), static_cast<eNegType>(negative % 5));

    // With groups of three the digits stay what they were.
    const Text amount(text, 1), money("", 4 * text.size() + 8);
    formatStringWithPattern(amount.get(), "$*,###*", money.get(), eNegLeading);
    std::string trimmed = amount.copy();
    trimmed.erase(0, std::min(trimmed.find_first_not_of(' '), trimmed.size()));
    requireSame(without(money.copy(), ",$"), without(trimmed, ",$"), "a pattern keeps the digits");
}

void checkMoney(const std::string& text, int style) {
    tarnString target;
    formatToMoneyFormat(text.c_str(), target, style);
    const std::string answer = target.text;
    if (text.empty()) return requireSame(answer, "$0.00", "nothing is no money");
    const std::size_t whole = text[0] == '-' ? 1 : 0;
    if (text.find(',') != text.npos || whole == text.size() || text[whole] == '.')
        return requireSame(answer, text, "what is no amount stays");
    const std::size_t point = std::min(text.find('.', whole), text.size());
    std::string expected = text;
    if (point == text.size() && style != 0) expected += ".00";
    if (point + 2 == text.size() && std::isdigit(static_cast<unsigned char>(text.back())) != 0)
        expected += '0';
    for (std::size_t at = point; at > whole + 3;) expected.insert(at -= 3, ",");
    if (style == 1) expected.insert(whole, "$");
    requireSame(answer, expected, "money is grouped by three");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const std::string text = input.text(), pattern = input.text();
    const unsigned choice = input.byte();
    const std::uint32_t decimals = choice % mostDecimals;
    std::uint64_t bits = input.word();
    bits |= std::uint64_t{input.word()} << 32;
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    checkReading(text);
    checkWriting(value, decimals);
    checkWriting(static_cast<double>(bits >> 16) / 1024.0, decimals);  // short ones, with many halves
    checkAmounts(text);
    checkTrimming(text, decimals);
    checkFormats(text, decimals);
    checkPatterns(text, pattern, choice);
    checkMoney(text, static_cast<int>(choice % 3));
    return 0;
}
