#pragma once

// A slow plain decoder for tests and fuzz targets of store/uu_codec.h, and the codec's paths called alike.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "store/uu_codec_paths.h"

namespace tarnplain {

inline std::string_view alphabetOf(bool standard) {
    return standard ? tarn::standardCharacters : tarn::variantCharacters;
}

// Piece by piece.  A group is 24 bits, four characters of 6 each; one outside the alphabet counts as 64.
inline std::string decoded(const std::string& text, bool standard) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += tarn::decodedPiece) {
        std::string piece = text.substr(at, tarn::decodedPiece);
        piece.erase(0, std::min(piece.find_first_not_of(" \t"), piece.size()));
        const std::size_t count = std::min(piece.find_first_not_of(alphabetOf(standard)), piece.size());
        piece.append(3, '\0');
        const auto value = [&](std::size_t i) {
            return static_cast<unsigned>(std::min<std::size_t>(alphabetOf(standard).find(piece[i]), 64));
        };
        for (std::size_t i = 0; i < count; i += 4) {
            const unsigned bits = value(i) << 18 | value(i + 1) << 12 | value(i + 2) << 6 | value(i + 3);
            for (const int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift);
        }
        if (count % 4 != 0) bytes.erase(bytes.size() - (value(count / 4 * 4 + 2) != 64 ? 1 : 2));
    }
    return bytes;
}

// What a call writes into a buffer of `room` bytes and answers the length of.
template <class Call>
std::string written(std::size_t room, Call call) {
    constexpr unsigned char guard = 0x5A;
    std::vector<unsigned char> buffer(room + 64, guard);
    const auto length = static_cast<std::size_t>(call(buffer.data()));
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
        auto* const text = reinterpret_cast<char*>(target);
        return tarn::encodeText(source, bytes.size(), text, pad, standard, level) + 1;
    });
}

}  // namespace tarnplain
