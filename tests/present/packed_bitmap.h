#pragma once

// A packed device-independent bitmap for tests: header, colour table, pixels, with a colour for every place
// that is worked out apart from any decoder.

#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/win32.h"

namespace tarntest {

struct PackedBitmap {
    int depth, width, height;  // a height below 0: rows from the top
    std::size_t pixelOffset;
    std::vector<unsigned char> bytes;

    PackedBitmap(int bits, int columns, int rows) : depth(bits), width(columns), height(rows) {
        const int colors = bits <= 8 ? 1 << bits : 0;
        BITMAPINFOHEADER header{};
        header.biSize = sizeof header;
        header.biWidth = columns;
        header.biHeight = rows;
        header.biPlanes = 1;
        header.biBitCount = static_cast<WORD>(bits);
        pixelOffset = sizeof header + static_cast<std::size_t>(4 * colors);
        const auto rowBytes = static_cast<std::size_t>((columns * bits + 31) / 32 * 4);
        bytes.resize(pixelOffset + rowBytes * static_cast<std::size_t>(std::abs(rows)));
        std::memcpy(bytes.data(), &header, sizeof header);
        for (int i = 0; i < colors; ++i) {
            const RGBQUAD entry{tableColor(i, 3), tableColor(i, 2), tableColor(i, 1), 0};
            std::memcpy(bytes.data() + sizeof header + 4 * i, &entry, sizeof entry);
        }
        for (int y = 0; y < std::abs(rows); ++y) {
            const int line = rows < 0 ? y : rows - 1 - y;
            for (int x = 0; x < columns; ++x)
                put(pixelOffset + rowBytes * static_cast<std::size_t>(line), x, y);
        }
    }

    // What stands at this place, counted from the top left.
    [[nodiscard]] COLORREF color(int x, int y) const {
        const unsigned value = valueAt(x, y);
        if (depth <= 8) {
            const int entry = static_cast<int>(value);
            return RGB(tableColor(entry, 1), tableColor(entry, 2), tableColor(entry, 3));
        }
        if (depth > 16) return RGB(value >> 16, value >> 8, value);
        const auto widened = [value](int shift) {
            const unsigned five = value >> shift & 31U;
            return five << 3 | five >> 2;
        };
        return RGB(widened(10), widened(5), widened(0));
    }

    static BYTE tableColor(int entry, int primary) {
        return static_cast<BYTE>(entry * 37 * primary + 11 * primary);
    }

  private:
    [[nodiscard]] unsigned valueAt(int x, int y) const {
        const auto mixed = static_cast<unsigned>(x * 7919 + y * 104729 + x * y * 31);
        return depth > 16 ? mixed * 2654435761U >> 8 : mixed & ((1U << depth) - 1);
    }

    void put(std::size_t row, int x, int y) {
        const unsigned value = valueAt(x, y);
        if (depth < 8) {
            const int perByte = 8 / depth;
            bytes[row + static_cast<std::size_t>(x / perByte)] |=
                static_cast<unsigned char>(value << (8 - depth - x % perByte * depth));
            return;
        }
        for (int i = 0; i < depth / 8; ++i) {
            bytes[row + static_cast<std::size_t>(x * depth / 8 + i)] =
                static_cast<unsigned char>(value >> (8 * i));
        }
    }
};

}  // namespace tarntest
