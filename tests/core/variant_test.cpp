// Life of tagged values: core/variant.cpp.

#include "tests/values.h"

namespace {

using namespace tarntest;

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
    std::string expected = describe(&value);
    for (std::size_t at = 0; (at = expected.find("NULL")) != std::string::npos;)
        expected.replace(at, 4, "0:0");
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
    EXPECT_EQ(describe(&raw), "0:0");
    const Owned old = text("self");
    Owned value;
    value.assignContent(&old);
    value.copyContent(&value);
    EXPECT_TRUE(value.payload.text != old.payload.text && describe(&value) == "10:self");
}

TEST(VariantTest, ContainersAreMeasuredAndCompareAsNothing) {
    const Owned doubles = vectorOf(number(tagDouble, 1), number(tagDouble, 2)),
                list = listOf(Owned(&doubles));
    EXPECT_TRUE(doubles.sizeOfData() == 16 && list.sizeOfData() == 20);
    EXPECT_TRUE(column({}).sizeOfData() == 4 && column({1, 2}).sizeOfData() == 12);
    EXPECT_EQ(varcmp(list, doubles) + isVarEqual(list, list) + isVarLike(list, list), 0);
    EXPECT_EQ(varcmp(text("a"), list), 1);  // a container has no text form
}

}  // namespace
