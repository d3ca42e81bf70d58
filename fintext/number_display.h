#pragma once

// Internal: numbers for display that the sources of fintext/ have in common.  Users want
// fintext/financial_text.h.

#include <cstdint>

class tarnString;
struct MOLTVARIANT;

namespace tarn {

// Decimals that show every double in full; a target needs fixedRoom (core/number_text.h) of as many.
constexpr std::uint32_t mostDecimals = 1074;

// Writes a number with at most mostDecimals decimals, and one unit of the last place more where the text and
// half a unit, added as doubles, don't exceed the number: 1.005 with two decimals is 1.01.  Answers the
// terminator's place.
char* writeRounded(char* target, double value, std::uint32_t decimals);

// The number of a tagged value: tags 1 and 6 as signed 8 bits, 2 and 7 as signed 16 bits, 3, 8 and 14, 4, 5,
// and the texts of 10 and 17 by strToDouble.  NULL and every other tag answer 0.
double variantToDouble(const MOLTVARIANT* value);

// Shows a tagged value as a whole number if it is one, otherwise with four decimals by writeRounded.
void variantToNumberText(const MOLTVARIANT* value, tarnString* target);

}  // namespace tarn
