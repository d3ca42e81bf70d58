// Option symbols: options/option_symbol.cpp.
// More lines are among the seeds of fuzz/symbol_fuzz.cpp, which takes them apart by plain rules.

#include "options/option_symbol.h"

#include "tests/support.h"

namespace {

TEST(OptionSymbol, WordIsTakenForAnother) {
    const struct {
        const char *text, *root, *month, *strike, *side;
        int sideType;
    } rows[] = {
        {"XYZ JAN 100 CALL", "XYZ", "JAN", "100", "CALL", 2},
        {"F   JUL  25   1/2  put", "F", "JUL", "25 1/2", "PUT", 3},
        {"XYZ JAN 25 1/2 ", "XYZ", "JAN", "25 1/2", nullptr, 1},
        {"XYZ JANUARY 100 CALL", "XYZ", nullptr, nullptr, nullptr, 0},
    };
    tarnOptionSymbol option;
    for (const auto& each : rows) {
        option.setOptionSymbol(each.text);
        EXPECT_STREQ(option.symbolText, each.text);
        EXPECT_STREQ(option.rootSymbol, each.root) << each.text;
        EXPECT_STREQ(option.expirationMonth, each.month) << each.text;
        EXPECT_STREQ(option.strikeText, each.strike) << each.text;
        EXPECT_STREQ(option.sideText, each.side) << each.text;
        EXPECT_EQ(option.sideType, each.sideType) << each.text;
    }
}

TEST(OptionSymbol, TextOfTheObjectIsReadAfterItsRelease) {
    tarnOptionSymbol option("ABC XYZ JAN 5");
    option.setOptionSymbol(option.symbolText);
    option.setOptionSymbol(option.symbolText + 4);
    EXPECT_STREQ(option.rootSymbol, "XYZ");
    option.setOptionSymbol(nullptr);
    EXPECT_STREQ(option.symbolText, "");
    EXPECT_EQ(option.rootSymbol, nullptr);
}

TEST(OptionSymbol, OtherOptionsAreEqual) {
    const auto areEqual = [](const char* a, const char* b) {
        const tarnOptionSymbol other(b);
        return tarnOptionSymbol(a).isEqual(&other);
    };
    EXPECT_EQ(areEqual("XYZ JAN 100 CALL", "XYZ  JAN 100 call"), 1);
    EXPECT_EQ(areEqual("XYZ JAN 100", "XYZ JAN 100 cALL"), 1);
    EXPECT_EQ(areEqual("XYZ JAN 100 CALL", "XYZ JAN 100 PUT"), 0);
    EXPECT_EQ(areEqual("XYZ", "XYZ"), 0);
    EXPECT_EQ(tarnOptionSymbol("XYZ JAN 100").isEqual(nullptr), 0);
}

// Columns are cut without a look at the words.
TEST(OptionSymbol, AnotherColumnIsCut) {
    EXPECT_STREQ(OptSymToExpnMth("XY  JANUARY"), "JAN");
    EXPECT_STREQ(OptSymToStrikePrc("XYZ JAN 100.00 CALL"), "100.00 C");
    for (const auto cut : {OptSymToJustSym, OptSymToExpnMth, OptSymToStrikePrc})
        EXPECT_STREQ(cut(nullptr), "");
}

}  // namespace
