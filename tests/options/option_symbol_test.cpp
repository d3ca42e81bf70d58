// Option symbols: options/option_symbol.cpp.  The readings are those of tests/options/option_symbols.txt.

#include "options/option_symbol.h"

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
        EXPECT_EQ(OptSymToJustSym(text.c_str()), text.substr(0, 3));
        EXPECT_EQ(OptSymToExpnMth(text.c_str()), text.substr(std::min<std::size_t>(4, text.size()), 3));
        EXPECT_EQ(OptSymToStrikePrc(text.c_str()), text.substr(std::min<std::size_t>(8, text.size()), 8));
        reused.setOptionSymbol(text.c_str());
        return membersOf(reused);
    });
    // Symbols are equal by root, month, strike and a side that is known.
    for (const auto& [text, members] : all) {
        const tarnOptionSymbol a(text.c_str());
        for (const auto& [otherText, otherMembers] : all) {
            const tarnOptionSymbol b(otherText.c_str());
            const bool equal = members.starts_with(otherMembers.substr(0, otherMembers.size() - 1)) &&
                               members.find(",-,-,") == members.npos;
            EXPECT_EQ(a.isEqual(&b), equal ? 1 : 0) << text << ", " << otherText;
        }
    }
    reused.setOptionSymbol("ABC XYZ JAN 5 PUT");
    reused.setOptionSymbol(reused.symbolText + 4);  // its own text
    EXPECT_EQ(membersOf(reused), "XYZ,JAN,5,PUT,3");
}

}  // namespace
