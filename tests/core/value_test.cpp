// Values that release themselves, and views of values: core/value.h, core/value.cpp.

#include "core/value.h"

#include "tests/values.h"

namespace {

using namespace tarntest;
using tarn::Value;
using tarn::ValueView;

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

TEST(ValueTest, WhatIsMadeHereReadsAsTheSameThroughTheGlobalFunctions) {
    const struct {
        Value made;
        Owned expected;
        const char* text;
    } rows[] = {
        {Value(), nothing(tagEmpty), ""},
        {Value(12.5), number(tagDouble, 12.5), "12.5"},
        {Value(0.5F), number(tagFloat, 0.5), "0.5"},
        {Value("12 1/2"), text("12 1/2"), "12 1/2"},
        {Value(std::string("a\0b", 3)), text("a"), "a"},
        {Value(bytesOf("ab\xFF")), blob("ab\xFF"), ""},
        {*Value::ofTag(tagByte, 200), number(tagByte, 200), "200"},
        {*Value::ofTag(tagUShort, 65535), number(tagUShort, 65535), "65535"},
        {*Value::ofTag(tagNumber, 7), number(tagNumber, 7), "7"},
    };
    for (const auto& each : rows) {
        EXPECT_EQ(each.expected, *each.made.raw());
        EXPECT_EQ(each.made.view().text(), each.text);
    }
    EXPECT_FALSE(Value::ofTag(tagByte, 256));
    EXPECT_FALSE(Value::ofTag(tagChar, -129));
    EXPECT_FALSE(Value::ofTag(tagLong, 1));
}

// Whether a number is the same after the way to T and back, counted without a conversion that could overflow.
template <class T>
bool survives(long double number) {
    if constexpr (std::is_integral_v<T>) {
        return number >= static_cast<long double>(std::numeric_limits<T>::min()) &&
               number <= static_cast<long double>(std::numeric_limits<T>::max());
    } else {
        return std::isnan(number) || static_cast<long double>(static_cast<T>(number)) == number;
    }
}

template <class T>
void expectJustWhatSurvives(const MOLTVARIANT& value, long double number) {
    const bool isFloating = value.tag == tagFloat || value.tag == tagDouble;
    const auto read = ValueView(value).get<T>();
    const bool expected = !(isFloating && std::is_integral_v<T>)&&survives<T>(number);
    ASSERT_EQ(read.has_value(), expected) << readable(&value);
    if (read && !std::isnan(number)) {
        EXPECT_EQ(static_cast<long double>(*read), number);
    }
}

TEST(ValueTest, ANumberIsAnsweredJustWhereItSurvivesTheWayThereAndBack) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double numbers[] = {
        0,         1,         -1,          127,   128,   -128,     -129,
        255,       256,       32767,       32768, 65535, 16777216, 16777217,
        INT32_MAX, INT32_MIN, 0.5,         0.1,   1e300, -1e-310,  3.4028234663852886e38,
        infinity,  -infinity, std::nan("")};
    for (const std::int32_t tag :
         {tagByte, tagShort, tagLong, tagFloat, tagDouble, tagChar, tagUShort, tagWord, tagNumber}) {
        for (const double each : numbers) {
            const Owned value = number(tag, each);
            const long double held = *ValueView(value).number();
            EXPECT_EQ(std::isnan(held), std::isnan(each) && (tag == tagFloat || tag == tagDouble));
            expectJustWhatSurvives<signed char>(value, held);
            expectJustWhatSurvives<std::uint8_t>(value, held);
            expectJustWhatSurvives<std::int16_t>(value, held);
            expectJustWhatSurvives<std::uint16_t>(value, held);
            expectJustWhatSurvives<std::int32_t>(value, held);
            expectJustWhatSurvives<std::uint32_t>(value, held);
            expectJustWhatSurvives<std::int64_t>(value, held);
            expectJustWhatSurvives<float>(value, held);
            expectJustWhatSurvives<double>(value, held);
        }
    }
}

TEST(ValueTest, ATextIsANumberOnlyIfItIsAPriceAndNothingElseIsAText) {
    const struct {
        Owned value;
        std::optional<double> number;
        std::optional<std::string_view> text;
    } rows[] = {
        {text("12 1/2"), 12.5, "12 1/2"}, {text("-"), {}, "-"},        {text(""), {}, ""},
        {text(nullptr), {}, {}},          {nothing(tagEmpty), {}, {}}, {vectorOf({text("12")}), {}, {}},
    };
    for (const auto& each : rows) {
        const ValueView view(each.value);
        EXPECT_EQ(view.number(), each.number) << readable(&each.value);
        EXPECT_EQ(view.get<std::string_view>(), each.text) << readable(&each.value);
        EXPECT_EQ(view.get<std::u16string_view>().has_value(), readable(&each.value) == "wide text \"12\"");
        EXPECT_EQ(view.get<std::span<const std::byte>>().has_value(), readable(&each.value) == "blob \"12\"");
    }
    EXPECT_FALSE(ValueView().exists());
    EXPECT_EQ(ValueView().number(), std::nullopt);
    EXPECT_EQ(ValueView().text(), "");
}

TEST(ValueTest, ValuesAreEqualJustIfTheyHoldTheSame) {
    const Owned values[] = {
        nothing(tagEmpty),
        number(tagLong, 1),
        number(tagNumber, 1),
        number(tagDouble, 0),
        number(tagDouble, -0.0),
        number(tagDouble, std::nan("")),
        text("A"),
        text(nullptr),
        text("a", tagString),
        wideText(u"a"),
        blob("a"),
        blob("ab"),
        eightBytes(tagPlain9, "12345678"),
        eightBytes(99, "1"),
        nothing(tagVector),
        vectorOf({text("a")}),
        vectorOf({text("a"), text("b")}),
        listOf({}),
        listOf({text("a"), none}),
        columnOf({{1, text("a")}}),
        columnOf({{2, text("a")}}),
        recordOf({{1, text("a")}}),
        recordOf({{1, vectorOf({number(tagLong, 1)})}}),
    };
    for (const Owned& a : values) {
        for (const Owned& b : values)
            EXPECT_EQ(ValueView(a) == ValueView(b), &a == &b) << readable(&a) << readable(&b);
        const Value copy{ValueView(a)};
        EXPECT_TRUE(ValueView(copy) == ValueView(a)) << readable(&a);
    }
    const Owned sorted = columnOf({{1, text("a")}, {2, text("b")}});
    const Owned unsorted = columnOf({{2, text("b")}, {1, text("a")}});
    EXPECT_TRUE(ValueView(sorted) == ValueView(unsorted));
}

TEST(ValueTest, WhatIsTakenOverIsReleasedOnceAndMovedValuesAreEmpty) {
    MOLTVARIANT made;
    made.tag = tagText;
    made.payload.text = newstr("abc");
    Value first = tarn::adopt(std::move(made));
    Value second = std::move(first);
    EXPECT_TRUE(first.view().isEmpty());
    first = second.clone();
    EXPECT_TRUE(first == second);
    made = second.release();
    second = tarn::adopt(std::move(made));
    EXPECT_EQ(made.tag, tagEmpty);
    EXPECT_EQ(second.view().text(), "abc");

    tarn::Text shown = tarn::adopt(newstr("shown"));
    EXPECT_EQ(std::string_view(shown), "shown");
    EXPECT_EQ(tarn::Text(shown.release()).str(), "shown");
    EXPECT_FALSE(shown.exists());
    EXPECT_STREQ(shown.c_str(), "");
}

}  // namespace
