// convertToDouble.  A decimal of up to 15 digits, by far the most common price, is read where it is, as one
// whole number divided by a power of ten.  Any other text is first sorted into a buffer.
// Tests: fuzz/price_fuzz.cpp.

#include <cstring>
#include <memory>

#include "base/ascii.h"
#include "core/number_text.h"
#include "core/short_decimal.h"
#include "core/string.h"
#include "core/variant.h"

namespace {

// Leaves the digits, blanks, point and slash of a price in `kept`, trimmed and behind their sign.
// Answers NULL for a text that is no price.
char* sortOut(const char* text, char* kept) {
    char sign = '+';
    bool point = false;
    bool slash = false;
    char* end = kept + 1;
    for (; *text != '\0'; ++text) {
        const char c = *text;
        if (c == ',') continue;
        if (c == '+' || c == '-') {
            sign = c;
            continue;
        }
        bool& seen = c == '.' ? point : slash;
        const bool mark = c == '.' || c == '/';
        if (mark ? seen : (c != ' ' && !tarn::isDigit(c))) return nullptr;
        if (mark) seen = true;
        *end++ = c;
    }
    *end = '\0';
    std::uint32_t length = 0;
    char* const trimmed = trim(kept + 1, length, ' ');
    trimmed[-1] = sign;
    return trimmed - 1;
}

int readFraction(char* text, double& number) {
    char* const slash = std::strchr(text, '/');
    char* const blank = std::strchr(text, ' ');
    if (slash == nullptr && blank != nullptr) return 0;
    if (slash == nullptr) {
        number = tarn::readDouble(text);
        return 1;
    }
    if (blank == nullptr && std::strchr(text, '.') != nullptr) return 0;
    *slash = '\0';
    if (blank != nullptr) *blank = '\0';
    // A blank after the slash cuts the text the same way: the numerator is what follows the blank.
    const double numerator = tarn::readDouble(blank == nullptr ? text : blank + 1);
    const double denominator = tarn::readDouble(slash + 1);
    if (numerator == 0.0 || denominator == 0.0) return 0;
    const double fraction = numerator / denominator;
    if (blank == nullptr) {
        number = fraction;
        return 1;
    }
    const double whole = tarn::readDouble(text);
    number = whole < 0 ? whole - fraction : whole + fraction;
    return 1;
}

}  // namespace

int convertToDouble(const char* text, double& number) {
    if (text == nullptr) {
        number = 0.0;
        return 1;
    }
    const bool signedText = *text == '-' || *text == '+';
    double magnitude = 0.0;
    const char* const end = tarn::readShortDecimal(signedText ? text + 1 : text, magnitude);
    if (end != nullptr && *end == '\0') {
        number = *text == '-' ? -magnitude : magnitude;
        return 1;
    }

    const std::size_t room = std::strlen(text) + 2;  // a sign in front, a terminator behind
    char local[256];
    std::unique_ptr<char[]> large;
    if (room > sizeof local) large.reset(new char[room]);
    char* const kept = sortOut(text, large == nullptr ? local : large.get());
    return kept == nullptr ? 0 : readFraction(kept, number);
}
