// Bitmaps, palettes and brushes: making them, reading them back, deleting them.
// Tests: tests/platform/screen_test.cpp.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "platform/drawing/objects.h"
#include "platform/win32.h"

namespace {

using tarn::Bitmap;
using tarn::Brush;
using tarn::DrawingObject;
using tarn::Palette;

constinit tarn::HandleTable<DrawingObject> table{tarn::HandleFamily::drawingObject};

constexpr std::int64_t mostBitmapBytes = std::numeric_limits<std::int32_t>::max();
constexpr COLORREF colorBits = 0xFFFFFF;
constexpr COLORREF white = 0xFFFFFF;

HANDLE openObject(DrawingObject object, tarn::Counted counted = tarn::Counted::yes) {
    const HANDLE handle = table.open(std::make_unique<DrawingObject>(std::move(object)), counted);
    if (handle == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}

int refuse(DWORD code) {
    SetLastError(code);
    return 0;
}

int describeBitmap(const Bitmap& bitmap, int size, void* out) {
    constexpr int wanted = sizeof(BITMAP);
    if (out == nullptr) return wanted;
    if (size < wanted) return refuse(ERROR_INVALID_PARAMETER);
    const WORD depth = bitmap.monochrome ? 1 : 32;
    const std::int64_t rowBytes = (std::int64_t{bitmap.width} * depth + 15) / 16 * 2;
    const BITMAP description{0, bitmap.width, bitmap.height, static_cast<LONG>(rowBytes), 1, depth, nullptr};
    std::memcpy(out, &description, sizeof description);
    return wanted;
}

int describePalette(const Palette& palette, int size, void* out) {
    constexpr int wanted = sizeof(WORD);
    if (out == nullptr) return wanted;
    if (size < wanted) return refuse(ERROR_INVALID_PARAMETER);
    const auto count = static_cast<WORD>(palette.entries.size());
    std::memcpy(out, &count, sizeof count);
    return wanted;
}

}  // namespace

namespace tarn {

HandleTable<DrawingObject>& drawingObjects() {
    return table;
}

// The nearer of black and white, by the luminance of the primaries.
COLORREF Bitmap::shown(COLORREF color) const {
    if (!monochrome) return color & colorBits;
    const COLORREF red = color & 0xFF, green = color >> 8 & 0xFF, blue = color >> 16 & 0xFF;
    return 299 * red + 587 * green + 114 * blue >= 1000 * 128 ? white : 0;
}

HBITMAP makeBitmap(std::int32_t width, std::int32_t height, bool monochrome, Counted counted) {
    const std::int64_t columns = std::abs(std::int64_t{width});
    const std::int64_t rows = std::abs(std::int64_t{height});
    if (columns == 0 || rows == 0) return makeBitmap(1, 1, true, counted);
    constexpr std::int64_t pixelBytes = sizeof(COLORREF);
    if (columns > mostBitmapBytes / pixelBytes / rows) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Bitmap bitmap;
    bitmap.width = static_cast<std::int32_t>(columns);
    bitmap.height = static_cast<std::int32_t>(rows);
    bitmap.monochrome = monochrome;
    bitmap.pixels.reset(new (std::nothrow) COLORREF[static_cast<std::size_t>(columns * rows)]());
    if (bitmap.pixels == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return static_cast<HBITMAP>(openObject(std::move(bitmap), counted));
}

}  // namespace tarn

HBITMAP CreateCompatibleBitmap(HDC context, int width, int height) {
    if (!tarn::isDeviceContext(context)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return tarn::makeBitmap(width, height, tarn::drawsMonochrome(context));
}

HPALETTE CreatePalette(const LOGPALETTE* palette) {
    if (palette == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const PALETTEENTRY* const entries = palette->palPalEntry;
    return static_cast<HPALETTE>(openObject(Palette{{entries, entries + palette->palNumEntries}}));
}

UINT GetPaletteEntries(HPALETTE handle, UINT first, UINT count, PALETTEENTRY* entries) {
    const Palette* palette = tarn::findDrawing<Palette>(handle);
    if (palette == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    const auto size = static_cast<UINT>(palette->entries.size());
    if (entries == nullptr) return size;
    if (first >= size) return 0;
    const UINT given = std::min(count, size - first);
    std::copy_n(palette->entries.begin() + first, given, entries);
    return given;
}

HBRUSH CreateSolidBrush(COLORREF color) {
    return static_cast<HBRUSH>(openObject(Brush{color & colorBits}));
}

int GetObjectA(HANDLE handle, int size, void* out) {
    if (const auto* bitmap = tarn::findDrawing<Bitmap>(handle)) return describeBitmap(*bitmap, size, out);
    if (const auto* palette = tarn::findDrawing<Palette>(handle)) return describePalette(*palette, size, out);
    return refuse(ERROR_INVALID_HANDLE);
}

BOOL DeleteObject(HGDIOBJ handle) {
    if (const auto* bitmap = tarn::findDrawing<Bitmap>(handle)) {
        if (bitmap->deviceOwned) return TRUE;
        if (bitmap->selectedInto != nullptr) return refuse(ERROR_INVALID_PARAMETER);
    }
    return table.close(handle) != nullptr ? TRUE : refuse(ERROR_INVALID_HANDLE);
}
