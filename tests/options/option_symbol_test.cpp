// Option symbols: options/option_symbol.cpp.
// Most lines, and which of them are equal, are among the seeds of fuzz/symbol_fuzz.cpp.
// It takes them apart by plain rules.

#include "options/option_symbol.h"

#include "tests/support.h"

namespace {

TEST(OptionSymbol, WordIsTakenForAnother) {
    const tarnOptionSymbol option("F   JUL  25   1/2  put");
    EXPECT_STREQ(option.symbolText, "F   JUL  25   1/2  put");
    EXPECT_STREQ(option.rootSymbol, "F");
    EXPECT_STREQ(option.expirationMonth, "JUL");
    EXPECT_STREQ(option.strikeText, "25 1/2");
    EXPECT_STREQ(option.sideText, "PUT");
    EXPECT_EQ(option.sideType, 3);
    const tarnOptionSymbol same("F JUL 25 1/2 PUT");
    EXPECT_EQ(option.isEqual(&same), 1);
    EXPECT_EQ(option.isEqual(nullptr), 0);
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

}  // namespace
