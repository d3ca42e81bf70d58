// Fractions: fintext/fractions.cpp, over whole grids.  The table of examples is tests/fintext/examples.txt.

#include <cmath>
#include <cstdio>
#include <numeric>

#include "fintext/financial_text.h"
#include "tests/support.h"

namespace {

std::string over(int numerator, int denominator) {
    return std::to_string(numerator) + "/" + std::to_string(denominator);
}

// A count of 256ths, reduced by the greatest common divisor.
std::string reduced(int count) {
    const int whole = count / 256, rest = count % 256, divisor = std::gcd(rest, 256);
    if (rest == 0) return std::to_string(whole);
    return (whole == 0 ? "" : std::to_string(whole) + " ") + over(rest / divisor, 256 / divisor);
}

TEST(Fractions, PriceIsNotTheNearest256th) {
    char text[40];
    for (int count = 0; count < 256 * 40; ++count) {
        const double price = count / 256.0, tie = (count + 0.5) / 256;
        ASSERT_EQ(asFraction(text, price), reduced(count));
        ASSERT_EQ(strToDouble(text), price);
        ASSERT_EQ(asFraction(text, -tie), "-" + reduced(count + 1));
        ASSERT_EQ(asFraction(text, std::nextafter(tie, 1e9)), reduced(count + 1));
        // Just below 1/512 the sum with 0.5 rounds up to 1.
        ASSERT_EQ(asFraction(text, std::nextafter(tie, 0.0)), reduced(count == 0 ? 1 : count));
    }
}

TEST(Fractions, RebasedPriceMissesTheNearestNumerator) {
    char text[40];
    for (int d = 2; d <= 512; ++d) {
        for (int n = 1; n <= d; ++n) {
            std::snprintf(text, sizeof text, "12.%012lld", std::llround(1e12 * n / d) - (n == d ? 1 : 0));
            ASSERT_EQ(asUniformFraction(text, text, d), "12 " + over(n, d));
            const int other = 2 + (n * 7 + d) % 511, twos = std::gcd(std::gcd(n, d), 1024);
            ASSERT_EQ(asUniformFraction(text, over(n, d).c_str(), other),
                      over((2 * n * other + d) / (2 * d), other));
            ASSERT_EQ(asReducedFraction(text, ("7 " + over(n, d)).c_str()), "7 " + over(n / twos, d / twos));
        }
    }
}

}  // namespace
