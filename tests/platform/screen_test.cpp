// Device contexts, bitmaps, memory and resources: platform/drawing/screen.cpp, device_contexts.cpp, bitmaps.cpp,
// global_memory.cpp, resources.cpp, and the system's own on Windows.

#include "tests/support.h"

namespace {

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
    EXPECT_EQ(ReleaseDC(nullptr, nullptr), 0);
}

TEST(Screen, ARectangleFillsUpToItsRightAndBottom) {
    const Canvas canvas(3, 3);
    const RECT rectangle{0, 0, 2, 2};
    FillRect(canvas.context, &rectangle, reinterpret_cast<HBRUSH>(ULONG_PTR{COLOR_HIGHLIGHT + 1}));
    EXPECT_EQ(GetPixel(canvas.context, 1, 1), GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(GetPixel(canvas.context, 2, 1), 0U);
    EXPECT_EQ(GetPixel(canvas.context, 1, 3), CLR_INVALID);
}

TEST(Screen, PalettesAreSelectedInTurn) {
    const Canvas canvas(1, 1);
    const LOGPALETTE colors{0x300, 1, {{1, 2, 3, 0}}};
    const HPALETTE palette = CreatePalette(&colors);
    const HPALETTE earlier = SelectPalette(canvas.screen, palette, FALSE);
    EXPECT_EQ(RealizePalette(canvas.screen), 0U);
    EXPECT_EQ(SelectPalette(canvas.screen, earlier, FALSE), palette);
    EXPECT_TRUE(DeleteObject(palette));
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
    for (const char* name : {MAKEINTRESOURCEA(102), "#101x", "LOGO", "#65637"}) {
        EXPECT_EQ(FindResourceA(module, name, "#10"), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    }
    EXPECT_EQ(FindResourceA(nullptr, "#101", "#10"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_TYPE_NOT_FOUND);
    EXPECT_EQ(LoadBitmapA(module, "#101"), nullptr) << "another type";
    EXPECT_FALSE(FreeResource(found)) << "nothing has to be freed";
    tarn::removeResources(module);
    EXPECT_EQ(LockResource(found), nullptr);
}

#endif

}  // namespace
