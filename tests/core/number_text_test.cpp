// The rules for numbers as text: core/number_text.cpp, and prices: core/price_text.cpp.

#include "core/number_text.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "core/variant.h"
#include "tests/plain/price.h"
#include "tests/support.h"

namespace {

std::uint64_t bitsOf(double number) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

#if !defined(_WIN32)  // its older C library reads and writes some of these in a way of its own
TEST(NumberTextTest, ReadingAgreesWithTheCLibrary) {
    std::mt19937 random(4);
    for (int i = 0; i < 300'000; ++i) {
        const std::string text =
            tarntest::randomText(random, i % 2 == 0 ? "0123456789.e-+ " : "019.eExXpP-+ \tinfaINFNA,/", 13);
        const double expected = std::strtod(text.c_str(), nullptr);
        const double number = tarn::readDouble(text.c_str());
        ASSERT_TRUE(bitsOf(number) == bitsOf(expected) || (std::isnan(number) && std::isnan(expected)))
            << text;
        const long long whole = std::strtoll(text.c_str(), nullptr, 10);
        ASSERT_EQ(tarn::readLong(text.c_str()), std::clamp<long long>(whole, INT32_MIN, INT32_MAX)) << text;
    }
    for (const char* text :
         {"1e999", "-1e999", "1e-999", "-1e-999", "1e308", "4.9e-324", "2e-324", "0x1p-2000", "0x1p2000",
          "99999999999999999999", "-99999999999999999999", "infinity", "nan(12)", "0x", "1e", "+-1"}) {
        EXPECT_TRUE(bitsOf(tarn::readDouble(text)) == bitsOf(std::strtod(text, nullptr)) ||
                    std::isnan(std::strtod(text, nullptr)))
            << text;
    }
    const std::string tiny = "0." + std::string(400, '0') + "1";
    const std::string huge = "1" + std::string(400, '0') + ".5";
    EXPECT_EQ(tarn::readDouble(tiny.c_str()), 0.0);
    EXPECT_EQ(tarn::readDouble(huge.c_str()), std::numeric_limits<double>::infinity());
}

TEST(NumberTextTest, WritingAgreesWithTheCLibrary) {
    std::mt19937_64 random(5);
    char expected[1100];
    char written[1100];
    for (int i = 0; i < 200'000; ++i) {
        const std::uint64_t bits = random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (i % 2 == 0)
            number =
                std::ldexp(static_cast<double>(bits >> 40), static_cast<int>(bits % 30) - 24);  // many ties
        if (i % 8 == 0) number = std::nextafter(number, i % 16 == 0 ? 0.0 : 1e9);  // just beside a tie
        if (i % 8 == 1)
            number = std::ldexp(1.0 - std::ldexp(1.0, -53), i / 8 % 80 - 13);  // at limits of size
        const auto decimals = static_cast<std::uint32_t>(bits % 11);
        std::snprintf(expected, sizeof expected, "%.*f", static_cast<int>(decimals), number);
        EXPECT_EQ(tarn::writeFixed(written, number, decimals) - written,
                  static_cast<std::ptrdiff_t>(std::strlen(expected)));
        ASSERT_STREQ(written, expected);
        std::snprintf(expected, sizeof expected, "%.16g", number);
        tarn::writeGeneral(written, number, 16);
        ASSERT_STREQ(written, expected);
    }
}
#endif

TEST(NumberTextTest, CutsStayWithinThirtyTwoBits) {
    EXPECT_EQ(tarn::cutToLong(-1.9), -1);
    EXPECT_EQ(tarn::cutToLong(1e300), INT32_MAX);
    EXPECT_EQ(tarn::cutToLong(-1e300), INT32_MIN);
    EXPECT_EQ(tarn::cutToLong(std::nan("")), 0);
}

TEST(PriceTest, FastAndPlainReadingAgree) {
    std::mt19937 random(6);
    constexpr const char* alphabets[] = {"0123456789.", "0123 ./,-+", "12 /-.a"};
    for (int i = 0; i < 400'000; ++i) {
        const std::string text = tarntest::randomText(random, alphabets[i % 3], 13);
        double number = 77;
        double expected = 77;
        ASSERT_EQ(convertToDouble(text.c_str(), number), tarnplain::price(text, expected)) << text;
        ASSERT_EQ(bitsOf(number), bitsOf(expected)) << text;
    }
}

TEST(PriceTest, ALongPriceIsReadAsWell) {
    double number = 77;
    const std::string blanks(300, ' ');
    EXPECT_EQ(convertToDouble((blanks + "12 1/2" + blanks).c_str(), number), 1);
    EXPECT_EQ(number, 12.5);
    EXPECT_EQ(convertToDouble(nullptr, number), 1);
    EXPECT_EQ(number, 0);
}

}  // namespace
