// Screen, device contexts, bitmaps, palettes, memory and resources: platform/screen.cpp, device_contexts.cpp,
// bitmaps.cpp, dib.cpp, resources.cpp, global_memory.cpp, and the system's own on Windows.

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "tests/present/packed_bitmap.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace {

using tarntest::PackedBitmap;

// A memory device context with a bitmap of its own, both gone with the object.
struct Canvas {
    HDC screen = GetDC(nullptr);
    HDC context = CreateCompatibleDC(nullptr);
    HBITMAP bitmap;
    HGDIOBJ first;

    explicit Canvas(HBITMAP shown) : bitmap(shown), first(SelectObject(context, shown)) {}
    Canvas(int width, int height) : Canvas(nullptr) {
        bitmap = CreateCompatibleBitmap(screen, width, height);
        first = SelectObject(context, bitmap);
    }
    ~Canvas() {
        SelectObject(context, first);
        EXPECT_TRUE(DeleteObject(bitmap));
        EXPECT_TRUE(DeleteDC(context));
        ReleaseDC(nullptr, screen);
    }
};

BITMAP describe(HGDIOBJ bitmap) {
    BITMAP description{};
    EXPECT_EQ(GetObjectA(bitmap, sizeof description, &description), static_cast<int>(sizeof description));
    return description;
}

TEST(Screen, ANewMemoryContextHoldsOneMonochromePixel) {
    Canvas canvas(5, 4);
    const BITMAP first = describe(canvas.first);
    EXPECT_EQ(first.bmWidth, 1);
    EXPECT_EQ(first.bmHeight, 1);
    EXPECT_EQ(first.bmBitsPixel, 1);
    EXPECT_EQ(first.bmWidthBytes, 2);
    EXPECT_TRUE(DeleteObject(canvas.first)) << "without effect";
    const BITMAP own = describe(canvas.bitmap);
    EXPECT_EQ(own.bmBitsPixel, 32);
    EXPECT_EQ(own.bmWidthBytes, 20);
    EXPECT_EQ(own.bmBits, nullptr);
    char small[8];
    EXPECT_EQ(GetObjectA(canvas.bitmap, sizeof small, small), 0);

    const HDC fresh = CreateCompatibleDC(canvas.screen);
    const HBITMAP monochrome = CreateCompatibleBitmap(fresh, 17, 2);
    EXPECT_EQ(describe(monochrome).bmBitsPixel, 1);
    EXPECT_EQ(describe(monochrome).bmWidthBytes, 4);
    const HBITMAP empty = CreateCompatibleBitmap(canvas.screen, 0, 5);
    EXPECT_EQ(describe(empty).bmWidth, 1);
    EXPECT_EQ(CreateCompatibleBitmap(nullptr, 5, 5), nullptr);
    EXPECT_EQ(CreateCompatibleBitmap(canvas.screen, 0x7FFFFFFF, 0x7FFFFFFF), nullptr);
    EXPECT_TRUE(DeleteObject(empty));
    EXPECT_TRUE(DeleteObject(monochrome));
    EXPECT_FALSE(DeleteObject(monochrome));
    EXPECT_TRUE(DeleteDC(fresh));
    EXPECT_EQ(GetPixel(fresh, 0, 0), CLR_INVALID);
}

TEST(Screen, ABitmapIsSelectedIntoOneContextAtATime) {
    Canvas one(3, 3), two(3, 3);
    EXPECT_EQ(SelectObject(two.context, one.bitmap), nullptr);
    EXPECT_EQ(SelectObject(one.context, one.bitmap), one.bitmap);
    EXPECT_EQ(SelectObject(one.screen, two.bitmap), nullptr);
    EXPECT_EQ(SelectObject(one.context, nullptr), nullptr);
    EXPECT_EQ(SelectObject(nullptr, one.bitmap), nullptr);
    EXPECT_EQ(SelectObject(one.context, one.first), one.bitmap);
    EXPECT_EQ(SelectObject(two.context, one.bitmap), two.bitmap);
    EXPECT_EQ(SelectObject(two.context, two.bitmap), one.bitmap);
}

