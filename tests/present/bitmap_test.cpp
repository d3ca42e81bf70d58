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
        EXPECT_TRUE(DeleteDC(context));
        EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    }
    HBRUSH getBrush(COLORREF color) override { return brushes.emplace_back(CreateSolidBrush(color)); }
    HDC getMemoryDC() override { return context; }
};

// The gradient by its closed form: band k of 100, from the bottom, ends (k + 1) q + floor(k r / 100) rows up.
COLORREF bandColor(int height, int rowsBelow) {
    int k = 0;
    while (k < 100 && (k + 1) * (height / 100) + k * (height % 100) / 100 <= rowsBelow) ++k;
    return k % 100 == 0 ? RGB(198, 198, 198) : RGB(149 - k, 199 - k, 199 - k);
}

TEST(Bitmap, GradientsOfEveryHeightHaveTheirBands) {
    tarnBitmap bitmap;
    for (int height = 1; height <= 420; ++height) {
        Manager manager;
        bitmap.bitmapMOLT(0, 1, height, 0, manager.screen, &manager);
        std::vector<COLORREF> colors;
        for (int y = 0; y < height; ++y) colors.push_back(bandColor(height, height - 1 - y));
        ASSERT_EQ(pixelsOf(bitmap.bitmap), colors) << height;
    }
    bitmap.bitmapMOLT(0, 1, 1, 0, nullptr, nullptr);
    EXPECT_EQ(bitmap.height, 420) << "nothing happens without a manager";
}

#if !defined(_WIN32)

const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});

// The bitmap resource 300 of the module; the last one made takes the place of the others.
struct Resource {
    explicit Resource(const std::vector<unsigned char>& bytes, std::size_t size) {
        tarn::addResource(module, 2, 300, bytes.data(), static_cast<std::uint32_t>(size));
    }
    explicit Resource(const std::vector<unsigned char>& bytes) : Resource(bytes, bytes.size()) {}
    ~Resource() { tarn::removeResources(module); }
};

TEST(Bitmap, PackedResourcesGiveTheirPixelsAndTheirPalette) {
    const std::int32_t before = tarn::openHandles();
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        const PackedBitmap packed(depth, 37, depth == 4 ? -6 : 6);
        const Resource resource(packed.bytes);
        const tarnBitmap system(module, 300, 0), own(module, 300 + 0x10000, 1);
        EXPECT_EQ(pixelsOf(system.bitmap), packed.colors()) << depth;
        EXPECT_EQ(pixelsOf(own.bitmap), packed.colors()) << depth;
        EXPECT_EQ(system.width, 0);
        EXPECT_EQ(own.width, 37);
        EXPECT_EQ(own.height, packed.height);
        PALETTEENTRY entries[300];
        const UINT colors = GetPaletteEntries(own.palette, 0, 300, entries);
        EXPECT_EQ(colors, depth <= 8 ? 1U << depth : 0U);
        for (std::size_t i = 0; i < colors; ++i)
            EXPECT_EQ(RGB(entries[i].peRed, entries[i].peGreen, entries[i].peBlue), packed.tableColor(i));
    }
    EXPECT_EQ(tarn::openHandles(), before);
}

// Both loaders show these pixels; none where neither makes a bitmap.
void expectPixels(const PackedBitmap& packed, const std::vector<COLORREF>& pixels, const char* what) {
    const Resource resource(packed.bytes);
    for (const int usePalette : {0, 1})
        EXPECT_EQ(pixelsOf(tarnBitmap(module, 300, usePalette).bitmap), pixels) << what << ' ' << usePalette;
}

TEST(Bitmap, MasksAreReadWhereverTheyAre) {
    // 5-6-5 bits: full green, full red, then a blue of 16 of 31, which shows as 132.
    const std::vector pixels{RGB(0, 255, 0), RGB(255, 0, 0), RGB(0, 0, 132)};
    const std::vector<unsigned char> pixelBytes{0xE0, 0x07, 0x00, 0xF8, 0x10, 0x00, 0, 0};
    for (const DWORD headerSize : {40U, 44U, 52U, 124U}) {
        PackedBitmap packed(16, 3, 1);
        packed.bytes.resize(std::max(headerSize, 52U));
        packed.setWords(0, {headerSize});
        packed.setWords(4, {BI_BITFIELDS, 0, 0, 0, 0, 0, 0xF800, 0x07E0, 0x001F});
        packed.bytes.insert(packed.bytes.end(), pixelBytes.begin(), pixelBytes.end());
        expectPixels(packed, pixels, "masks");
        packed.bytes.pop_back();
        expectPixels(packed, {}, "pixels cut");
        packed.bytes.resize(48);
        expectPixels(packed, {}, "masks cut");
    }
    PackedBitmap deep(32, 1, 1);  // ten bits of red, ten of green and none of blue
    deep.bytes.resize(56);
    deep.setWords(4, {BI_BITFIELDS, 0, 0, 0, 0, 0, 0x3FF00000, 0xFFC00, 0, 513U << 20 | 0xFFFFF});
    expectPixels(deep, {RGB(128, 255, 0)}, "wide masks");
}

