#pragma once

// Internal: pixels of 4 and 8 bits that are stored as runs (BI_RLE4, BI_RLE8), for dib.cpp.

#include <span>

#include "platform/drawing/objects.h"

namespace tarn {

using ColorTable = COLORREF[256];

// Paints what the runs cover of a bitmap that is black so far.  What they have outside of it isn't painted;
// they may end at any byte.
void decodeRuns(std::span<const unsigned char> runs, unsigned depth, const ColorTable& table,
                const Bitmap& bitmap);

}  // namespace tarn
