#pragma once

// Internal: the classes of characters as the "C" locale has them, whatever locale the program has set.

namespace tarn {

constexpr bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The letters fold to lower case by one bit.
constexpr char lowerLetter(char c) {
    return static_cast<char>(c | 0x20);
}

constexpr bool isLetter(char c) {
    return lowerLetter(c) >= 'a' && lowerLetter(c) <= 'z';
}

}  // namespace tarn