TEST(Screen, RectanglesFillFromLeftAndTopInToRightAndBottomOut) {
    const struct {
        RECT rectangle;
        std::array<int, 4> filled;  // left, top, right, bottom after clipping
    } rows[] = {{{1, 1, 3, 2}, {1, 1, 3, 2}}, {{-5, -5, 99, 99}, {0, 0, 6, 5}},
                {{2, 2, 2, 4}, {0, 0, 0, 0}}, {{4, 3, 2, 1}, {3, 2, 5, 4}},
                {{7, 0, 9, 5}, {0, 0, 0, 0}}, {{-2147483647, 0, 2147483647, 1}, {0, 0, 6, 1}}};
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    for (const auto& row : rows) {
        Canvas canvas(6, 5);
        EXPECT_EQ(FillRect(canvas.context, &row.rectangle, brush), 1);
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 6; ++x) {
                const auto& [left, top, right, bottom] = row.filled;
                const bool inside = x >= left && x < right && y >= top && y < bottom;
                EXPECT_EQ(GetPixel(canvas.context, x, y), inside ? RGB(1, 2, 3) : 0) << x << ' ' << y;
            }
        }
        EXPECT_EQ(GetPixel(canvas.context, 6, 0), CLR_INVALID);
        EXPECT_EQ(GetPixel(canvas.context, 0, -1), CLR_INVALID);
    }
    Canvas canvas(2, 2);
    const RECT all{0, 0, 2, 2};
    FillRect(canvas.context, &all, reinterpret_cast<HBRUSH>(ULONG_PTR{COLOR_HIGHLIGHT + 1}));
    EXPECT_EQ(GetPixel(canvas.context, 1, 1), GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(FillRect(canvas.context, &all, nullptr), 1);
    EXPECT_TRUE(DeleteObject(brush));
}

TEST(Screen, PalettesReadBackAsTheyWereMade) {
    struct {
        WORD version = 0x300, count = 2;
        PALETTEENTRY entries[2] = {{10, 20, 30, 0}, {40, 50, 60, 0}};
    } source;
    const HPALETTE palette = CreatePalette(reinterpret_cast<const LOGPALETTE*>(&source));
    WORD count = 0;
    EXPECT_EQ(GetObjectA(palette, sizeof count, &count), 2);
    EXPECT_EQ(count, 2);
    PALETTEENTRY entries[4] = {};
    EXPECT_EQ(GetPaletteEntries(palette, 1, 4, entries), 1U);
    EXPECT_EQ(std::memcmp(entries, source.entries + 1, sizeof entries[0]), 0);
    EXPECT_EQ(GetPaletteEntries(palette, 2, 1, entries), 0U);
    const HDC context = CreateCompatibleDC(nullptr);
    const HPALETTE earlier = SelectPalette(context, palette, FALSE);
    EXPECT_NE(earlier, nullptr);
    EXPECT_EQ(SelectPalette(context, earlier, FALSE), palette);
    EXPECT_EQ(RealizePalette(context), 0U);
    EXPECT_TRUE(DeleteDC(context));
    EXPECT_TRUE(DeleteObject(palette));
    EXPECT_EQ(CreatePalette(nullptr), nullptr);
}

TEST(Screen, BitmapsOfEveryDepthDecodeInBothDirections) {
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        for (const int height : {5, -5}) {
            const PackedBitmap packed(depth, 7, height);
            const HDC screen = GetDC(nullptr);
            const auto* info = reinterpret_cast<const BITMAPINFO*>(packed.bytes.data());
            const HBITMAP made =
                CreateDIBitmap(screen, &info->bmiHeader, CBM_INIT, packed.bytes.data() + packed.pixelOffset,
                               info, DIB_RGB_COLORS);
            ReleaseDC(nullptr, screen);
            ASSERT_EQ(describe(made).bmBitsPixel, 32);
            Canvas canvas(made);
            for (int y = 0; y < 5; ++y) {
                for (int x = 0; x < 7; ++x) {
                    EXPECT_EQ(GetPixel(canvas.context, x, y), packed.color(x, y))
                        << depth << " bits, height " << height << ": " << x << ' ' << y;
                }
            }
        }
    }
}

