#pragma once

// What the drawing sources share (users want platform/win32.h): the objects behind the handles of bitmaps,
// palettes and brushes, the screen's description, and the reading of device-independent bitmaps.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "platform/handle_table.h"
#include "platform/host.h"
#include "platform/win32.h"

namespace tarn {

// Real pixels, one COLORREF each, rows from the top; a monochrome bitmap holds black and white alone.
struct Bitmap {
    std::int32_t width = 0, height = 0;
    bool monochrome = false;
    bool deviceOwned = false;  // a memory device context's first one, which nobody else can delete
    HDC selectedInto = nullptr;
    std::unique_ptr<COLORREF[]> pixels;

    [[nodiscard]] COLORREF* row(std::int32_t y) const {
        return pixels.get() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
    // The colour that this bitmap can show for `color`.
    [[nodiscard]] COLORREF shown(COLORREF color) const;
};

struct Palette {
    std::vector<PALETTEENTRY> entries;
};

struct Brush {
    COLORREF color;
};

using DrawingObject = std::variant<Bitmap, Palette, Brush>;

HandleTable<DrawingObject>& drawingObjects();

// Answers NULL for a handle of another kind, or of none.
template <class Kind>
Kind* findDrawing(HANDLE handle) {
    return std::get_if<Kind>(drawingObjects().find(handle));
}

// A black bitmap of at least 1 x 1; NULL, with the last error set, where its size is none or can't be had.
HBITMAP makeBitmap(std::int32_t width, std::int32_t height, bool monochrome, Counted counted = Counted::yes);

// Whether a bitmap made for this context is monochrome: NULL, or a memory context that holds such a bitmap.
bool drawsMonochrome(HDC context);
bool isDeviceContext(HDC context);

const ScreenDescription& currentScreen();

// Makes a bitmap for the screen from a packed device-independent bitmap of `size` bytes; NULL where it is no
// such thing or isn't whole.
HBITMAP loadPackedBitmap(const unsigned char* data, std::size_t size);

}  // namespace tarn
