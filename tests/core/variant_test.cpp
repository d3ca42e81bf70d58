// Life of tagged values: core/variant.cpp.

#include "tests/values.h"

namespace {

using namespace tarntest;

TEST(VariantTest, DeepCopiesAreEqualIndependentAndOfTheIndexedFormsSize) {
    const Owned column = columnOf({{5, number(tagLong, 5)}, {1, number(tagLong, 1)}});
    const struct {
        Owned value;
        std::int32_t size;
        std::string copied;
    } rows[] = {
        {nothing(tagEmpty), 8, "empty"},
        {number(tagShort, -5), 8, "short -5"},
        {number(tagLong, 1), 4, "long 1"},
        {number(tagNumber, 1), 4, "number 1"},
        {eightBytes(tagPlain9, "\1\2\3\4\5\6\7\x80"), 8, "tag 9 \"\\1;\\2;\\3;\\4;\\5;\\6;\\7;\\128;\""},
        {text("abc"), 4, "text \"abc\""},
        {text(nullptr), 0, "text NULL"},
        {text("abc", tagString), 4, "string \"abc\""},
        {text(nullptr, tagString), 0, "string NULL"},
        {nothing(tagWideText), 0, "wide text NULL"},
        {blob("ab"), 6, "blob \"ab\""},
        {blob(""), 4, "blob \"\""},
        {block("0123456789abcdef"), 16, "block \"0123456789abcdef\""},
        {nothing(tagVector), 0, "vector NULL"},
        {vectorOf({wideText(u"abc"), text("ab")}), 11, "vector [wide text \"abc\", text \"ab\"]"},
        // A missing element becomes an empty value.
        {listOf({vectorOf({}), none}), 4, "list [vector [], empty]"},
        {columnOf({{9, none}}), 4, "column [9: empty]"},
        {recordOf({{5, text("s")}, {-26, column}, {5, number(tagDouble, 1)}}), 26,
         "record [5: text \"s\", -26: column [5: long 5, 1: long 1], 5: double 1]"},
    };
    for (const auto& each : rows) {
        EXPECT_EQ(each.value.sizeOfData(), each.size) << each.copied;
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

}  // namespace
