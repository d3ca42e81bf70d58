// Run-length encoded pixels.  Two bytes are a run: a count, and the pixels that are repeated, one of 8 bits
// or two of 4 that alternate.  A count of 0 makes the second byte an instruction: the end of the row, the end
// of the picture, a move by the two bytes behind it, or so many pixels one by one, in an even number of
// bytes. Rows run from the bottom up.
// Tests: tests/present/bitmap_test.cpp.

#include "platform/drawing/run_length.h"

#include <cstddef>

namespace {

constexpr unsigned endOfRow = 0, endOfPicture = 1, move = 2;

// Paints from the left end of the lowest row on.
class Pen {
  public:
    Pen(const tarn::ColorTable& table, const tarn::Bitmap& bitmap) : table_(table), bitmap_(bitmap) {}

    [[nodiscard]] bool isBelowTop() const { return row_ < bitmap_.height; }

    void paint(unsigned entry) {
        if (column_ < bitmap_.width && isBelowTop())
            bitmap_.row(bitmap_.height - 1 - row_)[column_++] = bitmap_.shown(table_[entry]);
    }
    void startNextRow() {
        column_ = 0;
        ++row_;
    }
    void moveBy(std::int32_t columns, std::int32_t rows) {
        column_ = columns < bitmap_.width - column_ ? column_ + columns : bitmap_.width;
        row_ = rows < bitmap_.height - row_ ? row_ + rows : bitmap_.height;
    }

  private:
    const tarn::ColorTable& table_;
    const tarn::Bitmap& bitmap_;
    std::int32_t column_ = 0;  // [0, width]
    std::int32_t row_ = 0;     // [0, height], from the bottom
};

}  // namespace

void tarn::decodeRuns(std::span<const unsigned char> runs, unsigned depth, const ColorTable& table,
                      const Bitmap& bitmap) {
    Pen pen(table, bitmap);
    const auto paint = [&pen, depth](unsigned byte, unsigned pixel) {
        pen.paint(depth == 8 ? byte : pixel % 2 == 0 ? byte >> 4 : byte & 0xF);
    };
    while (runs.size() >= 2 && pen.isBelowTop()) {
        const unsigned count = runs[0], second = runs[1];
        runs = runs.subspan(2);
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i) paint(second, i);
        } else if (second == endOfRow) {
            pen.startNextRow();
        } else if (second == endOfPicture) {
            return;
        } else if (second == move) {
            if (runs.size() < 2) return;
            pen.moveBy(runs[0], runs[1]);
            runs = runs.subspan(2);
        } else {
            const std::size_t bytes = (std::size_t{second} * depth + 15) / 16 * 2;
            if (runs.size() < bytes) return;
            for (unsigned i = 0; i < second; ++i) paint(runs[i * depth / 8], i);
            runs = runs.subspan(bytes);
        }
    }
}
