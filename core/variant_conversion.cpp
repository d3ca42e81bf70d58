// Tagged values to text and back, and from the 32 bits of a client's field.
// Tests: tests/core/conversion_test.cpp.

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "core/exception.h"
#include "core/number_text.h"
#include "core/string.h"
#include "core/value_text.h"
#include "core/variant.h"

using tarn::hasTextForm;
using tarn::textOf;

namespace {

constexpr std::size_t numberBlock = 40;

// The first 32 bits of any payload, as a number.
std::int32_t firstWord(const MOLTVARIANT& value) {
    std::int32_t word = 0;
    std::memcpy(&word, &value.payload, sizeof word);
    return word;
}

// The format with %ld, %lu, %lx and so on as %d, %u, %x: a client's long has 32 bits, and so does the number
// that is passed to the C library.
std::string withoutLong(const char* format) {
    std::string kept;
    while (*format != '\0') {
        kept += *format;
        if (*format++ != '%') continue;
        const std::size_t options = std::strspn(format, "-+ #0123456789.*$'");
        kept.append(format, options);
        format += options;
        const bool isLongInteger =
            *format == 'l' && format[1] != '\0' && std::strchr("diouxX", format[1]) != nullptr;
        if (isLongInteger) ++format;
        if (*format == '%') kept += *format++;
    }
    return kept;
}

// The text of sprintf(format, argument) in a zeroed block of at least 40 bytes.
template <class Argument>
char* formatted(const char* clientFormat, Argument argument) {
    const std::string kept = withoutLong(clientFormat);
    const char* const format = kept.c_str();
    const int length = std::snprintf(nullptr, 0, format, argument);
    const std::size_t bytes = length < 0 ? 1 : static_cast<std::size_t>(length) + 1;
    std::unique_ptr<char[]> text(new char[bytes < numberBlock ? numberBlock : bytes]());
    std::snprintf(text.get(), bytes, format, argument);
    return text.release();
}

}  // namespace

char* convertToString(const MOLTVARIANT* value) {
    if (value == nullptr) return nullptr;
    if (hasTextForm(value->tag)) return newstr(textOf(*value));
    std::unique_ptr<char[]> text(new char[numberBlock]());
    switch (value->tag) {
        case tagShort: tarn::writeLong(text.get(), value->payload.shortValue); break;
        case tagFloat:
            tarn::writeGeneral(text.get(), static_cast<double>(value->payload.floatValue), 16);
            break;
        case tagDouble: tarn::writeGeneral(text.get(), value->payload.doubleValue, 16); break;
        case tagChar: text[0] = static_cast<char>(value->payload.charValue); break;
        default: tarn::writeLong(text.get(), firstWord(*value)); break;
    }
    return text.release();
}

char* convertToString(const MOLTVARIANT* value, const char* format) {
    if (value == nullptr || format == nullptr) return nullptr;
    switch (value->tag) {
        case tagText:
        case tagString: {
            const char* const text = textOf(*value);
            return formatted(format, text == nullptr ? "" : text);
        }
        case tagShort: return formatted(format, static_cast<int>(value->payload.shortValue));
        case tagFloat: return formatted(format, static_cast<double>(value->payload.floatValue));
        case tagDouble: return formatted(format, value->payload.doubleValue);
        case tagChar: return formatted(format, static_cast<int>(value->payload.charValue));
        default: return formatted(format, firstWord(*value));
    }
}

void convertFromString(MOLTVARIANT* value, std::int32_t tag) {
    if (value == nullptr) return;
    MOLTVARIANT converted;
    converted.tag = tag;
    char* const text = value->payload.text;
    switch (tag) {
        case tagShort: converted.payload.shortValue = static_cast<std::int16_t>(tarn::readLong(text)); break;
        case tagLong:
        case tagNumber: converted.payload.longValue = tarn::readLong(text); break;
        case tagFloat: converted.payload.floatValue = static_cast<float>(tarn::readDouble(text)); break;
        case tagDouble: converted.payload.doubleValue = tarn::readDouble(text); break;
        case tagChar:
            converted.payload.charValue = static_cast<signed char>(text == nullptr ? 0 : *text);
            break;
        case tagText: value->tag = tagText; return;
        default: return;
    }
    delete[] text;
    *value = converted;
}

void convertFromLong(MOLTVARIANT* value, std::int32_t type, std::int32_t size) {
    if (value == nullptr) return;
    const std::int32_t number = value->payload.longValue;
    switch (type) {
        case tarn::fieldShort:
            value->tag = tagShort;
            value->payload.shortValue = static_cast<std::int16_t>(number);
            break;
        case tarn::fieldCharacter:
        case tarn::fieldText:
        case tarn::fieldSecondText:
        case tarn::fieldThirdText:
            value->tag = size == 1 ? tagChar : tagText;
            if (size == 1) value->payload.charValue = static_cast<signed char>(number);
            break;
        case tarn::fieldFloat:
            value->tag = tagFloat;
            value->payload.floatValue = static_cast<float>(number);
            break;
        case tarn::fieldDouble:
            value->tag = tagDouble;
            value->payload.doubleValue = number;
            break;
        default: break;
    }
}

void tarnString::assign(const MOLTVARIANT* value) {
    if (value == nullptr) return clear();
    switch (value->tag) {
        case tagShort: return assign(static_cast<std::int32_t>(value->payload.shortValue));
        case tagLong:
        case tagNumber: return assign(value->payload.longValue);
        case tagFloat: return assign(static_cast<double>(value->payload.floatValue), 0);
        case tagDouble: return assign(value->payload.doubleValue, 0);
        case tagChar: {
            const char character[] = {static_cast<char>(value->payload.charValue), '\0'};
            return assign(character);
        }
        case tagText:
        case tagString: return assign(textOf(*value));
        default: return clear();
    }
}

void tarnString::append(const MOLTVARIANT* value) {
    if (value == nullptr) return clear();
    switch (value->tag) {
        case tagLong: return append(value->payload.longValue);
        case tagFloat: return appendDouble(static_cast<double>(value->payload.floatValue));
        case tagDouble: return appendDouble(value->payload.doubleValue);
        case tagText:
        case tagString: return append(textOf(*value));
        default: return;
    }
}
