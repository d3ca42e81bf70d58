#pragma once

// The slow plain form of store/scramble.h, for tests and fuzz targets.

#include <cstdint>
#include <string>
#include <utility>

#include "store/scramble.h"

namespace tarnplain {

// The steps of scrambling, one by one.
inline void scramble(std::string& data, std::size_t size) {
    for (std::size_t block = 0; block < size / 16; ++block) {
        const std::size_t span = block * 16 - (block == 0 ? 0 : 1);
        for (std::size_t k = 0; k < 16; ++k) {
            const std::uint8_t entry = tarn::scrambleTable[k];
            char& p = data[span + k];
            char& q = data[span + entry];
            std::swap(p, q);
            p = static_cast<char>(p + entry);
            q = static_cast<char>(q + entry);
        }
    }
}

}  // namespace tarnplain
