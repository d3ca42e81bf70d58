// Life, conversion and comparison of tagged values: core/variant.h and the sources core/variant*.cpp.

#include <array>
#include <memory>

#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::blob;
using tarntest::describe;
using tarntest::listOf;
using tarntest::number;
using tarntest::Owned;
using tarntest::text;
using tarntest::vectorOf;
using tarntest::wideText;

using Text = std::unique_ptr<char[]>;

Owned column(std::initializer_list<std::int32_t> rows) {
    Owned made;
    made.payload.multi = new multiColumn{new nodeList};
    made.tag = tagMulti;
    for (const std::int32_t row : rows) {
        made.payload.multi->nodes->add(row == 9 ? nullptr : number(tagLong, row).release(), row);
    }
    return made;
}

Owned record() {
    Owned made;
    made.payload.record = new tarnFieldList;
    made.tag = tagRecord;
    made.payload.record->add(
        5, listOf(text("deep"), vectorOf(number(tagDouble, 1), wideText(u"odd"))).release());
    made.payload.record->add(-26, column({5, 1, 9, 3}).release());
    made.payload.record->add(5, text("s", tagString).release());
    return made;
}

// A missing element is copied as an empty value.
std::string describeCopy(const MOLTVARIANT& value) {
    const MOLTVARIANT empty;
    std::string expected = describe(&value);
    for (std::size_t at = expected.find("NULL"); at != std::string::npos; at = expected.find("NULL")) {
        expected.replace(at, 4, describe(&empty));
    }
    return expected;
}

TEST(VariantTest, DeepCopiesAreEqualAndIndependent) {
    Owned values[16] = {number(tagShort, -5),
                        text("abc"),
                        text(nullptr),
                        text("abc", tagString),
                        text(nullptr, tagString),
                        wideText(u"abc"),
                        vectorOf(),
                        vectorOf(text("a"), vectorOf(text("b"))),
                        blob("ab"),
                        blob(""),
                        column({5, 1, 9, 3}),
                        record(),
                        listOf(record(), record())};
    values[13].payload.block = new unsigned char[16]{1, 2, 3};
    values[13].tag = tagBlock;
    values[14].tag = tagVector;
    Owned longList = listOf();
    for (int i = 0; i < 40; ++i) longList.payload.list->add(i == 7 ? nullptr : number(tagLong, i).release());
    values[15].assignContent(&longList);
    longList.initContent(nullptr);
    for (const Owned& value : values) {
        Owned copy(&value);
        MOLTVARIANT view;
        view.assignContent(&copy);
        const Owned second(&view);
        EXPECT_EQ(describe(&copy), describeCopy(value));
        copy.destroyContent();
        copy.destroyContent();
        EXPECT_EQ(describe(&second), describeCopy(value));
    }
    EXPECT_EQ(Owned(&values[10]).payload.multi->nodes->needsSort, 1);  // sorting is still to come
}

TEST(VariantTest, RawMemoryBecomesAnEmptyValueAndAValueCopiesItself) {
    MOLTVARIANT raw;
    std::memset(static_cast<void*>(&raw), 0xAA, sizeof raw);
    raw.initContent(nullptr);
    const MOLTVARIANT empty;
    EXPECT_EQ(describe(&raw), describe(&empty));
    Owned value = text("self");
    const Owned old(std::move(value));
    value.assignContent(&old);
    value.copyContent(&value);
    EXPECT_NE(value.payload.text, old.payload.text);
    EXPECT_STREQ(value.payload.text, "self");
}

