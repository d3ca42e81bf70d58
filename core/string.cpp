// tarnString and the text tools.  An appended string's block is a quarter larger than needed, so that
// appending costs O(1) a character.  Every change copies the new text before it releases the old block, so
// that a part of the string itself may be passed.
// Tests: tests/core/string_test.cpp.

#include "core/string.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "base/ascii.h"
#include "core/number_text.h"
#include "platform/win32.h"

namespace {

constexpr std::size_t longest = std::numeric_limits<std::int32_t>::max() - 1;
constexpr std::int32_t firstRoom = 8;  // bytes of a string without a text

std::unique_ptr<char[]> zeroedBlock(std::size_t bytes) {
    return std::unique_ptr<char[]>(new char[bytes]());
}

bool isPriceDenominator(int number) {
    return number >= 1 && number <= 256 && (number & (number - 1)) == 0;
}

}  // namespace

tarnString::tarnString() : tarnString(static_cast<const char*>(nullptr)) {}

tarnString::tarnString(const char* source) {
    length = source == nullptr ? 0 : static_cast<std::int32_t>(std::min(std::strlen(source), longest));
    allocated_ = source == nullptr ? firstRoom : length + 1;
    text = newstr(source, static_cast<std::uint32_t>(allocated_ - 1));
}

tarnString::tarnString(const tarnString& other) : tarnString(other.text) {}

tarnString& tarnString::operator=(const tarnString& other) {
    if (this != &other) assign(other.text);
    return *this;
}

tarnString::~tarnString() {
    delete[] text;
}

void tarnString::clear() {
    if (length == 0) return;
    std::memset(text, 0, static_cast<std::size_t>(length));
    length = 0;
}

int tarnString::isValidPrice() const {
    bool dot = false;
    bool slash = false;
    int denominator = 0;
    int denominatorDigits = 0;
    for (const char* c = text; c != text + length; ++c) {
        if (tarn::isDigit(*c)) {
            if (!slash) continue;
            if (++denominatorDigits > 3) return 0;
            denominator = denominator * 10 + (*c - '0');
        } else if (dot || slash) {
            if (*c != ' ') return 0;
        } else {
            dot = *c == '.';
            slash = *c == '/';
            if (!dot && !slash && *c != ' ') return 0;
        }
    }
    return denominatorDigits == 0 || isPriceDenominator(denominator) ? 1 : 0;
}

int tarnString::isequal(const char* other, int exact) const {
    if (other == nullptr) return 0;
    if (other == text) return 1;
    return (exact != 0 ? std::strcmp(text, other) : _stricmp(text, other)) == 0 ? 1 : 0;
}

void tarnString::assign(const char* source) {
    if (source == nullptr) return clear();
    const std::size_t count = std::min(std::strlen(source), longest);
    auto block = zeroedBlock(count + 1);
    std::memcpy(block.get(), source, count);
    delete[] text;
    text = block.release();
    length = static_cast<std::int32_t>(count);
    allocated_ = length + 1;
}

void tarnString::assign(std::int32_t number) {
    char digits[12];
    tarn::writeLong(digits, number);
    assign(digits);
}

void tarnString::assign(double number, std::int16_t decimals) {
    char digits[tarn::fixedRoom(6)];
    const bool shown = decimals >= 1 && decimals <= 5;
    tarn::writeFixed(digits, number, shown ? static_cast<std::uint32_t>(decimals) : 6);
    if (!shown) stripTrailZeros(digits);
    assign(digits);
}

void tarnString::append(const char* source) {
    if (source == nullptr) return;
    const auto old = static_cast<std::size_t>(length);
    const std::size_t count = std::min(std::strlen(source), longest - old);
    if (old + count + 1 > static_cast<std::size_t>(allocated_)) {
        const std::size_t bytes = std::min(old + count + 1 + old / 4, longest + 1);
        auto block = zeroedBlock(bytes);
        std::memcpy(block.get(), text, old);
        std::memcpy(block.get() + old, source, count);
        delete[] text;
        text = block.release();
        allocated_ = static_cast<std::int32_t>(bytes);
    } else {
        std::memmove(text + old, source, count);
    }
    text[old + count] = '\0';
    length = static_cast<std::int32_t>(old + count);
}

void tarnString::append(std::int32_t number) {
    char digits[12];
    tarn::writeLong(digits, number);
    append(digits);
}

void tarnString::appendDouble(double number) {
    char digits[tarn::fixedRoom(6)];
    tarn::writeFixed(digits, number, 6);
    append(digits);
}

void tarnString::trim(char character) {
    if (length == 0) return;
    std::uint32_t trimmed = 0;
    assign(::trim(text, trimmed, character));
}

void tarnString::removeSpace() {
    if (length == 0) return;
    char* const end = std::remove(text, text + length, ' ');
    std::fill(end, text + length, '\0');
    length = static_cast<std::int32_t>(end - text);
}

std::int32_t tarnString::find(const char* part) const {
    const char* const match = part == nullptr ? nullptr : std::strstr(text, part);
    return match == nullptr ? -1 : static_cast<std::int32_t>(match - text);
}

std::int32_t tarnString::findChar(char character) const {
    const char* const match = std::strchr(text, character);
    return match == nullptr ? -1 : static_cast<std::int32_t>(match - text);
}

char* newstr(const char* text, std::uint32_t length) {
    // In 32-bit code the sum wraps for the longest length; the allocation then fails for the length alone.
    auto copy = zeroedBlock(std::max<std::size_t>(std::size_t{length} + 1, length));
    if (text != nullptr && length != 0) {
        const void* const end = std::memchr(text, '\0', length);
        std::memcpy(copy.get(), text,
                    end == nullptr ? length : static_cast<std::size_t>(static_cast<const char*>(end) - text));
    }
    return copy.release();
}

char* newstr(const char* text) {
    const std::size_t bytes = text == nullptr ? 1 : std::strlen(text) + 1;
    auto* const copy = new char[bytes];
    std::memcpy(copy, text == nullptr ? "" : text, bytes);
    return copy;
}

char* newstr(const tarnString* string) {
    return newstr(string == nullptr ? nullptr : string->text);
}

char* trim(char* text, std::uint32_t& length, char character) {
    length = 0;
    if (text == nullptr) return nullptr;
    while (*text == character && *text != '\0') ++text;
    std::size_t remaining = std::strlen(text);
    if (remaining >= 2 && text[remaining - 1] == character) {
        while (text[remaining - 1] == character) --remaining;
        text[remaining] = '\0';
    }
    length = static_cast<std::uint32_t>(remaining);
    return text;
}

void stripTrailZeros(char* text) {
    if (text == nullptr) return;
    std::size_t length = std::strlen(text);
    while (length > 0 && (text[length - 1] == '0' || text[length - 1] == ' ')) --length;
    if (length > 0 && text[length - 1] == '.') text[length++] = '0';
    text[length] = '\0';
}
