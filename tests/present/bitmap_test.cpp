// Bitmaps of resources and the painted gradient: present/bitmap.cpp.

#include "present/screen.h"
#include "tests/present/packed_bitmap.h"
#include "tests/support.h"

namespace {

struct Manager : ItarnResourceMgr {
    HDC screen = GetDC(nullptr), context = CreateCompatibleDC(nullptr);
    std::vector<HBRUSH> brushes;

    ~Manager() override {
        for (const HBRUSH brush : brushes) EXPECT_TRUE(DeleteObject(brush));
        EXPECT_TRUE(DeleteDC(context) && ReleaseDC(nullptr, screen) == 1);
    }
    HBRUSH getBrush(COLORREF color) override { return brushes.emplace_back(CreateSolidBrush(color)); }
    HDC getMemoryDC() override { return context; }

    // The colours of a bitmap's first column, from the top.
    std::vector<COLORREF> column(HBITMAP bitmap, int height) {
        std::vector<COLORREF> colors;
        const HGDIOBJ earlier = SelectObject(context, bitmap);
        for (int y = 0; y < height; ++y) colors.push_back(GetPixel(context, 0, y));
        SelectObject(context, earlier);
        return colors;
    }
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
        const auto colors = manager.column(bitmap.bitmap, height);
        for (int y = 0; y < height; ++y)
            ASSERT_EQ(colors[static_cast<std::size_t>(y)], bandColor(height, height - 1 - y)) << height;
    }
}

#if !defined(_WIN32)

const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});

TEST(Bitmap, PackedResourcesGiveTheirPixelsAndNoneIsReadOutside) {
    const std::int32_t before = tarn::openHandles();
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        Manager manager;
        const tarntest::PackedBitmap packed(depth, 37, depth == 4 ? -6 : 6);
        const auto size = static_cast<std::uint32_t>(packed.bytes.size());
        tarn::addResource(module, 2, 300, packed.bytes.data(), size);
        std::vector<COLORREF> pixels;
        for (int y = 0; y < 6; ++y) pixels.push_back(packed.color(0, y));
        const tarnBitmap plain(module, 300, 0), bitmap(module, 300 + 0x10000, 1);
        EXPECT_TRUE(plain.width == 0 && bitmap.width == 37 && bitmap.height == packed.height);
        EXPECT_EQ(manager.column(plain.bitmap, 6), pixels) << depth;
        EXPECT_EQ(manager.column(bitmap.bitmap, 6), pixels) << depth;
        PALETTEENTRY entries[300];
        const UINT colors = GetPaletteEntries(bitmap.palette, 0, 300, entries);
        EXPECT_EQ(colors, depth <= 8 ? 1U << depth : 0U);
        for (std::size_t i = 0; i < colors; ++i)
            EXPECT_EQ(RGB(entries[i].peRed, entries[i].peGreen, entries[i].peBlue), packed.tableColor(i));
        // Cut anywhere; then with every bit of the header bent, where the address checks are the judge.
        for (std::uint32_t cut = 0; cut < size; ++cut) {
            tarn::addResource(module, 2, 300, packed.bytes.data(), cut);
            EXPECT_EQ(tarnBitmap(module, 300, cut % 2).bitmap, nullptr) << cut;
        }
        for (std::size_t i = 0; i < sizeof(BITMAPINFOHEADER) * 8; ++i) {
            auto bent = packed.bytes;
            bent[i / 8] ^= static_cast<unsigned char>(1 << i % 8);
            tarn::addResource(module, 2, 300, bent.data(), size);
            const tarnBitmap own(module, 300, 1), system(module, 300, 0);
        }
        // Packed by runs, its own size counts; a width below 0 is none.
        const auto room = static_cast<DWORD>(size - packed.pixelOffset);
        for (const DWORD variant : {0U, 1U, 2U, 3U, 4U}) {
            const int width = variant == 4 ? -37 : 37;
            const DWORD compression = variant % 2 == 0 ? BI_RLE8 : BI_RLE4,
                        imageSize = room + variant / 2 % 2;
            auto bent = packed.bytes;
            // More rows than there would be room for without runs.
            const std::int64_t words[] = {width, 1000, 0, compression, imageSize};
            for (const std::size_t word : {0U, 1U, 3U, 4U})
                for (std::size_t i = 0; i < 4; ++i)
                    bent[4 + 4 * word + i] = static_cast<unsigned char>(words[word] >> (8 * i));
            tarn::addResource(module, 2, 300, bent.data(), size);
            EXPECT_EQ(tarnBitmap(module, 300, 1).width, width > 0 && imageSize == room ? 37 : 0);
        }
    }
    // Masks that the resource doesn't hold whole, behind and within the header.
    for (const int headerSize : {40, 44}) {
        tarntest::PackedBitmap masked(32, 1, 1);
        masked.bytes[0] = static_cast<unsigned char>(headerSize);
        masked.bytes[16] = BI_BITFIELDS;
        masked.bytes.resize(52);
        tarn::addResource(module, 2, 300, masked.bytes.data(), 48);
        for (const int withPalette : {0, 1}) EXPECT_EQ(tarnBitmap(module, 300, withPalette).bitmap, nullptr);
    }
    tarn::removeResources(module);
    EXPECT_EQ(tarn::openHandles(), before);
}

#endif

}  // namespace
