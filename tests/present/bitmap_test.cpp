// Bitmaps of resources and the painted gradient: present/bitmap.cpp.

#include "present/screen.h"
#include "tests/plain/packed_bitmap.h"
#include "tests/support.h"

namespace {

using tarntest::PackedBitmap, tarntest::pixelsOf;

struct Manager : ItarnResourceMgr {
    HDC screen = GetDC(nullptr), context = CreateCompatibleDC(nullptr);
    std::vector<HBRUSH> brushes;

    ~Manager() override {
        for (const HBRUSH brush : brushes) EXPECT_TRUE(DeleteObject(brush));
        DeleteDC(context);
        ReleaseDC(nullptr, screen);
    }
    HBRUSH getBrush(COLORREF color) override { return brushes.emplace_back(CreateSolidBrush(color)); }
    HDC getMemoryDC() override { return context; }
};

using Size = std::array<std::int32_t, 2>;

Size sizeOf(tarnBitmap& bitmap) {
    Size size{-7, -7};
    bitmap.getSize(size[0], size[1]);
    return size;
}

// The gradient by its closed form: band k of 100, from the bottom, ends (k + 1) q + floor(k r / 100) rows up.
COLORREF bandColor(int height, int rowsBelow) {
    int k = 0;
    while (k < 100 && (k + 1) * (height / 100) + k * (height % 100) / 100 <= rowsBelow) ++k;
    return k % 100 == 0 ? RGB(198, 198, 198) : RGB(149 - k, 199 - k, 199 - k);
}

TEST(Bitmap, GradientsOfEveryHeightHaveTheirBands) {
    tarnBitmap none, bitmap(Manager().screen, 5, 4, 77);
    EXPECT_EQ(sizeOf(none), (Size{-7, -7}));
    EXPECT_EQ(sizeOf(bitmap), (Size{5, 4}));
    EXPECT_EQ(bitmap.resourceId, 77);
    for (int height = 1; height <= 420; ++height) {
        Manager manager;
        bitmap.bitmapMOLT(0, 1, height, 0, manager.screen, &manager);
        std::vector<COLORREF> colors;
        for (int y = 0; y < height; ++y) colors.push_back(bandColor(height, height - 1 - y));
        ASSERT_EQ(pixelsOf(bitmap.bitmap), colors) << height;
    }
    bitmap.bitmapMOLT(0, 1, 1, 0, nullptr, nullptr);
    EXPECT_EQ(sizeOf(bitmap), (Size{1, 420})) << "nothing happens without a manager";
}

#if !defined(_WIN32)

const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});

// What a loader makes of the resource 300.
tarnBitmap loaded(const PackedBitmap& packed, int usePalette) {
    tarn::addResource(module, 2, 300, packed.bytes.data(), static_cast<std::uint32_t>(packed.bytes.size()));
    return tarnBitmap(module, 300 + 0x10000, usePalette);
}

// Both loaders show these pixels; none where neither makes a bitmap.
void expectPixels(const PackedBitmap& packed, const std::vector<COLORREF>& pixels, const char* what) {
    for (const int usePalette : {0, 1})
        EXPECT_EQ(pixelsOf(loaded(packed, usePalette).bitmap), pixels) << what << ' ' << usePalette;
}

TEST(Bitmap, PackedResourcesGiveTheirPixelsAndTheirPalette) {
    const std::int32_t before = tarn::openHandles();
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        PackedBitmap packed(depth, 37, depth == 4 ? -6 : 6);
        const std::vector<COLORREF> pixels = packed.colors();
        expectPixels(packed, pixels, "short header");
        tarnBitmap system = loaded(packed, 0), own = loaded(packed, 1);
        EXPECT_EQ(sizeOf(own), (Size{37, packed.height}));
        EXPECT_EQ(sizeOf(system), (Size{37, 6}));
        const UINT colors = depth <= 8 ? 1U << depth : 0;
        EXPECT_EQ(GetPaletteEntries(own.palette, 0, 0, nullptr), colors);
        for (UINT i = 0; i < colors; ++i) {
            PALETTEENTRY entry;
            EXPECT_EQ(GetPaletteEntries(own.palette, i, 1, &entry), 1U);
            EXPECT_EQ(RGB(entry.peRed, entry.peGreen, entry.peBlue), packed.tableColor(i));
        }
        packed.setWords(0, {108});
        packed.bytes.insert(packed.bytes.begin() + 40, 68, 0xEE);
        expectPixels(packed, pixels, "long header");
    }
    EXPECT_EQ(tarn::openHandles(), before);
}

