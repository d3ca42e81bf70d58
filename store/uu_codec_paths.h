#pragma once

// The parts of the codec and its ways for different processors; users want store/uu_codec.h.
//
// Threads: no state.

#include <cstddef>
#include <string_view>

#include "base/processor.h"

namespace tarn {

constexpr std::size_t alphabetSize = 64;
inline constexpr std::string_view standardCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr std::string_view variantCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789?_";

constexpr std::size_t decodedPiece = 64;  // characters that are decoded by themselves

// Encode and decode by the instructions of a level that the machine has; the contracts are those of UUencode
// and UUdecode for usable arguments.
std::size_t encodeText(const unsigned char* source, std::size_t length, char* target, char padChar,
                       bool standard, VectorLevel level);
std::size_t decodeText(std::string_view text, unsigned char* target, bool standard, VectorLevel level);

// Decodes whole groups from the front, as long as they hold nothing but the alphabet, and answers how many
// characters they were; three bytes are written for each four.
std::size_t decodeGroups(std::string_view text, unsigned char* target, bool standard, VectorLevel level);

// The value of a character, 64 for one outside the alphabet.
constexpr unsigned outsideAlphabet = 64;
unsigned valueOfCharacter(char character, bool standard);

// Encode whole groups from the front and answer how many bytes they were.
std::size_t encodeByAvx2(const unsigned char* source, std::size_t length, char* target, bool standard);

// Decode whole pieces from the front, as long as they hold nothing but the alphabet, and answer how many
// characters they were.
std::size_t decodeByAvx2(const char* text, std::size_t length, unsigned char* target, bool standard);

}  // namespace tarn
