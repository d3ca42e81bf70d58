// Device-independent bitmaps: rows of pixels of 1, 4, 8, 16, 24 or 32 bits, each row on a multiple of 4
// bytes, from the bottom up where the height is above 0.  Up to 8 bits a pixel is an entry of the colour
// table behind the header; above, masks say which bits are its primaries, fixed ones or (BI_BITFIELDS) three
// words behind the first 40 bytes of the header.  Run-length encoded pixels aren't read.
// Tests: tests/platform/screen_test.cpp, tests/present/bitmap_test.cpp.

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "platform/drawing/objects.h"
#include "platform/drawing/packed_bitmap.h"
#include "platform/win32.h"

namespace {

using tarn::Bitmap;

struct ColorMasks {
    DWORD red, green, blue;
};

constexpr ColorMasks masks16{0x7C00, 0x03E0, 0x001F};
constexpr ColorMasks masks32{0xFF0000, 0x00FF00, 0x0000FF};

// What follows from the published fields.
struct Layout {
    BITMAPINFOHEADER header;
    ColorMasks masks;
    std::uint64_t rowBytes;
    std::uint64_t rows;
    std::uint64_t tableEntries;  // colours of the table behind the header
    std::uint64_t masksBehind;   // bytes of masks between a header of 40 bytes and the table
};

bool readLayout(const BITMAPINFOHEADER& header, Layout& layout) {
    layout.header = header;
    constexpr WORD depths[] = {1, 4, 8, 16, 24, 32};
    const bool maskedDepth = header.biBitCount == 16 || header.biBitCount == 32;
    const bool readable =
        header.biSize >= sizeof header && header.biWidth >= 0 &&
        std::ranges::find(depths, header.biBitCount) != std::end(depths) &&
        (header.biCompression == BI_RGB || (header.biCompression == BI_BITFIELDS && maskedDepth));
    if (!readable) return false;
    const auto width = static_cast<std::uint64_t>(header.biWidth);
    layout.rowBytes = (width * header.biBitCount + 31) / 32 * 4;
    layout.rows = static_cast<std::uint64_t>(std::abs(std::int64_t{header.biHeight}));
    const std::uint64_t allEntries = header.biBitCount <= 8 ? 1U << header.biBitCount : 0;
    const std::uint64_t used = header.biClrUsed;
    layout.tableEntries = used == 0 ? allEntries : allEntries == 0 ? used : std::min(used, allEntries);
    layout.masksBehind =
        header.biCompression == BI_BITFIELDS && header.biSize == sizeof header ? tarn::packedMasksSize : 0;
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

  private:
    unsigned depth_;
    ColorMasks masks_;
    COLORREF table_[256] = {};  // entries that the file leaves out are black
};

void decode(const Layout& layout, const unsigned char* info, const unsigned char* pixels,
            const Bitmap& bitmap) {
    const PixelReader reader(layout, info);
    for (std::int32_t y = 0; y < bitmap.height; ++y) {
        const auto line = static_cast<std::uint64_t>(layout.header.biHeight < 0 ? y : bitmap.height - 1 - y);
        const unsigned char* source = pixels + line * layout.rowBytes;
        COLORREF* row = bitmap.row(y);
        for (std::int32_t x = 0; x < bitmap.width; ++x) {
            row[x] = bitmap.shown(reader.read(source, static_cast<std::size_t>(x)));
        }
    }
}

HBITMAP decodeNew(const Layout& layout, const unsigned char* info, const unsigned char* pixels,
                  bool monochrome) {
    const HBITMAP handle = tarn::makeBitmap(layout.header.biWidth, layout.header.biHeight, monochrome);
    const auto* bitmap = tarn::findDrawing<Bitmap>(handle);
    const bool empty = layout.header.biWidth == 0 || layout.rows == 0;
    if (bitmap != nullptr && !empty) decode(layout, info, pixels, *bitmap);
    return handle;
}

HBITMAP refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
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
    if (layout.header.biWidth != header->biWidth || layout.header.biHeight != header->biHeight)
        return refuse();
    return decodeNew(layout, bytes, static_cast<const unsigned char*>(pixels), monochrome);
}

HBITMAP tarn::loadPackedBitmap(const unsigned char* data, std::size_t size) {
    Layout layout;
    if (size < packedHeaderSize || !readLayout(packedHeader(data), layout)) return refuse();
    if (layout.header.biCompression == BI_BITFIELDS) {
        if (size < packedHeaderSize + packedMasksSize) return refuse();
        const unsigned char* const masks = data + packedHeaderSize;
        layout.masks = {loadWord(masks), loadWord(masks + 4), loadWord(masks + 8)};
    }
    const std::uint64_t offset =
        layout.header.biSize + layout.masksBehind + layout.tableEntries * sizeof(RGBQUAD);
    if (offset > size || (layout.rows != 0 && layout.rowBytes > (size - offset) / layout.rows))
        return refuse();
    return decodeNew(layout, data, data + offset, false);
}
