// Number to text and case-independent comparison: platform/text_services.cpp, and the system's own on
// Windows.

#include <clocale>
#include <string>

#include "platform/win32.h"
#include "tests/support.h"

namespace {

TEST(TextServices, OnlyRadixTenWritesASign) {
    char text[40];
    EXPECT_STREQ(_itoa(-1, text, 16), "ffffffff");
    EXPECT_STREQ(_ltoa(-255, text, 8), "37777777401");
    EXPECT_STREQ(_itoa(-2147483647 - 1, text, 10), "-2147483648");
    EXPECT_STREQ(_itoa(-1, text, 2), "11111111111111111111111111111111");
}

TEST(TextServices, DoublesShowSixteenDigitsWithoutNeedlessZeros) {
    const struct {
        double value;
        const char* text;
    } rows[] = {{0.1, "0.1"},
                {1.0 / 3, "0.3333333333333333"},
                {123456.789, "123456.789"},
                {98.6, "98.59999999999999"}};
    for (const auto& row : rows) {
        char text[40];
        EXPECT_STREQ(_gcvt(row.value, 16, text), row.text);
    }
}

TEST(TextServices, ComparisonFoldsAsciiLettersOnly) {
    EXPECT_EQ(_stricmp("TaRn", "tArN"), 0);
    EXPECT_LT(_stricmp("_", "a"), 0);
    EXPECT_NE(_stricmp("\xE9", "\xC9"), 0);
    EXPECT_LT(_stricmp("ab", "abc"), 0);
    EXPECT_EQ(_strnicmp("ABx", "aby", 2), 0);
    EXPECT_NE(_strnicmp("ABx", "aby", 3), 0);
    EXPECT_EQ(_strnicmp("a", "b", 0), 0);
}

TEST(TextServices, NullStandsBeforeEveryText) {
    EXPECT_EQ(lstrcmpiA(nullptr, nullptr), 0);
    EXPECT_LT(lstrcmpiA(nullptr, ""), 0);
    EXPECT_GT(lstrcmpiA("", nullptr), 0);
    EXPECT_EQ(lstrcmpiA("Abc", "aBC"), 0);
    EXPECT_EQ(lstrlenA(nullptr), 0);
}

}  // namespace
