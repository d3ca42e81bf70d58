// Reading a double without a look at the locale: by std::from_chars, and where the standard library has it for whole
// numbers alone, as libc++ does, by the C library's strtod in its "C" locale.
// Tests: fuzz/number_fuzz.cpp.

#include "core/double_from_chars.h"

#if !defined(__cpp_lib_to_chars)

#include <locale.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "base/ascii.h"

#if defined(__APPLE__)
#include <xlocale.h>
#endif

#endif

namespace tarn {

#if defined(__cpp_lib_to_chars)

std::from_chars_result doubleFromChars(const char* first, const char* last, double& number,
                                       std::chars_format format) {
    return std::from_chars(first, last, number, format);
}

#else

namespace {

double stringToDouble(const char* text, char** end) {
#if defined(_WIN32)
    static const _locale_t plain = _create_locale(LC_ALL, "C");
    return _strtod_l(text, end, plain);
#else
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text, end, plain);
#endif
}

}  // namespace

// strtod wants a terminator and, for a hexadecimal number, its prefix; blanks and a plus sign it would take.
std::from_chars_result doubleFromChars(const char* first, const char* last, double& number,
                                       std::chars_format format) {
    if (first == last || isSpace(*first) || *first == '+') return {first, std::errc::invalid_argument};
    const bool hexadecimal = format == std::chars_format::hex;
    std::string text(hexadecimal ? "0x" : "");
    const std::size_t prefix = text.size();
    text.append(first, last);
    char* end = nullptr;
    const double value = stringToDouble(text.c_str(), &end);
    const auto length = static_cast<std::size_t>(end - text.c_str());
    if (length <= prefix) return {first, std::errc::invalid_argument};
    const char* const behind = first + (length - prefix);
    const std::size_t power = std::min(text.find_first_of(hexadecimal ? "pP" : "eE", prefix), length);
    const bool isZero =
        text.find_first_of(hexadecimal ? "123456789abcdefABCDEF" : "123456789", prefix) >= power;
    const bool isTooLarge = std::isinf(value) && !isLetter(*first);
    if (isTooLarge || (value == 0.0 && !isZero)) return {behind, std::errc::result_out_of_range};
    number = value;
    return {behind, std::errc{}};
}

#endif

}  // namespace tarn
