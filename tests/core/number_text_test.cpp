// Numbers as text: core/number_text.cpp.  Prices: core/price_text.cpp.

#include "core/number_text.h"

#include <bit>

#include "core/variant.h"
#include "tests/plain/price.h"
#include "tests/support.h"

namespace {

// A text of up to `longest` characters from an alphabet.
std::string randomText(std::mt19937& random, std::string_view alphabet, unsigned longest) {
    std::string text(random() % (longest + 1), '\0');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    return text;
}

std::uint64_t bitsOf(double number) {
    return std::isnan(number) ? 0 : std::bit_cast<std::uint64_t>(number);
}

#if !defined(_WIN32)  // its older C library reads and writes some of these in a way of its own
void expectAgreementInReading(const std::string& text) {
    ASSERT_EQ(bitsOf(tarn::readDouble(text.c_str())), bitsOf(tarntest::numberOf(text.c_str()))) << text;
    const long long whole = std::strtoll(text.c_str(), nullptr, 10);
    ASSERT_EQ(tarn::readLong(text.c_str()), std::clamp<long long>(whole, INT32_MIN, INT32_MAX)) << text;
}

TEST(NumberTextTest, ReadingAgreesWithTheCLibrary) {
    std::mt19937 random(4);
    for (int i = 0; i < 300'000 && !HasFailure(); ++i) {
        const char* const alphabet = i % 2 == 0 ? "0123456789.e-+ " : "019.eExXpP-+ \tinfaINFNA,/";
        expectAgreementInReading(randomText(random, alphabet, 13));
    }
    for (const char* text :
         {"4.9e-324", "2e-324", "-99999999999999999999", "infinity", "nan(12)", "0x.9p+-3"})
        expectAgreementInReading(text);
    const std::string zeros(400, '0');
    for (int exponent = -2000; exponent <= 2000; exponent += 25) {
        expectAgreementInReading("-0." + zeros + "5e" + std::to_string(exponent));
        expectAgreementInReading("5" + zeros + "e" + std::to_string(exponent));
        expectAgreementInReading("0x0." + zeros + "1p" + std::to_string(exponent));
    }
}

// Numbers of every size, among them many that lie on a tie between two texts, just beside one, or at a limit.
double numberToWrite(std::uint64_t bits, int i) {
    const auto tie = std::ldexp(static_cast<double>(bits >> 40), static_cast<int>(bits % 30) - 24);
    if (i % 8 == 0) return std::nextafter(tie, i % 16 == 0 ? 0.0 : 1e9);
    if (i % 8 == 1) return std::ldexp(1.0 - std::ldexp(1.0, -53), i / 8 % 80 - 13);
    return i % 2 == 0 ? tie : std::bit_cast<double>(bits);
}

TEST(NumberTextTest, WritingAgreesWithTheCLibrary) {
    std::mt19937_64 random(5);
    char expected[1100];
    char written[1100];
    for (int i = 0; i < 200'000; ++i) {
        const std::uint64_t bits = random();
        const double number = numberToWrite(bits, i);
        const auto decimals = static_cast<std::uint32_t>(bits % 11);
        tarntest::inCLocale([&] {
            const int shown = static_cast<int>(decimals);
            return std::snprintf(expected, sizeof expected, "%.*f %.16g", shown, number, number);
        });
        char* const end = tarn::writeFixed(written, number, decimals);
        *end = ' ';
        tarn::writeGeneral(end + 1, number, 16);
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
        const std::string blanks(i % 500 == 0 ? 300 : 0, ' ');
        const std::string text = blanks + randomText(random, alphabets[i % 3], 13) + blanks;
        double number = 77;
        double expected = 77;
        const int answer = tarntest::inCLocale([&] { return tarnplain::price(text, expected); });
        ASSERT_EQ(convertToDouble(text.c_str(), number), answer) << text;
        ASSERT_EQ(bitsOf(number), bitsOf(expected)) << text;
    }
    double number = 77;
    EXPECT_EQ(convertToDouble(nullptr, number), 1);
    EXPECT_EQ(number, 0);
}

}  // namespace
