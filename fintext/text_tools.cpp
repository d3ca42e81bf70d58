// Small text tools: cleaning up in place, and new texts.  Tests: tests/fintext/patterned_text_test.cpp.

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fintext/financial_text.h"

namespace {

char* endOf(char* text) {
    return text + std::strlen(text);
}

}  // namespace

char* concatstr(const char* first, const char* second) {
    if (first == nullptr || second == nullptr) return nullptr;
    const std::string_view front(first);
    auto* const joined = new char[front.size() + std::strlen(second) + 1];
    std::strcpy(std::copy(front.begin(), front.end(), joined), second);
    return joined;
}

void removeDoubleSpaces(char* text) {
    if (text == nullptr) return;
    *std::unique(text, endOf(text), [](char a, char b) { return a == ' ' && b == ' '; }) = '\0';
}

void removeSpace(char* text) {
    if (text != nullptr) *std::remove(text, endOf(text), ' ') = '\0';
}

int removeNewline(char* text) {
    if (text == nullptr) return 0;
    int found = 0;
    for (; *text != '\0'; ++text) {
        if (*text != '\n' && *text != '\r') continue;
        *text = ' ';
        found = 1;
    }
    return found;
}

char* convertNewline(const char* text) {
    if (text == nullptr) return nullptr;
    const std::string_view all(text);
    const auto lineFeeds = static_cast<std::size_t>(std::count(all.begin(), all.end(), '\n'));
    if (lineFeeds == 0) return nullptr;
    auto* const converted = new char[all.size() + lineFeeds + 1];
    char* end = converted;
    for (const char c : all) {
        if (c == '\n') *end++ = '\r';
        *end++ = c;
    }
    *end = '\0';
    return converted;
}
