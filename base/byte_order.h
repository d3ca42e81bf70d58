#pragma once

// Internal: the byte order of the library's files.  Every number in a file is little-endian and may lie at
// any address; it is read and written byte by byte, which compilers turn into one move.

#include <cstddef>
#include <cstdint>

namespace tarn {

// The low `width` bytes of a number, lowest first.
inline std::uint64_t loadLittleEndian(const unsigned char* bytes, std::size_t width) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < width; ++i) number |= std::uint64_t{bytes[i]} << (8 * i);
    return number;
}

inline void storeLittleEndian(unsigned char* bytes, std::uint64_t number, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) bytes[i] = static_cast<unsigned char>(number >> (8 * i));
}

inline std::uint32_t loadWord(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(loadLittleEndian(bytes, 4));
}

inline void storeWord(unsigned char* bytes, std::uint32_t word) {
    storeLittleEndian(bytes, word, 4);
}

}  // namespace tarn
