// Equality, likeness and order of tagged values.
// Tests: tests/core/comparison_test.cpp.

#include <cstring>
#include <string_view>

#include "base/wrapping.h"
#include "core/number_text.h"
#include "core/string.h"
#include "core/value_text.h"
#include "core/variant.h"
#include "platform/win32.h"

using tarn::hasTextForm;
using tarn::textOf;

namespace {

template <class Number>
std::int32_t order(Number a, Number b) {
    return (a > b) - (a < b);
}

// NULL comes before every text.
std::int32_t orderWideTexts(const char16_t* a, const char16_t* b) {
    if (a == nullptr || b == nullptr) return order(a != nullptr, b != nullptr);
    return order(std::u16string_view(a).compare(b), 0);
}

bool isNumber(std::int32_t tag) {
    return tag >= tagShort && tag <= tagDouble;
}

// A number of tags 2 to 5, or the number that a text begins with.
double numberOf(const MOLTVARIANT& value) {
    switch (value.tag) {
        case tagShort: return value.payload.shortValue;
        case tagLong: return value.payload.longValue;
        case tagFloat: return static_cast<double>(value.payload.floatValue);
        case tagDouble: return value.payload.doubleValue;
        default: return tarn::readDouble(textOf(value));
    }
}

// The number of a value in the form of the wanted tag, or the value as it is where there is no conversion.
MOLTVARIANT numberAs(std::int32_t wantedTag, const MOLTVARIANT& value) {
    if (value.tag == tagEmpty) return MOLTVARIANT();
    MOLTVARIANT view = value;
    auto& payload = view.payload;
    const bool fromText = hasTextForm(value.tag);
    const char* const text = textOf(value);
    if (!fromText && !isNumber(value.tag)) return view;
    switch (wantedTag) {
        case tagShort:
            payload.shortValue = static_cast<std::int16_t>(tarn::cutToLong(numberOf(value)));
            break;
        case tagLong:
            payload.longValue = fromText ? tarn::readLong(text) : tarn::cutToLong(numberOf(value));
            break;
        case tagFloat: payload.floatValue = static_cast<float>(numberOf(value)); break;
        case tagDouble: payload.doubleValue = numberOf(value); break;
        case tagChar:
            if (fromText) payload.charValue = static_cast<signed char>(text == nullptr ? '\0' : *text);
            break;
        default: break;
    }
    return view;
}

// The text a against b's text, or b's number as a text.  Values without a text form come before every text,
// and floats before every string object.
std::int32_t orderTexts(const MOLTVARIANT& a, const MOLTVARIANT& b) {
    if (hasTextForm(b.tag)) return lstrcmpiA(textOf(a), textOf(b));
    if (!isNumber(b.tag) || (a.tag == tagString && b.tag == tagFloat)) return 1;
    tarnString number;
    number.assign(&b);
    return lstrcmpiA(textOf(a), number.text);
}

}  // namespace

int isVarEqual(const MOLTVARIANT& a, const MOLTVARIANT& b) {
    if (a.tag != b.tag) return 0;
    switch (a.tag) {
        case tagByte:
        case tagChar: return a.payload.byteValue == b.payload.byteValue;
        case tagShort:
        case tagUShort: return a.payload.ushortValue == b.payload.ushortValue;
        case tagLong:
        case tagWord:
        case tagNumber: return a.payload.longValue == b.payload.longValue;
        case tagFloat: return order(a.payload.floatValue, b.payload.floatValue) == 0;
        case tagDouble: return order(a.payload.doubleValue, b.payload.doubleValue) == 0;
        case tagText:
            if (a.payload.text == b.payload.text) return 1;
            return a.payload.text != nullptr && b.payload.text != nullptr &&
                   lstrcmpiA(a.payload.text, b.payload.text) == 0;
        case tagWideText: return orderWideTexts(a.payload.wideText, b.payload.wideText) == 0;
        case tagString: return a.payload.string == nullptr ? 0 : a.payload.string->isequal(textOf(b), 0);
        default: return 0;
    }
}

int isVarLike(const MOLTVARIANT& a, const MOLTVARIANT& b) {
    if (a.tag != b.tag || !hasTextForm(a.tag)) return 0;
    const char* const text = textOf(a);
    const char* const beginning = textOf(b);
    if (text == nullptr || beginning == nullptr) return 0;
    return _strnicmp(text, beginning, std::strlen(beginning)) == 0;
}

std::int32_t varcmp(const MOLTVARIANT& a, const MOLTVARIANT& b) {
    const auto& left = a.payload;
    const MOLTVARIANT converted = numberAs(a.tag, b);
    const auto& right = converted.payload;
    switch (a.tag) {
        case tagByte: return left.byteValue - right.byteValue;
        case tagShort: return left.shortValue - right.shortValue;
        case tagLong:
        case tagWord:
        case tagNumber: return tarn::wrappingDifference(left.longValue, right.longValue);
        case tagFloat: return order(left.floatValue, right.floatValue);
        case tagDouble: return order(left.doubleValue, right.doubleValue);
        case tagChar: return left.charValue - right.charValue;
        case tagUShort: return left.ushortValue - right.ushortValue;
        case tagText:
        case tagString: return orderTexts(a, b);
        case tagWideText: return b.tag == tagWideText ? orderWideTexts(left.wideText, b.payload.wideText) : 1;
        default: return 0;
    }
}
