#pragma once

// The paths of store/uu_codec.h called alike, for tests and fuzz targets: each has a buffer of just the length
// that it needs, so that the address checks see a byte too many.

#include <string>
#include <string_view>
#include <vector>

#include "store/uu_codec_paths.h"

namespace tarnplain {

inline std::string_view alphabetOf(bool standard) {
    return standard ? tarn::standardCharacters : tarn::variantCharacters;
}

inline std::string decodedBy(tarn::VectorLevel level, const std::string& text, bool standard) {
    std::vector<unsigned char> bytes((text.size() + 3) / 4 * 3);
    const std::size_t length = tarn::decodeText(text, bytes.data(), standard, level);
    return {bytes.data(), bytes.data() + length};
}

// With the NUL behind the text.
inline std::string encodedBy(tarn::VectorLevel level, const std::string& bytes, char pad, bool standard) {
    std::vector<char> text((bytes.size() + 2) / 3 * 4 + 1, 'x');
    const auto* const source = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto length = tarn::encodeText(source, bytes.size(), text.data(), pad, standard, level);
    return {text.data(), static_cast<std::size_t>(length) + 1};
}

}  // namespace tarnplain
