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
    const std::vector<std::string> words = wordsOf(text);
    const auto word = [&](std::size_t i) { return i < words.size() ? words[i] : ""; };
    const auto part = [&](std::size_t i) { return shown(word(i).c_str()); };
    if (words.size() < 2 || word(0).size() > 3) return "----0";
    if (words.size() < 3 || word(1).size() != 3) return part(0) + "---0";
    std::size_t next = 3;
    std::string strike = word(2);
    if (!word(3).empty() && word(3)[0] >= '0' && word(3)[0] <= '9') strike += ' ' + word(next++);
    const std::string members = part(0) + part(1) + shown(strike.c_str());
    if (word(next).empty()) return members + "-1";
    if (next + 1 != words.size()) return members + "-0";
    for (const char* side : {"CALL", "Call", "call"})
        if (word(next) == side) return members + "\"CALL\"2";
    for (const char* side : {"PUT", "Put", "put"})
        if (word(next) == side) return members + "\"PUT\"3";
    return members + "-0";
}

void checkOption(const std::string& text, tarnOptionSymbol& previous) {
    const Text block(text);
    tarnOptionSymbol option(block.get());
    requireSame(membersOf(option), plainMembers(text), "an option has its words");
    requireSame(option.symbolText, text, "and its text");
    const bool isWhole = option.strikeText != nullptr;
    require(option.isEqual(&option) == (isWhole ? 1 : 0), "an option equals itself");
    require(option.isEqual(&previous) == previous.isEqual(&option), "both ways");
    if (option.isEqual(&previous) != 0) {
        const std::string mine = membersOf(option), others = membersOf(previous);
        requireSame(mine.substr(0, mine.size() - 1), others.substr(0, others.size() - 1), "equal ones are");
    }
    previous.setOptionSymbol(block.get());
    requireSame(membersOf(previous), membersOf(option), "an option is read anew");
    if (option.strikeText != nullptr) previous.setOptionSymbol(previous.strikeText);  // its own text
    require(option.strikeText == nullptr || std::strcmp(previous.symbolText, option.strikeText) == 0,
            "it stays");
    previous.setOptionSymbol(block.get());

    const auto columns = [&](std::size_t from, std::size_t count) {
        return text.substr(std::min(from, text.size()), count);
    };
    requireSame(OptSymToJustSym(block.get()), columns(0, 3), "columns are cut");
    requireSame(OptSymToExpnMth(block.get()), columns(4, 3), "columns are cut");
    requireSame(OptSymToStrikePrc(block.get()), columns(8, 8), "columns are cut");
}

void checkForms(const std::string& text) {
    const Text tax("", 16), phone("", 16), date("", 16), digits("", 16);
    const bool isTax = text.size() == 9, isPhone = text.size() == 7 || text.size() == 10;
    require(fmtToTaxId(text.c_str(), tax.get()) == (isTax ? 1 : 0), "nine characters make a tax number");
    if (isTax)
        requireSame(tax.copy(), text.substr(0, 3) + '-' + text.substr(3, 2) + '-' + text.substr(5), "it");
    require(fmtToPhoneNumber(text.c_str(), phone.get()) == (isPhone ? 1 : 0), "a telephone number is one");
    const std::string local = isPhone ? text.substr(text.size() - 7) : "";
    if (isPhone)
        requireSame(phone.copy(),
                    (text.size() == 10 ? '(' + text.substr(0, 3) + ") " : "") + local.substr(0, 3) + '-' +
                        local.substr(3),
                    "it");
    formatStringToDate(text.c_str(), date.get());
    formatDateToString(date.get(), digits.get());
    std::string expected = text.substr(0, 8);
    if (expected.size() > 4) expected.insert(4, "/");
    if (expected.size() > 2) expected.insert(2, "/");
    if (expected.empty()) expected = " ";
    requireSame(date.copy(), expected, "a date gets its slashes");
    expected.resize(std::min<std::size_t>(expected.size(), 10));
    std::erase(expected, '/');
    requireSame(digits.copy(), expected, "and loses them");
}

void checkTools(const std::string& text, const std::string& other) {
    const Text single(text), none(text), plain(text);
    std::string expected = text;
    for (std::size_t at = 0; (at = expected.find("  ")) != expected.npos;) expected.erase(at, 1);
    removeDoubleSpaces(single.get());
    requireSame(single.copy(), expected, "blanks become one");
    expected = text;
    std::erase(expected, ' ');
    removeSpace(none.get());
    requireSame(none.copy(), expected, "blanks go");
    expected = text;
    for (char& c : expected) c = c == '\r' || c == '\n' ? ' ' : c;
    require(removeNewline(plain.get()) == (expected == text ? 0 : 1), "line ends are told");
    requireSame(plain.copy(), expected, "and become blanks");

    const std::unique_ptr<char[]> joined(concatstr(text.c_str(), other.c_str()));
    requireSame(joined.get(), text + other, "texts are joined");
    const std::string lines = text + '\n' + other;
    const std::unique_ptr<char[]> converted(convertNewline(lines.c_str()));
    requireSame(converted.get(), text + "\r\n" + other, "a line feed gets its carriage return");
    require(convertNewline(text.c_str()) == nullptr, "or needs none");
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