TEST(VariantTest, SizesAreThoseOfTheFile) {
    const struct {
        Owned value;
        std::int32_t size;
    } rows[] = {{Owned(), 8},
                {number(tagLong, 1), 4},
                {number(tagNumber, 1), 4},
                {number(tagShort, 1), 8},
                {text("abc"), 4},
                {text(nullptr), 0},
                {text("abc", tagString), 4},
                {wideText(u"abc"), 8},
                {blob("0123456789"), 14},
                {vectorOf(number(tagDouble, 1), number(tagDouble, 2)), 16},
                {listOf(number(tagDouble, 1), number(tagDouble, 2)), 20},
                {listOf(), 4},
                {column({}), 4},
                {column({1, 2}), 12}};
    for (const auto& row : rows) EXPECT_EQ(row.value.sizeOfData(), row.size) << describe(&row.value);
}

TEST(VariantTest, TextFormsOfValues) {
    const auto shown = [](const Owned& value) { return std::string(Text(convertToString(&value)).get()); };
    EXPECT_EQ(shown(number(tagShort, -7)) + shown(number(tagChar, 'A')) + shown(Owned()), "-7A0");
    EXPECT_EQ(shown(number(tagLong, 70000)) + shown(number(tagWord, -1)), "70000-1");
    EXPECT_EQ(shown(text("abc")) + shown(text(nullptr)) + shown(text("s", tagString)), "abcs");
    EXPECT_EQ(shown(number(tagFloat, 0.5)), "0.5");
    for (const auto& [value, expected] :
         {std::pair(0.1, "0.1"), {1.0 / 3, "0.3333333333333333"}, {1e16, "1e+16"}, {-100.0, "-100"}})
        EXPECT_EQ(shown(number(tagDouble, value)), expected);
    const Owned half = number(tagDouble, 1.5);
    EXPECT_STREQ(Text(convertToString(&half, "%5.2f")).get(), " 1.50");
    EXPECT_EQ(std::strlen(Text(convertToString(&half, "%60.1f")).get()), 60U);
    const Owned letter = number(tagChar, -2);
    EXPECT_STREQ(Text(convertToString(&letter, "%d")).get(), "-2");
    const Owned string = text("abc", tagString);
    EXPECT_STREQ(Text(convertToString(&string, "<%s>")).get(), "<abc>");
}

TEST(VariantTest, TextsTurnIntoTheWantedTag) {
    const struct {
        const char* source;
        std::int32_t tag;
        Owned result;
    } rows[] = {{"12x", tagNumber, number(tagNumber, 12)},
                {" -70000", tagLong, number(tagLong, -70000)},
                {"70000", tagShort, number(tagShort, 70000 - 65536)},
                {"1.5", tagFloat, number(tagFloat, 1.5)},
                {"-1e2", tagDouble, number(tagDouble, -100)},
                {"A", tagChar, number(tagChar, 'A')},
                {"", tagChar, number(tagChar, 0)},
                {"abc", tagText, text("abc")},
                {"99999999999", tagLong, number(tagLong, 2147483647)},
                {"12", tagUShort, text("12")}};
    for (const auto& row : rows) {
        Owned value = text(row.source);
        convertFromString(&value, row.tag);
        EXPECT_EQ(describe(&value), describe(&row.result)) << row.source;
    }
    for (const auto& [type, size, tag] : {std::array{1, 9, 2},
                                          {2, 1, 0},
                                          {4, 1, 6},
                                          {4, 2, 10},
                                          {9, 1, 6},
                                          {6, 0, 4},
                                          {7, 0, 5},
                                          {10, 1, 0}}) {
        MOLTVARIANT value;
        value.payload.longValue = 3;
        convertFromLong(&value, type, size);
        EXPECT_EQ(value.tag, tag) << type;
        EXPECT_EQ(tag == tagFloat ? static_cast<double>(value.payload.floatValue) : 3.0, 3.0);
        EXPECT_EQ(tag == tagDouble ? value.payload.doubleValue : 3.0, 3.0);
    }
}