TEST(Screen, AHeaderThatMakesNoSenseMakesNoBitmap) {
    PackedBitmap packed(4, 3, 3);
    auto* info = reinterpret_cast<BITMAPINFO*>(packed.bytes.data());
    BITMAPINFOHEADER& header = info->bmiHeader;
    const HDC screen = GetDC(nullptr);
    const auto make = [&](const void* pixels) {
        return CreateDIBitmap(screen, &header, CBM_INIT, pixels, info, DIB_RGB_COLORS);
    };
    const unsigned char* pixels = packed.bytes.data() + packed.pixelOffset;
    EXPECT_EQ(CreateDIBitmap(screen, nullptr, CBM_INIT, pixels, info, DIB_RGB_COLORS), nullptr);
    EXPECT_EQ(make(nullptr), nullptr);
    header.biBitCount = 7;
    EXPECT_EQ(make(pixels), nullptr);
    header.biBitCount = 4;
    header.biWidth = -3;
    EXPECT_EQ(make(pixels), nullptr);
    header.biWidth = 0;
    const HBITMAP empty = make(pixels);
    EXPECT_EQ(describe(empty).bmWidth, 1);
    header.biWidth = 3;
    const HBITMAP blank = CreateDIBitmap(screen, &header, 0, nullptr, nullptr, DIB_RGB_COLORS);
    EXPECT_EQ(describe(blank).bmHeight, 3);
    const HBITMAP monochrome = CreateDIBitmap(nullptr, &header, CBM_INIT, pixels, info, DIB_RGB_COLORS);
    EXPECT_EQ(describe(monochrome).bmBitsPixel, 1);
    for (const HBITMAP bitmap : {empty, blank, monochrome}) EXPECT_TRUE(DeleteObject(bitmap));
    ReleaseDC(nullptr, screen);
}

TEST(Screen, SystemValuesKnowTheirLimits) {
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(GetDeviceCaps(screen, NUMCOLORS), -1);
    EXPECT_EQ(GetDeviceCaps(screen, BITSPIXEL), 32);
    EXPECT_EQ(GetDeviceCaps(screen, PLANES), 1);
    EXPECT_EQ(GetDeviceCaps(screen, SIZEPALETTE), 0);
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    EXPECT_EQ(GetSystemMetrics(-1), 0);
    EXPECT_EQ(GetSystemMetrics(5000), 0);
    EXPECT_EQ(GetSysColor(5000), 0U);
    EXPECT_EQ(sizeof(LOGFONTA), 60U);
    LOGFONTA font{};
    EXPECT_TRUE(SystemParametersInfoA(SPI_GETICONTITLELOGFONT, sizeof font, &font, 0));
    EXPECT_NE(font.lfHeight, 0);
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    EXPECT_EQ(sizeof version, 148U);
    EXPECT_TRUE(GetVersionExA(&version));
    EXPECT_EQ(version.dwPlatformId, VER_PLATFORM_WIN32_NT);
    version.dwOSVersionInfoSize = 20;
    EXPECT_FALSE(GetVersionExA(&version));
}

TEST(Screen, GlobalMemoryCountsItsLocks) {
    const HGLOBAL memory = GlobalAlloc(GHND, 100);
    auto* bytes = static_cast<unsigned char*>(GlobalLock(memory));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(bytes[99], 0);
    EXPECT_EQ(GlobalLock(memory), bytes);
    EXPECT_TRUE(GlobalUnlock(memory));
    SetLastError(77);
    EXPECT_FALSE(GlobalUnlock(memory));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_FALSE(GlobalUnlock(memory));
    EXPECT_EQ(GetLastError(), ERROR_NOT_LOCKED);
    EXPECT_EQ(GlobalFree(memory), nullptr);
    const HGLOBAL fixed = GlobalAlloc(GMEM_FIXED, 10);
    EXPECT_EQ(GlobalLock(fixed), fixed);
    EXPECT_EQ(GlobalFree(fixed), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
}

#if !defined(_WIN32)

TEST(Screen, AProgramsScreenReplacesTheClassicOne) {
    tarn::ScreenDescription screen = tarn::classicScreen();
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 1920);
    EXPECT_STREQ(screen.iconTitleFont.lfFaceName, "MS Sans Serif");
    screen.metrics[SM_CXSCREEN] = 640;
    screen.colors[COLOR_MENU] = 7;
    tarn::setScreen(&screen);
    screen.metrics[SM_CXSCREEN] = 1;
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 640) << "a copy is kept";
    EXPECT_EQ(GetSysColor(COLOR_MENU), 7U);
    tarn::setScreen(nullptr);
    EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 1920);
}

