#pragma once

// Internal: std::from_chars for doubles, which some standard libraries lack.  core/number_text.h has the rules by
// which the library reads numbers.

#include <charconv>

namespace tarn {

// As std::from_chars answers for `general` and `hex`, also where that is on strtod.
std::from_chars_result doubleFromChars(const char* first, const char* last, double& number,
                                       std::chars_format format);

}  // namespace tarn
