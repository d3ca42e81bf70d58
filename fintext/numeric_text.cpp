// Numeric text: the three readers, each for its own dialect, and the text operations that trim and re-format
// decimals in the caller's buffer.  Whole numbers are added up without a sign, so that they may wrap.
// Tests: tests/fintext/numeric_text_test.cpp.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "core/number_text.h"
#include "core/short_decimal.h"
#include "core/string.h"
#include "core/variant.h"
#include "fintext/financial_text.h"
#include "fintext/number_display.h"

using tarn::isDigit;

namespace {

constexpr std::ptrdiff_t mostPlainCharacters = 9;  // with which no whole number can wrap

// The value of the up to three whole numbers of a price text; those that it hasn't are 0.
double valueOf(const std::int32_t (&numbers)[3]) {
    const double a = numbers[0];
    const double b = numbers[1];
    const double c = numbers[2];
    if (b == 0) return a;
    if (c > 0) return a + b / c;
    return c == 0 && b > 0 ? a / b : 0.0;
}

// Answers false where a point says that the text is a decimal.
bool readWholeNumbers(const char* text, std::int32_t (&numbers)[3]) {
    std::uint32_t open = 0;  // the number that is being read; it stays open until it is above 0
    int closed = 0;
    for (; closed < 3 && *text != '\0'; ++text) {
        if (isDigit(*text)) {
            open = open * 10 + static_cast<std::uint32_t>(*text - '0');
        } else if (*text == '.') {
            return false;
        } else if (static_cast<std::int32_t>(open) > 0) {
            numbers[closed++] = static_cast<std::int32_t>(open);
            open = 0;
        }
    }
    if (closed < 3) numbers[closed] = static_cast<std::int32_t>(open);
    return true;
}

// Adds digits and passes over commas, up to the first other character, whose place is the answer.
template <class Number>
const char* readGrouped(const char* text, Number& value) {
    for (; isDigit(*text) || *text == ','; ++text) {
        if (*text != ',') value = value * 10 + static_cast<Number>(*text - '0');
    }
    return text;
}

// Multiplies by a thousand for each scale letter.
template <class Number>
Number scaled(Number value, const char* letters) {
    const char unit = tarn::toLower(letters[0]);
    if (unit == 'k') return value * 1000;
    if (unit != 'm') return value;
    return tarn::toLower(letters[1]) == 'm' ? value * 1000 * 1000 : value * 1000;
}

// The length of a text that an operation on texts in place leaves.  Each may add a character at the end.
std::size_t lengthAfter(void (*operation)(char*), std::string_view part) {
    std::string work(part);
    work.resize(part.size() + 1);
    operation(work.data());
    return std::strlen(work.data());
}

bool isWithin(std::size_t count, std::int32_t limit) {
    return count <= static_cast<std::uint32_t>(limit);
}

void copy(char* target, const char* source) {
    std::memmove(target, source, std::strlen(source) + 1);
}

}  // namespace

double strToDouble(const char* text) {
    if (text == nullptr) return 0.0;
    const char* number = text;
    while (tarn::isSpace(*number)) ++number;
    const bool negative = *number == '-';
    if (negative || *number == '+') ++number;
    double value = 0.0;
    const char* const end = tarn::readShortDecimal(number, value);
    const bool isPlain = end != nullptr && *end == '\0' && end - number <= mostPlainCharacters;
    if (!isPlain) {
        std::int32_t numbers[3] = {};
        if (!readWholeNumbers(number, numbers)) return tarn::readDouble(text);
        value = valueOf(numbers);
    }
    return negative ? -value : value;
}

std::int32_t fmtToLong(const char* text) {
    if (text == nullptr) return 0;
    std::uint32_t value = 0;
    const char* const end = readGrouped(text, value);
    return static_cast<std::int32_t>(scaled(value, end));
}

double fmtToDouble(const char* text) {
    if (text == nullptr) return 0.0;
    double value = 0.0;
    const char* end = readGrouped(text, value);
    if (*end == '.') {
        double factor = 0.1;
        for (++end; isDigit(*end); ++end, factor *= 0.1) value += (*end - '0') * factor;
    }
    return scaled(value, end);
}

int validateFloatFormat(const char* text, std::int32_t mostWholeDigits, std::int32_t mostDecimals) {
    if (text == nullptr) return 0;
    const std::string_view all(text);
    const std::size_t point = all.find('.');
    if (point == std::string_view::npos) return isWithin(all.size(), mostWholeDigits) ? 1 : 0;
    return isWithin(lengthAfter(stripTrailZeros, all.substr(point + 1)), mostDecimals) &&
                   isWithin(lengthAfter(stripLeadZeros, all.substr(0, point)), mostWholeDigits)
               ? 1
               : 0;
}

void stripTrailDecimal(char* text, std::uint32_t decimals) {
    char* const point = text == nullptr ? nullptr : std::strchr(text, '.');
    if (point != nullptr && std::strlen(point + 1) > decimals) point[1 + std::size_t{decimals}] = '\0';
}

void stripTrailDecimalZeros(char* text, std::uint32_t /*unused*/) {
    if (text == nullptr) return;
    copy(text, text + std::strspn(text, " "));
    if (std::strchr(text, '.') == nullptr) return;
    std::size_t length = std::strlen(text);
    while (text[length - 1] == '0') --length;  // ends at the point at the latest
    if (text[length - 1] == '.') --length;
    text[length] = '\0';
}

void stripLeadZeros(char* text) {
    if (text != nullptr) copy(text, text + std::strspn(text, "0 "));
}

void formatStringToFloat(const char* source, char* target, std::uint32_t decimals) {
    if (source == nullptr || target == nullptr || *source == '\0') return;
    double number = 0.0;
    if (std::strchr(source, '.') == nullptr || convertToDouble(source, number) == 0) {
        return copy(target, source);
    }
    tarn::writeFixed(target, number, std::min(decimals, tarn::mostDecimals));
}

void formatStringToFloatWithRounding(const char* source, char* target, std::uint32_t decimals) {
    if (source == nullptr || target == nullptr) return;
    double number = 0.0;
    if (*source == '\0' || convertToDouble(source, number) == 0) return copy(target, source);
    tarn::writeRounded(target, number, std::min(decimals, tarn::mostDecimals));
}

int isAlphaNum(const char* text) {
    if (text == nullptr) return 0;
    const std::string_view all(text);
    return std::all_of(all.begin(), all.end(), [](char c) { return isDigit(c) || tarn::isLetter(c); }) ? 1
                                                                                                       : 0;
}
