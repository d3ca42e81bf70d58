// Device contexts: the screen's, which show no pixels, and memory device contexts, which draw into the bitmap
// that is selected into them.  Each memory context starts with a bitmap of its own, of one black pixel.
// Tests: tests/platform/screen_test.cpp.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "platform/drawing/objects.h"
#include "platform/win32.h"

namespace {

using tarn::Bitmap;

struct DeviceContext {
    HBITMAP first = nullptr;  // NULL for the screen
    HBITMAP selected = nullptr;
    HPALETTE palette = nullptr;  // NULL: the default one
};

using OwnedBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>,
                                    decltype([](HBITMAP bitmap) { tarn::drawingObjects().close(bitmap); })>;

constinit tarn::HandleTable<DeviceContext> contexts{tarn::HandleFamily::deviceContext};

constexpr int bitsPerPixel = 32;
constexpr int dotsPerInch = 96;
constexpr ULONG_PTR systemColors = 31;

DeviceContext* findContext(HDC handle) {
    DeviceContext* context = contexts.find(handle);
    if (context == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return context;
}

// The bitmap that the context draws into; NULL for the screen and for what is no context.
Bitmap* target(HDC handle) {
    const DeviceContext* context = findContext(handle);
    return context == nullptr ? nullptr : tarn::findDrawing<Bitmap>(context->selected);
}

// The palette that every context starts with: black and white, the layer's own.
HPALETTE defaultPalette() {
    static const HPALETTE palette = static_cast<HPALETTE>(tarn::drawingObjects().open(
        std::make_unique<tarn::DrawingObject>(tarn::Palette{{{0, 0, 0, 0}, {255, 255, 255, 0}}}),
        tarn::Counted::no));
    return palette;
}

// A brush is a handle, or the number of a system colour and one.
bool brushColor(HBRUSH brush, COLORREF& color) {
    const auto number = reinterpret_cast<ULONG_PTR>(brush);
    if (number >= 1 && number <= systemColors) {
        color = GetSysColor(static_cast<int>(number) - 1);
        return true;
    }
    const auto* solid = tarn::findDrawing<tarn::Brush>(brush);
    if (solid != nullptr) color = solid->color;
    return solid != nullptr;
}

struct Span {
    std::int32_t begin, end;
};

// The part of [first, last) inside [0, limit).  The ends in reverse mean (last, first].
Span clip(LONG first, LONG last, std::int32_t limit) {
    std::int64_t begin = first, end = last;
    if (begin > end) {
        std::swap(begin, end);
        ++begin;
        ++end;
    }
    begin = std::clamp<std::int64_t>(begin, 0, limit);
    end = std::clamp<std::int64_t>(end, begin, limit);
    return {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end)};
}

}  // namespace

namespace tarn {

bool isDeviceContext(HDC context) {
    return contexts.find(context) != nullptr;
}

bool drawsMonochrome(HDC context) {
    if (!isDeviceContext(context)) return true;
    const Bitmap* bitmap = target(context);
    return bitmap != nullptr && bitmap->monochrome;
}

}  // namespace tarn

HDC GetDC(HWND window) {
    if (window != nullptr && window != GetDesktopWindow()) return nullptr;
    return static_cast<HDC>(contexts.open(std::make_unique<DeviceContext>()));
}

int ReleaseDC(HWND, HDC handle) {
    const DeviceContext* context = findContext(handle);
    if (context == nullptr || context->first != nullptr) return 0;
    contexts.close(handle);
    return 1;
}

HDC CreateCompatibleDC(HDC context) {
    if (context != nullptr && findContext(context) == nullptr) return nullptr;
    auto made = std::make_unique<DeviceContext>();
    made->first = made->selected = tarn::makeBitmap(1, 1, true, tarn::Counted::no);
    OwnedBitmap first(made->first);
    auto* bitmap = tarn::findDrawing<Bitmap>(first.get());
    if (bitmap == nullptr) return nullptr;
    const auto handle = static_cast<HDC>(contexts.open(std::move(made)));
    if (handle == nullptr) return nullptr;
    bitmap->deviceOwned = true;
    bitmap->selectedInto = handle;
    static_cast<void>(first.release());  // the context's from now on
    return handle;
}

BOOL DeleteDC(HDC handle) {
    const DeviceContext* context = findContext(handle);
    if (context == nullptr || context->first == nullptr) return FALSE;
    if (auto* bitmap = target(handle)) bitmap->selectedInto = nullptr;
    tarn::drawingObjects().close(context->first);
    contexts.close(handle);
    return TRUE;
}

int GetDeviceCaps(HDC context, int index) {
    if (findContext(context) == nullptr) return 0;
    switch (index) {
        case HORZRES: return GetSystemMetrics(SM_CXSCREEN);
        case VERTRES: return GetSystemMetrics(SM_CYSCREEN);
        case BITSPIXEL: return bitsPerPixel;
        case PLANES: return 1;
        case NUMCOLORS: return tarn::currentScreen().numColors;
        case LOGPIXELSX:
        case LOGPIXELSY: return dotsPerInch;
        default: return 0;
    }
}

HGDIOBJ SelectObject(HDC handle, HGDIOBJ object) {
    DeviceContext* context = findContext(handle);
    auto* bitmap = tarn::findDrawing<Bitmap>(object);
    if (context == nullptr || context->first == nullptr || bitmap == nullptr) return nullptr;
    const bool elsewhere = bitmap->selectedInto != nullptr && bitmap->selectedInto != handle;
    if (elsewhere || (bitmap->deviceOwned && object != context->first)) return nullptr;
    if (auto* earlier = target(handle)) earlier->selectedInto = nullptr;
    bitmap->selectedInto = handle;
    return std::exchange(context->selected, static_cast<HBITMAP>(object));
}

HPALETTE SelectPalette(HDC handle, HPALETTE palette, BOOL) {
    DeviceContext* context = findContext(handle);
    if (context == nullptr || tarn::findDrawing<tarn::Palette>(palette) == nullptr) return nullptr;
    const HPALETTE earlier = std::exchange(context->palette, palette);
    return earlier == nullptr ? defaultPalette() : earlier;
}

UINT RealizePalette(HDC context) {
    return findContext(context) == nullptr ? GDI_ERROR : 0;  // a true-colour screen maps no entries
}

BOOL SetRect(RECT* rectangle, int left, int top, int right, int bottom) {
    if (rectangle == nullptr) return FALSE;
    *rectangle = {left, top, right, bottom};
    return TRUE;
}

int FillRect(HDC handle, const RECT* rectangle, HBRUSH brush) {
    if (rectangle == nullptr || findContext(handle) == nullptr) return 0;
    COLORREF color = 0;
    if (brush == nullptr) return 1;
    if (!brushColor(brush, color)) return 0;
    const Bitmap* bitmap = target(handle);
    if (bitmap == nullptr) return 1;
    const Span columns = clip(rectangle->left, rectangle->right, bitmap->width);
    const Span rows = clip(rectangle->top, rectangle->bottom, bitmap->height);
    for (std::int32_t y = rows.begin; y < rows.end; ++y) {
        std::fill(bitmap->row(y) + columns.begin, bitmap->row(y) + columns.end, bitmap->shown(color));
    }
    return 1;
}

COLORREF GetPixel(HDC handle, int x, int y) {
    const Bitmap* bitmap = target(handle);
    const bool inside = bitmap != nullptr && x >= 0 && y >= 0 && x < bitmap->width && y < bitmap->height;
    return inside ? bitmap->row(y)[x] : CLR_INVALID;
}
