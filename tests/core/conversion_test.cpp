// Values to text and back, and from 32 bits: core/variant_conversion.cpp.

#include "core/exception.h"
#include "tests/values.h"

namespace {

using namespace tarntest;

using Text = std::unique_ptr<char[]>;

TEST(ConversionTest, EachTagHasItsTextForm) {
    const struct {
        Owned value;
        const char *converted, *assigned, *appended;  // the last to "x"
    } rows[] = {
        {number(tagShort, -7), "-7", "-7", "x"},
        {number(tagLong, 70000), "70000", "70000", "x70000"},
        {number(tagFloat, 0.5), "0.5", "0.5", "x0.500000"},
        {number(tagDouble, 1e16), "1e+16", "10000000000000000.0", "x10000000000000000.000000"},
        {number(tagDouble, 0.3333333333333333), "0.3333333333333333", "0.333333", "x0.333333"},
        {number(tagChar, 'A'), "A", "A", "x"},
        {number(tagWord, -1), "-1", "", "x"},
        {number(tagNumber, 7), "7", "7", "x"},
        {text(nullptr), "", "", "x"},
        {text("abc", tagString), "abc", "abc", "xabc"},
    };
    for (const auto& each : rows) {
        tarnString string("x");
        string.append(&each.value);
        EXPECT_STREQ(string.text, each.appended);
        string.assign(&each.value);
        EXPECT_STREQ(string.text, each.assigned);
        EXPECT_STREQ(Text(convertToString(&each.value)).get(), each.converted);
    }
}

TEST(ConversionTest, AFormatTakesThePayloadOfItsTag) {
    const struct {
        Owned value;
        const char *format, *text;
    } rows[] = {
        {number(tagShort, -300), "%d", "-300"},
        {number(tagLong, -5), "%%ld is %ld%%", "%ld is -5%"},  // a client's long has 32 bits
        {number(tagLong, -1), "%-9.8lx|", "ffffffff |"},
        {number(tagFloat, 0.5), "%.3lf", "0.500"},
        {number(tagDouble, 1), "%42.1f", "                                       1.0"},
        {number(tagChar, -2), "%d", "-2"},
        {text(nullptr), "<%s>", "<>"},
        {text("abc", tagString), "<%5s>", "<  abc>"},
    };
    for (const auto& each : rows) {
        const Text text(inCLocale([&] { return convertToString(&each.value, each.format); }));
        EXPECT_STREQ(text.get(), each.text);
    }
}

TEST(ConversionTest, AFieldTypeMakesTheTagOfThirtyTwoBits) {
    const struct {
        std::int32_t type, tag;
    } rows[] = {{tarn::fieldShort, tagShort},     {tarn::fieldSecondLong, tagLong},
                {tarn::fieldCharacter, tagChar},  {tarn::fieldText, tagChar},
                {tarn::fieldSecondText, tagChar}, {tarn::fieldThirdText, tagChar},
                {tarn::fieldFloat, tagFloat},     {tarn::fieldDouble, tagDouble}};
    for (const auto& each : rows) {
        Owned value = number(tagLong, 3);
        convertFromLong(&value, each.type, 1);
        EXPECT_EQ(number(each.tag, 3), value);
    }
    Owned pointer = text("abc");
    pointer.tag = tagLong;
    convertFromLong(&pointer, tarn::fieldText, 2);
    EXPECT_EQ(pointer, text("abc"));
}

}  // namespace
