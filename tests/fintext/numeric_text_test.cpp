// Numeric text: fintext/numeric_text.cpp, and fintext/number_display.cpp, which rounds for it.
// The dialects of the readers are among the seeds of fuzz/price_fuzz.cpp and fuzz/number_fuzz.cpp, which read
// the texts in a plain way too.

#include "core/string.h"
#include "fintext/financial_text.h"
#include "fintext/number_display.h"
#include "tests/fintext/buffers.h"
#include "tests/values.h"

namespace {

using tarntest::changed;
using tarntest::number;
using tarntest::written;

TEST(NumericText, CharactersAreMiscounted) {
    EXPECT_EQ(validateFloatFormat("00123.4500", 3, 2), 1);
    EXPECT_EQ(validateFloatFormat("123.456", 3, 2), 0);
    EXPECT_EQ(validateFloatFormat("1234.5", 3, 2), 0);
    EXPECT_EQ(validateFloatFormat("1.2.", 1, 2), 0);  // stripTrailZeros puts a 0 behind the last point
    EXPECT_EQ(validateFloatFormat("123456.7", -1, 1), 1);
    EXPECT_EQ(validateFloatFormat(nullptr, -1, -1), 0);
    EXPECT_EQ(isAlphaNum("AZaz09"), 1);
    EXPECT_EQ(isAlphaNum("AZ az"), 0);
    EXPECT_EQ(isAlphaNum(nullptr), 0);
}

TEST(NumericText, DecimalsAreCutFilledUpOrRoundedWrongly) {
    EXPECT_EQ(changed(stripTrailDecimal, "12.3456", 2U), "12.34");
    EXPECT_EQ(changed(stripTrailDecimal, "1.5", 4'000'000'000U), "1.5");
    EXPECT_EQ(changed(stripTrailDecimalZeros, " .000", 7U), "");
    EXPECT_EQ(changed(stripLeadZeros, " 0 0.5"), ".5");
    EXPECT_EQ(changed(stripTrailZeros, "1.500 "), "1.5");
    EXPECT_EQ(written(formatStringToFloat, "1.005", 2U), "1.00");
    EXPECT_EQ(written(formatStringToFloat, "1.5/2", 3U), "1.5/2");
    EXPECT_EQ(written(formatStringToFloatWithRounding, "12", 2U), "12.00");
    EXPECT_EQ(written(formatStringToFloatWithRounding, "0.5", 0U), "1");
    // 1 and 0.005 add up to just 1.005, but 0.1 and 0.05 to a bit more than 0.15.
    EXPECT_EQ(written(formatStringToFloatWithRounding, "1.005", 2U), "1.01");
    EXPECT_EQ(written(formatStringToFloatWithRounding, "0.15", 1U), "0.1");
    EXPECT_EQ(written(formatStringToFloatWithRounding, "-1.125", 2U), "-1.12");
    for (const auto format : {formatStringToFloat, formatStringToFloatWithRounding})
        EXPECT_EQ(written(format, "1.5", 4'000'000'000U), "1.5" + std::string(1073, '0'));
    EXPECT_EQ(written(formatStringToFloatWithRounding, "n/a", 3U), "n/a");
}

std::string shown(const tarntest::Owned& value) {
    tarnString text;
    tarn::variantToNumberText(&value, &text);
    return text.text;
}

TEST(NumericText, TaggedValueIsShownInAnotherWidth) {
    for (const std::int32_t tag : {tagByte, tagChar}) EXPECT_EQ(shown(number(tag, 200)), "-56");
    for (const std::int32_t tag : {tagShort, tagUShort}) EXPECT_EQ(shown(number(tag, 40'000)), "-25536");
    for (const std::int32_t tag : {tagLong, tagWord, tagNumber})
        EXPECT_EQ(shown(number(tag, 98'504)), "98504");
    EXPECT_EQ(shown(number(tagFloat, 0.5)), "0.5000");
    EXPECT_EQ(shown(number(tagDouble, 1.00005)), "1.0001");
    EXPECT_EQ(shown(number(tagDouble, 1e22)), "10000000000000000000000");
    EXPECT_EQ(shown(tarntest::text("12 1/2", tagString)), "12.5000");
    EXPECT_EQ(shown(tarntest::blob("9")), "0");
    EXPECT_EQ(tarn::variantToDouble(nullptr), 0);
}

}  // namespace
