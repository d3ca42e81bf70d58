// The token parser: one pass over the text by a table of delimiters, with the outcome of strtok.
// Tests: tests/present/menu_test.cpp.

#include <array>
#include <memory>

#include "core/string.h"
#include "platform/win32.h"
#include "present/menu.h"
#include "store/file_tools.h"
#include "store/whole_file.h"

namespace {

constexpr const char* menuDelimiters = ",\n\t\r";

class DelimiterSet {
  public:
    explicit DelimiterSet(const char* characters) {
        for (; *characters != '\0'; ++characters) at(*characters) = true;
    }

    [[nodiscard]] bool contains(char character) { return at(character); }

  private:
    bool& at(char character) { return is_[static_cast<unsigned char>(character)]; }

    std::array<bool, 256> is_{};
};

}  // namespace

tarnParser::tarnParser() {
    setDelimiters(menuDelimiters);
}

tarnParser::~tarnParser() {
    releaseTokens();
    delete[] buffer;
    delete[] delimiters;
}

void tarnParser::setDelimiters(const char* characters) {
    char* const copy = newstr(characters);
    delete[] delimiters;
    delimiters = copy;
}

char* tarnParser::loadFile(const char* fileName, int scrambled) {
    tarn::WholeFile file = tarn::readWholeFile(fileName, 0, FILE_FLAG_SEQUENTIAL_SCAN);
    if (file.data == nullptr) return nullptr;
    delete[] buffer;
    buffer = file.data.release();
    if (!file.isRead()) return nullptr;
    if (scrambled != 0) unscramble(buffer, static_cast<std::int32_t>(file.length));
    return buffer;
}

_link* tarnParser::parseTokens(char* text) {
    if (text == nullptr) return tokens;
    DelimiterSet set(delimiters);
    while (true) {
        while (set.contains(*text)) ++text;
        if (*text == '\0') return tokens;
        char* const begin = text;
        while (*text != '\0' && !set.contains(*text)) ++text;
        if (*text != '\0') *text++ = '\0';
        auto token = std::make_unique<_link>();
        token->text = trim(begin, token->length, ' ');
        append(token.release());
    }
}

void tarnParser::append(_link* token) {
    (last_ == nullptr ? tokens : last_->next) = token;
    last_ = token;
}

void tarnParser::releaseTokens() {
    while (tokens != nullptr) {
        const std::unique_ptr<_link> token(tokens);
        tokens = token->next;
    }
    last_ = nullptr;
}