TEST(VariantTest, OrderFollowsTheFirstValuesTag) {
    const struct {
        Owned a, b;
        std::int32_t order;
    } rows[] = {{number(tagDouble, 2.5), text("2.5"), 0},
                {number(tagLong, 10), number(tagDouble, 9.9), 1},
                {number(tagShort, 5), number(tagShort, 3), 2},
                {number(tagShort, 5), text("3.9", tagString), 2},
                {number(tagFloat, 1), number(tagDouble, 2), -1},
                {number(tagLong, 12), text("12.5"), 0},
                {number(tagByte, 200), number(tagByte, 100), 100},
                {number(tagChar, -1), text("A"), -66},
                {number(tagNumber, 7), number(tagNumber, 9), -2},
                {number(tagLong, INT32_MIN), number(tagLong, 1), INT32_MAX},
                {number(tagUShort, 65535), number(tagUShort, 0), 65535},
                {Owned(), Owned(), 0},
                {text("2.5"), number(tagDouble, 2.5), 0},
                {text("abc"), text("ABC", tagString), 0},
                {text("abc"), text("", tagString), 1},
                {text("a"), Owned(), 1},
                {text(nullptr), text("a"), -1},
                {text("a", tagString), blob("zzz"), 1},
                {wideText(u"a"), wideText(u"b"), -1},
                {wideText(u"a"), number(tagLong, 1), 1},
                {number(tagLong, 5), number(tagDouble, 1e300), 5 - INT32_MAX},
                {listOf(), listOf(text("a")), 0}};
    for (const auto& row : rows) {
        const std::int32_t order = varcmp(row.a, row.b);
        // Texts promise a sign alone.
        const bool exact = row.a.tag != tagText && row.a.tag != tagString;
        EXPECT_EQ(exact ? order : (order > 0) - (order < 0), row.order)
            << describe(&row.a) << " " << describe(&row.b);
    }
}

TEST(VariantTest, EqualityNeedsOneTagAndNoContainer) {
    const struct {
        Owned a, b;
        int equal, like;
    } rows[] = {{text("abc"), text("ABC"), 1, 1},
                {text("Abcd"), text("aB"), 0, 1},
                {text("aB"), text("Abcd"), 0, 0},
                {text("a"), text(""), 0, 1},
                {text(nullptr), text(nullptr), 1, 0},
                {text("a"), text(nullptr), 0, 0},
                {text("a", tagString), text("A", tagString), 1, 1},
                {text("a", tagString), text("A"), 0, 0},
                {number(tagLong, 5), number(tagNumber, 5), 0, 0},
                {number(tagDouble, 5), number(tagDouble, 5), 1, 0},
                {number(tagShort, 5), number(tagShort, 6), 0, 0},
                {wideText(u"a"), wideText(u"a"), 1, 0},
                {Owned(), Owned(), 0, 0},
                {blob("a"), blob("a"), 0, 0},
                {listOf(), listOf(), 0, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(isVarEqual(row.a, row.b), row.equal) << describe(&row.a) << " " << describe(&row.b);
        EXPECT_EQ(isVarLike(row.a, row.b), row.like) << describe(&row.a) << " " << describe(&row.b);
    }
}

TEST(VariantTest, StringsTakeAndAppendDifferentTags) {
    const struct {
        Owned value;
        const char *assigned, *appended;
    } rows[] = {{number(tagShort, -5), "-5", "x"},
                {number(tagLong, 7), "7", "x7"},
                {number(tagNumber, 7), "7", "x"},
                {number(tagFloat, 1.5), "1.5", "x1.500000"},
                {number(tagDouble, 1.5), "1.5", "x1.500000"},
                {number(tagChar, 'c'), "c", "x"},
                {text("t"), "t", "xt"},
                {text(nullptr), "", "x"},
                {text("s", tagString), "s", "xs"},
                {blob("b"), "", "x"}};
    for (const auto& row : rows) {
        tarnString string("x");
        string.append(&row.value);
        EXPECT_STREQ(string.text, row.appended);
        string.assign(&row.value);
        EXPECT_STREQ(string.text, row.assigned);
    }
}

}  // namespace
