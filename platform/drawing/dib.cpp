// Device-independent bitmaps: rows of pixels of 1, 4, 8, 16, 24 or 32 bits, each row on a multiple of 4
// bytes, from the bottom up where the height is above 0; of 4 and 8 bits also as runs (run_length.h).  Up to
// 8 bits a pixel is an entry of the colour table behind the header; above, masks say which bits are its
// primaries, fixed ones or (BI_BITFIELDS) three words behind the first 40 bytes of the header.
// Tests: tests/present/bitmap_test.cpp.

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "platform/drawing/objects.h"
#include "platform/drawing/packed_bitmap.h"
#include "platform/drawing/run_length.h"
#include "platform/win32.h"

namespace {

using tarn::Bitmap, tarn::ColorTable;

struct ColorMasks {
    DWORD red, green, blue;
};

HBITMAP refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

constexpr ColorMasks masks16{0x7C00, 0x03E0, 0x001F};
constexpr ColorMasks masks32{0xFF0000, 0x00FF00, 0x0000FF};

// What follows from the published fields.
struct Layout {
    BITMAPINFOHEADER header;
    ColorMasks masks;
    std::uint64_t rowBytes;
    std::uint64_t rows;
    std::uint64_t tableEntries;  // colours of the table behind the header
};

bool isReadable(const BITMAPINFOHEADER& header) {
    constexpr WORD depths[] = {1, 4, 8, 16, 24, 32};
    const WORD depth = header.biBitCount;
    if (header.biSize < sizeof header || header.biWidth < 0) return false;
    switch (header.biCompression) {
        case BI_RGB: return std::ranges::find(depths, depth) != std::end(depths);
        case BI_BITFIELDS: return depth == 16 || depth == 32;
        case BI_RLE8: return depth == 8 && header.biHeight >= 0;
        case BI_RLE4: return depth == 4 && header.biHeight >= 0;
        default: return false;
    }
}

bool readLayout(const BITMAPINFOHEADER& header, Layout& layout) {
    layout.header = header;
    if (!isReadable(header)) return false;
    const auto width = static_cast<std::uint64_t>(header.biWidth);
    layout.rowBytes = (width * header.biBitCount + 31) / 32 * 4;
    layout.rows = static_cast<std::uint64_t>(std::abs(std::int64_t{header.biHeight}));
    const std::uint64_t allEntries = header.biBitCount <= 8 ? 1U << header.biBitCount : 0;
    const std::uint64_t used = header.biClrUsed;
    layout.tableEntries = used == 0 ? allEntries : allEntries == 0 ? used : std::min(used, allEntries);
    layout.masks = header.biBitCount == 16 ? masks16 : masks32;
    return true;
}

// A primary of any width as 8 bits: its leading bits, repeated below where there are fewer.
BYTE primary(DWORD pixel, DWORD mask) {
    if (mask == 0) return 0;
    const DWORD value = (pixel & mask) >> std::countr_zero(mask);
    const int width = 32 - std::countl_zero(mask) - std::countr_zero(mask);
    if (width >= 8) return static_cast<BYTE>(value >> (width - 8));
    DWORD bits = value << (8 - width);
    for (int shown = width; shown < 8; shown *= 2) bits |= bits >> shown;
    return static_cast<BYTE>(bits);
}

// Turns pixels of one bitmap into colours.
class PixelReader {
  public:
    PixelReader(const Layout& layout, const unsigned char* info)
        : depth_(layout.header.biBitCount), masks_(layout.masks) {
        if (depth_ > 8) return;
        const auto entries = static_cast<std::size_t>(layout.tableEntries);
        const unsigned char* entry = info + layout.header.biSize;
        for (std::size_t i = 0; i < entries; ++i, entry += 4) table_[i] = RGB(entry[2], entry[1], entry[0]);
    }

    [[nodiscard]] COLORREF read(const unsigned char* row, std::size_t x) const {
        if (depth_ <= 8) {
            const std::size_t bit = x * depth_;
            const unsigned shift = 8U - depth_ - static_cast<unsigned>(bit % 8);
            return table_[(row[bit / 8] >> shift) & ((1U << depth_) - 1)];
        }
        const std::size_t bytes = depth_ / 8;
        DWORD pixel = 0;
        for (std::size_t i = 0; i < bytes; ++i) pixel |= DWORD{row[x * bytes + i]} << (8 * i);
        return RGB(primary(pixel, masks_.red), primary(pixel, masks_.green), primary(pixel, masks_.blue));
    }

