// The calls and answers of tests/fintext/examples.txt, for all sources of fintext/; fintext/text_tools.cpp
// and fintext/industry_symbols.cpp.

#include "fintext/financial_text.h"

#include "core/string.h"
#include "tests/support.h"

namespace {

constexpr char examples[] =
#include "tests/fintext/examples.txt"
    ;

std::string newText(char* text) {
    const std::unique_ptr<char[]> owned(text);
    return text == nullptr ? "no" : text;
}

std::string answerOf(const std::string& function, const std::vector<std::string>& cells) {
    using tarntest::shown;
    char text[500];  // source and target at once
    std::strcpy(text, cells[0].c_str());
    const std::string& second = cells[1];
    const auto number = static_cast<std::int32_t>(std::strtoll(second.c_str(), nullptr, 10));
    const auto count = static_cast<std::uint32_t>(number);
    tarnString string(text);
    constexpr std::pair<const char*, eNegType> forms[] = {
        {"parens", eNegParens}, {"leading", eNegLeading}, {"trailing", eNegTrailing}};
    if (function == "strToDouble") return shown(strToDouble(text));
    if (function == "fmtToLong") return shown(fmtToLong(text));
    if (function == "fmtToDouble") return shown(fmtToDouble(text));
    if (function == "isAlphaNum") return shown(isAlphaNum(text));
    if (function == "validateFormat") return shown(validateFloatFormat(text, number, std::stoi(cells[2])));
    if (function == "stripDecimal") return stripTrailDecimal(text, count), text;
    if (function == "stripDecimalZeros") return stripTrailDecimalZeros(text, 7), text;
    if (function == "stripLeadZeros") return stripLeadZeros(text), text;
    if (function == "toFloat") return formatStringToFloat(text, text, count), text;
    if (function == "roundToFloat") return formatStringToFloatWithRounding(text, text, count), text;
    if (function == "asFraction") return asFraction(text, tarntest::numberOf(text));
    if (function == "asReducedFraction") return asReducedFraction(text, text);
    if (function == "asUniformFraction") return asUniformFraction(text, text, number);
    if (function == "percent") return percentChange(text, std::stoi(cells[2]), text, second.c_str());
    if (function == "asPercent")
        return tarntest::inCLocale(
            [&] { return asPercentChange(text, cells[2].c_str(), text, second.c_str()); });
    if (function == "signChange") return signPriceChange(text) == number ? text : "another sign";
    if (function == "flipSign") return flipSign(text), text;
    for (const auto& [name, form] : forms)
        if (function == name) return formatStringWithPattern(text, second.c_str(), text, form), text;
    if (function == "money") return formatToMoneyFormat(string.text, string, number), string.text;
    if (function == "taxId") return fmtToTaxId(text, text) != 0 ? text : "no";
    if (function == "phone") return fmtToPhoneNumber(text, text) != 0 ? text : "no";
    if (function == "stringToDate") return formatStringToDate(text, text), text;
    if (function == "dateToString") return formatDateToString(text, text), text;
    if (function == "removeDoubleSpaces") return removeDoubleSpaces(text), text;
    if (function == "removeSpace") return removeSpace(text), text;
    if (function == "removeNewline") return removeNewline(text) != 0 ? text : "no";
    if (function == "convertNewline") return newText(convertNewline(text));
    const char* const symbol = getInduSymFromID(std::atoi(text));
    if (function == "industry") return symbol == nullptr ? "no" : symbol + 4;
    return function == "concatstr" ? newText(concatstr(text, second.c_str())) : "no such function";
}

TEST(FinancialText, ExampleAnswersOtherwise) {
    tarntest::expectAnswers(examples, answerOf);
}

// NULL for what is read, then for what is written.
TEST(FinancialText, NullIsReadOrWritten) {
    char kept[] = "kept and with room", price[] = "123456789";
    for (char* const source : {static_cast<char*>(nullptr), price}) {
        char* const target = source == nullptr ? kept : nullptr;
        EXPECT_EQ(fmtToTaxId(source, target) + fmtToPhoneNumber(source, target), 0);
        formatStringToDate(source, target), formatDateToString(source, target);
        formatStringToFloat(source, target, 2), formatStringToFloatWithRounding(source, target, 2);
        EXPECT_EQ(asReducedFraction(target, source), target);
        EXPECT_EQ(asUniformFraction(target, source, 8), target);
        EXPECT_EQ(asPercentChange(target, source, price, price), target);
        EXPECT_TRUE(concatstr(source, target) == nullptr && concatstr(target, source) == nullptr);
        EXPECT_EQ(getDollarsOrShares(nullptr, target), eFundUnitsNone);
    }
    formatStringWithPattern(price, nullptr, kept, eNegParens),
        formatStringWithPattern(price, "#", nullptr, eNegParens);
    getLocalTimeStr(nullptr, 1);
    EXPECT_TRUE(asFraction(nullptr, 1.5) == nullptr && percentChange(nullptr, 2, "5", "1") == nullptr);
    for (const auto change : {stripLeadZeros, flipSign, removeDoubleSpaces, removeSpace}) change(nullptr);
    for (const auto change : {stripTrailDecimal, stripTrailDecimalZeros}) change(nullptr, 2);
    EXPECT_EQ(strToDouble(nullptr) + fmtToDouble(nullptr) + fmtToLong(nullptr) + isAlphaNum(nullptr), 0);
    EXPECT_EQ(signPriceChange(nullptr) + validateFloatFormat(nullptr, 1, 1) + removeNewline(nullptr), 0);
    EXPECT_EQ(convertNewline(nullptr), nullptr);
    EXPECT_EQ(std::string(kept) + price, "kept and with room123456789");
    formatStringWithPattern(nullptr, "#", kept, eNegParens);
    tarnString money;
    formatToMoneyFormat(nullptr, money, 0);
    EXPECT_EQ(std::string(kept) + money.text, "$0.0$0.00");
}

}  // namespace
