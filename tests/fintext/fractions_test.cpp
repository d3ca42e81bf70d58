// Fractions and changes: fintext/fractions.cpp, fintext/price_changes.cpp.
// More texts are among the seeds of fuzz/price_fuzz.cpp, which knows what becomes of each.

#include "fintext/financial_text.h"
#include "tests/fintext/buffers.h"

namespace {

using tarntest::changed;
using tarntest::written;

TEST(Fractions, PriceIsNotTheNearest256th) {
    char text[40];
    const auto readBack = [&](double price) { return strToDouble(asFraction(text, price)); };
    for (int count = 1; count < 256 * 40; ++count) {
        const double tie = (count + 0.5) / 256;
        ASSERT_EQ(readBack(tie), (count + 1) / 256.0);
        ASSERT_EQ(readBack(std::nextafter(-tie, 0.0)), count / -256.0);
        const char* const slash = std::strchr(text, '/');
        ASSERT_TRUE(slash == nullptr || slash[-1] % 2 == 1) << text;  // the numerator is odd
    }
    EXPECT_STREQ(asFraction(text, 2.5), "2 1/2");
    EXPECT_STREQ(asFraction(text, -0.001), "-0");
    EXPECT_STREQ(asFraction(text, 1e9), "8388607 255/256");
    EXPECT_EQ(asFraction(nullptr, 1), nullptr);
}

TEST(Fractions, AnotherPartOfTheTextIsRewritten) {
    char text[] = "-5 24/64";
    EXPECT_STREQ(asReducedFraction(text, text), "-5 3/8");
    EXPECT_EQ(asReducedFraction(nullptr, text), nullptr);
    const auto rebased = [](const char* source, int denominator) {
        return written([&](const char* from, char* to) { asUniformFraction(to, from, denominator); }, source);
    };
    EXPECT_EQ(rebased("12.9999", 8), "12 8/8");
    EXPECT_EQ(rebased("2 1/2 x", 8), "2 4/8");
    EXPECT_EQ(rebased("1/16", 8), "1/8");  // a half goes up
    EXPECT_EQ(rebased("1/17", 8), "0/8");
    EXPECT_EQ(rebased("1/0", 8), "1/0");
    EXPECT_EQ(rebased("0/4", 8), "0/4");
    EXPECT_EQ(rebased("-.5/8", 2), "- 1/2");
    EXPECT_EQ(rebased("2000000000/1", 512), "2147483647/512");
}

TEST(PriceChanges, PercentIsOfAnotherPriceOrForm) {
    const struct {
        const char *price, *change;
        std::int32_t decimals;
        const char *percent, *signedPercent;  // the second with two decimals
    } rows[] = {
        {"110", "10", 9, "10.000000000", "+10.00"},
        {"90", "-10", 10, "-10.0", "-10.00"},
        {"12 1/2", "1/2", 0, "4.2", "+4.17"},
        {"10", "0", 1, "0.0", "unch"},
        {"0", "0", 2, " ", ""},
        {"1.0000009", "1", 2, " ", "+111111111.10"},
        {"1", "1.0000009", 2, " ", "+-111111211.10"},
    };
    for (const auto& each : rows) {
        char text[40];
        EXPECT_STREQ(percentChange(text, each.decimals, each.price, each.change), each.percent);
        tarntest::inCLocale([&] { return asPercentChange(text, "%.2f", each.price, each.change); });
        EXPECT_STREQ(text, each.signedPercent) << each.price << ", " << each.change;
    }
    EXPECT_EQ(percentChange(nullptr, 2, "5", "1"), nullptr);
    EXPECT_EQ(asPercentChange(nullptr, "%.2f", "5", "1"), nullptr);
}

}  // namespace