TEST(Bitmap, TheColorTableIsBehindALongerHeader) {
    PackedBitmap packed(4, 37, 6);
    const std::vector<COLORREF> pixels = packed.colors();
    packed.setWords(0, {108});
    packed.bytes.insert(packed.bytes.begin() + 40, 68, 0xEE);
    expectPixels(packed, pixels, "long header");
}

TEST(Bitmap, EntriesThatAShortTableLeavesOutAreBlack) {
    PackedBitmap packed(4, 3, 1);
    packed.setWords(8, {2});
    packed.bytes.resize(52);
    packed.bytes[48] = 0x01;
    packed.bytes[49] = 0x20;
    const Resource resource(packed.bytes);
    const tarnBitmap bitmap(module, 300, 0);
    EXPECT_EQ(pixelsOf(bitmap.bitmap),
              (std::vector{packed.tableColor(0), packed.tableColor(1), RGB(0, 0, 0)}));
}

// A packed bitmap of 4 x 3 pixels whose pixels are these runs.
PackedBitmap packedRuns(int depth, const std::vector<unsigned char>& runs, std::size_t runBytes) {
    PackedBitmap packed(depth, 4, 3);
    packed.bytes.resize(packed.pixelOffset);
    packed.bytes.insert(packed.bytes.end(), runs.begin(), runs.end());
    packed.setWords(4, {depth == 8 ? BI_RLE8 : BI_RLE4, static_cast<DWORD>(runBytes)});
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
        for (const std::size_t runBytes : {std::size_t{0}, each.runs.size()}) {
            const PackedBitmap packed = packedRuns(each.depth, each.runs, runBytes);
            std::vector<COLORREF> pixels;
            for (const char entry : each.picture)
                pixels.push_back(entry == '.' ? 0 : packed.tableColor(static_cast<std::size_t>(entry - '0')));
            expectPixels(packed, pixels, each.picture.data());
        }
        expectPixels(packedRuns(each.depth, each.runs, each.runs.size() + 1), {}, "longer than the resource");
    }
}

TEST(Bitmap, RunsOfAnotherDepthUpsideDownOrOutOfProportionGiveNone) {
    const struct {
        std::size_t word;
        DWORD value;
    } rows[] = {{2, ~DWORD{0}}, {4, BI_RLE4}, {1, 6'000'000}};
    for (const auto& each : rows) {
        PackedBitmap packed = packedRuns(8, {4, 1, 0, 1}, 0);
        packed.setWords(each.word, {each.value});
        expectPixels(packed, {}, "bent");
    }
}

TEST(Bitmap, CutResourcesGiveNoneAndBentOnesAreNotReadOutside) {
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        const PackedBitmap packed(depth, 37, 6);
        for (std::uint32_t cut = 0; cut < packed.bytes.size(); ++cut) {
            const Resource resource(packed.bytes, cut);
            EXPECT_EQ(tarnBitmap(module, 300, cut % 2).bitmap, nullptr) << cut;
        }
        // Every bit of the header turned over, which also makes runs of random pixels; the address checks judge.
        for (std::size_t i = 0; i < sizeof(BITMAPINFOHEADER) * 8; ++i) {
            auto bent = packed.bytes;
            bent[i / 8] ^= static_cast<unsigned char>(1 << i % 8);
            const Resource resource(bent);
            const tarnBitmap own(module, 300, 1), system(module, 300, 0);
        }
    }
}

using Size = std::array<std::int32_t, 2>;

Size sizeOf(tarnBitmap& bitmap) {
    Size size{-7, -7};
    bitmap.getSize(size[0], size[1]);
    return size;
}

TEST(Bitmap, ASizeThatIsUnknownIsReadFromTheBitmap) {
    const Manager manager;
    const Resource resource(PackedBitmap(8, 37, 6).bytes);
    tarnBitmap none, empty(manager.screen, 5, 4, 77), system(module, 300, 0), own(module, 300, 1);
    EXPECT_EQ(sizeOf(none), (Size{-7, -7}));
    EXPECT_EQ(sizeOf(empty), (Size{5, 4}));
    EXPECT_EQ(empty.resourceId, 77);
    for (tarnBitmap* const loaded : {&system, &own}) EXPECT_EQ(sizeOf(*loaded), (Size{37, 6}));
}

#endif

}  // namespace
