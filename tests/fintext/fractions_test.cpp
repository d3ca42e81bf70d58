// Fractions: fintext/fractions.cpp, over a whole grid.  The table of examples is tests/fintext/examples.txt.

#include <numeric>

#include "fintext/financial_text.h"
#include "tests/support.h"

namespace {

// A count of 256ths, reduced by the greatest common divisor.
std::string reduced(int count) {
    const int whole = count / 256, rest = count % 256, divisor = std::gcd(rest, 256);
    if (rest == 0) return std::to_string(whole);
    return (whole == 0 ? "" : std::to_string(whole) + " ") + std::to_string(rest / divisor) + "/" +
           std::to_string(256 / divisor);
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

}  // namespace
