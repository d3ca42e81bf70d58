// Numeric text: fintext/numeric_text.cpp, and fintext/number_display.cpp, which rounds for it.  Their table
// of examples is tests/fintext/examples.txt.

#include "core/string.h"
#include "core/variant.h"
#include "fintext/financial_text.h"
#include "fintext/number_display.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

std::string rounded(const char* text, std::uint32_t decimals) {
    char target[1500];
    formatStringToFloatWithRounding(text, target, decimals);
    return target;
}

// Against printing, reading back, comparing and printing again by the C library.
TEST(NumericText, RoundingDiffersBesideAHalf) {
    double power = 10.0;
    for (int decimals = 0; decimals < 6; ++decimals, power *= 10.0) {
        const double half = 5.0 / power;
        for (int i = -15'000; i < 15'000; ++i) {
            const double edge = (i / 3 + 0.5) * 10.0 / power;
            const double value = i % 3 == 0 ? edge : std::nextafter(edge, i % 2 == 0 ? 1e9 : -1e9);
            char text[64], expected[64];
            tarntest::inCLocale([&] {
                std::snprintf(text, sizeof text, "%.25f", value);
                std::snprintf(expected, sizeof expected, "%.*f", decimals, value);
                const double shown = std::strtod(expected, nullptr), next = shown + 2 * half;
                return shown + half > value ||
                       std::snprintf(expected, sizeof expected, "%.*f", decimals, next) > 0;
            });
            ASSERT_EQ(rounded(text, static_cast<std::uint32_t>(decimals)), expected) << text;
        }
    }
    EXPECT_EQ(rounded("1.5", 4'000'000'000U), "1.5" + std::string(1073, '0'));
}

std::string shownValue(std::int32_t tag, auto payload) {
    MOLTVARIANT value;
    value.tag = tag;
    std::memcpy(&value.payload, &payload, sizeof payload);
    tarnString text;
    tarn::variantToNumberText(tag < 0 ? nullptr : &value, &text);
    return text.text + std::string(" ");
}

TEST(NumericText, TaggedValueIsReadInAnotherWidth) {
    constexpr std::int32_t word = 0x000180C8;  // -56 in 8 bits, -32568 in 16
    tarnString text("12 1/2");
    std::string shown = shownValue(tagFloat, 0.5F) + shownValue(tagString, &text);
    for (const std::int32_t tag : {-1, 0, 1, 2, 3, 6, 7, 8, 9, 14})
        shown += shownValue(tag, tarntest::number(tag, word).payload);
    for (const double number : {12.0, 12.5, 1.00005, 1e22}) shown += shownValue(tagDouble, number);
    EXPECT_EQ(shown,
              "0.5000 12.5000 0 0 -56 -32568 98504 -56 -32568 98504 0 98504 "
              "12 12.5000 1.0001 10000000000000000000000 ");
}

}  // namespace
