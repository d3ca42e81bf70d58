// Prices as fractions.  A text holds one fraction, found by its first slash; a whole part or a sign in front
// of its numerator is never looked at.  Tests: tests/fintext/fractions_test.cpp.

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/ascii.h"
#include "core/number_text.h"
#include "fintext/financial_text.h"

namespace {

struct Fraction {
    char* start;  // of the numerator's digits, NULL if the text holds no slash
    std::int32_t numerator;
    std::int32_t denominator;
};

Fraction findFraction(char* text) {
    char* const slash = std::strchr(text, '/');
    if (slash == nullptr) return {nullptr, 0, 0};
    char* start = slash;
    while (start != text && tarn::isDigit(start[-1])) --start;
    return {start, tarn::readLong(start), tarn::readLong(slash + 1)};
}

// Terminates the text behind the denominator.
void writeFraction(char* target, std::int32_t numerator, std::int32_t denominator) {
    char* const slash = tarn::writeLong(target, numerator);
    *slash = '/';
    tarn::writeLong(slash + 1, denominator);
}

// Halves both numbers, of which at least one isn't 0, while both are even.
void halve(std::int32_t& a, std::int32_t& b) {
    const int twos = std::countr_zero(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
    a >>= twos;
    b >>= twos;
}

// To the nearest whole number, a half up, within 32 bits.
std::int32_t rebase(const Fraction& fraction, std::int32_t denominator) {
    const std::int64_t product = std::int64_t{fraction.numerator} * denominator;  // below 2^40
    const std::int64_t rounded =
        (2 * product + fraction.denominator) / (2 * std::int64_t{fraction.denominator});
    return static_cast<std::int32_t>(std::min(rounded, std::int64_t{2147483647}));
}

}  // namespace

char* asFraction(char* buffer, double value) {
    if (buffer == nullptr) return nullptr;
    char* target = buffer;
    double scaled = value * 256.0;
    if (scaled < 0) {
        *target++ = '-';
        scaled = -scaled;
    }
    std::int32_t numerator = tarn::cutToLong(scaled + 0.5);
    std::int32_t denominator = 256;
    halve(numerator, denominator);
    if (denominator == 1) {
        tarn::writeLong(target, numerator);
        return buffer;
    }
    if (numerator > denominator) {
        target = tarn::writeLong(target, numerator / denominator);
        *target++ = ' ';
    }
    writeFraction(target, numerator % denominator, denominator);  // an odd remainder, so not 0
    return buffer;
}

char* asReducedFraction(char* buffer, const char* source) {
    if (buffer == nullptr || source == nullptr) return buffer;
    std::memmove(buffer, source, std::strlen(source) + 1);
    Fraction fraction = findFraction(buffer);
    if (fraction.numerator <= 0 || fraction.numerator % 2 != 0) return buffer;
    if (fraction.denominator > 0) halve(fraction.numerator, fraction.denominator);
    writeFraction(fraction.start, fraction.numerator, fraction.denominator);
    return buffer;
}

char* asUniformFraction(char* buffer, const char* source, std::int32_t denominator) {
    if (buffer == nullptr || source == nullptr) return buffer;
    std::memmove(buffer, source, std::strlen(source) + 1);
    if (denominator < 2 || denominator > 512) return buffer;
    if (char* const point = std::strchr(buffer, '.'); point != nullptr) {
        const std::int32_t numerator = tarn::cutToLong(tarn::readDouble(point) * denominator + 0.5);
        *point = ' ';
        writeFraction(point + 1, numerator, denominator);
        return buffer;
    }
    const Fraction fraction = findFraction(buffer);
    if (fraction.numerator > 0 && fraction.denominator > 0) {
        writeFraction(fraction.start, rebase(fraction, denominator), denominator);
    }
    return buffer;
}
