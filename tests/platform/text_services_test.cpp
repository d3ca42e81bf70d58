// Number to text and case-independent comparison: platform/text_services.cpp, and the system's own on
// Windows.

#include "tests/support.h"

namespace {

TEST(TextServices, NumbersShowTheirDigitsAndNoNeedlessOnes) {
    char text[40];
    EXPECT_STREQ(_itoa(-1, text, 16), "ffffffff");
    EXPECT_STREQ(_ltoa(-255, text, 8), "37777777401");
    EXPECT_STREQ(_itoa(-2147483647 - 1, text, 10), "-2147483648");
    EXPECT_STREQ(_itoa(-1, text, 2), "11111111111111111111111111111111");
    for (const char* shown : {"0.1", "0.3333333333333333", "123456.789"})
        EXPECT_STREQ(_gcvt(tarntest::numberOf(shown), 16, text), shown);
    EXPECT_STREQ(_gcvt(98.6, 16, text), "98.59999999999999");
}

TEST(TextServices, ComparisonFoldsAsciiLettersOnlyAndHasNullFirst) {
    const char* const ascending[] = {"", "_", "`", "aB", "AbC", "Z", "\xC9", "\xE9"};
    const int texts = tarntest::onWindows ? 6 : 8;  // wine compares bytes above 0x7F with their signs
    for (int i = 0; i < texts; ++i) {
        for (int j = 0; j < texts; ++j) {
            EXPECT_EQ(_stricmp(ascending[i], ascending[j]) < 0, i < j) << i << ' ' << j;
            EXPECT_EQ(_strnicmp(ascending[i], ascending[j], 9) > 0, i > j) << i << ' ' << j;
        }
    }
    EXPECT_EQ(_stricmp("TaRn", "tArN"), 0);
    EXPECT_EQ(_strnicmp("ABx", "aby", 2), 0);
    EXPECT_EQ(_strnicmp("a", "b", 0), 0);
    EXPECT_EQ(lstrcmpiA("Abc", "aBC"), 0);
    EXPECT_LT(lstrcmpiA(nullptr, ""), 0);
}

}  // namespace
