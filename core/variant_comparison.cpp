// Equality, likeness and order of tagged values.

#include <cstring>
#include <memory>
#include <string_view>

#include "base/wrapping.h"
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

// NULL stands before every text.
std::int32_t orderWideTexts(const char16_t* a, const char16_t* b) {
    if (a == nullptr || b == nullptr) return order(a != nullptr, b != nullptr);
    return order(std::u16string_view(a).compare(b), 0);
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
    MOLTVARIANT converted;
    converted.convertContent(&b, a.tag);
    std::int32_t result = 0;
    switch (a.tag) {
        case tagByte: result = a.payload.byteValue - converted.payload.byteValue; break;
        case tagShort: result = a.payload.shortValue - converted.payload.shortValue; break;
        case tagLong:
        case tagWord:
        case tagNumber:
            result = tarn::wrappingDifference(a.payload.longValue, converted.payload.longValue);
            break;
        case tagFloat: result = order(a.payload.floatValue, converted.payload.floatValue); break;
        case tagDouble: result = order(a.payload.doubleValue, converted.payload.doubleValue); break;
        case tagChar: result = a.payload.charValue - converted.payload.charValue; break;
        case tagUShort: result = a.payload.ushortValue - converted.payload.ushortValue; break;
        case tagText:
        case tagString:
            result = hasTextForm(converted.tag) ? lstrcmpiA(textOf(a), textOf(converted)) : 1;
            break;
        case tagWideText:
            result = converted.tag == tagWideText
                         ? orderWideTexts(a.payload.wideText, converted.payload.wideText)
                         : 1;
            break;
        default: break;
    }
    converted.destroyContent();
    return result;
}
