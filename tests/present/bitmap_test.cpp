// Bitmaps of resources and the painted gradient: present/bitmap.cpp.

#include <cstring>
#include <map>
#include <vector>

#include "present/screen.h"
#include "tests/present/packed_bitmap.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace {

constexpr COLORREF grey = RGB(198, 198, 198);

class Manager : public ItarnResourceMgr {
  public:
    Manager() = default;
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;
    ~Manager() override {
        for (const auto& [color, brush] : brushes_) EXPECT_TRUE(DeleteObject(brush));
        EXPECT_TRUE(DeleteDC(context_));
        ReleaseDC(nullptr, screen_);
    }

    HBRUSH getBrush(COLORREF color) override {
        HBRUSH& brush = brushes_[color];
        if (brush == nullptr) brush = CreateSolidBrush(color);
        return brush;
    }
    HDC getMemoryDC() override { return context_; }
    [[nodiscard]] HDC screen() const { return screen_; }

    // The colours of a bitmap's first column, from the top.
    std::vector<COLORREF> column(HBITMAP bitmap, int height) {
        std::vector<COLORREF> colors;
        const HGDIOBJ earlier = SelectObject(context_, bitmap);
        EXPECT_NE(earlier, nullptr) << "the painted bitmap is selected out again";
        for (int y = 0; y < height; ++y) colors.push_back(GetPixel(context_, 0, y));
        SelectObject(context_, earlier);
        return colors;
    }

  private:
    HDC screen_ = GetDC(nullptr);
    HDC context_ = CreateCompatibleDC(nullptr);
    std::map<COLORREF, HBRUSH> brushes_;
};

// The gradient by its closed form: band k of 100, from the bottom, ends (k + 1) q + floor(k r / 100) rows up.
COLORREF bandColor(int height, int rowsBelow) {
    const int q = height / 100, r = height % 100;
    for (int k = 0; k < 100; ++k) {
        if ((k + 1) * q + k * r / 100 > rowsBelow) return k == 0 ? grey : RGB(149 - k, 199 - k, 199 - k);
    }
    return grey;
}

TEST(Bitmap, GradientsOfEveryHeightHaveTheirBands) {
    Manager manager;
    for (int height = 1; height <= 420; ++height) {
        tarnBitmap bitmap;
        bitmap.bitmapMOLT(0, 1, height, 0, manager.screen(), &manager);
        const std::vector<COLORREF> rows = manager.column(bitmap.bitmap, height);
        for (int y = 0; y < height; ++y) {
            ASSERT_EQ(rows[static_cast<std::size_t>(y)], bandColor(height, height - 1 - y))
                << height << ": row " << y;
        }
    }
    // The bands as they are told: 1 each; 2, 2, 3, 2, 3 from the bottom; every second one.
    const struct {
        int height, rowsBelow;
        COLORREF color;
    } told[] = {{100, 0, grey},
                {100, 99, RGB(50, 100, 100)},
                {250, 1, grey},
                {250, 2, RGB(148, 198, 198)},
                {250, 3, RGB(148, 198, 198)},
                {250, 4, RGB(147, 197, 197)},
                {250, 6, RGB(147, 197, 197)},
                {250, 7, RGB(146, 196, 196)},
                {250, 249, grey},
                {50, 0, RGB(147, 197, 197)},
                {50, 1, RGB(145, 195, 195)},
                {50, 49, grey}};
    for (const auto& row : told) EXPECT_EQ(bandColor(row.height, row.rowsBelow), row.color) << row.height;
}

TEST(Bitmap, WhatCanNotBePaintedPaintsNothing) {
    Manager manager;
    tarnBitmap bitmap;
    bitmap.bitmapMOLT(1, 10, 10, 1, manager.screen(), nullptr);
    EXPECT_EQ(bitmap.bitmap, nullptr);
    for (const std::int32_t size : {INT32_MIN + 1, INT32_MAX}) {
        bitmap.bitmapMOLT(1, size, size, 1, manager.screen(), &manager);
        EXPECT_EQ(bitmap.bitmap, nullptr);
        EXPECT_EQ(bitmap.height, size);
    }
    bitmap.bitmapMOLT(1, 3, 7, 1, manager.screen(), &manager);
    bitmap.bitmapMOLT(1, 3, 9, 1, manager.screen(), &manager);  // the first one is released
    EXPECT_EQ(manager.column(bitmap.bitmap, 9).size(), 9U);
    EXPECT_EQ(bitmap.width, 3);
}

