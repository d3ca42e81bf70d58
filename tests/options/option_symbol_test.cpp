// Option symbols: options/option_symbol.cpp.  The readings are those of tests/options/option_symbols.txt.

#include "options/option_symbol.h"

#include <algorithm>

#include "tests/support.h"

namespace {

constexpr char readings[] =
#include "tests/options/option_symbols.txt"
    ;

std::string membersOf(const tarnOptionSymbol& option) {
    std::string members;
    for (const char* text : {option.rootSymbol, option.expirationMonth, option.strikeText, option.sideText})
        members.append(text == nullptr ? "-" : text).append(",");
    return members + std::to_string(option.sideType);
}

// The free functions cut columns without a look at the words.
TEST(OptionSymbol, ReadingStopsWhereAWordDoesntFit) {
    tarnOptionSymbol reused;
    std::vector<std::pair<std::string, std::string>> all;
    tarntest::expectAnswers(readings, [&](auto&, auto& cells) {
        const std::string& text = all.emplace_back(cells[0], cells[1]).first;
        const auto columns = [&](std::size_t from, std::size_t count) {
            return text.substr(std::min(from, text.size()), count);
        };
        EXPECT_EQ(OptSymToJustSym(text.c_str()), text.substr(0, 3));
        EXPECT_EQ(OptSymToExpnMth(text.c_str()), columns(4, 3));
        EXPECT_EQ(OptSymToStrikePrc(text.c_str()), columns(8, 8));
        reused.setOptionSymbol(text.c_str());
        EXPECT_EQ(reused.symbolText, text);
        EXPECT_EQ(membersOf(reused), cells[1]);
        return membersOf(tarnOptionSymbol(text.c_str()));
    });
    // Symbols are equal by root, month, strike and a side that is known.
    for (auto& [text, members] : all) {
        for (auto& [otherText, otherMembers] : all) {
            const tarnOptionSymbol a(text.c_str()), b(otherText.c_str());
            const auto words = [](std::string m) {
                return m.substr(0, m.size() - 1);
            };  // sides 0 and 1 have none
            const bool equal = words(members) == words(otherMembers) && members.find(",-,-,") == members.npos;
            EXPECT_EQ(a.isEqual(&b), equal ? 1 : 0) << text << ", " << otherText;
        }
    }
    EXPECT_EQ(reused.isEqual(nullptr), 0);
}

TEST(OptionSymbol, OwnTextsMayBeHandedIn) {
    tarnOptionSymbol option("ABC XYZ JAN 5 PUT");
    const char* const kept = option.strikeText;
    option.setOptionSymbol(option.symbolText);
    EXPECT_EQ(option.strikeText, kept);
    option.setOptionSymbol(option.symbolText + 4);
    EXPECT_EQ(membersOf(option), "XYZ,JAN,5,PUT,3");
    option.setOptionSymbol(option.rootSymbol);
    EXPECT_STREQ(option.symbolText, "XYZ");
    option.setOptionSymbol(nullptr);
    EXPECT_STREQ(option.symbolText, "");
    EXPECT_STREQ(OptSymToJustSym(OptSymToJustSym("XYZ JAN 100")), "XYZ");
    EXPECT_STREQ(OptSymToExpnMth(nullptr), "");
}

}  // namespace
