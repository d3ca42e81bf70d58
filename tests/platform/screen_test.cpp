// Device contexts, bitmaps, palettes, memory and resources: platform/drawing/screen.cpp, device_contexts.cpp,
// bitmaps.cpp, dib.cpp, resources.cpp, global_memory.cpp, and the system's own on Windows.

#include "tests/plain/packed_bitmap.h"
#include "tests/support.h"

namespace {

using tarntest::PackedBitmap, tarntest::pixelsOf;

// A memory device context that shows a bitmap; both go with the object.
struct Canvas {
    HDC screen = GetDC(nullptr), context = CreateCompatibleDC(nullptr);
    HBITMAP bitmap;
    HGDIOBJ first;

    explicit Canvas(HBITMAP shown) : bitmap(shown), first(SelectObject(context, shown)) {}
    Canvas(int width, int height)
        : bitmap(CreateCompatibleBitmap(screen, width, height)), first(SelectObject(context, bitmap)) {}
    ~Canvas() {
        SelectObject(context, first);
        EXPECT_TRUE(DeleteObject(bitmap));
        EXPECT_FALSE(DeleteObject(bitmap));
        EXPECT_TRUE(DeleteDC(context));
        EXPECT_FALSE(DeleteDC(context));
        EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    }
};

// Width, bytes of a row, depth.
std::vector<LONG> measures(HGDIOBJ bitmap) {
    BITMAP description{};
    EXPECT_EQ(GetObjectA(bitmap, sizeof description - 1, &description), 0);
    EXPECT_EQ(GetObjectA(bitmap, 0, nullptr), static_cast<int>(sizeof description));
    EXPECT_EQ(GetObjectA(bitmap, sizeof description, &description), static_cast<int>(sizeof description));
    return {description.bmWidth, description.bmWidthBytes, description.bmBitsPixel};
}

TEST(Screen, ANewMemoryContextHoldsOneMonochromePixel) {
    Canvas canvas(5, 4);
    EXPECT_EQ(measures(canvas.first), (std::vector<LONG>{1, 2, 1}));
    EXPECT_TRUE(DeleteObject(canvas.first)) << "without effect";
    EXPECT_EQ(measures(canvas.bitmap), (std::vector<LONG>{5, 20, 32}));
    const HDC fresh = CreateCompatibleDC(canvas.screen);
    Canvas monochrome(CreateCompatibleBitmap(fresh, 17, 2));
    EXPECT_EQ(measures(monochrome.bitmap), (std::vector<LONG>{17, 4, 1}));
    EXPECT_EQ(CreateCompatibleBitmap(canvas.screen, 0x7FFFFFFF, 0x7FFFFFFF), nullptr);
    EXPECT_TRUE(DeleteDC(fresh));
    EXPECT_EQ(GetPixel(fresh, 0, 0), CLR_INVALID);
}

TEST(Screen, ATrueColorScreenDescribesItself) {
    const Canvas canvas(1, 1);
    const struct {
        int index, answer;
    } rows[] = {{NUMCOLORS, -1}, {BITSPIXEL, 32}, {PLANES, 1}, {SIZEPALETTE, 0}};
    for (const HDC context : {canvas.screen, canvas.context})
        for (const auto& each : rows)
            EXPECT_EQ(GetDeviceCaps(context, each.index), each.answer) << each.index;
    const HDC desktop = GetDC(GetDesktopWindow());
    EXPECT_EQ(GetDeviceCaps(desktop, VERTRES), GetSystemMetrics(SM_CYSCREEN));
    EXPECT_EQ(ReleaseDC(GetDesktopWindow(), desktop), 1);
    for (const int outside : {-1, 1000}) EXPECT_EQ(GetSystemMetrics(outside), 0) << outside;
    for (const int outside : {-1, 1000}) EXPECT_EQ(GetSysColor(outside), 0U) << outside;
    OSVERSIONINFOA version{};
    for (const DWORD missing : {0U, 1U}) {
        version.dwOSVersionInfoSize = sizeof version - missing;
        EXPECT_EQ(GetVersionExA(&version), missing == 0 ? TRUE : FALSE);
    }
    LOGFONTA font{};
    EXPECT_TRUE(SystemParametersInfoA(SPI_GETICONTITLELOGFONT, sizeof font, &font, 0));
    EXPECT_NE(font.lfHeight, 0);
}

TEST(Screen, PalettesReadBackAndAreSelectedInTurn) {
    const Canvas canvas(1, 1);
    const struct {
        LOGPALETTE front;
        PALETTEENTRY others[2];
    } colors{{0x300, 3, {{1, 2, 3, 0}}}, {{4, 5, 6, 0}, {7, 8, 9, 0}}};
    const HPALETTE palette = CreatePalette(&colors.front);
    WORD count = 0;
    EXPECT_EQ(GetObjectA(palette, sizeof count, &count), 2);
    EXPECT_EQ(count, 3);
    PALETTEENTRY entries[9]{};
    EXPECT_EQ(GetPaletteEntries(palette, 1, 9, entries), 2U);
    EXPECT_EQ(entries[1].peGreen, 8);
    EXPECT_EQ(GetPaletteEntries(palette, 3, 9, entries), 0U);
    const HPALETTE earlier = SelectPalette(canvas.screen, palette, FALSE);
    EXPECT_EQ(RealizePalette(canvas.screen), 0U);
    EXPECT_EQ(SelectPalette(canvas.screen, earlier, FALSE), palette);
    EXPECT_TRUE(DeleteObject(palette));
}

TEST(Screen, ABitmapIsSelectedIntoOneContextAtATime) {
    Canvas one(3, 3), two(3, 3);
    EXPECT_EQ(SelectObject(one.context, one.bitmap), one.bitmap);
    for (const HDC other : {two.context, one.screen, HDC{}})
        EXPECT_EQ(SelectObject(other, one.bitmap), nullptr);
    EXPECT_EQ(SelectObject(one.context, one.first), one.bitmap);
    EXPECT_EQ(SelectObject(two.context, one.bitmap), two.bitmap);
    EXPECT_EQ(SelectObject(two.context, two.bitmap), one.bitmap);
}

TEST(Screen, RectanglesFillFromLeftAndTopInToRightAndBottomOut) {
    // A rectangle, and the part of a bitmap of 6 x 5 that it fills.
    const struct {
        RECT rectangle, filled;
    } rows[] = {{{1, 1, 3, 2}, {1, 1, 3, 2}}, {{-5, -5, 99, 99}, {0, 0, 6, 5}},
                {{2, 2, 2, 4}, {0, 0, 0, 0}}, {{4, 3, 2, 1}, {3, 2, 5, 4}},
                {{7, 0, 9, 5}, {0, 0, 0, 0}}, {{-2147483647, 0, 2147483647, 1}, {0, 0, 6, 1}}};
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    for (const auto& [rectangle, filled] : rows) {
        const Canvas canvas(6, 5);
        EXPECT_EQ(FillRect(canvas.context, &rectangle, brush), 1);
        for (int place = 0; place < 56; ++place) {
            const int x = place % 8 - 1, y = place / 8 - 1;
            const bool outside = x < 0 || y < 0 || x >= 6 || y >= 5;
            const bool inside = x >= filled.left && x < filled.right && y >= filled.top && y < filled.bottom;
            EXPECT_EQ(GetPixel(canvas.context, x, y), outside ? CLR_INVALID : inside ? RGB(1, 2, 3) : 0);
        }
    }
    EXPECT_TRUE(DeleteObject(brush));
    const Canvas canvas(9, 9);
    RECT pixel;
    EXPECT_TRUE(SetRect(&pixel, 5, 6, 7, 8));
    for (const HDC context : {canvas.context, canvas.screen})
        EXPECT_EQ(FillRect(context, &pixel, reinterpret_cast<HBRUSH>(ULONG_PTR{COLOR_HIGHLIGHT + 1})), 1);
    EXPECT_EQ(GetPixel(canvas.context, 6, 7), GetSysColor(COLOR_HIGHLIGHT));
}

HBITMAP decode(HDC context, const PackedBitmap& packed) {
    const BITMAPINFO* info = packed.info();
    const void* pixels = packed.bytes.data() + packed.pixelOffset;
    return CreateDIBitmap(context, &info->bmiHeader, CBM_INIT, pixels, info, DIB_RGB_COLORS);
}

TEST(Screen, BitmapsOfEveryDepthDecodeInBothDirections) {
    Canvas target(1, 1);
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        for (const int height : {5, -5}) {
            const PackedBitmap packed(depth, 7, height);
            const HBITMAP bitmap = decode(target.screen, packed);
            EXPECT_EQ(pixelsOf(bitmap), packed.colors()) << depth << ' ' << height;
            DeleteObject(bitmap);
        }
    }
    PackedBitmap bent(4, 3, 3);
    Canvas monochrome(decode(nullptr, bent));
    EXPECT_EQ(measures(monochrome.bitmap), (std::vector<LONG>{3, 2, 1}));
    auto& header = *reinterpret_cast<BITMAPINFOHEADER*>(bent.described.data());
    const HBITMAP blank = CreateDIBitmap(target.screen, &header, 0, nullptr, nullptr, DIB_RGB_COLORS);
    EXPECT_EQ(pixelsOf(blank), std::vector<COLORREF>(9, 0)) << "without pixels";
    EXPECT_TRUE(DeleteObject(blank));
    EXPECT_EQ(CreateDIBitmap(target.screen, &header, CBM_INIT, nullptr, bent.info(), DIB_RGB_COLORS),
              nullptr);
    header.biBitCount = 7;
    EXPECT_EQ(decode(target.screen, bent), nullptr);
    header.biBitCount = 4;
    header.biWidth = -3;
    EXPECT_EQ(decode(target.screen, bent), nullptr);
    header.biWidth = 0;
    const Canvas empty(decode(target.screen, bent));
    EXPECT_EQ(measures(empty.bitmap), (std::vector<LONG>{1, 2, 1}));
}