TEST(Bitmap, AShortTableAndMasksAreReadWhereverTheyAre) {
    PackedBitmap brief(1, 3, 1);  // with one entry of its table
    brief.setWords(8, {1});
    brief.bytes.resize(48);
    brief.bytes[44] = 0x40;
    const COLORREF known = brief.tableColor(0), missing = 0;
    EXPECT_EQ(pixelsOf(loaded(brief, 0).bitmap), (std::vector{known, missing, known}));
    EXPECT_EQ(loaded(brief, 1).bitmap, nullptr) << "a palette needs a whole table";
    // 5-6-5 bits: full green, full red, then a blue of 16 of 31, which shows as 132.
    const std::vector<unsigned char> pixelBytes{0xE0, 0x07, 0x00, 0xF8, 0x10, 0x00, 0, 0};
    for (const DWORD headerSize : {40U, 44U, 124U}) {
        PackedBitmap packed(16, 3, 1);
        packed.bytes.resize(std::max(headerSize, 52U));
        packed.setWords(0, {headerSize});
        packed.setWords(4, {BI_BITFIELDS, 0, 0, 0, 0, 0, 0xF800, 0x07E0, 0x001F});
        packed.bytes.insert(packed.bytes.end(), pixelBytes.begin(), pixelBytes.end());
        expectPixels(packed, {RGB(0, 255, 0), RGB(255, 0, 0), RGB(0, 0, 132)}, "masks");
        for (const std::size_t size : {packed.bytes.size() - 1, std::size_t{48}}) {
            packed.bytes.resize(size);
            expectPixels(packed, {}, "cut");
        }
    }
}

// A packed bitmap of 4 x 3 pixels whose pixels are these runs, up to its end.
PackedBitmap packedRuns(int depth, const std::vector<unsigned char>& runs) {
    PackedBitmap packed(depth, 4, 3);
    packed.bytes.resize(packed.pixelOffset);
    packed.bytes.insert(packed.bytes.end(), runs.begin(), runs.end());
    packed.setWords(4, {depth == 8 ? BI_RLE8 : BI_RLE4});
    return packed;
}

TEST(Bitmap, RunsPaintWhatTheyCoverFromTheBottomUp) {
    const struct {
        int depth;
        std::vector<unsigned char> runs;
        std::string_view picture;  // rows from the top: entries of the colour table, and a point for black
    } rows[] = {
        {8, {3, 7, 1, 9, 0, 0, 0, 3, 1, 2, 3, 0, 0, 0, 0, 2, 1, 0, 9, 5, 0, 1, 4, 8}, ".555123.7779"},
        {4, {0, 5, 0x12, 0x34, 0x50, 0, 0, 0, 3, 0x67, 0, 2, 0, 1, 2, 0x89, 0, 0, 2, 0xAB}, "...8676.1234"},
        {8, {0, 2, 255, 0, 1, 6, 0, 0, 0, 2, 0, 255, 2, 6}, "............"},  // outside after each move
        {8, {1, 2, 1, 3}, "........23.."},                                    // without an end
        {8, {1, 2, 0, 4, 1, 2}, "........2..."},                              // cut within four pixels
        {8, {1, 2, 0, 2, 1}, "........2..."},                                 // cut within a move
    };
    for (const auto& each : rows) {
        PackedBitmap packed = packedRuns(each.depth, each.runs);
        std::vector<COLORREF> pixels;
        for (const char entry : each.picture)
            pixels.push_back(entry == '.' ? 0 : packed.tableColor(static_cast<std::size_t>(entry - '0')));
        expectPixels(packed, pixels, each.picture.data());
        packed.setWords(5, {static_cast<DWORD>(each.runs.size())});
        expectPixels(packed, pixels, each.picture.data());
    }
    // Upside down, of another depth, longer than the resource, out of proportion.
    for (const auto& [word, value] : {std::pair{2U, ~0U}, {4U, BI_RLE4}, {5U, 5U}, {1U, 6'000'000U}}) {
        PackedBitmap packed = packedRuns(8, {4, 1, 0, 1});
        packed.setWords(word, {value});
        expectPixels(packed, {}, "bent");
    }
}

TEST(Bitmap, CutResourcesGiveNoneAndBentOnesAreNotReadOutside) {
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        // Every bit of the header turned over, which also makes runs of random pixels; the address checks
        // judge.
        for (std::size_t i = 0; i < sizeof(BITMAPINFOHEADER) * 8; ++i) {
            PackedBitmap bent(depth, 37, 6);
            bent.bytes[i / 8] ^= static_cast<unsigned char>(1 << i % 8);
            for (const int usePalette : {0, 1}) loaded(bent, usePalette);
        }
        PackedBitmap packed(depth, 37, 6);
        while (!packed.bytes.empty()) {
            packed.bytes.pop_back();
            expectPixels(packed, {}, "cut");
        }
    }
}

#endif

}  // namespace
