#pragma once

// Internal: the rules by which the library reads and writes numbers as text.  They are those of the C
// library in its "C" locale, whatever locale the program has set.  Users want the conversions of
// core/variant.h, or fintext/financial_text.h.

#include <cstddef>
#include <cstdint>

namespace tarn {

// Reads what atof reads: white space, a sign, then the longest decimal, hexadecimal, "inf" or "nan" form.
// Anything else, and NULL, answers 0; too large a number answers infinity.
double readDouble(const char* text);

// Reads what atol reads, as 32 bits: a number outside them becomes the nearest limit.  NULL answers 0.
std::int32_t readLong(const char* text);

// Reads one number as the C library's %d does, with the same clamping.  Answers where it ends; without
// digits it answers NULL and leaves `number` alone.
const char* scanLong(const char* text, std::int32_t& number);

// Bytes that writeFixed may need with this many decimals: sign, 309 digits, point, decimals, terminator.
constexpr std::size_t fixedRoom(std::size_t decimals) {
    return 312 + decimals;
}

// Write as the formats "%.*f", "%.*g", "%d" and "%.*d" do, with a terminator.  Answer the terminator's place.
char* writeFixed(char* target, double value, std::uint32_t decimals);
char* writeGeneral(char* target, double value, std::uint32_t digits);  // at most digits + 12 bytes
char* writeLong(char* target, std::int32_t value);                     // at most 12 bytes
// Of a number from 0 on; at most 12 bytes or digits + 1.
char* writePadded(char* target, std::int32_t value, std::size_t digits);

// Cuts a number towards zero.  One outside 32 bits becomes the nearest limit, a NaN becomes 0.
std::int32_t cutToLong(double value);

}  // namespace tarn
