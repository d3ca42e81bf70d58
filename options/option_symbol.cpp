// Option symbols: a reader that takes words one after the other until one doesn't fit, and three that cut
// fixed columns.  Tests: tests/options/option_symbol_test.cpp.

#include "options/option_symbol.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.h"
#include "core/string.h"

namespace {

enum SideType : int { notReadToItsEnd = 0, noSide = 1, callSide = 2, putSide = 3 };

constexpr std::size_t longestRoot = 3;
constexpr std::size_t lettersOfMonth = 3;

char* copyOf(std::string_view text) {
    return newstr(text.data(), static_cast<std::uint32_t>(text.size()));
}

std::string_view withoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

// Takes the word in front away and answers it; `rest` then starts with the blank behind it, if there is one.
std::string_view takeWord(std::string_view& rest) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    rest.remove_prefix(word.size());
    return word;
}

bool sameText(const char* a, const char* b) {
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0;
}

// A text without a side and one that wasn't read to its end are of one class.
int sideClass(int sideType) {
    return sideType == notReadToItsEnd ? noSide : sideType;
}

struct SideWord {
    std::string_view word;
    const char* sideText;
    SideType sideType;
};

constexpr SideWord sideWords[] = {
    {"CALL", "CALL", callSide}, {"Call", "CALL", callSide}, {"call", "CALL", callSide},
    {"PUT", "PUT", putSide},    {"Put", "PUT", putSide},    {"put", "PUT", putSide},
};

// Copies up to `size` - 1 characters from a column on; the text may be the buffer itself.
template <std::size_t size>
char* cutColumns(const char* text, std::size_t column, char (&buffer)[size]) {
    const std::size_t length = text == nullptr ? 0 : strnlen(text, column + size - 1);
    const std::size_t count = length > column ? length - column : 0;
    if (count > 0) std::memmove(buffer, text + column, count);
    std::memset(buffer + count, 0, size - count);
    return buffer;
}

}  // namespace

tarnOptionSymbol::tarnOptionSymbol()
    : symbolText(nullptr),
      rootSymbol(nullptr),
      expirationMonth(nullptr),
      strikeText(nullptr),
      sideText(nullptr),
      sideType(notReadToItsEnd) {}

tarnOptionSymbol::tarnOptionSymbol(const char* text) : tarnOptionSymbol() {
    parseSymbol(text);
}

tarnOptionSymbol::~tarnOptionSymbol() {
    clearSymbol();
}

void tarnOptionSymbol::setOptionSymbol(const char* text) {
    if (text == nullptr) text = "";
    if (sameText(symbolText, text)) return;
    tarnOptionSymbol next(text);  // read before the old texts go, for `text` may be one of them
    std::swap(symbolText, next.symbolText);
    std::swap(rootSymbol, next.rootSymbol);
    std::swap(expirationMonth, next.expirationMonth);
    std::swap(strikeText, next.strikeText);
    std::swap(sideText, next.sideText);
    std::swap(sideType, next.sideType);
}

int tarnOptionSymbol::isEqual(const tarnOptionSymbol* other) const {
    if (other == nullptr) return 0;
    return sameText(rootSymbol, other->rootSymbol) && sameText(expirationMonth, other->expirationMonth) &&
                   sameText(strikeText, other->strikeText) &&
                   sideClass(sideType) == sideClass(other->sideType)
               ? 1
               : 0;
}

// Expects an object that holds nothing.
void tarnOptionSymbol::parseSymbol(const char* text) {
    symbolText = newstr(text);
    std::string_view rest = symbolText;

    const std::string_view root = takeWord(rest);
    if (rest.empty() || root.size() > longestRoot) return;
    rootSymbol = new char[longestRoot + 1]();
    root.copy(rootSymbol, root.size());

    rest = withoutLeadingBlanks(rest);
    const std::string_view month = takeWord(rest);
    if (rest.empty() || month.size() != lettersOfMonth) return;
    expirationMonth = copyOf(month);

    rest = withoutLeadingBlanks(rest);
    const std::string_view strike = takeWord(rest);
    rest = withoutLeadingBlanks(rest);
    if (!rest.empty() && tarn::isDigit(rest.front())) {
        const std::string_view fraction = takeWord(rest);
        strikeText = copyOf(std::string(strike).append(1, ' ').append(fraction));
        rest = withoutLeadingBlanks(rest);
    } else {
        strikeText = copyOf(strike);
    }
    if (rest.empty()) {
        sideType = noSide;
        return;
    }

    const auto* const side = std::ranges::find(sideWords, rest, &SideWord::word);
    if (side == std::end(sideWords)) return;
    sideText = newstr(side->sideText);
    sideType = side->sideType;
}

void tarnOptionSymbol::clearSymbol() {
    for (char** const text : {&symbolText, &rootSymbol, &expirationMonth, &strikeText, &sideText}) {
        delete[] * text;
        *text = nullptr;
    }
    sideType = notReadToItsEnd;
}

char* OptSymToJustSym(const char* s) {
    static char root[4];
    return cutColumns(s, 0, root);
}

char* OptSymToExpnMth(const char* s) {
    static char month[4];
    return cutColumns(s, 4, month);
}

char* OptSymToStrikePrc(const char* s) {
    static char strike[9];
    return cutColumns(s, 8, strike);
}