TEST(Screen, ResourcesAreFoundByNumberAndByText) {
    int anchor = 0;
    const auto module = reinterpret_cast<HINSTANCE>(&anchor);
    tarn::addResource(module, 10, 101, "bytes", 5);
    const HRSRC found = FindResourceA(module, "#101", MAKEINTRESOURCEA(10));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found, FindResourceA(module, MAKEINTRESOURCEA(101), "#10"));
    EXPECT_EQ(SizeofResource(module, found), 5U);
    EXPECT_EQ(std::memcmp(LockResource(LoadResource(module, found)), "bytes", 5), 0);
    const struct {
        HINSTANCE module;
        const char* name;
        const char* type;
        DWORD error;
    } rows[] = {{module, MAKEINTRESOURCEA(102), MAKEINTRESOURCEA(10), ERROR_RESOURCE_NAME_NOT_FOUND},
                {module, "#101x", MAKEINTRESOURCEA(10), ERROR_RESOURCE_NAME_NOT_FOUND},
                {module, "LOGO", MAKEINTRESOURCEA(10), ERROR_RESOURCE_NAME_NOT_FOUND},
                {module, "#65637", MAKEINTRESOURCEA(10), ERROR_RESOURCE_NAME_NOT_FOUND},
                {module, MAKEINTRESOURCEA(101), RT_BITMAP, ERROR_RESOURCE_TYPE_NOT_FOUND},
                {nullptr, MAKEINTRESOURCEA(101), MAKEINTRESOURCEA(10), ERROR_RESOURCE_TYPE_NOT_FOUND}};
    for (const auto& row : rows) {
        EXPECT_EQ(FindResourceA(row.module, row.name, row.type), nullptr);
        EXPECT_EQ(GetLastError(), row.error);
    }
    tarn::removeResources(module);
    EXPECT_EQ(LockResource(found), nullptr);
    EXPECT_EQ(SizeofResource(module, found), 0U);
    EXPECT_EQ(LoadBitmapA(module, MAKEINTRESOURCEA(101)), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
}

TEST(Screen, MaskedBitmapsReadTheirOwnMasks) {
    // 5-6-5 bits: full green, then full red, then a blue of 16 of 31, which shows as 132.
    PackedBitmap packed(16, 3, 1);
    auto* info = reinterpret_cast<BITMAPINFO*>(packed.bytes.data());
    info->bmiHeader.biCompression = BI_BITFIELDS;
    const DWORD masks[] = {0xF800, 0x07E0, 0x001F};
    const WORD pixels[] = {0x07E0, 0xF800, 0x0010, 0};
    packed.bytes.resize(sizeof(BITMAPINFOHEADER));
    const auto append = [&packed](const void* data, std::size_t size) {
        const auto* from = static_cast<const unsigned char*>(data);
        packed.bytes.insert(packed.bytes.end(), from, from + size);
    };
    append(masks, sizeof masks);
    append(pixels, sizeof pixels);
    tarn::addResource(nullptr, 2, 9, packed.bytes.data(), static_cast<std::uint32_t>(packed.bytes.size()));
    Canvas canvas(LoadBitmapA(nullptr, "#9"));
    EXPECT_EQ(GetPixel(canvas.context, 0, 0), RGB(0, 255, 0));
    EXPECT_EQ(GetPixel(canvas.context, 1, 0), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(canvas.context, 2, 0), RGB(0, 0, 132));
    tarn::removeResources(nullptr);
}

#endif

}  // namespace
