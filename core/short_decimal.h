#pragma once

// Internal: a quick reader for short decimals, which most prices are.  Users want convertToDouble in
// core/variant.h.

#include <cstddef>
#include <cstdint>

#include "base/ascii.h"

namespace tarn {

inline constexpr std::ptrdiff_t exactDigits = 15;

inline constexpr double powersOfTen[exactDigits + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

inline const char* addDigits(const char* text, std::uint64_t& number) {
    for (; isDigit(*text); ++text) number = number * 10 + static_cast<std::uint64_t>(*text - '0');
    return text;
}

// Reads up to 15 digits, with or without a point, as a whole number divided by a power of ten.  Both are
// exact doubles, so that their quotient is rounded just as correctly as by reading the text.  Answers the
// place behind the digits.  For anything else, and where a letter that follows may belong to the number, it
// answers NULL and leaves `number` untouched.
inline const char* readShortDecimal(const char* text, double& number) {
    std::uint64_t digits = 0;  // wraps where there are too many
    const char* end = addDigits(text, digits);
    std::ptrdiff_t count = end - text;
    std::ptrdiff_t decimals = 0;
    if (*end == '.') {
        const char* const point = end;
        end = addDigits(point + 1, digits);
        decimals = end - point - 1;
        count += decimals;
    }
    if (count == 0 || count > exactDigits || isLetter(*end)) return nullptr;
    number = static_cast<double>(digits) / powersOfTen[decimals];
    return end;
}

}  // namespace tarn
