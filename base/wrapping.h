#pragma once

// Internal: sums and differences that wrap at 32 bits on purpose: of keys, row numbers and compared values.

#include <cstdint>

namespace tarn {

inline std::int32_t wrappingSum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline std::int32_t wrappingDifference(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

}  // namespace tarn
