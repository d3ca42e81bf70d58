// The codec by tables, and the rules of its pieces.  Encoding looks up two characters at a time, by 12 bits;
// decoding looks up each of four characters already shifted to its place, so that a group is three ORs, and a
// bit above the 24 says that one of the four lies outside the alphabet.
// Tests: tests/store/uu_codec_test.cpp.

#include "store/uu_codec.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "store/uu_codec_paths.h"

namespace tarn {
namespace {

constexpr std::size_t groupBytes = 3;
constexpr std::size_t groupCharacters = 4;
constexpr std::uint32_t outsideGroup = 1U << 24;

struct Pair {
    char first, second;
};

struct Tables {
    std::array<Pair, alphabetSize * alphabetSize> pairs{};
    std::array<std::array<std::uint32_t, 256>, groupCharacters> places{};  // the last has the value as it is

    constexpr explicit Tables(std::string_view characters) {
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            pairs[i] = {characters[i / alphabetSize], characters[i % alphabetSize]};
        }
        for (auto& place : places) place.fill(outsideGroup);
        for (std::uint32_t value = 0; value < alphabetSize; ++value) {
            const auto character = static_cast<unsigned char>(characters[value]);
            for (std::size_t i = 0; i < groupCharacters; ++i) places[i][character] = value << (18 - 6 * i);
        }
    }

    [[nodiscard]] std::uint32_t bitsOf(const char* group) const {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(group);
        return places[0][bytes[0]] | places[1][bytes[1]] | places[2][bytes[2]] | places[3][bytes[3]];
    }
    [[nodiscard]] unsigned valueOf(char character) const {
        const std::uint32_t value = places[3][static_cast<unsigned char>(character)];
        return value == outsideGroup ? outsideAlphabet : value;
    }
};

constexpr Tables standardTables(standardCharacters);
constexpr Tables variantTables(variantCharacters);

void putPair(char* target, const Pair& pair) {
    std::memcpy(target, &pair, sizeof pair);
}

// Encodes the bytes and answers the end of the text; a short last group is filled up with 0 bits and pads.
char* encodeChunk(const unsigned char* source, std::size_t length, char* target, char padChar,
                  const Tables& tables) {
    for (; length >= groupBytes; length -= groupBytes, source += groupBytes, target += groupCharacters) {
        const std::uint32_t bits = std::uint32_t{source[0]} << 16 | std::uint32_t{source[1]} << 8 | source[2];
        putPair(target, tables.pairs[bits >> 12]);
        putPair(target + 2, tables.pairs[bits & 0xFFF]);
    }
    if (length == 0) return target;
    const std::uint32_t bits =
        std::uint32_t{source[0]} << 16 | (length == 2 ? std::uint32_t{source[1]} << 8 : 0);
    putPair(target, tables.pairs[bits >> 12]);
    target[2] = length == 2 ? tables.pairs[bits & 0xFFF].first : padChar;
    target[3] = padChar;
    return target + groupCharacters;
}

// Decodes a last group that has one to three characters of the alphabet in front and answers its bytes.  The
// third character alone decides between one and two bytes, also where the second is outside.
std::size_t decodeLastGroup(std::string_view text, unsigned char* target, const Tables& tables) {
    std::array<unsigned, groupCharacters - 1> values{outsideAlphabet, outsideAlphabet, outsideAlphabet};
    const std::size_t present = std::min(text.size(), values.size());
    for (std::size_t i = 0; i < present; ++i) values[i] = tables.valueOf(text[i]);
    if (values[0] == outsideAlphabet) return 0;
    target[0] = static_cast<unsigned char>(values[0] << 2 | values[1] >> 4);
    if (values[2] == outsideAlphabet) return 1;
    target[1] = static_cast<unsigned char>(values[1] << 4 | values[2] >> 2);
    return 2;
}

// decodeGroups by the tables alone.
std::size_t decodeByTables(std::string_view text, unsigned char* target, const Tables& tables) {
    std::size_t done = 0;
    for (; text.size() - done >= groupCharacters; done += groupCharacters, target += groupBytes) {
        const std::uint32_t bits = tables.bitsOf(text.data() + done);
        if ((bits & outsideGroup) != 0) break;
        target[0] = static_cast<unsigned char>(bits >> 16);
        target[1] = static_cast<unsigned char>(bits >> 8);
        target[2] = static_cast<unsigned char>(bits);
    }
    return done;
}

// Decodes one piece and answers its bytes.
std::size_t decodeChunk(std::string_view text, unsigned char* target, const Tables& tables) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    const std::size_t clean = decodeByTables(text, target, tables);
    const std::size_t bytes = clean / groupCharacters * groupBytes;
    return bytes + decodeLastGroup(text.substr(clean), target + bytes, tables);
}

}  // namespace

