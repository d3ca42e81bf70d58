// Numbers as text: core/number_text.cpp.  How they and prices (core/price_text.cpp) are read, fuzz/number_fuzz.cpp
// and fuzz/price_fuzz.cpp compare with plain forms.

#include "core/number_text.h"

#include <bit>

#include "tests/support.h"

namespace {

#if !defined(_WIN32)  // its older C library writes some of these in a way of its own
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

}  // namespace
