// Bitmaps from resources and the painted gradient.  A packed bitmap of a resource is measured against the
// resource's size before any of it is used.
// Tests: tests/present/bitmap_test.cpp.

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <type_traits>

#include "platform/drawing/packed_bitmap.h"
#include "platform/win32.h"
#include "present/screen.h"

namespace {

constexpr std::uint64_t headerSize = tarn::packedHeaderSize;
constexpr std::uint64_t colorSize = sizeof(RGBQUAD);
constexpr WORD paletteVersion = 0x300;

// Owners for the time of one operation, which may end for lack of memory at any step.
using ScreenContext =
    std::unique_ptr<std::remove_pointer_t<HDC>, decltype([](HDC context) { ReleaseDC(nullptr, context); })>;
using LockedMemory = std::unique_ptr<void, decltype([](HGLOBAL memory) {
                                         GlobalUnlock(memory);
                                         GlobalFree(memory);
                                     })>;

BITMAPINFOHEADER headerOf(const void* packed) {
    return tarn::packedHeader(static_cast<const unsigned char*>(packed));
}

// The table holds all colours that the pixels can name; biClrUsed isn't looked at.
std::int32_t colorCount(const BITMAPINFOHEADER& header) {
    return header.biBitCount <= 8 ? 1 << header.biBitCount : 0;
}

std::uint64_t pixelOffset(const BITMAPINFOHEADER& header) {
    return tarn::packedTableOffset(header) + colorSize * static_cast<std::uint64_t>(colorCount(header));
}

bool isWhole(const void* packed, std::uint64_t size) {
    if (packed == nullptr || size < headerSize) return false;
    const BITMAPINFOHEADER header = headerOf(packed);
    const std::uint64_t offset = pixelOffset(header);
    if (header.biSize < headerSize || header.biWidth < 0 || offset > size) return false;
    const std::uint64_t room = size - offset;
    if (tarn::isRunLength(header)) return header.biSizeImage <= room;
    const auto rows = static_cast<std::uint64_t>(std::abs(std::int64_t{header.biHeight}));
    const std::uint64_t rowBits = static_cast<std::uint64_t>(header.biWidth) * header.biBitCount;
    const std::uint64_t rowBytes = (rowBits + 31) / 32 * 4;
    return rows == 0 || rowBytes <= room / rows;
}

// What CreateDIBitmap takes: a header of the machine's own, and behind it the colour table or the masks.
struct BitmapInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colors[256];
};

BitmapInfo infoOf(const unsigned char* packed, std::uint32_t size) {
    BitmapInfo info{headerOf(packed), {}};
    if (tarn::hasUnmeasuredRuns(info.header))
        info.header.biSizeImage = static_cast<DWORD>(size - pixelOffset(info.header));
    if (info.header.biCompression == BI_BITFIELDS) {
        const unsigned char* const stored = packed + headerSize;
        const DWORD masks[] = {tarn::loadWord(stored), tarn::loadWord(stored + 4),
                               tarn::loadWord(stored + 8)};
        std::memcpy(info.colors, masks, sizeof masks);
    } else {
        const auto count = static_cast<std::size_t>(colorCount(info.header));
        std::memcpy(info.colors, packed + info.header.biSize, count * colorSize);
    }
    info.header.biSize = headerSize;
    return info;
}

// A bitmap in a device context, which gets its earlier one back.
class Selection {
  public:
    Selection(HDC context, HBITMAP bitmap)
        : context_(context), earlier_(bitmap == nullptr ? nullptr : SelectObject(context, bitmap)) {}
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
    ~Selection() {
        if (isMade()) SelectObject(context_, earlier_);
    }
    [[nodiscard]] bool isMade() const { return earlier_ != nullptr; }

  private:
    HDC context_;
    HGDIOBJ earlier_;
};

// Fills bands of the bitmap that is selected into the manager's context.
struct Gradient {
    HDC context;
    ItarnResourceMgr* manager;
    std::int32_t width;

    void fill(std::int32_t top, std::int32_t bottom, COLORREF color) const {
        RECT rectangle;
        SetRect(&rectangle, 0, top, width, bottom);
        FillRect(context, &rectangle, manager->getBrush(color));
    }
};

constexpr int bands = 100;
constexpr COLORREF grey = RGB(198, 198, 198);