    [[nodiscard]] const ColorTable& table() const { return table_; }

  private:
    unsigned depth_;
    ColorMasks masks_;
    ColorTable table_ = {};  // entries that the file leaves out are black
};

void decode(const Layout& layout, const unsigned char* info, const unsigned char* pixels,
            const Bitmap& bitmap) {
    const PixelReader reader(layout, info);
    if (tarn::isRunLength(layout.header)) {
        decodeRuns({pixels, layout.header.biSizeImage}, layout.header.biBitCount, reader.table(), bitmap);
        return;
    }
    for (std::int32_t y = 0; y < bitmap.height; ++y) {
        const auto line = static_cast<std::uint64_t>(layout.header.biHeight < 0 ? y : bitmap.height - 1 - y);
        const unsigned char* source = pixels + line * layout.rowBytes;
        COLORREF* row = bitmap.row(y);
        for (std::int32_t x = 0; x < bitmap.width; ++x) {
            row[x] = bitmap.shown(reader.read(source, static_cast<std::size_t>(x)));
        }
    }
}

// A few runs can claim a picture of any size; every pixel that they cover is paid for by its part of a run.
bool isInProportion(const Layout& layout) {
    constexpr std::uint64_t sparePixels = 16U << 20;
    constexpr std::uint64_t pixelsPerByte = 128;  // two bytes are a run of 255 pixels at most
    if (!tarn::isRunLength(layout.header)) return true;
    const std::uint64_t most = sparePixels + pixelsPerByte * layout.header.biSizeImage;
    return layout.rows == 0 || static_cast<std::uint64_t>(layout.header.biWidth) <= most / layout.rows;
}

HBITMAP decodeNew(const Layout& layout, const unsigned char* info, const unsigned char* pixels,
                  bool monochrome) {
    if (!isInProportion(layout)) return refuse();
    const HBITMAP handle = tarn::makeBitmap(layout.header.biWidth, layout.header.biHeight, monochrome);
    const auto* bitmap = tarn::findDrawing<Bitmap>(handle);
    const bool empty = layout.header.biWidth == 0 || layout.rows == 0;
    if (bitmap != nullptr && !empty) decode(layout, info, pixels, *bitmap);
    return handle;
}

bool fits(const Layout& layout, std::uint64_t room) {
    if (tarn::isRunLength(layout.header)) return layout.header.biSizeImage <= room;
    return layout.rows == 0 || layout.rowBytes <= room / layout.rows;
}

}  // namespace

HBITMAP CreateDIBitmap(HDC context, const BITMAPINFOHEADER* header, DWORD flags, const void* pixels,
                       const BITMAPINFO* info, UINT usage) {
    if (header == nullptr || header->biSize < sizeof *header || header->biWidth < 0) return refuse();
    if (context != nullptr && !tarn::isDeviceContext(context)) return refuse();
    const bool monochrome = tarn::drawsMonochrome(context);
    if ((flags & CBM_INIT) == 0) return tarn::makeBitmap(header->biWidth, header->biHeight, monochrome);
    Layout layout;
    if (pixels == nullptr || info == nullptr || usage != DIB_RGB_COLORS) return refuse();
    BITMAPINFOHEADER described;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(info);
    std::memcpy(&described, bytes, sizeof described);
    if (!readLayout(described, layout)) return refuse();
    if (described.biCompression == BI_BITFIELDS)
        std::memcpy(&layout.masks, bytes + sizeof described, sizeof layout.masks);
    if (tarn::hasUnmeasuredRuns(described) || described.biWidth != header->biWidth ||
        described.biHeight != header->biHeight)
        return refuse();
    return decodeNew(layout, bytes, static_cast<const unsigned char*>(pixels), monochrome);
}

HBITMAP tarn::loadPackedBitmap(const unsigned char* data, std::size_t size) {
    Layout layout;
    if (size < packedHeaderSize || !readLayout(packedHeader(data), layout)) return refuse();
    const std::uint64_t offset = packedTableOffset(layout.header) + layout.tableEntries * sizeof(RGBQUAD);
    if (offset > size) return refuse();
    if (hasUnmeasuredRuns(layout.header)) layout.header.biSizeImage = static_cast<DWORD>(size - offset);
    if (!fits(layout, size - offset)) return refuse();
    if (layout.header.biCompression == BI_BITFIELDS) {
        const unsigned char* const masks = data + packedHeaderSize;
        layout.masks = {loadWord(masks), loadWord(masks + 4), loadWord(masks + 8)};
    }
    return decodeNew(layout, data, data + offset, false);
}
