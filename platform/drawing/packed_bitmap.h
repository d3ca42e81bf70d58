#pragma once

// Internal: the numbers of a packed device-independent bitmap, the form of resources and files: header,
// colour table or masks, pixels.  There they are little-endian at any address, while CreateDIBitmap takes a
// header of the machine's own.  For the layer and for present/bitmap.cpp.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "base/byte_order.h"
#include "platform/win32.h"

namespace tarn {

constexpr std::size_t packedHeaderSize = sizeof(BITMAPINFOHEADER);
constexpr std::size_t packedMasksSize = 3 * sizeof(DWORD);  // at packedHeaderSize, with BI_BITFIELDS

// The header at the front of a packed bitmap of at least packedHeaderSize bytes.
inline BITMAPINFOHEADER packedHeader(const unsigned char* packed) {
    const auto word = [packed](std::size_t index) { return loadWord(packed + 4 * index); };
    const auto signedWord = [word](std::size_t index) { return static_cast<LONG>(word(index)); };
    BITMAPINFOHEADER header;
    header.biSize = word(0);
    header.biWidth = signedWord(1);
    header.biHeight = signedWord(2);
    header.biPlanes = static_cast<WORD>(word(3));
    header.biBitCount = static_cast<WORD>(word(3) >> 16);
    header.biCompression = word(4);
    header.biSizeImage = word(5);
    header.biXPelsPerMeter = signedWord(6);
    header.biYPelsPerMeter = signedWord(7);
    header.biClrUsed = word(8);
    header.biClrImportant = word(9);
    return header;
}

// Where the colour table begins: behind the header, and behind the masks where the header is too short for
// them.
inline std::uint64_t packedTableOffset(const BITMAPINFOHEADER& header) {
    const bool masked = header.biCompression == BI_BITFIELDS;
    return std::max<std::uint64_t>(header.biSize, packedHeaderSize + (masked ? packedMasksSize : 0));
}

inline bool isRunLength(const BITMAPINFOHEADER& header) {
    return header.biCompression == BI_RLE8 || header.biCompression == BI_RLE4;
}

// Runs whose size the header leaves out: in a packed bitmap they end with it.
inline bool hasUnmeasuredRuns(const BITMAPINFOHEADER& header) {
    return isRunLength(header) && header.biSizeImage == 0;
}

}  // namespace tarn
