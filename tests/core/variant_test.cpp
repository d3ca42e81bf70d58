// Life of tagged values: core/variant.cpp.

#include "tests/values.h"

namespace {

using namespace tarntest;

TEST(VariantTest, DeepCopiesAreEqualAndIndependent) {
    const std::string record = "22:[5=20:[10:deep,13:[5:1,11:odd]],-26=21:[5=3:5,1=3:1,9=none,3=3:3],5=17:s]";
    std::string longList = "20:[none";
    for (int i = 0; i < 40; ++i) longList += ",3:" + std::to_string(i);
    auto notations = split(
        "2:-5|10:abc|10:NULL|17:abc|17:NULL|11:abc|13:[]|13:NULL|13:[10:a,13:[10:b]]|15:ab|"
        "15:|21:[5=3:5,1=3:1,9=none,3=3:3]|16:0123456789abcdef",
        '|');
    for (const std::string& more : {record, longList + "]", "20:[" + record + "," + record + "]"})
        notations.push_back(more);
    for (const std::string& notation : notations) {
        const Owned value = valueOf(notation);
        EXPECT_EQ(describe(&value), notation);
        // A missing element is copied as an empty value.
        std::string expected = notation;
        for (std::size_t at = 0; (at = expected.find("none")) != std::string::npos;)
            expected.replace(at, 4, "0:0");
        Owned copy(&value);
        MOLTVARIANT view;
        view.assignContent(&copy);
        const Owned second(&view);
        EXPECT_EQ(describe(&copy), expected);
        copy.destroyContent();
        copy.destroyContent();
        EXPECT_EQ(describe(&second), expected);
    }
    const Owned column = valueOf("21:[5=3:5,1=3:1]");
    EXPECT_EQ(Owned(&column).payload.multi->nodes->needsSort, 1);  // sorting is still to come
}

TEST(VariantTest, RawMemoryBecomesAnEmptyValueAndAValueCopiesItself) {
    MOLTVARIANT raw;
    std::memset(static_cast<void*>(&raw), 0xAA, sizeof raw);
    raw.initContent(nullptr);
    EXPECT_EQ(describe(&raw), "0:0");
    const Owned old = valueOf("10:self");
    Owned value;
    value.assignContent(&old);
    value.copyContent(&value);
    EXPECT_TRUE(value.payload.text != old.payload.text && describe(&value) == "10:self");
}

TEST(VariantTest, ContainersAreMeasuredAndCompareAsNothing) {
    const Owned doubles = valueOf("13:[5:1,5:2]"), list = valueOf("20:[13:[5:1,5:2]]");
    multiColumn withoutCells{nullptr};
    MOLTVARIANT bare;
    bare.tag = tagMulti;
    bare.payload.multi = &withoutCells;
    EXPECT_EQ(std::vector({doubles.sizeOfData(), list.sizeOfData(), valueOf("21:[]").sizeOfData(),
                           valueOf("21:[1=3:1,2=3:2]").sizeOfData(), valueOf("22:[1=3:1,2=5:1]").sizeOfData(),
                           bare.sizeOfData()}),
              std::vector({16, 20, 4, 12, 16, 4}));
    EXPECT_EQ(varcmp(list, doubles) + isVarEqual(list, list) + isVarLike(list, list), 0);
    EXPECT_EQ(varcmp(valueOf("10:a"), list), 1);  // a container has no text form
}

}  // namespace
