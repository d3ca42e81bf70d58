// The calls and answers of tests/fintext/examples.txt, for all sources of fintext/; fintext/text_tools.cpp
// and fintext/industry_symbols.cpp.

#include "fintext/financial_text.h"

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

#include "core/string.h"
#include "tests/support.h"

namespace {

constexpr char examples[] =
#include "tests/fintext/examples.txt"
    ;

std::string shown(double answer) {
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", answer);
    return text;
}

std::string newText(char* text) {
    const std::unique_ptr<char[]> owned(text);
    return text == nullptr ? "no" : text;
}

// `text` is the first argument, with room behind it, and source and target at once.
std::string answerOf(const std::string& function, const std::vector<std::string>& cells, char* text) {
    const std::string& second = cells[1];
    const auto number = static_cast<std::int32_t>(std::strtoll(second.c_str(), nullptr, 10));
    const auto count = static_cast<std::uint32_t>(number);
    tarnString string(text);
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
    if (function == "asFraction") return asFraction(text, std::strtod(text, nullptr));
    if (function == "asReducedFraction") return asReducedFraction(text, text);
    if (function == "asUniformFraction") return asUniformFraction(text, text, number);
    if (function == "percent") return percentChange(text, std::stoi(cells[2]), text, second.c_str());
    if (function == "asPercent") return asPercentChange(text, cells[2].c_str(), text, second.c_str());
    if (function == "signChange") return signPriceChange(text) == number ? text : "another sign";
    if (function == "flipSign") return flipSign(text), text;
    if (function == "parens") return formatStringWithPattern(text, second.c_str(), text, eNegParens), text;
    if (function == "leading") return formatStringWithPattern(text, second.c_str(), text, eNegLeading), text;
    if (function == "trailing")
        return formatStringWithPattern(text, second.c_str(), text, eNegTrailing), text;
    if (function == "money") return formatToMoneyFormat(string.text, string, number), string.text;
    if (function == "taxId") return fmtToTaxId(text, text) != 0 ? text : "no";
    if (function == "phone") return fmtToPhoneNumber(text, text) != 0 ? text : "no";
    if (function == "stringToDate") return formatStringToDate(text, text), text;
    if (function == "dateToString") return formatDateToString(text, text), text;
    if (function == "removeDoubleSpaces") return removeDoubleSpaces(text), text;
    if (function == "removeSpace") return removeSpace(text), text;
    if (function == "removeNewline") return removeNewline(text) != 0 ? text : "no";
    if (function == "convertNewline") return newText(convertNewline(text));
    return function == "concatstr" ? newText(concatstr(text, second.c_str())) : "no such function";
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator) parts.emplace_back();
        if (c != separator) parts.back() += c == '_' ? ' ' : c == '^' ? '\n' : c == '~' ? '\r' : c;
    }
    return parts;
}

TEST(FinancialText, ExampleAnswersOtherwise) {
    std::istringstream lines(examples);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':');
        if (line.empty() || line[0] == '#') continue;
        for (const std::string& call : split(line.substr(colon + 1), ';')) {
            const std::vector<std::string> cells = split(call, '|');
            std::string text = cells[0];
            text.resize(text.size() + 400);
            EXPECT_EQ(answerOf(line.substr(0, colon), cells, text.data()), cells.back())
                << line << " : " << call;
        }
    }
    EXPECT_EQ(concatstr("a", nullptr), nullptr);
    EXPECT_EQ(concatstr(nullptr, "a"), nullptr);
}

TEST(IndustrySymbols, SymbolIsMissingOrDoubled) {
    std::set<std::string> symbols;
    for (std::int32_t id = -1; id <= 1000; ++id) {
        if (getInduSymFromID(id) != nullptr) symbols.insert(getInduSymFromID(id));
    }
    EXPECT_EQ(symbols.size(), 96U);
    EXPECT_EQ(getInduSymFromID(111), nullptr);
    EXPECT_STREQ(getInduSymFromID(-1), "SP__PH");
    EXPECT_STREQ(getInduSymFromID(452), "SP__RA");
    EXPECT_STREQ(getInduSymFromID(850), "SP__FM");
    EXPECT_STREQ(getInduSymFromID(203), "SP__CJ");
}

}  // namespace
