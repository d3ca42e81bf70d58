// Changes of a price: in percent of the previous one, sorted by sign, flipped.
// Tests: tests/fintext/fractions_test.cpp.

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "core/number_text.h"
#include "fintext/financial_text.h"

namespace {

struct PriceChange {
    double change;
    double previous;
};

PriceChange readChange(const char* currentPrice, const char* netChange) {
    const double change = strToDouble(netChange);
    return {change, strToDouble(currentPrice) - change};
}

}  // namespace

char* percentChange(char* buffer, std::int32_t decimals, const char* currentPrice, const char* netChange) {
    if (buffer == nullptr) return nullptr;
    const auto [change, previous] = readChange(currentPrice, netChange);
    if (previous > -0.000001 && previous < 0.000001) {
        std::strcpy(buffer, " ");
        return buffer;
    }
    const bool shown = decimals >= 1 && decimals <= 9;
    tarn::writeFixed(buffer, change / previous * 100.0, shown ? static_cast<std::uint32_t>(decimals) : 1);
    return buffer;
}

char* asPercentChange(char* buffer, const char* format, const char* currentPrice, const char* netChange) {
    if (buffer == nullptr || format == nullptr) return buffer;
    const auto [change, previous] = readChange(currentPrice, netChange);
    if (previous == 0.0) {
        *buffer = '\0';
    } else if (change == 0.0) {
        std::strcpy(buffer, "unch");
    } else {
        char* target = buffer;
        if (change > 0.0) *target++ = '+';
        std::sprintf(target, format, change * 100.0 / previous);
    }
    return buffer;
}

ePriceChange signPriceChange(char* text) {
    if (text == nullptr) return ePriceChangeNone;
    if (*text == '\0' || std::strcmp(text, "0") == 0) return ePriceUnchanged;
    constexpr std::size_t mostCharacters = 14;
    const std::size_t length = std::min(std::strlen(text), mostCharacters);
    text[length] = '\0';
    if (*text == '-') return ePriceDown;
    std::memmove(text + 1, text, length + 1);
    *text = '+';
    return ePriceUp;
}

void flipSign(char* text) {
    if (text == nullptr || tarn::readLong(text) == 0) return;
    const std::size_t bytes = std::strlen(text) + 1;
    if (*text == '-') {
        std::memmove(text, text + 1, bytes - 1);
    } else {
        std::memmove(text + 1, text, bytes);
        *text = '-';
    }
}
