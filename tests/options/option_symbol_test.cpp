// Option symbols: options/option_symbol.cpp.

#include "options/option_symbol.h"

#include <type_traits>

#include "tests/support.h"

namespace {

static_assert(!std::is_copy_constructible_v<tarnOptionSymbol> &&
              !std::is_copy_assignable_v<tarnOptionSymbol>);

// All members behind the text; `-` stands for NULL.
std::string membersOf(const tarnOptionSymbol& option) {
    std::string members;
    for (const char* text : {option.rootSymbol, option.expirationMonth, option.strikeText, option.sideText}) {
        members.append(text == nullptr ? "-" : text).append("|");
    }
    return members + std::to_string(option.sideType);
}

TEST(OptionSymbol, ReadingStopsWhereAWordDoesntFit) {
    // clang-format off
    const struct { const char *text, *members; } rows[] = {
        {"XYZ JAN 100 CALL", "XYZ|JAN|100|CALL|2"}, {"XYZ JAN 25 1/2 PUT", "XYZ|JAN|25 1/2|PUT|3"},
        {"F JUL 5 call", "F|JUL|5|CALL|2"}, {"XYZ  JAN  25   1/2  Put", "XYZ|JAN|25 1/2|PUT|3"},
        {"XYZ JAN 100", "XYZ|JAN|100|-|1"}, {"XYZ JAN 100 ", "XYZ|JAN|100|-|1"},
        {"XYZ JAN 25 1/2", "XYZ|JAN|25 1/2|-|1"}, {"XYZ JAN 25 1/2 ", "XYZ|JAN|25 1/2|-|1"},
        {"XYZ JAN 100 cALL", "XYZ|JAN|100|-|0"}, {"XYZ JAN 100 CALL ", "XYZ|JAN|100|-|0"},
        {"XYZ JAN 100 CALL X", "XYZ|JAN|100|-|0"}, {"XYZ JAN 1 2 3 CALL", "XYZ|JAN|1 2|-|0"},
        {"XYZ JAN ", "XYZ|JAN||-|1"}, {"XYZ JAN", "XYZ|-|-|-|0"}, {"XYZ JANUARY 100 CALL", "XYZ|-|-|-|0"},
        {"WXYZ JAN 100 CALL", "-|-|-|-|0"}, {" JAN 100 CALL", "|JAN|100|CALL|2"},
        {"XYZ\tJAN 100 CALL", "-|-|-|-|0"}, {"XYZ", "-|-|-|-|0"}, {"", "-|-|-|-|0"}};
    // clang-format on
    tarnOptionSymbol reused;
    for (const auto& row : rows) {
        EXPECT_EQ(membersOf(tarnOptionSymbol(row.text)), row.members) << row.text;
        reused.setOptionSymbol(row.text);
        EXPECT_EQ(membersOf(reused), row.members) << row.text;
        EXPECT_STREQ(reused.symbolText, row.text);
    }
}

TEST(OptionSymbol, EqualityLooksAtWordsAndSidesOnly) {
    // clang-format off
    const struct { const char *a, *b; int equal; } rows[] = {
        {"XYZ JAN 100 CALL", "XYZ  JAN   100 call", 1}, {"XYZ JAN 100 CALL", "XYZ JAN 100 PUT", 0},
        {"XYZ JAN 100", "XYZ JAN 100 cALL", 1}, {"XYZ JAN 100", "XYZ JAN 100 CALL", 0},
        {"XYZ JAN 100 PUT", "xyz JAN 100 PUT", 0}, {"XYZ JAN 100 PUT", "XYZ FEB 100 PUT", 0},
        {"XYZ JAN 100 PUT", "XYZ JAN 100.0 PUT", 0}, {"XYZ", "XYZ", 0}};
    // clang-format on
    for (const auto& row : rows) {
        const tarnOptionSymbol a(row.a), b(row.b);
        EXPECT_TRUE(a.isEqual(&b) == row.equal && b.isEqual(&a) == row.equal) << row.a << ", " << row.b;
        EXPECT_EQ(a.isEqual(nullptr), 0);
    }
}

TEST(OptionSymbol, AnObjectMayBeHandedItsOwnTexts) {
    tarnOptionSymbol option("ABC XYZ JAN 5 PUT");
    const char* const kept = option.strikeText;
    option.setOptionSymbol(option.symbolText);
    EXPECT_EQ(option.strikeText, kept);
    option.setOptionSymbol(option.symbolText + 4);
    EXPECT_EQ(membersOf(option), "XYZ|JAN|5|PUT|3");
    option.setOptionSymbol(option.rootSymbol);
    EXPECT_STREQ(option.symbolText, "XYZ");
    option.setOptionSymbol(nullptr);
    EXPECT_STREQ(option.symbolText, "");
}

TEST(OptionSymbol, ColumnsAreCutWithoutALookAndNeverBeyondTheText) {
    // clang-format off
    const struct { const char *text, *root, *month, *strike; } rows[] = {
        {"XYZ JAN 100.00 CALL", "XYZ", "JAN", "100.00 C"}, {"F JUL 5 call", "F J", "L 5", "call"},
        {"XYZ JAN ", "XYZ", "JAN", ""}, {"XYZ ", "XYZ", "", ""}, {"XY", "XY", "", ""}, {nullptr, "", "", ""}};
    // clang-format on
    for (const auto& row : rows) {
        EXPECT_STREQ(OptSymToJustSym(row.text), row.root);
        EXPECT_STREQ(OptSymToExpnMth(row.text), row.month);
        EXPECT_STREQ(OptSymToStrikePrc(row.text), row.strike);
    }
    EXPECT_STREQ(OptSymToJustSym(OptSymToJustSym("XYZ JAN 100")), "XYZ") << "handed its own result";
}

}  // namespace
