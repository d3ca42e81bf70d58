#pragma once

// The slow plain form of store/uu_codec.h, for tests and fuzz targets.

#include <string>
#include <string_view>

#include "store/uu_codec_paths.h"

namespace tarnplain {

inline std::string_view alphabetOf(bool standard) {
    return standard ? tarn::standardCharacters : tarn::variantCharacters;
}

// The told rules for one piece, character by character.
inline std::string decodedPiece(const std::string& piece, std::string_view alphabet) {
    std::size_t start = 0;
    while (start < piece.size() && (piece[start] == ' ' || piece[start] == '\t')) ++start;
    const auto value = [&](std::size_t i) {
        const std::size_t at = start + i < piece.size() ? alphabet.find(piece[start + i]) : std::string::npos;
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

inline std::string decoded(const std::string& text, std::string_view alphabet) {
    if (text.size() < 64) return decodedPiece(text, alphabet);
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += 64) bytes += decodedPiece(text.substr(at, 64), alphabet);
    return bytes;
}

}  // namespace tarnplain
