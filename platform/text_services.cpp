// Number to text and case-independent comparison, on the standard library and the same under every locale.
// Tests: tests/platform/text_services_test.cpp.

#include <charconv>
#include <cstring>

#include "base/ascii.h"
#include "platform/win32.h"

namespace {

int foldCase(char character) {
    return static_cast<unsigned char>(tarn::toLower(character));
}

constexpr std::size_t longestInteger = 33;  // 32 digits of radix 2 and the terminator, the caller's promise

}  // namespace

char* _ltoa(LONG value, char* buffer, int radix) {
    char* const limit = buffer + longestInteger;
    const auto end = radix == 10 ? std::to_chars(buffer, limit, value)
                                 : std::to_chars(buffer, limit, static_cast<DWORD>(value), radix);
    *end.ptr = '\0';
    return buffer;
}

char* _itoa(int value, char* buffer, int radix) {
    return _ltoa(value, buffer, radix);
}

char* _gcvt(double value, int digits, char* buffer) {
    constexpr std::size_t exponentAndSign = 8;  // sign, point, e, its sign, three digits, terminator
    constexpr int mostDigits = 17;              // more say nothing about a double
    if (digits < 1) digits = 1;
    if (digits > mostDigits) digits = mostDigits;
    const auto room = static_cast<std::size_t>(digits) + exponentAndSign + 4;  // 0.000 in front of the digits
    const auto end = std::to_chars(buffer, buffer + room, value, std::chars_format::general, digits);
    *end.ptr = '\0';
    return buffer;
}

int _stricmp(const char* a, const char* b) {
    for (; foldCase(*a) == foldCase(*b); ++a, ++b) {
        if (*a == '\0') return 0;
    }
    return foldCase(*a) - foldCase(*b);
}

int _strnicmp(const char* a, const char* b, std::size_t length) {
    for (; length > 0; ++a, ++b, --length) {
        if (foldCase(*a) != foldCase(*b)) return foldCase(*a) - foldCase(*b);
        if (*a == '\0') return 0;
    }
    return 0;
}

int lstrcmpiA(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) return (a != nullptr) - (b != nullptr);
    return _stricmp(a, b);
}

int lstrlenA(const char* text) {
    return text == nullptr ? 0 : static_cast<int>(std::strlen(text));
}
