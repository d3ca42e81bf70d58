#pragma once

// A packed device-independent bitmap for tests: header, colour table and pixels of fixed random bytes, and
// its colours, read bit by bit; and the pixels of a bitmap that was made of one.

#include <cstdlib>
#include <random>
#include <vector>

#include "base/byte_order.h"
#include "platform/win32.h"

namespace tarntest {

struct PackedBitmap {
    std::size_t depth, width;
    int height;  // below 0: rows from the top
    std::size_t rowBytes = (width * depth + 31) / 32 * 4;
    std::size_t pixelOffset = sizeof(BITMAPINFOHEADER) + (depth <= 8 ? std::size_t{4} << depth : 0);
    std::vector<unsigned char> bytes;  // as in a resource, little-endian

    PackedBitmap(int bits, int columns, int rows)
        : depth(static_cast<std::size_t>(bits)), width(static_cast<std::size_t>(columns)), height(rows) {
        bytes.resize(pixelOffset + rowBytes * static_cast<std::size_t>(std::abs(rows)));
        std::mt19937 random(static_cast<unsigned>(bits));
        for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
        const auto word = [](int value) { return static_cast<DWORD>(value); };
        setWords(0, {sizeof(BITMAPINFOHEADER), word(columns), word(rows), word(1 + (bits << 16)), 0, 0, 0, 0,
                     0, 0});
    }

    // Changes words of the header: 0 its size, 1 the width, 2 the height, 4 the compression, 5 the bytes of
    // the pixels, 10 to 12 the masks.
    void setWords(std::size_t first, const std::vector<DWORD>& values) {
        for (const DWORD value : values) tarn::storeWord(bytes.data() + 4 * first++, value);
    }

    [[nodiscard]] COLORREF tableColor(std::size_t entry) const {
        const unsigned char* color = bytes.data() + sizeof(BITMAPINFOHEADER) + 4 * entry;
        return RGB(color[2], color[1], color[0]);
    }
    // The colours of all pixels, row by row from the top left.
    [[nodiscard]] std::vector<COLORREF> colors() const {
        std::vector<COLORREF> all;
        for (int y = 0; y < std::abs(height); ++y)
            for (std::size_t x = 0; x < width; ++x) all.push_back(color(x, height < 0 ? y : height - 1 - y));
        return all;
    }

  private:
    [[nodiscard]] COLORREF color(std::size_t x, int line) const {
        const std::size_t place = static_cast<std::size_t>(line) * rowBytes + x * depth / 8;
        const unsigned char* const pixel = &bytes[pixelOffset + place];
        if (depth <= 8) return tableColor(*pixel >> (8 - depth - x * depth % 8) & ((1U << depth) - 1));
        const std::uint64_t value = tarn::loadLittleEndian(pixel, depth / 8);
        if (depth > 16) return RGB(value >> 16, value >> 8, value);
        const auto widened = [value](int shift) { return (value >> shift & 31) * 33 / 4; };
        return RGB(widened(10), widened(5), widened(0));
    }
};

// All pixels of a bitmap, row by row from the top left, as a memory device context shows them; none for NULL.
inline std::vector<COLORREF> pixelsOf(HBITMAP bitmap) {
    std::vector<COLORREF> pixels;
    BITMAP size{};
    GetObjectA(bitmap, sizeof size, &size);
    const HDC context = CreateCompatibleDC(nullptr);
    SelectObject(context, bitmap);
    for (int y = 0; y < size.bmHeight; ++y)
        for (int x = 0; x < size.bmWidth; ++x) pixels.push_back(GetPixel(context, x, y));
    DeleteDC(context);
    return pixels;
}

}  // namespace tarntest