std::size_t encodeText(const unsigned char* source, std::size_t length, char* target, char padChar,
                       bool standard, VectorLevel level) {
    const std::size_t done = level >= VectorLevel::avx2 ? encodeByAvx2(source, length, target, standard) : 0;
    char* const end = encodeChunk(source + done, length - done, target + done / groupBytes * groupCharacters,
                                  padChar, standard ? standardTables : variantTables);
    *end = '\0';
    return static_cast<std::size_t>(end - target);
}

std::size_t decodeText(std::string_view text, unsigned char* target, bool standard, VectorLevel level) {
    std::size_t bytes = 0;
    while (true) {
        const std::size_t clean =
            level >= VectorLevel::avx2 ? decodeByAvx2(text.data(), text.size(), target + bytes, standard) : 0;
        bytes += clean / groupCharacters * groupBytes;
        text.remove_prefix(clean);
        if (text.empty()) return bytes;
        const std::string_view piece = text.substr(0, decodedPiece);
        bytes += decodeChunk(piece, target + bytes, standard ? standardTables : variantTables);
        text.remove_prefix(piece.size());
    }
}

std::size_t decodeGroups(std::string_view text, unsigned char* target, bool standard, VectorLevel level) {
    const std::size_t fast =
        level >= VectorLevel::avx2 ? decodeByAvx2(text.data(), text.size(), target, standard) : 0;
    return fast + decodeByTables(text.substr(fast), target + fast / groupCharacters * groupBytes,
                                 standard ? standardTables : variantTables);
}

unsigned valueOfCharacter(char character, bool standard) {
    return (standard ? standardTables : variantTables).valueOf(character);
}

}  // namespace tarn

int UUencode(const unsigned char* source, std::uint32_t length, char* target, char padChar,
             int standardAlphabet) {
    constexpr std::uint32_t longest =
        std::numeric_limits<int>::max() / tarn::groupCharacters * tarn::groupBytes;
    if (target == nullptr) return 0;
    target[0] = '\0';
    if (source == nullptr || length > longest) return 0;
    return static_cast<int>(
        tarn::encodeText(source, length, target, padChar, standardAlphabet != 0, tarn::vectorLevel()));
}

int UUdecode(const char* source, unsigned char* target, int /*size*/, int standardAlphabet) {
    constexpr std::size_t stretch =
        256 * tarn::decodedPiece;  // looked through and decoded while it is in the cache
    constexpr std::size_t mostStretches = std::numeric_limits<int>::max() / (stretch / 4 * 3);
    if (source == nullptr || target == nullptr) return 0;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < mostStretches; ++i, source += stretch) {
        const auto* const end = static_cast<const char*>(std::memchr(source, '\0', stretch));
        const std::size_t length = end == nullptr ? stretch : static_cast<std::size_t>(end - source);
        bytes +=
            tarn::decodeText({source, length}, target + bytes, standardAlphabet != 0, tarn::vectorLevel());
        if (end != nullptr) break;
    }
    return static_cast<int>(bytes);
}