void paintBands(const Gradient& gradient, std::int32_t height) {
    gradient.fill(0, height, grey);
    const std::int32_t least = height / bands;
    const std::int32_t rest = height % bands;
    std::int32_t bandHeight = least;
    std::int32_t bottom = height;
    std::int32_t spread = 0;  // the rest of the bands so far, in hundredths of a row
    for (int i = bands; i >= 1; --i) {
        const COLORREF color = i == bands ? grey : RGB(i + 49, i + 99, i + 99);
        if (bandHeight != 0) gradient.fill(bottom - bandHeight, bottom, color);
        bottom -= bandHeight;
        const bool wholeRow = (spread + rest) / bands > spread / bands;
        spread += rest;
        bandHeight = wholeRow ? least + 1 : least;
    }
}

}  // namespace

tarnBitmap::tarnBitmap(HINSTANCE module, std::int32_t id, int withPalette) : tarnBitmap() {
    instance = module;
    resourceId = id;
    usePalette = withPalette;
    const auto number = static_cast<std::uint16_t>(id);
    bitmap = withPalette == 0 ? LoadBitmapA(module, MAKEINTRESOURCEA(number)) : loadPaletteBitmap(number);
}

tarnBitmap::tarnBitmap(HDC device, std::int32_t columns, std::int32_t rows, std::int32_t id)
    : bitmap(CreateCompatibleBitmap(device, columns, rows)), resourceId(id), width(columns), height(rows) {}

tarnBitmap::~tarnBitmap() {
    release();
}

void tarnBitmap::release() {
    if (bitmap != nullptr) DeleteObject(bitmap);
    if (palette != nullptr) DeleteObject(palette);
    bitmap = nullptr;
    palette = nullptr;
}

HBITMAP tarnBitmap::loadPaletteBitmap(std::uint16_t id) {
    const HRSRC resource = FindResourceA(instance, MAKEINTRESOURCEA(id), RT_BITMAP);
    if (resource == nullptr) return nullptr;
    const HGLOBAL loaded = LoadResource(instance, resource);
    const auto* const packed = static_cast<const unsigned char*>(LockResource(loaded));
    HBITMAP made = nullptr;
    const DWORD size = SizeofResource(instance, resource);
    if (isWhole(packed, size)) {
        const ScreenContext owner(GetDC(nullptr));
        const HDC screen = owner.get();
        std::int32_t colors = 0;
        palette = createBitmapPalette(packed, &colors);
        if (palette != nullptr) {
            SelectPalette(screen, palette, FALSE);
            RealizePalette(screen);
        }
        const BITMAPINFOHEADER header = headerOf(packed);
        const BitmapInfo info = infoOf(packed, size);
        made = CreateDIBitmap(screen, &info.header, CBM_INIT, packed + pixelOffset(header),
                              reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS);
        width = header.biWidth;
        height = header.biHeight;
    }
    if (loaded != nullptr) FreeResource(loaded);
    return made;
}

HPALETTE tarnBitmap::createBitmapPalette(const void* packed, std::int32_t* colors) {
    *colors = colorCount(headerOf(packed));
    if (*colors == 0) return nullptr;
    const auto count = static_cast<std::size_t>(*colors);
    const LockedMemory memory(GlobalAlloc(GHND, 4 * count + 8));
    auto* const target = static_cast<LOGPALETTE*>(GlobalLock(memory.get()));
    if (target == nullptr) return nullptr;
    target->palVersion = paletteVersion;
    target->palNumEntries = static_cast<WORD>(count);
    const auto* color = static_cast<const unsigned char*>(packed) + headerSize;
    PALETTEENTRY* const entries = target->palPalEntry;
    for (std::size_t i = 0; i < count; ++i, color += colorSize)
        entries[i] = {color[2], color[1], color[0], 0};
    return CreatePalette(target);
}

void tarnBitmap::getSize(std::int32_t& columns, std::int32_t& rows) {
    if (bitmap == nullptr) return;
    if (width == 0 && height == 0) {
        BITMAP description{};
        GetObjectA(bitmap, sizeof description, &description);
        width = description.bmWidth;
        height = description.bmHeight;
    }
    columns = width;
    rows = height;
}

void tarnBitmap::bitmapMOLT(std::int32_t, std::int32_t columns, std::int32_t rows, std::int32_t, HDC device,
                            ItarnResourceMgr* manager) {
    if (manager == nullptr) return;
    release();
    width = columns;
    height = rows;
    bitmap = CreateCompatibleBitmap(device, columns, rows);
    const HDC context = manager->getMemoryDC();
    const Selection selection(context, bitmap);
    if (selection.isMade()) paintBands({context, manager, columns}, rows);
}
