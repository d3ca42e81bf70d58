// Equality, likeness and order of values: core/variant_comparison.cpp.

#include "tests/values.h"

namespace {

using namespace tarntest;

TEST(ComparisonTest, TagsDecideWhatCountsAsEqualLikeAndBelow) {
    const struct {
        Owned a, b;
        std::int32_t order;  // of texts a sign
        int equal;
        int like;
    } rows[] = {
        {number(tagShort, 5), number(tagShort, 3), 2, 0, 0},
        {number(tagShort, 102), text("1e2", tagString), 2, 0, 0},
        {number(tagLong, -5), number(tagFloat, -5.9), 0, 0, 0},
        {number(tagLong, 12), text("12.5"), 0, 0, 0},
        {number(tagLong, 5), number(tagDouble, 1e300), 5 - INT32_MAX, 0, 0},
        {number(tagLong, INT32_MIN), number(tagLong, 1), INT32_MAX, 0, 0},
        {number(tagFloat, 1), number(tagFloat, 1), 0, 1, 0},
        {number(tagDouble, 2.5), text("2.5"), 0, 0, 0},
        {number(tagChar, -1), text("A"), -66, 0, 0},
        {number(tagUShort, 65535), number(tagUShort, 0), 65535, 0, 0},
        {text("abc"), text("ABC"), 0, 1, 1},
        {text("Abcd"), text("aB"), 1, 0, 1},
        {text("aB"), text("Abcd"), -1, 0, 0},
        {text(nullptr), text(nullptr), 0, 1, 0},
        {text("a"), nothing(tagList), 1, 0, 0},
        {text("a", tagString), text("A", tagString), 0, 1, 1},
        {text("2.5", tagString), number(tagFloat, 2.5), 1, 0, 0},  // a float isn't made into a string object
        {text(nullptr, tagString), text(nullptr, tagString), 0, 0, 0},
        {wideText(u"a"), wideText(u"b"), -1, 0, 0},
        {blob("a"), blob("a"), 0, 0, 0},
    };
    for (const auto& [a, b, order, equal, like] : rows) {
        const std::string pair = readable(&a) + " and " + readable(&b);
        const bool ofTexts = a.tag == tagText || a.tag == tagString;
        const std::int32_t answer = varcmp(a, b);
        EXPECT_EQ(ofTexts ? (answer > 0) - (answer < 0) : answer, order) << pair;
        EXPECT_EQ(isVarEqual(a, b), equal) << pair;
        EXPECT_EQ(isVarLike(a, b), like) << pair;
    }
}

}  // namespace
