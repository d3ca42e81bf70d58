#pragma once

// A packed device-independent bitmap for tests: header, colour table and pixels of fixed random bytes, and
// the colour at every place, read bit by bit.

#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "platform/win32.h"

namespace tarntest {

struct PackedBitmap {
    std::size_t depth, rowBytes, pixelOffset;
    int height;                            // below 0: rows from the top
    std::vector<unsigned char> bytes;      // as in a resource, little-endian
    std::vector<unsigned char> described;  // with a header of the machine's own

    PackedBitmap(int bits, int columns, int rows)
        : depth(static_cast<std::size_t>(bits)),
          rowBytes(static_cast<std::size_t>((columns * bits + 31) / 32 * 4)),
          pixelOffset(sizeof(BITMAPINFOHEADER) + (bits <= 8 ? std::size_t{4} << bits : 0)),
          height(rows),
          bytes(pixelOffset + rowBytes * static_cast<std::size_t>(std::abs(rows))) {
        std::mt19937 random(static_cast<unsigned>(bits));
        for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
        const auto depthWord = static_cast<WORD>(bits);
        const BITMAPINFOHEADER header{sizeof header, columns, rows, 1, depthWord, 0, 0, 0, 0, 0, 0};
        const std::int64_t words[10] = {sizeof header, columns, rows, 1 + (bits << 16)};
        for (std::size_t i = 0; i < sizeof header; ++i)
            bytes[i] = static_cast<unsigned char>(words[i / 4] >> (8 * (i % 4)));
        described = bytes;
        std::memcpy(described.data(), &header, sizeof header);
    }

    [[nodiscard]] const BITMAPINFO* info() const {
        return reinterpret_cast<const BITMAPINFO*>(described.data());
    }
    [[nodiscard]] COLORREF tableColor(std::size_t entry) const {
        const unsigned char* color = bytes.data() + sizeof(BITMAPINFOHEADER) + 4 * entry;
        return RGB(color[2], color[1], color[0]);
    }
    // The colour at a place counted from the top left.
    [[nodiscard]] COLORREF color(std::size_t x, int y) const {
        const auto line = static_cast<std::size_t>(height < 0 ? y : height - 1 - y);
        const unsigned char* row = bytes.data() + pixelOffset + line * rowBytes;
        std::size_t value = 0;
        for (std::size_t bit = x * depth; depth <= 8 && bit < (x + 1) * depth; ++bit)
            value = value << 1 | (row[bit / 8] >> (7 - bit % 8) & 1U);
        if (depth <= 8) return tableColor(value);
        for (std::size_t i = 0; i < depth / 8; ++i) value |= std::size_t{row[x * depth / 8 + i]} << 8 * i;
        if (depth > 16) return RGB(value >> 16, value >> 8, value);
        const auto widened = [value](int shift) { return (value >> shift & 31) * 33 / 4; };
        return RGB(widened(10), widened(5), widened(0));
    }
};

}  // namespace tarntest
