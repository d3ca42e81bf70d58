// Patterned text: fintext/patterned_text.cpp, fintext/clock_text.cpp and fintext/fund_amount.cpp.  The table
// of examples is tests/fintext/examples.txt.

#include "engine/engine_data.h"
#include "fintext/clock_text.h"
#include "fintext/financial_text.h"
#include "tests/values.h"

namespace {

// The steps one by one; a round of the group that takes nothing from the text is the last.
std::string plainPattern(std::string text, const std::string& pattern, int negative) {
    text = text.substr(0, std::min(text.find('.'), text.size()) + 3);
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    const bool minus = text.starts_with('-');
    if (minus) text.erase(0, 1);
    std::string out = !minus ? "" : negative == eNegParens ? ")" : negative == eNegTrailing ? "-" : "";
    int j = static_cast<int>(pattern.size()) - 1, right = -1, left = -1;
    const auto at = [&](int place) { return pattern[static_cast<std::size_t>(place)]; };
    for (std::size_t lengthBefore = 0; !text.empty() && j >= 0; --j) {
        if (at(j) == '#' || at(j) == '.') {
            out += text.back();
            text.pop_back();
        } else if (at(j) != '*') {
            out += at(j);
        } else {
            (right < 0 ? right : left) = j;
            if (left >= 0 && lengthBefore == text.size()) break;
            if (left >= 0) j = right;
            lengthBefore = text.size();
        }
    }
    for (; right >= 0 && left < 0 && j >= 0; --j) left = at(j) == '*' ? j : -1;
    if (out.ends_with(',')) out.pop_back();
    if (minus && negative != eNegTrailing) out += negative == eNegParens ? '(' : '-';
    while (left > 0) out += at(--left);
    return {out.rbegin(), out.rend()};
}

TEST(PatternedText, ScanDiffersFromItsSteps) {
    std::mt19937 random(3);
    for (int i = 0; i < 100'000; ++i) {
        std::string text = tarntest::randomText(random, "0123456789.- ,", 12);
        const std::string pattern = tarntest::randomText(random, "###.***,$-", 12),
                          expected = plainPattern(text, pattern, i % 5);
        char target[400];
        formatStringWithPattern(text.data(), pattern.c_str(), target, static_cast<eNegType>(i % 5));
        ASSERT_EQ(target, expected) << text << "|" << pattern;
    }
}

TEST(PatternedText, NoonOrMidnightIsOnTheWrongHalf) {
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    std::string shown;
    for (const int hour : {0, 9, 12, 13}) {
        const tarntest::HeldClock clock(1999, 1, 9, hour, 30, 5);
        char text[2][40];
        getLocalTimeStr(text[0], 1), tarn::getLocalDateTimeStr(text[1], hour % 2);
        shown += text[0] + std::string(",") + text[1] + ";";
    }
    EXPECT_EQ(shown,
              " 00:30:05 AM, 01/09/1999  00:30:05; 09:30:05 AM, 01/09/1999 09:30:05 AM;"
              " 12:30:05 PM, 01/09/1999  12:30:05; 01:30:05 PM, 01/09/1999 01:30:05 PM;");
}

// The fields are filled from the last in rank to the first.
TEST(PatternedText, FundsAmountComesFromAnotherField) {
    tarnEngineData record;
    char target[40] = "old";
    std::string found;
    for (const auto& [field, text] :
         {std::pair(1750, "0.00"), {1750, "7"}, {595, "-5"}, {595, "100"}, {1664, "abc"}, {1664, "2.5 x"}}) {
        const auto value = tarntest::valueOf(std::string("10:") + text);
        record.storeData(field, &value);
        found += std::to_string(getDollarsOrShares(&record, target)) + " " + target + ", ";
    }
    EXPECT_EQ(found, "0 old, 1 7, 1 7, 1 100, 1 100, 2 2.5 x, ");
}

}  // namespace
