#pragma once

// The slow plain form of store/uu_codec.h, for tests and fuzz targets, and the codec's own paths called alike.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "store/uu_codec_paths.h"

namespace tarnplain {

inline std::string_view alphabetOf(bool standard) {
    return standard ? tarn::standardCharacters : tarn::variantCharacters;
}

// RFC 4648 in its own words: groups of 24 bits, cut into four of 6.
inline std::string encoded(const std::string& bytes, char pad, bool standard) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::string group = (bytes.substr(at, 3) + std::string(2, '\0')).substr(0, 3);
        unsigned bits = 0;
        for (const char byte : group) bits = bits << 8 | static_cast<unsigned char>(byte);
        for (std::size_t i = 0; i < 4; ++i) {
            text += at + i > bytes.size() ? pad : alphabetOf(standard)[bits >> (18 - 6 * i) & 63];
        }
    }
    return text;
}

// One piece, character by character.
inline std::string decodedPiece(std::string piece, bool standard) {
    piece.erase(0, std::min(piece.find_first_not_of(" \t"), piece.size()));
    const auto value = [&](std::size_t i) {
        const std::size_t at = i < piece.size() ? alphabetOf(standard).find(piece[i]) : std::string::npos;
        return static_cast<unsigned>(at == std::string::npos ? 64 : at);
    };
    std::size_t count = 0;
    while (value(count) != 64) ++count;
    const std::size_t groups = (count + 3) / 4;
    std::string bytes;
    for (std::size_t i = 0; i < 4 * groups; i += 4) {
        bytes += static_cast<char>(value(i) << 2 | value(i + 1) >> 4);
        bytes += static_cast<char>(value(i + 1) << 4 | value(i + 2) >> 2);
        bytes += static_cast<char>(value(i + 2) << 6 | value(i + 3));
    }
    if (count % 4 != 0) bytes.erase(3 * groups - (value(4 * groups - 2) != 64 ? 1 : 2));
    return bytes;
}

inline std::string decoded(const std::string& text, bool standard) {
    if (text.size() < 64) return decodedPiece(text, standard);
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += 64) bytes += decodedPiece(text.substr(at, 64), standard);
    return bytes;
}

// What a call writes into a buffer of `room` bytes and answers the length of.
template <class Call>
std::string written(std::size_t room, Call call) {
    constexpr unsigned char guard = 0x5A;
    std::vector<unsigned char> buffer(room + 64, guard);
    const std::size_t length = call(buffer.data());
    const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(room);
    const bool keptWithin = std::count(end, buffer.end(), guard) == buffer.end() - end;
    return keptWithin ? std::string(buffer.data(), buffer.data() + length) : "written beyond the buffer";
}

inline std::string decodedBy(tarn::VectorLevel level, const std::string& text, bool standard) {
    return written((text.size() + 3) / 4 * 3,
                   [&](unsigned char* target) { return tarn::decodeText(text, target, standard, level); });
}

// With the NUL behind the text.
inline std::string encodedBy(tarn::VectorLevel level, const std::string& bytes, char pad, bool standard) {
    return written((bytes.size() + 2) / 3 * 4 + 1, [&](unsigned char* target) {
        const auto* const source = reinterpret_cast<const unsigned char*>(bytes.data());
        return tarn::encodeText(source, bytes.size(), reinterpret_cast<char*>(target), pad, standard, level) +
               1;
    });
}

}  // namespace tarnplain
