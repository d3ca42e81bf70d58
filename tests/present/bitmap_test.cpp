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

TEST(Bitmap, CutResourcesGiveNoneAndBentOnesAreNotReadOutside) {
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        const PackedBitmap packed(depth, 37, 6);
        for (std::uint32_t cut = 0; cut < packed.bytes.size(); ++cut) {
            const Resource resource(packed.bytes, cut);
            EXPECT_EQ(tarnBitmap(module, 300, cut % 2).bitmap, nullptr) << cut;
        }
        // Every bit of the header turned over, where the address checks are the judge.
        for (std::size_t i = 0; i < sizeof(BITMAPINFOHEADER) * 8; ++i) {
            auto bent = packed.bytes;
            bent[i / 8] ^= static_cast<unsigned char>(1 << i % 8);
            const Resource resource(bent);
            const tarnBitmap own(module, 300, 1), system(module, 300, 0);
        }
    }
}

TEST(Bitmap, RunsAreMeasuredByTheirOwnSize) {
    for (const DWORD compression : {BI_RLE8, BI_RLE4}) {
        for (const bool fits : {true, false}) {
            PackedBitmap packed(8, 37, 6);
            const auto room = static_cast<DWORD>(packed.bytes.size() - packed.pixelOffset);
            packed.setWord(2, 1000);  // more rows than there would be room for without runs
            packed.setWord(4, compression);
            packed.setWord(5, fits ? room : room + 1);
            const Resource resource(packed.bytes);
            EXPECT_EQ(tarnBitmap(module, 300, 1).width, fits ? 37 : 0);
        }
    }
}

TEST(Bitmap, MasksThatAreNotWholeGiveNone) {
    for (const DWORD headerSize : {40U, 44U}) {
        PackedBitmap masked(32, 1, 1);
        masked.setWord(0, headerSize);
        masked.setWord(4, BI_BITFIELDS);
        masked.bytes.resize(52);
        const Resource resource(masked.bytes, 48);
        for (const int withPalette : {0, 1}) EXPECT_EQ(tarnBitmap(module, 300, withPalette).bitmap, nullptr);
    }
}

#endif

}  // namespace
