// The calls and answers of tests/fintext/examples.txt, for all sources of fintext/; fintext/text_tools.cpp
// and fintext/industry_symbols.cpp.

#include "fintext/financial_text.h"

#include <cstring>
#include <memory>

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

}  // namespace
