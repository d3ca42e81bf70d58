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
