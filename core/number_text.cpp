// Numbers as text, by std::from_chars and std::to_chars, which ignore the locale.  The rules of the C
// library that these lack are added here: white space, a plus sign, the hexadecimal prefix, and the answers
// out of range.  Most prices are short, so short decimals are read and written in whole numbers, which is
// faster and just as exact.
// Tests: tests/core/number_text_test.cpp.

#include "core/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/ascii.h"
#include "core/double_from_chars.h"
#include "core/short_decimal.h"

namespace tarn {
namespace {

const char* skipSpace(const char* text) {
    while (isSpace(*text)) ++text;
    return text;
}

bool isHexadecimal(const char* text) {
    return text[0] == '0' && toLower(text[1]) == 'x' &&
           (isHexDigit(text[2]) || (text[2] == '.' && isHexDigit(text[3])));
}

// Where a hexadecimal number ends at the latest: from_chars would take a second sign in its exponent.
const char* endOfHexadecimal(const char* text) {
    const char* const mark = text + std::strcspn(text, "pP");
    const bool hasSign = *mark != '\0' && (mark[1] == '+' || mark[1] == '-');
    return hasSign && !isDigit(mark[2]) ? mark : mark + std::strlen(mark);
}

// Whether a number that no double holds is too large rather than too small, by the power of its first
// significant digit.
bool isTooLarge(const char* text, const char* end, bool hexadecimal) {
    const char letter = hexadecimal ? 'p' : 'e';
    const char* const mark = std::find_if(text, end, [letter](char c) { return toLower(c) == letter; });
    const char* const point = std::find(text, mark, '.');
    const char* const first = std::find_if(text, mark, [](char c) { return c != '0' && c != '.'; });
    const std::int64_t places = point - first;  // above 0 in front of the point
    const std::int64_t power = mark == end ? 0 : readLong(mark + 1);
    return (hexadecimal ? 4 : 1) * places + power > 0;
}

constexpr std::uint32_t mostExactDecimals = 9;

constexpr std::uint64_t unitsOfOne[mostExactDecimals + 1] = {
    1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

// A fraction in units of 2^-64, times a number below 2^32, rounded to the nearest whole number, and to the
// even one of two that are equally near.
std::uint64_t multiplyRounded(std::uint64_t fraction, std::uint64_t factor, bool oddBefore) {
    const std::uint64_t low = (fraction & 0xFFFFFFFF) * factor;
    const std::uint64_t high = (fraction >> 32) * factor + (low >> 32);
    const std::uint64_t whole = high >> 32;
    const std::uint64_t rest = high << 32 | (low & 0xFFFFFFFF);
    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    const bool odd = factor == 1 ? oddBefore : whole % 2 != 0;
    return whole + (rest > half || (rest == half && odd) ? 1 : 0);
}

// Writes a number whose binary places all lie above 2^-64.
char* writeShortDecimal(char* target, double magnitude, std::uint32_t decimals) {
    auto whole = static_cast<std::uint64_t>(magnitude);
    const double rest = magnitude - static_cast<double>(whole);  // exact, and so is the next
    const auto fraction = static_cast<std::uint64_t>(rest * 0x1p64);
    std::uint64_t shown = multiplyRounded(fraction, unitsOfOne[decimals], whole % 2 != 0);
    if (shown == unitsOfOne[decimals]) {
        ++whole;
        shown = 0;
    }
    char* end = std::to_chars(target, target + 20, whole).ptr;
    if (decimals > 0) {
        *end = '.';
        auto digits = static_cast<std::uint32_t>(shown);  // below 10^9
        for (char* place = end + decimals; place != end; --place, digits /= 10) {
            *place = static_cast<char>('0' + digits % 10);
        }
        end += decimals + 1;
    }
    *end = '\0';
    return end;
}

// Some standard libraries name kinds of NaN, which printf doesn't.
char* writeNan(char* target, double value) {
    std::strcpy(target, std::signbit(value) ? "-nan" : "nan");
    return target + std::strlen(target);
}

}  // namespace

double readDouble(const char* text) {
    if (text == nullptr) return 0.0;
    text = skipSpace(text);
    const bool negative = *text == '-';
    if (negative || *text == '+') ++text;
    double number = 0.0;
    if (readShortDecimal(text, number) != nullptr) return negative ? -number : number;
    if (*text == '-') return 0.0;  // from_chars would take a second sign
    const bool hexadecimal = isHexadecimal(text);
    if (hexadecimal) text += 2;
    const char* const end = hexadecimal ? endOfHexadecimal(text) : text + std::strlen(text);
    const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    const auto result = doubleFromChars(text, end, number, format);
    if (result.ec == std::errc::invalid_argument) return 0.0;
    if (result.ec == std::errc::result_out_of_range) {
        number = isTooLarge(text, result.ptr, hexadecimal) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return negative ? -number : number;
}

std::int32_t readLong(const char* text) {
    std::int32_t number = 0;
    if (text != nullptr) scanLong(text, number);
    return number;
}

const char* scanLong(const char* text, std::int32_t& number) {
    constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
    text = skipSpace(text);
    const bool negative = *text == '-';
    if (negative || *text == '+') ++text;
    if (!isDigit(*text)) return nullptr;
    std::int64_t size = 0;
    for (; isDigit(*text); ++text) {
        if (size <= largest) size = size * 10 + (*text - '0');
    }
    size = std::min(size, largest + (negative ? 1 : 0));
    number = static_cast<std::int32_t>(negative ? -size : size);
    return text;
}

char* writeFixed(char* target, double value, std::uint32_t decimals) {
    if (std::isnan(value)) return writeNan(target, value);
    const double magnitude = std::fabs(value);
    if (decimals <= mostExactDecimals && magnitude < 0x1p63 && (magnitude >= 0x1p-12 || magnitude == 0.0)) {
        if (std::signbit(value)) *target++ = '-';
        return writeShortDecimal(target, magnitude, decimals);
    }
    const auto digits =
        static_cast<int>(std::min<std::uint32_t>(decimals, std::numeric_limits<int>::max() - 400));
    const auto end = std::to_chars(target, target + fixedRoom(static_cast<std::size_t>(digits)), value,
                                   std::chars_format::fixed, digits);
    *end.ptr = '\0';
    return end.ptr;
}

char* writeGeneral(char* target, double value, std::uint32_t digits) {
    if (std::isnan(value)) return writeNan(target, value);
    const auto end = std::to_chars(target, target + digits + 11, value, std::chars_format::general,
                                   static_cast<int>(digits));
    *end.ptr = '\0';
    return end.ptr;
}

char* writeLong(char* target, std::int32_t value) {
    const auto end = std::to_chars(target, target + 11, value);
    *end.ptr = '\0';
    return end.ptr;
}

char* writePadded(char* target, std::int32_t value, std::size_t digits) {
    char number[12];
    const auto length = static_cast<std::size_t>(writeLong(number, value) - number);
    if (length < digits) target = std::fill_n(target, digits - length, '0');
    return std::copy_n(number, length + 1, target) - 1;
}

std::int32_t cutToLong(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::clamp(value, -2147483648.0, 2147483647.0));
}

}  // namespace tarn