TEST(Bitmap, SizesAreKnownWithTheBitmap) {
    std::int32_t width = 77, height = 78;
    tarnBitmap none;
    none.getSize(width, height);
    EXPECT_EQ(width, 77);
    EXPECT_EQ(height, 78);
    Manager manager;
    tarnBitmap made(manager.screen(), 12, 34, 5);
    EXPECT_EQ(made.resourceId, 5);
    made.width = made.height = 0;  // as a bitmap of LoadBitmapA has it
    made.getSize(width, height);
    EXPECT_EQ(width, 12);
    EXPECT_EQ(made.height, 34);
    made.width = 9;
    made.getSize(width, height);
    EXPECT_EQ(width, 9) << "read once, then kept";
}

#if !defined(_WIN32)

const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x5000});

void registerPacked(const std::vector<unsigned char>& bytes) {
    tarn::addResource(module, 2, 300, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

TEST(Bitmap, PackedResourcesGiveTheirPixelsAndTheirPalette) {
    const std::int32_t before = tarn::openHandles();
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
        for (const int height : {6, -6}) {
            const tarntest::PackedBitmap packed(depth, 5, height);
            registerPacked(packed.bytes);
            Manager manager;
            for (const int withPalette : {0, 1}) {
                tarnBitmap bitmap(module, 300 + 0x10000, withPalette);
                std::vector<COLORREF> expected;
                for (int y = 0; y < 6; ++y) expected.push_back(packed.color(0, y));
                EXPECT_EQ(manager.column(bitmap.bitmap, 6), expected) << depth;
                EXPECT_EQ(bitmap.width, withPalette == 0 ? 0 : 5);
                EXPECT_EQ(bitmap.height, withPalette == 0 ? 0 : height);
                std::int32_t columns = 0, rows = 0;
                bitmap.getSize(columns, rows);
                EXPECT_EQ(columns, 5);
                EXPECT_EQ(rows, withPalette == 0 ? 6 : height);
                const bool hasPalette = withPalette != 0 && depth <= 8;
                ASSERT_EQ(bitmap.palette != nullptr, hasPalette) << depth;
                if (!hasPalette) continue;
                std::vector<PALETTEENTRY> entries(300);
                ASSERT_EQ(GetPaletteEntries(bitmap.palette, 0, 300, entries.data()), 1U << depth);
                for (int i = 0; i < 1 << depth; ++i) {
                    const PALETTEENTRY& entry = entries[static_cast<std::size_t>(i)];
                    EXPECT_EQ(entry.peRed, tarntest::PackedBitmap::tableColor(i, 1));
                    EXPECT_EQ(entry.peGreen, tarntest::PackedBitmap::tableColor(i, 2));
                    EXPECT_EQ(entry.peBlue, tarntest::PackedBitmap::tableColor(i, 3));
                    EXPECT_EQ(entry.peFlags, 0);
                }
            }
        }
    }
    tarn::removeResources(module);
    EXPECT_EQ(tarn::openHandles(), before);
}

TEST(Bitmap, NoCutOrBentResourceIsReadOutside) {
    const std::int32_t before = tarn::openHandles();
    for (const int depth : {4, 24}) {
        const tarntest::PackedBitmap packed(depth, 5, 6);
        for (std::size_t size = 0; size < packed.bytes.size(); ++size) {
            registerPacked({packed.bytes.begin(), packed.bytes.begin() + static_cast<std::ptrdiff_t>(size)});
            EXPECT_EQ(tarnBitmap(module, 300, 1).bitmap, nullptr) << size;
            EXPECT_EQ(tarnBitmap(module, 300, 0).bitmap, nullptr) << size;
        }
        // Every bit of the header, and all of each byte: the address checks are the judge.
        for (std::size_t byte = 0; byte < sizeof(BITMAPINFOHEADER); ++byte) {
            for (const int flip : {1, 2, 4, 8, 16, 32, 64, 128, 255}) {
                std::vector<unsigned char> bent = packed.bytes;
                bent[byte] = static_cast<unsigned char>(bent[byte] ^ flip);
                registerPacked(bent);
                const tarnBitmap own(module, 300, 1), system(module, 300, 0);
                for (const tarnBitmap* loaded : {&own, &system}) {
                    EXPECT_EQ(GetObjectA(loaded->bitmap, 0, nullptr) != 0, loaded->bitmap != nullptr);
                }
            }
        }
    }
    tarn::removeResources(module);
    EXPECT_EQ(tarnBitmap(module, 300, 1).bitmap, nullptr);
    EXPECT_EQ(tarn::openHandles(), before);
}

#endif

}  // namespace