TEST(Screen, GlobalMemoryCountsItsLocks) {
    const HGLOBAL memory = GlobalAlloc(GHND, 100);
    EXPECT_EQ(GlobalLock(memory), GlobalLock(memory));
    EXPECT_TRUE(GlobalUnlock(memory));
    SetLastError(ERROR_INVALID_HANDLE);
    for (const DWORD error : {ERROR_SUCCESS, ERROR_NOT_LOCKED}) {
        EXPECT_FALSE(GlobalUnlock(memory));
        EXPECT_EQ(GetLastError(), error);
    }
    EXPECT_EQ(GlobalFree(memory), nullptr);
    const HGLOBAL fixed = GlobalAlloc(0, 100);
    EXPECT_EQ(GlobalLock(fixed), fixed);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(GlobalUnlock(fixed));
    EXPECT_EQ(GlobalFree(fixed), nullptr);
}

#if !defined(_WIN32)

TEST(Screen, AMonochromeBitmapShowsTheNearerOfBlackAndWhite) {
    const std::vector<COLORREF> dark{RGB(127, 127, 127), RGB(255, 0, 255), RGB(255, 87, 0), RGB(0, 193, 128)};
    const std::vector<COLORREF> light{RGB(128, 128, 128), RGB(0, 255, 0), RGB(255, 89, 0), RGB(0, 194, 128)};
    const HDC monochrome = CreateCompatibleDC(nullptr);
    const RECT all{0, 0, 1, 1};
    for (const auto& [colors, shown] : {std::pair{dark, COLORREF{0}}, {light, RGB(255, 255, 255)}}) {
        for (const COLORREF color : colors) {
            const HBRUSH brush = CreateSolidBrush(color);
            FillRect(monochrome, &all, brush);
            EXPECT_EQ(GetPixel(monochrome, 0, 0), shown) << std::hex << color;
            DeleteObject(brush);
        }
    }
    DeleteDC(monochrome);
}

TEST(Screen, ResourcesAreFoundByNumberAndByText) {
    const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});
    for (const char* content : {"an old one", "bytes"})
        tarn::addResource(module, 10, 101, content, static_cast<std::uint32_t>(std::strlen(content)));
    const HRSRC found = FindResourceA(module, "#101", MAKEINTRESOURCEA(10));
    EXPECT_EQ(found, FindResourceA(module, MAKEINTRESOURCEA(101), "#10"));
    const auto* bytes = static_cast<const char*>(LockResource(LoadResource(module, found)));
    EXPECT_EQ(std::string_view(bytes, SizeofResource(module, found)), "bytes");
    for (const char* name : {MAKEINTRESOURCEA(102), "#101x", "LOGO", "#65637"}) {
        EXPECT_EQ(FindResourceA(module, name, "#10"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    }
    EXPECT_EQ(FindResourceA(nullptr, "#101", "#10"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_TYPE_NOT_FOUND);
    EXPECT_FALSE(FreeResource(found)) << "nothing has to be freed";
    EXPECT_EQ(LoadBitmapA(module, "#101"), nullptr) << "another type";
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    tarn::removeResources(module);
    EXPECT_EQ(LockResource(found), nullptr);
}

#endif

}  // namespace
