// Life of tagged values: core/variant.cpp.

#include "tests/values.h"

namespace {

using namespace tarntest;

TEST(VariantTest, DeepCopiesAreEqualAndIndependent) {
    const Owned column = columnOf({{5, number(tagLong, 5)}, {1, number(tagLong, 1)}});
    const Owned list = listOf({text("deep"), vectorOf({number(tagDouble, 1), wideText(u"odd")})});
    const struct {
        Owned value;
        std::string copied;
    } rows[] = {
        {number(tagShort, -5), "short -5"},
        {number(tagPlain9, 7), "tag 9, payload 7"},
        {text("abc"), "text \"abc\""},
        {text(nullptr), "text NULL"},
        {text(nullptr, tagString), "string NULL"},
        {blob("ab"), "blob \"ab\""},
        {blob(""), "blob \"\""},
        {block("0123456789abcdef"), "block \"0123456789abcdef\""},
        {nothing(tagVector), "vector NULL"},
        {vectorOf({}), "vector []"},
        {listOf({none, text("a")}), "list [empty, text \"a\"]"},  // a missing element becomes an empty value
        {columnOf({{9, none}}), "column [9: empty]"},
        {recordOf({{5, list}, {-26, column}, {5, text("s", tagString)}}),
         "record [5: list [text \"deep\", vector [double 1, wide text \"odd\"]], "
         "-26: column [5: long 5, 1: long 1], 5: string \"s\"]"},
    };
    for (const auto& each : rows) {
        Owned copy(&each.value);
        EXPECT_EQ(readable(&copy), each.copied);
        MOLTVARIANT view;
        view.assignContent(&copy);
        const Owned second(&view);
        copy.destroyContent();
        copy.destroyContent();
        EXPECT_EQ(readable(&second), each.copied);
    }
    EXPECT_EQ(Owned(&column).payload.multi->nodes->needsSort, 1);  // sorting is still to come
}

TEST(VariantTest, RawMemoryBecomesAnEmptyValueAndAValueCopiesItself) {
    MOLTVARIANT raw;
    std::memset(static_cast<void*>(&raw), 0xAA, sizeof raw);
    raw.initContent(nullptr);
    EXPECT_EQ(Owned(), raw);
    const Owned old = text("self");
    Owned value;
    value.assignContent(&old);
    value.copyContent(&value);
    EXPECT_NE(value.payload.text, old.payload.text);
    EXPECT_EQ(value, old);
    Owned untouched = nothing(tagVector);
    untouched.destroyContent();
    EXPECT_EQ(untouched, nothing(tagVector));
}

TEST(VariantTest, SizesAreThoseOfTheIndexedForm) {
    const Owned doubles = vectorOf({number(tagDouble, 1), number(tagDouble, 2)});
    const struct {
        Owned value;
        std::int32_t size;
    } rows[] = {
        {nothing(tagEmpty), 8},
        {number(tagShort, 1), 8},
        {number(tagLong, 1), 4},
        {number(tagNumber, 1), 4},
        {text("abc"), 4},
        {text(nullptr), 0},
        {text("abc", tagString), 4},
        {text(nullptr, tagString), 0},
        {nothing(tagWideText), 0},
        {blob("0123456789"), 14},
        {block(""), 16},
        {nothing(tagVector), 0},
        {vectorOf({wideText(u"abc"), text("ab")}), 11},
        {listOf({doubles, none}), 20},
        {nothing(tagList), 4},
        {columnOf({{1, number(tagLong, 1)}, {2, none}, {3, number(tagLong, 2)}}), 12},
        {recordOf({{1, number(tagLong, 1)}, {2, number(tagDouble, 1)}}), 16},
    };
    for (const auto& each : rows) EXPECT_EQ(each.value.sizeOfData(), each.size) << readable(&each.value);
}

TEST(VariantTest, AColumnWithoutItsListIsAnEmptyOne) {
    Owned bare = nothing(tagMulti);
    bare.payload.multi = new multiColumn{nullptr};
    EXPECT_EQ(bare.sizeOfData(), 4);
    EXPECT_EQ(readable(&bare), "column []");
    EXPECT_NE(Owned(&bare).payload.multi->nodes, nullptr);
}

TEST(VariantTest, AThousandLevelsAreCopiedMeasuredAndReleased) {
    Owned value = number(tagLong, 1);
    for (int level = 0; level < 1000; ++level) {
        Owned outer = listOf({});
        outer.payload.list->add(value.release());
        value = std::move(outer);
    }
    EXPECT_EQ(Owned(&value).sizeOfData(), 4004);
}

}  // namespace
