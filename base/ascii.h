#pragma once

// Internal: the classes of characters in the "C" locale, whatever locale the program has set, and the
// library's only folding of letters: A to Z become a to z, every other byte stays.

namespace tarn {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// A blank, a tab, or one of the four characters that end a line or a page.
constexpr bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool isLetter(char c) {
    return toLower(c) >= 'a' && toLower(c) <= 'z';
}

constexpr bool isHexDigit(char c) {
    return isDigit(c) || (toLower(c) >= 'a' && toLower(c) <= 'f');
}

}  // namespace tarn
