// The calls and answers of tests/core/examples.txt: core/string.cpp, core/price_text.cpp,
// core/variant_conversion.cpp and core/variant_comparison.cpp.

#include "tests/values.h"

namespace {

using namespace tarntest;

constexpr char examples[] =
#include "tests/core/examples.txt"
    ;

std::string newText(char* text) {
    return std::unique_ptr<char[]>(text).get();
}

std::string answerOf(const std::string& function, const std::vector<std::string>& cells) {
    const char* const text = cells[0].c_str();
    const std::string& second = cells[1];
    const auto number = static_cast<std::int32_t>(std::strtol(second.c_str(), nullptr, 10));
    Owned a = valueOf(cells[0]);
    const Owned b = valueOf(second);
    tarnString string("x");
    double price = 77;
    std::uint32_t length = 0;
    char buffer[64] = {};
    cells[0].copy(buffer, sizeof buffer - 1);
    if (function == "isValidPrice") return shown(tarnString(text).isValidPrice());
    if (function == "decimals")
        return string.assign(tarntest::numberOf(text), static_cast<std::int16_t>(number)), string.text;
    if (function == "trim") {
        const char* const start = trim(buffer, length, second[0]);
        return std::string(start, length) + " " + std::to_string(start - buffer);
    }
    if (function == "stripZeros") return stripTrailZeros(buffer), buffer;
    if (function == "toDouble")
        return convertToDouble(text, price) == 1 ? shown(price) : price == 77 ? "no" : "touched";
    if (function == "toString") return newText(convertToString(&a));
    if (function == "format")
        return tarntest::inCLocale([&] { return newText(convertToString(&a, second.c_str())); });
    if (function == "size") return shown(a.sizeOfData());
    if (function == "equal") return shown(isVarEqual(a, b));
    if (function == "like") return shown(isVarLike(a, b));
    if (function == "assign") return string.assign(&a), string.text;
    if (function == "append") return string.append(&a), string.text;
    if (function == "varcmp") {
        const std::int32_t order = varcmp(a, b);  // texts promise a sign alone
        return shown(a.tag == tagText || a.tag == tagString ? (order > 0) - (order < 0) : order);
    }
    if (function == "fromString") {
        Owned value = valueOf("10:" + cells[0]);
        convertFromString(&value, number);
        return describe(&value);
    }
    MOLTVARIANT value;
    value.payload.longValue = 3;
    convertFromLong(&value, static_cast<std::int32_t>(std::strtol(text, nullptr, 10)), number);
    return value.tag == tagEmpty ? "0:" : describe(&value);
}

TEST(CoreExamples, CallsAnswerAsListed) {
    expectAnswers(examples, answerOf);
}

}  // namespace
