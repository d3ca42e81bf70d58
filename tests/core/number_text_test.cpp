// The rules for numbers as text: core/number_text.cpp, and prices: core/price_text.cpp.

#include "core/number_text.h"

#include <bit>

#include "core/variant.h"
#include "tests/plain/price.h"
#include "tests/support.h"

namespace {

std::uint64_t bitsOf(double number) {
    return std::bit_cast<std::uint64_t>(number);
}

#if !defined(_WIN32)  // its older C library reads and writes some of these in a way of its own
TEST(NumberTextTest, ReadingAgreesWithTheCLibrary) {
    const auto expectAgreement = [](const std::string& text) {
        const double expected = tarntest::numberOf(text.c_str()), number = tarn::readDouble(text.c_str());
        ASSERT_TRUE(bitsOf(number) == bitsOf(expected) || (std::isnan(number) && std::isnan(expected)))
            << text;
        const long long whole = std::strtoll(text.c_str(), nullptr, 10);
        ASSERT_EQ(tarn::readLong(text.c_str()), std::clamp<long long>(whole, INT32_MIN, INT32_MAX)) << text;
    };
    std::mt19937 random(4);
    for (int i = 0; i < 300'000 && !HasFailure(); ++i) {
        expectAgreement(
            tarntest::randomText(random, i % 2 == 0 ? "0123456789.e-+ " : "019.eExXpP-+ \tinfaINFNA,/", 13));
    }
    const std::string zeros(400, '0');
    for (const std::string& text : tarntest::split(
             "1e999|-1e999|1e-999|-1e-999|1e308|4.9e-324|2e-324|0x1p-2000|0x1p2000|99999999999999999999|"
             "-99999999999999999999|infinity|nan(12)|0x|1e|+-1|0x.9p+-3|0." +
                 zeros + "1|1" + zeros + ".5|0." + zeros + "5e25|5" + zeros + "e-25",
             '|'))
        expectAgreement(text);
}

TEST(NumberTextTest, WritingAgreesWithTheCLibrary) {
    std::mt19937_64 random(5);
    char expected[1100];
    char written[1100];
    for (int i = 0; i < 200'000; ++i) {
        const std::uint64_t bits = random();
        auto number = std::bit_cast<double>(bits);
        if (i % 2 == 0)
            number =
                std::ldexp(static_cast<double>(bits >> 40), static_cast<int>(bits % 30) - 24);  // many ties
        if (i % 8 == 0) number = std::nextafter(number, i % 16 == 0 ? 0.0 : 1e9);  // just beside a tie
        if (i % 8 == 1)
            number = std::ldexp(1.0 - std::ldexp(1.0, -53), i / 8 % 80 - 13);  // at limits of size
        const auto decimals = static_cast<std::uint32_t>(bits % 11);
        const auto print = [&](const char* format, int digits) {
            tarntest::inCLocale(
                [&] { return std::snprintf(expected, sizeof expected, format, digits, number); });
        };
        print("%.*f", static_cast<int>(decimals));
        EXPECT_EQ(tarn::writeFixed(written, number, decimals) - written,
                  static_cast<std::ptrdiff_t>(std::strlen(expected)));
        ASSERT_STREQ(written, expected);
        print("%.*g", 16);
        tarn::writeGeneral(written, number, 16);
        ASSERT_STREQ(written, expected);
    }
}
#endif

TEST(NumberTextTest, CutsStayWithinThirtyTwoBits) {
    for (const auto& [number, cut] :
         {std::pair(-1.9, -1), {1e300, INT32_MAX}, {-1e300, INT32_MIN}, {std::nan(""), 0}})
        EXPECT_EQ(tarn::cutToLong(number), cut);
}

TEST(PriceTest, FastAndPlainReadingAgree) {
    std::mt19937 random(6);
    constexpr const char* alphabets[] = {"0123456789.", "0123 ./,-+", "12 /-.a"};
    double number = 77;
    for (int i = 0; i < 400'000; ++i) {
        const std::string blanks(i % 500 == 0 ? 300 : 0, ' '),
            text = blanks + tarntest::randomText(random, alphabets[i % 3], 13) + blanks;
        double expected = number = 77;
        const int answer = tarntest::inCLocale([&] { return tarnplain::price(text, expected); });
        ASSERT_EQ(convertToDouble(text.c_str(), number), answer) << text;
        ASSERT_EQ(bitsOf(number), bitsOf(expected)) << text;
    }
    EXPECT_TRUE(convertToDouble(nullptr, number) == 1 && number == 0);
}

}  // namespace
