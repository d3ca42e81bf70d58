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

// The sign of the first text against the second.
TEST(TextServices, ComparisonFoldsAsciiLettersOnly) {
    tarntest::expectAnswers("order:TaRn|tArN|0;`|a|-1;\xE9|\xC9|1;ab|abc|-1;Z|a|1", [](auto&, auto& cells) {
        const int order = _stricmp(cells[0].c_str(), cells[1].c_str());
        const int reverse = _strnicmp(cells[1].c_str(), cells[0].c_str(), 9);
        EXPECT_TRUE((order > 0) == (reverse < 0) && (order < 0) == (reverse > 0)) << cells[0];
        return std::to_string((order > 0) - (order < 0));
    });
    EXPECT_TRUE(_strnicmp("ABx", "aby", 2) == 0 && _strnicmp("a", "b", 0) == 0);
}

TEST(TextServices, NullStandsBeforeEveryText) {
    EXPECT_TRUE(lstrcmpiA(nullptr, nullptr) == 0 && lstrcmpiA("Abc", "aBC") == 0 && lstrlenA(nullptr) == 0);
    EXPECT_TRUE(lstrcmpiA(nullptr, "") < 0 && lstrcmpiA("", nullptr) > 0);
}

}  // namespace
