// Device contexts, bitmaps, palettes, memory and resources: platform/drawing/screen.cpp, device_contexts.cpp,
// bitmaps.cpp, dib.cpp, resources.cpp, global_memory.cpp, and the system's own on Windows.

#include "tests/plain/packed_bitmap.h"
#include "tests/support.h"

namespace {

using tarntest::PackedBitmap, tarntest::pixelsOf;

// A memory device context that shows a bitmap; both are released with the object.
struct Canvas {
    HDC screen = GetDC(GetDesktopWindow()), context = CreateCompatibleDC(nullptr);
    HBITMAP bitmap;
    HGDIOBJ first;

    explicit Canvas(HBITMAP shown) : bitmap(shown), first(SelectObject(context, shown)) {}
    Canvas(int width, int height)
        : bitmap(CreateCompatibleBitmap(screen, width, height)), first(SelectObject(context, bitmap)) {}
    ~Canvas() {
        SelectObject(context, first);
        EXPECT_TRUE(DeleteObject(bitmap));
        EXPECT_TRUE(DeleteDC(context));
        EXPECT_FALSE(DeleteDC(context));
        EXPECT_EQ(ReleaseDC(GetDesktopWindow(), screen), 1);
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

TEST(Screen, BitmapsFitTheirContextAndAreInOneAtATime) {
    const Canvas one(5, 4), two(3, 3);
    EXPECT_EQ(GetDeviceCaps(one.screen, VERTRES), GetSystemMetrics(SM_CYSCREEN));
    EXPECT_EQ(measures(one.first), (std::vector<LONG>{1, 2, 1}));
    EXPECT_TRUE(DeleteObject(one.first)) << "without effect";
    EXPECT_EQ(measures(one.bitmap), (std::vector<LONG>{5, 20, 32}));
    EXPECT_EQ(SelectObject(one.context, one.bitmap), one.bitmap);
    for (const HDC other : {two.context, one.screen, HDC{}})
        EXPECT_EQ(SelectObject(other, one.bitmap), nullptr);
    EXPECT_EQ(SelectObject(one.context, one.first), one.bitmap);
    EXPECT_EQ(SelectObject(two.context, one.bitmap), two.bitmap);
    EXPECT_EQ(SelectObject(two.context, two.bitmap), one.bitmap);
    const Canvas monochrome(CreateCompatibleBitmap(one.context, 17, 2));
    EXPECT_EQ(measures(monochrome.bitmap), (std::vector<LONG>{17, 4, 1}));
    EXPECT_EQ(CreateCompatibleBitmap(one.screen, 0x7FFFFFFF, 0x7FFFFFFF), nullptr);
}

TEST(Screen, PalettesReadBackAndAreSelectedInTurn) {
    const Canvas canvas(1, 1);
    const LOGPALETTE colors{0x300, 1, {{1, 2, 3, 0}}};
    const HPALETTE palette = CreatePalette(&colors);
    WORD count = 0;
    EXPECT_EQ(GetObjectA(palette, sizeof count, &count), 2);
    EXPECT_EQ(count, 1);
    PALETTEENTRY entries[9]{};
    EXPECT_EQ(GetPaletteEntries(palette, 0, 9, entries), 1U);
    EXPECT_EQ(entries[0].peGreen, 2);
    EXPECT_EQ(GetPaletteEntries(palette, 1, 9, entries), 0U);
    const HPALETTE earlier = SelectPalette(canvas.screen, palette, FALSE);
    EXPECT_EQ(RealizePalette(canvas.screen), 0U);
    EXPECT_EQ(SelectPalette(canvas.screen, earlier, FALSE), palette);
    EXPECT_TRUE(DeleteObject(palette));
}

TEST(Screen, RectanglesFillFromLeftAndTopInToRightAndBottomOut) {
    // A rectangle, and the part of a bitmap of 6 x 5 that it fills.
    const struct {
        RECT rectangle, filled;
    } rows[] = {{{1, 1, 3, 2}, {1, 1, 3, 2}},
                {{-2147483647, -5, 2147483647, 99}, {0, 0, 6, 5}},
                {{4, 3, 2, 1}, {3, 2, 5, 4}},
                {{7, 0, 9, 5}, {0, 0, 0, 0}}};
    const auto brush = reinterpret_cast<HBRUSH>(ULONG_PTR{COLOR_HIGHLIGHT + 1});
    for (const auto& [rectangle, filled] : rows) {
        const Canvas canvas(6, 5);
        EXPECT_EQ(FillRect(canvas.context, &rectangle, brush), 1);
        for (int place = 0; place < 56; ++place) {
            const int x = place % 8 - 1, y = place / 8 - 1;
            const bool outside = x < 0 || y < 0 || x >= 6 || y >= 5;
            const bool inside = x >= filled.left && x < filled.right && y >= filled.top && y < filled.bottom;
            const COLORREF shown = inside ? GetSysColor(COLOR_HIGHLIGHT) : 0;
            EXPECT_EQ(GetPixel(canvas.context, x, y), outside ? CLR_INVALID : shown);
        }
    }
    EXPECT_EQ(FillRect(Canvas(1, 1).screen, &rows[0].rectangle, brush), 1);
}

HBITMAP decode(HDC context, const PackedBitmap& packed) {
    const BITMAPINFO* info = packed.info();
    const void* pixels = packed.bytes.data() + packed.pixelOffset;
    return CreateDIBitmap(context, &info->bmiHeader, CBM_INIT, pixels, info, DIB_RGB_COLORS);
}

TEST(Screen, BitmapsOfEveryDepthDecodeInBothDirections) {
    const Canvas target(1, 1);
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        for (const int height : {5, -5}) {
            const PackedBitmap packed(depth, 7, height);
            const HBITMAP decoded = decode(target.screen, packed);
            EXPECT_EQ(pixelsOf(decoded), packed.colors()) << depth << ' ' << height;
            EXPECT_TRUE(DeleteObject(decoded));
        }
    }
    PackedBitmap bent(4, 3, 3);
    auto& header = *reinterpret_cast<BITMAPINFOHEADER*>(bent.described.data());
    const Canvas monochrome(decode(nullptr, bent));
    const Canvas blank(CreateDIBitmap(target.screen, &header, 0, nullptr, nullptr, DIB_RGB_COLORS));
    EXPECT_EQ(measures(monochrome.bitmap), (std::vector<LONG>{3, 2, 1}));
    EXPECT_EQ(GetPixel(blank.context, 2, 2), 0U) << "without pixels";
    header.biWidth = 0;
    const Canvas empty(decode(target.screen, bent));
    EXPECT_EQ(measures(empty.bitmap), (std::vector<LONG>{1, 2, 1}));
    header.biWidth = -3;
    EXPECT_EQ(decode(target.screen, bent), nullptr);
    header.biWidth = 3;
    header.biBitCount = 7;
    EXPECT_EQ(decode(target.screen, bent), nullptr);
}

TEST(Screen, GlobalMemoryCountsItsLocks) {
    const HGLOBAL memory = GlobalAlloc(GHND, 100), fixed = GlobalAlloc(0, 100);
    EXPECT_EQ(GlobalLock(fixed), fixed);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(GlobalUnlock(fixed));
    EXPECT_EQ(GlobalLock(memory), GlobalLock(memory));
    EXPECT_TRUE(GlobalUnlock(memory));
    SetLastError(ERROR_INVALID_HANDLE);
    for (const DWORD error : {ERROR_SUCCESS, ERROR_NOT_LOCKED}) {
        EXPECT_FALSE(GlobalUnlock(memory));
        EXPECT_EQ(GetLastError(), error);
    }
    for (const HGLOBAL each : {memory, fixed}) EXPECT_EQ(GlobalFree(each), nullptr);
}

#if !defined(_WIN32)

TEST(Screen, ResourcesAreFoundByNumberAndByText) {
    const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});
    for (const char* content : {"an old one", "bytes"})
        tarn::addResource(module, 10, 101, content, static_cast<std::uint32_t>(std::strlen(content)));
    const HRSRC found = FindResourceA(module, "#101", MAKEINTRESOURCEA(10));
    EXPECT_EQ(found, FindResourceA(module, MAKEINTRESOURCEA(101), "#10"));
    const auto* bytes = static_cast<const char*>(LockResource(LoadResource(module, found)));
    EXPECT_EQ(std::string_view(bytes, SizeofResource(module, found)), "bytes");
    EXPECT_FALSE(FreeResource(found)) << "nothing has to be freed";
    for (const char* name : {MAKEINTRESOURCEA(102), "#101x", "LOGO", "#65637"}) {
        EXPECT_EQ(FindResourceA(module, name, "#10"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    }
    EXPECT_EQ(FindResourceA(nullptr, "#101", "#10"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_TYPE_NOT_FOUND);
    EXPECT_EQ(LoadBitmapA(module, "#101"), nullptr) << "another type";
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    tarn::removeResources(module);
    EXPECT_EQ(LockResource(found), nullptr);
}

#endif

}  // namespace
