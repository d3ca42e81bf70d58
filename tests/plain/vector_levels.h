#pragma once

// The processor's vector levels, for tests and fuzz targets of the paths that use them.

#include <vector>

#include "base/processor.h"

namespace tarnplain {

inline std::vector<tarn::VectorLevel> vectorLevels() {
    std::vector<tarn::VectorLevel> all;
    using enum tarn::VectorLevel;
    for (const auto level : {none, ssse3, avx2}) {
        if (level <= tarn::vectorLevel()) all.push_back(level);
    }
    return all;
}

}  // namespace tarnplain
