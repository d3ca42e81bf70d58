// The calls and answers of tests/core/examples.txt: core/string.cpp, core/price_text.cpp,
// core/variant_conversion.cpp and core/variant_comparison.cpp.

#include <memory>

#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::Owned;
using tarntest::shown;

constexpr char examples[] =
#include "tests/core/examples.txt"
    ;

// "3:42" is a long, "10:abc" a text.
Owned valueOf(const std::string& cell) {
    const auto tag = static_cast<std::int32_t>(std::strtol(cell.c_str(), nullptr, 10));
    const std::string content = cell.substr(std::min(cell.find(':') + 1, cell.size()));
    if (tag == tagText || tag == tagString)
        return tarntest::text(content == "NULL" ? nullptr : content.c_str(), tag);
    if (tag == tagWideText) return tarntest::wideText(std::u16string(content.begin(), content.end()));
    if (tag == tagBlob) return tarntest::blob(content);
    return tag == tagEmpty ? Owned() : tarntest::number(tag, tarntest::numberOf(content.c_str()));
}

std::string newText(char* text) {
    return std::unique_ptr<char[]>(text).get();
}

std::string cellOf(const MOLTVARIANT& value) {
    tarnString content;
    content.assign(&value);
    const std::string tag = std::to_string(value.tag) + ":";
    if (value.tag == tagFloat) return tag + shown(static_cast<double>(value.payload.floatValue));
    if (value.tag == tagDouble) return tag + shown(value.payload.doubleValue);
    return tag + (value.tag == tagChar ? shown(value.payload.charValue) : content.text);
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
        Owned value = tarntest::text(text);
        convertFromString(&value, number);
        return cellOf(value);
    }
    MOLTVARIANT value;
    value.payload.longValue = 3;
    convertFromLong(&value, static_cast<std::int32_t>(std::strtol(text, nullptr, 10)), number);
    return cellOf(value);
}

TEST(CoreExamples, CallsAnswerAsListed) {
    tarntest::expectAnswers(examples, answerOf);
}

}  // namespace
