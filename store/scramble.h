#pragma once

// The scramble table, and scrambling by a chosen set of vector instructions; users want store/file_tools.h.
//
// Threads: no shared state.

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/processor.h"

namespace tarn {

constexpr std::size_t scrambleBlock = 16;

// On disk: a file can only be unscrambled with the table that scrambled it.  The table has no fixed point, so
// that every step swaps two bytes; of such tables it is one whose steps together have the properties that
// scramble_forms.h asserts.
inline constexpr std::array<std::uint8_t, scrambleBlock> scrambleTable{6,  13, 10, 5, 2, 15, 8,  4,
                                                                       14, 1,  0,  3, 9, 7,  11, 12};

// Scramble or unscramble `size` / 16 blocks in place, by the vector instructions of a level that the machine
// has.
void scrambleBytes(char* data, std::size_t size, VectorLevel level);
void unscrambleBytes(char* data, std::size_t size, VectorLevel level);

}  // namespace tarn
