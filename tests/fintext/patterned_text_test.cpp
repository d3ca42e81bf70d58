// Patterned text and the small ones: fintext/patterned_text.cpp, fintext/fixed_forms.cpp,
// fintext/text_tools.cpp, fintext/clock_text.cpp, fintext/fund_amount.cpp, fintext/industry_symbols.cpp.
// More texts are among the seeds of fuzz/number_fuzz.cpp, for money, and fuzz/symbol_fuzz.cpp, for dates and
// the text tools.

#include "core/string.h"
#include "engine/engine_data.h"
#include "fintext/clock_text.h"
#include "fintext/financial_text.h"
#include "tests/fintext/buffers.h"
#include "tests/values.h"

namespace {

using tarntest::changed;
using tarntest::written;

std::string patterned(std::string text, const char* pattern, eNegType negative = eNegParens) {
    char target[80] = "untouched";
    formatStringWithPattern(text.data(), pattern, target, negative);
    formatStringWithPattern(text.data(), pattern, nullptr, negative);
    formatStringWithPattern(text.data(), nullptr, target, negative);
    return target;
}

TEST(PatternedText, PatternTakesCharactersOtherwise) {
    EXPECT_EQ(patterned("  1234567.899 ", "$*,###*.##"), "$1,234,567.89");
    EXPECT_EQ(patterned("-1234.56", "$*,###*.##"), "$(1,234.56)");
    EXPECT_EQ(patterned("-123456", "*,###*", eNegLeading), "-123,456");
    EXPECT_EQ(patterned("-34.56", "$*,###*.##", eNegTrailing), "$34.56-");
    EXPECT_EQ(patterned("1.5", "$*,###*.##"), "1.5");  // the prefix isn't reached
    EXPECT_EQ(patterned("1234", ",###"), "234");  // what is left over is dropped, and so is the last comma
    EXPECT_EQ(patterned("123456", "a*b#*c#*d#"), "a*b#1c2c3c4c5d6");
    EXPECT_EQ(patterned("1234", "$*-*##"), "$-34");  // a group without a place is written once
    char target[8];
    formatStringWithPattern(nullptr, "#", target, eNegParens);
    EXPECT_STREQ(target, "$0.0");
}

TEST(PatternedText, FormTakesAnotherCharacter) {
    EXPECT_EQ(written(fmtToTaxId, "123456789"), "123-45-6789");
    EXPECT_EQ(written(fmtToPhoneNumber, "5551234"), "555-1234");
    EXPECT_EQ(written(fmtToPhoneNumber, "2125551234"), "(212) 555-1234");
    EXPECT_EQ(written(formatStringToDate, "113019991234"), "11/30/1999");
    EXPECT_EQ(written(formatDateToString, "1/2/345678901"), "12345678");
    char target[20];
    EXPECT_EQ(fmtToPhoneNumber("2125551234", target), 1);
    EXPECT_EQ(fmtToPhoneNumber("12345678", target), 0);
    EXPECT_EQ(fmtToTaxId("1234567890", target), 0);
    EXPECT_STREQ(target, "(212) 555-1234");
}

TEST(TextTools, AnotherCharacterIsTaken) {
    EXPECT_EQ(changed(removeDoubleSpaces, "  a   b \t c"), " a b \t c");
    EXPECT_EQ(changed(removeSpace, " a \tb "), "a\tb");
    EXPECT_EQ(changed(removeNewline, "a\r\n\tb\n"), "a  \tb ");
    const std::unique_ptr<char[]> converted(convertNewline("a\r\nb\n"));
    EXPECT_STREQ(converted.get(), "a\r\r\nb\r\n");
    EXPECT_EQ(convertNewline("a\r"), nullptr);
    EXPECT_EQ(concatstr("ab", nullptr), nullptr);
    char text[] = "ab\n";
    EXPECT_EQ(removeNewline(text), 1);
    EXPECT_EQ(removeNewline(text), 0);
}

// Sums over the vendor's list: of the ids, and of each times its symbol's last two letters taken as a number.
TEST(IndustrySymbols, IdOrSymbolIsMisspelt) {
    std::int64_t ids = 0;
    std::int64_t spelling = 0;
    for (int id = 0; id < 1000; ++id) {
        const char* const symbol = getInduSymFromID(id);
        if (symbol == nullptr) continue;
        EXPECT_EQ(std::string(symbol, 4), "SP__");
        ids += id;
        spelling += id * (symbol[4] * 256 + symbol[5]);
    }
    EXPECT_EQ(ids, 35018);
    EXPECT_EQ(spelling, 690'723'414);
    EXPECT_STREQ(getInduSymFromID(-1), "SP__PH");  // the first of those without an id
}

std::string timeAt(int hour, void (*write)(char*, int), int twelveHour) {
    const tarntest::HeldClock clock(1999, 1, 9, hour, 30, 5);
    return changed(write, "", twelveHour);
}

TEST(ClockText, NoonOrMidnightIsOnTheWrongHalf) {
    if (!tarntest::HeldClock::possible) GTEST_SKIP() << "the clock can't be held here";
    EXPECT_EQ(timeAt(0, getLocalTimeStr, 1), " 00:30:05 AM");
    EXPECT_EQ(timeAt(12, getLocalTimeStr, 1), " 12:30:05 PM");
    EXPECT_EQ(timeAt(13, tarn::getLocalDateTimeStr, 1), " 01/09/1999 01:30:05 PM");
    EXPECT_EQ(timeAt(13, tarn::getLocalDateTimeStr, 0), " 01/09/1999  13:30:05");
}

TEST(FundAmount, ComesFromAnotherField) {
    tarnEngineData record;
    char target[40] = "old";
    const auto unitsWith = [&](std::int32_t field, const char* stored) {
        const auto value = tarntest::text(stored);
        record.storeData(field, &value);
        EXPECT_EQ(getDollarsOrShares(&record, nullptr), eFundUnitsNone);
        return getDollarsOrShares(&record, target);
    };
    EXPECT_EQ(unitsWith(1750, "0.00"), eFundUnitsNone);
    EXPECT_STREQ(target, "old");
    EXPECT_EQ(unitsWith(1750, "7"), eFundUnitsOther);
    EXPECT_EQ(unitsWith(595, "100"), eFundUnitsOther);
    EXPECT_EQ(unitsWith(1664, "abc"), eFundUnitsOther);
    EXPECT_STREQ(target, "100");
    EXPECT_EQ(unitsWith(1664, "2.5 x"), eFundUnitsPrimary);
    EXPECT_STREQ(target, "2.5 x");
    EXPECT_EQ(getDollarsOrShares(nullptr, target), eFundUnitsNone);
}

}  // namespace
