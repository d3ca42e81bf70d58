// Numbers for display.  The printed text is read back and half a unit of its last place is added, in doubles:
// if that doesn't exceed the number, a half or more was dropped.  So 1.005 becomes 1.01 with two decimals,
// although its double is a little below, while 0.15 stays 0.1 with one, for 0.1 + 0.05 is a little above.
// Tests: tests/fintext/numeric_text_test.cpp.

#include "fintext/number_display.h"

#include "core/number_text.h"
#include "core/string.h"
#include "core/value_text.h"
#include "fintext/financial_text.h"

namespace tarn {
namespace {

double halfOfLastPlace(std::uint32_t decimals) {
    double power = 1.0;  // infinite from 308 decimals on, which leaves no half
    for (std::uint32_t place = 0; place <= decimals; ++place) power *= 10.0;
    return 5.0 / power;
}

}  // namespace

char* writeRounded(char* target, double value, std::uint32_t decimals) {
    char* const end = writeFixed(target, value, decimals);
    const double shown = readDouble(target);
    const double half = halfOfLastPlace(decimals);
    return shown + half > value ? end : writeFixed(target, shown + 2 * half, decimals);
}

double variantToDouble(const MOLTVARIANT* value) {
    if (value == nullptr) return 0.0;
    switch (value->tag) {
        case tagByte: return static_cast<std::int8_t>(value->payload.byteValue);
        case tagChar: return value->payload.charValue;
        case tagShort: return value->payload.shortValue;
        case tagUShort: return static_cast<std::int16_t>(value->payload.ushortValue);
        case tagLong:
        case tagWord:
        case tagNumber: return value->payload.longValue;
        case tagFloat: return static_cast<double>(value->payload.floatValue);
        case tagDouble: return value->payload.doubleValue;
        default: return strToDouble(textOf(*value));
    }
}

void variantToNumberText(const MOLTVARIANT* value, tarnString* target) {
    if (target == nullptr) return;
    const double number = variantToDouble(value);
    char text[fixedRoom(4)];
    writeFixed(text, number, 0);
    if (readDouble(text) != number) writeRounded(text, number, 4);
    target->assign(text);
}

}  // namespace tarn
