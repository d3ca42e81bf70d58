// Texts of a fixed form: tax and telephone numbers, and dates with and without their slashes.  Each is made
// in a buffer of its own first, so that source and target may be the same text.
// Tests: tests/fintext/patterned_text_test.cpp.

#include <algorithm>
#include <cstring>
#include <iterator>

#include "fintext/financial_text.h"

namespace {

// A form in which each # takes the next character.
struct Form {
    std::size_t characters;
    const char* shape;
};

constexpr Form taxId = {9, "###-##-####"};
constexpr Form localPhone = {7, "###-####"};
constexpr Form longPhone = {10, "(###) ###-####"};
constexpr std::size_t formRoom = 16;

int fill(const Form& form, const char* digits, char* target) {
    if (digits == nullptr || target == nullptr || std::strlen(digits) != form.characters) return 0;
    char filled[formRoom];
    char* end = filled;
    for (const char* shape = form.shape; *shape != '\0'; ++shape) *end++ = *shape == '#' ? *digits++ : *shape;
    *end = '\0';
    std::strcpy(target, filled);
    return 1;
}

}  // namespace

int fmtToTaxId(const char* digits, char* target) {
    return fill(taxId, digits, target);
}

int fmtToPhoneNumber(const char* digits, char* target) {
    return fill(localPhone, digits, target) != 0 ? 1 : fill(longPhone, digits, target);
}

void formatStringToDate(const char* source, char* target) {
    if (source == nullptr || target == nullptr) return;
    constexpr int mostCharacters = 8;
    char date[mostCharacters + 3];
    char* end = date;
    for (int i = 0; i < mostCharacters && source[i] != '\0'; ++i) {
        if (i == 2 || i == 4) *end++ = '/';
        *end++ = source[i];
    }
    if (end == date) *end++ = ' ';
    *end = '\0';
    std::strcpy(target, date);
}

void formatDateToString(const char* source, char* target) {
    if (source == nullptr || target == nullptr) return;
    constexpr std::size_t mostCharacters = 10;
    char digits[mostCharacters + 1] = {};
    std::remove_copy(source, std::find(source, source + mostCharacters, '\0'), digits, '/');
    std::strcpy(target, digits);
}
