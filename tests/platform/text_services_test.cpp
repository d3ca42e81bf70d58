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
    for (const char* shown : {"0.1", "0.3333333333333333", "123456.789", "98.59999999999999"})
        EXPECT_STREQ(_gcvt(tarntest::numberOf(shown), 16, text), shown);
    EXPECT_STREQ(_gcvt(98.6, 16, text), "98.59999999999999");
}

int sign(int difference) {
    return (difference > 0) - (difference < 0);
}

TEST(TextServices, ComparisonFoldsAsciiLettersOnly) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"TaRn", "tArN", 0}, {"_", "a", -1}, {"\xE9", "\xC9", 1}, {"ab", "abc", -1}, {"Z", "a", 1}};
    for (const auto& [a, b, order] : rows) {
        EXPECT_EQ(sign(_stricmp(a, b)), order) << a;
        EXPECT_EQ(sign(_strnicmp(b, a, 9)), -order) << a;
    }
    EXPECT_TRUE(_strnicmp("ABx", "aby", 2) == 0 && _strnicmp("a", "b", 0) == 0);
}

TEST(TextServices, NullStandsBeforeEveryText) {
    EXPECT_TRUE(lstrcmpiA(nullptr, nullptr) == 0 && lstrcmpiA("Abc", "aBC") == 0 && lstrlenA(nullptr) == 0);
    EXPECT_TRUE(lstrcmpiA(nullptr, "") < 0 && lstrcmpiA("", nullptr) > 0);
}

}  // namespace
