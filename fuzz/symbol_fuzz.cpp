// Symbol text: each line of an input is an option's name or another short text.  The option's parts are those
// of a plain cut into words, and the text tools answer as loops over strings do.

#include <algorithm>
#include <vector>

#include "fintext/financial_text.h"
#include "fuzz/property.h"
#include "options/option_symbol.h"

namespace {

using tarnfuzz::require;
using tarnfuzz::requireSame;
using tarnfuzz::Text;

std::string shown(const char* text) {
    return text == nullptr ? "-" : '"' + std::string(text) + '"';
}

std::string membersOf(const tarnOptionSymbol& option) {
    return shown(option.rootSymbol) + shown(option.expirationMonth) + shown(option.strikeText) +
           shown(option.sideText) + std::to_string(option.sideType);
}

// The words between runs of blanks; blanks in front make an empty first one.
std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != ' ') words.back() += text[i];
        if (text[i] == ' ' && (i + 1 == text.size() || text[i + 1] != ' ')) words.emplace_back();
    }
    return words;
}

std::string plainMembers(const std::string& text) {
    std::vector<std::string> words = wordsOf(text);
    const std::size_t count = words.size();
    words.resize(count + 5);
    const auto part = [&](std::size_t i) { return shown(words[i].c_str()); };
    if (count < 2 || words[0].size() > 3) return "----0";
    if (count < 3 || words[1].size() != 3) return part(0) + "---0";
    const bool hasFraction = words[3][0] >= '0' && words[3][0] <= '9';
    const std::string strike = hasFraction ? words[2] + ' ' + words[3] : words[2];
    const std::string members = part(0) + part(1) + shown(strike.c_str());
    const std::size_t next = hasFraction ? 4 : 3;
    if (words[next].empty()) return members + "-1";
    const bool isLast = next + 1 == count;
    const std::string side = isLast ? words[next] : "";
    if (side == "CALL" || side == "Call" || side == "call") return members + "\"CALL\"2";
    if (side == "PUT" || side == "Put" || side == "put") return members + "\"PUT\"3";
    return members + "-0";
}

void checkOption(const std::string& text, tarnOptionSymbol& previous) {
    const Text block(text);
    tarnOptionSymbol option(block.get());
    requireSame(membersOf(option), plainMembers(text), "an option has its words");
    requireSame(option.symbolText, text, "and its text");
    require(option.isEqual(&option) == (option.strikeText != nullptr ? 1 : 0), "an option equals itself");
    require(option.isEqual(&previous) == previous.isEqual(&option), "equality holds both ways");
    const std::string mine = membersOf(option), others = membersOf(previous);
    const bool isSame = mine.substr(0, mine.size() - 1) == others.substr(0, others.size() - 1);
    require(option.isEqual(&previous) == (isSame && option.strikeText != nullptr ? 1 : 0), "of all parts");
    if (option.strikeText != nullptr) option.setOptionSymbol(option.strikeText);  // its own text
    previous.setOptionSymbol(block.get());
    requireSame(membersOf(previous), plainMembers(text), "an option is read anew");

    const std::string padded = text + std::string(16, '\0');
    requireSame(OptSymToJustSym(block.get()), padded.substr(0, 3).c_str(), "columns are cut");
    requireSame(OptSymToExpnMth(block.get()), padded.substr(4, 3).c_str(), "columns are cut");
    requireSame(OptSymToStrikePrc(block.get()), padded.substr(8, 8).c_str(), "columns are cut");
}

void checkForms(const std::string& text) {
    const Text tax("", 11), phone("", 14), date("", 10), digits("", 10);
    fmtToTaxId(text.c_str(), tax.get());
    fmtToPhoneNumber(text.c_str(), phone.get());
    formatStringToDate(text.c_str(), date.get());
    formatDateToString(date.get(), digits.get());
    std::string expected = text.empty() ? " " : text.substr(0, 8);
    if (text.size() > 4) expected.insert(4, "/");
    if (text.size() > 2) expected.insert(2, "/");
    requireSame(date.copy(), expected, "a date gets its slashes");
    std::erase(expected, '/');
    requireSame(digits.copy(), expected, "and loses them");
}

void checkTools(const std::string& text, const std::string& other) {
    const Text single(text), none(text);
    std::string expected = text;
    for (std::size_t at = 0; (at = expected.find("  ")) != expected.npos;) expected.erase(at, 1);
    removeDoubleSpaces(single.get());
    requireSame(single.copy(), expected, "blanks become one");
    std::erase(expected, ' ');
    removeSpace(none.get());
    requireSame(none.copy(), expected, "blanks are removed");
    const std::unique_ptr<char[]> joined(concatstr((text + '\n').c_str(), other.c_str()));
    const std::unique_ptr<char[]> converted(convertNewline(joined.get()));
    requireSame(converted.get(), text + "\r\n" + other, "a line feed gets its carriage return");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    tarnOptionSymbol option;
    std::string previous;
    for (int lines = 0; lines < 16 && !input.isEmpty(); ++lines) {
        const std::string text = input.text();
        checkOption(text, option);
        checkForms(text);
        checkTools(text, previous);
        previous = text;
    }
    return 0;
}
