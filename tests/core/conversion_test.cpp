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
        {text("abc"), "abc", "abc", "xabc"},
        {text(nullptr), "", "", "x"},
        {text("abc", tagString), "abc", "abc", "xabc"},
        {nothing(tagBlob), "0", "", "x"},
    };
    for (const auto& each : rows) {
        tarnString string("x");
        string.append(&each.value);
        EXPECT_STREQ(string.text, each.appended) << readable(&each.value);
        string.assign(&each.value);
        EXPECT_STREQ(string.text, each.assigned) << readable(&each.value);
        EXPECT_STREQ(Text(convertToString(&each.value)).get(), each.converted);
    }
    tarnString string("x");
    string.append(static_cast<const MOLTVARIANT*>(nullptr));
    EXPECT_EQ(string.length, 0);
}

TEST(ConversionTest, AFormatTakesThePayloadOfItsTag) {
    const struct {
        Owned value;
        const char *format, *text;
    } rows[] = {
        {number(tagShort, -300), "%d", "-300"},
        {number(tagLong, 70000), "<%6d>", "< 70000>"},
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
        EXPECT_STREQ(text.get(), each.text) << each.format;
    }
    wchar_t wide[] = L"wide";
    MOLTVARIANT view;
    view.tag = tagText;
    view.payload.text = reinterpret_cast<char*>(wide);
    EXPECT_STREQ(Text(convertToString(&view, "%ls")).get(), "wide");
}

TEST(ConversionTest, ATextBecomesTheWantedTag) {
    const struct {
        const char* content;
        Owned value;
    } rows[] = {
        {"70000", number(tagShort, 4464)}, {"99999999999", number(tagLong, INT32_MAX)},
        {"1.5", number(tagFloat, 1.5)},    {"-1e2", number(tagDouble, -100)},
        {"AB", number(tagChar, 'A')},      {nullptr, number(tagChar, 0)},
        {"12x", number(tagNumber, 12)},    {"abc", text("abc")},
    };
    for (const auto& each : rows) {
        Owned value = nothing(tagBlob);  // the tag before doesn't count
        value.payload.text = each.content == nullptr ? nullptr : newstr(each.content);
        convertFromString(&value, each.value.tag);
        EXPECT_EQ(each.value, value);
    }
    Owned unchanged = text("12");
    convertFromString(&unchanged, tagUShort);
    EXPECT_EQ(unchanged, text("12"));
}

TEST(ConversionTest, AFieldTypeMakesTheTagOfThirtyTwoBits) {
    const struct {
        std::int32_t type;
        Owned value;
    } rows[] = {
        {tarn::fieldShort, number(tagShort, 3)},     {tarn::fieldSecondLong, number(tagLong, 3)},
        {tarn::fieldCharacter, number(tagChar, 3)},  {tarn::fieldText, number(tagChar, 3)},
        {tarn::fieldSecondText, number(tagChar, 3)}, {tarn::fieldThirdText, number(tagChar, 3)},
        {tarn::fieldFloat, number(tagFloat, 3)},     {tarn::fieldDouble, number(tagDouble, 3)},
    };
    for (const auto& each : rows) {
        Owned value = number(tagLong, 3);
        convertFromLong(&value, each.type, 1);
        EXPECT_EQ(each.value, value);
    }
    Owned pointer = text("abc");
    pointer.tag = tagLong;
    convertFromLong(&pointer, tarn::fieldText, 2);
    EXPECT_EQ(pointer, text("abc"));
}

}  // namespace
