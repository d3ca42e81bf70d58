// Bitmaps of resources and the painted gradient: present/bitmap.cpp.

#include "present/screen.h"
#include "tests/present/packed_bitmap.h"
#include "tests/support.h"

namespace {

constexpr COLORREF grey = RGB(198, 198, 198);

class Manager : public ItarnResourceMgr {
  public:
    HDC screen = GetDC(nullptr), context = CreateCompatibleDC(nullptr);

    ~Manager() override {
        for (const HBRUSH brush : brushes_) EXPECT_TRUE(DeleteObject(brush));
        EXPECT_TRUE(DeleteDC(context) && ReleaseDC(nullptr, screen) == 1);
    }
    HBRUSH getBrush(COLORREF color) override { return brushes_.emplace_back(CreateSolidBrush(color)); }
    HDC getMemoryDC() override { return context; }

    // The colours of a bitmap's first column, from the top.
    std::vector<COLORREF> column(HBITMAP bitmap, int height) {
        std::vector<COLORREF> colors;
        const HGDIOBJ earlier = SelectObject(context, bitmap);
        for (int y = 0; y < height; ++y) colors.push_back(GetPixel(context, 0, y));
        EXPECT_EQ(SelectObject(context, earlier), bitmap);
        return colors;
    }

  private:
    std::vector<HBRUSH> brushes_;
};

// The gradient by its closed form: band k of 100, from the bottom, ends (k + 1) q + floor(k r / 100) rows up.
COLORREF bandColor(int height, int rowsBelow) {
    int k = 0;
    while (k < 100 && (k + 1) * (height / 100) + k * (height % 100) / 100 <= rowsBelow) ++k;
    return k % 100 == 0 ? grey : RGB(149 - k, 199 - k, 199 - k);
}

TEST(Bitmap, GradientsOfEveryHeightHaveTheirBands) {
    tarnBitmap bitmap;
    for (int height = 1; height <= 420; ++height) {
        Manager manager;
        bitmap.bitmapMOLT(0, 1, height, 0, manager.screen, &manager);
        std::vector<COLORREF> expected;
        for (int y = 0; y < height; ++y) expected.push_back(bandColor(height, height - 1 - y));
        ASSERT_EQ(manager.column(bitmap.bitmap, height), expected) << height;
    }
    const int ends[] = {1, 3, 6, 8, 11};  // the bands of height 250 are 2, 2, 3, 2, 3 rows high
    for (int k = 1; k < 5; ++k) EXPECT_EQ(bandColor(250, ends[k]), RGB(149 - k, 199 - k, 199 - k));
    Manager manager;
    bitmap.bitmapMOLT(1, 10, 10, 1, manager.screen, nullptr);
    EXPECT_NE(bitmap.bitmap, nullptr);                                        // as it was
    bitmap.bitmapMOLT(1, INT32_MAX, INT32_MAX, 1, manager.screen, &manager);  // can't be made
    EXPECT_EQ(bitmap.bitmap, nullptr);
}

TEST(Bitmap, SizesAreReadOnceAndThenKept) {
    std::int32_t width = 77, height = 78;
    tarnBitmap().getSize(width, height);
    EXPECT_EQ(width + height, 77 + 78);
    const Manager manager;
    tarnBitmap made(manager.screen, 12, 34, 5);
    for (const std::int32_t known : {0, 9}) {
        made.width = made.height = known;  // 0 as a bitmap of LoadBitmapA has it
        made.getSize(width, height);
        EXPECT_EQ(width * 100 + height, known == 0 ? 1234 : 909);
    }
}

#if !defined(_WIN32)

const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});

void registerPacked(const std::vector<unsigned char>& bytes, std::size_t size) {
    tarn::addResource(module, 2, 300, bytes.data(), static_cast<std::uint32_t>(size));
}

TEST(Bitmap, PackedResourcesGiveTheirPixelsAndTheirPalette) {
    Manager manager;
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        const tarntest::PackedBitmap packed(depth, 5, depth == 4 ? -6 : 6);
        registerPacked(packed.bytes, packed.bytes.size());
        std::vector<COLORREF> pixels;
        for (int y = 0; y < 6; ++y) pixels.push_back(packed.color(0, y));
        const tarnBitmap plain(module, 300, 0), bitmap(module, 300 + 0x10000, 1);
        EXPECT_TRUE(plain.width == 0 && plain.height == 0 && plain.palette == nullptr);
        EXPECT_TRUE(bitmap.width == 5 && bitmap.height == packed.height);
        EXPECT_EQ(manager.column(plain.bitmap, 6), pixels) << depth;
        EXPECT_EQ(manager.column(bitmap.bitmap, 6), pixels) << depth;
        PALETTEENTRY entries[300];
        ASSERT_EQ(GetPaletteEntries(bitmap.palette, 0, 300, entries), depth <= 8 ? 1U << depth : 0U);
        for (std::size_t i = 0; depth <= 8 && i < 1U << depth; ++i)
            EXPECT_EQ(RGB(entries[i].peRed, entries[i].peGreen, entries[i].peBlue), packed.tableColor(i));
    }
}

TEST(Bitmap, NoCutOrBentResourceIsReadOutside) {
    const std::int32_t before = tarn::openHandles();
    for (const int depth : {4, 24}) {
        tarntest::PackedBitmap packed(depth, 5, 6);
        for (std::size_t size = 0; size < packed.bytes.size(); ++size) {
            registerPacked(packed.bytes, size);
            for (const int withPalette : {0, 1})
                EXPECT_EQ(tarnBitmap(module, 300, withPalette).bitmap, nullptr) << size;
        }
        // Every bit of the header, and all of each byte: the address checks are the judge.
        for (std::size_t i = 0; i < sizeof(BITMAPINFOHEADER) * 9; ++i) {
            const auto flip = static_cast<unsigned char>(i % 9 == 8 ? 255 : 1 << i % 9);
            packed.bytes[i / 9] ^= flip;
            registerPacked(packed.bytes, packed.bytes.size());
            packed.bytes[i / 9] ^= flip;
            const tarnBitmap own(module, 300, 1), system(module, 300, 0);
        }
    }
    tarn::removeResources(module);
    EXPECT_EQ(tarnBitmap(module, 300, 1).bitmap, nullptr);
    EXPECT_EQ(tarn::openHandles(), before);
}

#endif

}  // namespace
