// convertToDouble.  A decimal of up to 15 digits, by far the most common price, is read while its characters
// are sorted out: the digits as one whole number, divided by a power of ten.  Both are exact as doubles, so
// that the one division rounds as correctly as reading the text does.  Everything else is sorted into a
// buffer first.

#include <cstring>
#include <memory>

#include "core/number_text.h"
#include "core/string.h"
#include "core/variant.h"

namespace {

constexpr double powersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr int exactDigits = 15;

enum class Outcome { read, refused, undecided };

Outcome readDecimal(const char* text, double& number) {
    std::uint64_t digits = 0;
    int count = 0;
    const char* point = nullptr;
    int decimals = 0;
    bool negative = false;
    for (; *text != '\0'; ++text) {
        const char c = *text;
        if (c >= '0' && c <= '9') {
            if (++count > exactDigits) return Outcome::undecided;
            digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
            decimals += point != nullptr ? 1 : 0;
        } else if (c == '.') {
            if (point != nullptr) return Outcome::refused;
            point = text;
        } else if (c == '-' || c == '+') {
            negative = c == '-';
        } else if (c == ' ' || c == '/') {
            return Outcome::undecided;
        } else if (c != ',') {
            return Outcome::refused;
        }
    }
    const double magnitude = static_cast<double>(digits) / powersOfTen[decimals];
    number = negative && count > 0 ? -magnitude : magnitude;
    return Outcome::read;
}

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
        if (mark ? seen : (c != ' ' && (c < '0' || c > '9'))) return nullptr;
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
    // A blank behind the slash cuts the text the same way: the numerator is what follows the blank.
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
    const Outcome outcome = readDecimal(text, number);
    if (outcome != Outcome::undecided) return outcome == Outcome::read ? 1 : 0;

    const std::size_t room = std::strlen(text) + 2;  // a sign in front, a terminator behind
    char local[256];
    std::unique_ptr<char[]> large;
    if (room > sizeof local) large.reset(new char[room]);
    char* const kept = sortOut(text, large == nullptr ? local : large.get());
    return kept == nullptr ? 0 : readFraction(kept, number);
}
