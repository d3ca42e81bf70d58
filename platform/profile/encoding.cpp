// Marks, 16-bit units and the code page 1252.  Tests: tests/platform/profile_text_test.cpp.

#include "platform/profile/encoding.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace tarn::profile {

namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16Mark = "\xFF\xFE";

// Code page 1252 from 80 to 9F; everywhere else a byte is its own code point, as are the five holes.
constexpr std::uint16_t codePage1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                            0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

unsigned unitOfByte(unsigned byte) {
    return byte >= 0x80 && byte < 0xA0 ? codePage1252[byte - 0x80] : byte;
}

char byteOfUnit(unsigned unit) {
    const auto* const place = std::find(std::begin(codePage1252), std::end(codePage1252), unit);
    if (place != std::end(codePage1252)) return static_cast<char>(0x80 + (place - codePage1252));
    return unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF) ? static_cast<char>(unit) : '?';
}

void appendUnit(std::string& text, unsigned unit) {
    if (unit < 0x80) {
        text += static_cast<char>(unit);
    } else if (unit < 0x800) {
        text += static_cast<char>(0xC0 | unit >> 6);
        text += static_cast<char>(0x80 | (unit & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | unit >> 12);
        text += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (unit & 0x3F));
    }
}

// Calls with each unit of a text that appendUnit made.
template <typename Use>
void forEachUnit(std::string_view text, Use use) {
    for (std::size_t i = 0; i < text.size();) {
        const unsigned lead = byteAt(text, i);
        const unsigned length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : 3;
        unsigned unit = length == 1 ? lead : lead & (0xFF >> (length + 1));
        for (std::size_t next = i + 1; next < std::min(i + length, text.size()); ++next) {
            unit = unit << 6 | (byteAt(text, next) & 0x3F);
        }
        use(unit);
        i += length;
    }
}

}  // namespace

Document decode(std::string bytes) {
    if (bytes.starts_with(utf8Mark)) {
        bytes.erase(0, utf8Mark.size());
        return {Encoding::utf8, std::move(bytes)};
    }
    if (!bytes.starts_with(utf16Mark)) return {Encoding::bytes, std::move(bytes)};
    Document document{Encoding::utf16, {}};
    document.text.reserve(bytes.size() / 2);
    for (std::size_t i = utf16Mark.size(); i + 1 < bytes.size(); i += 2) {
        appendUnit(document.text, byteAt(bytes, i) | byteAt(bytes, i + 1) << 8);
    }
    return document;
}

std::string encode(const Document& document) {
    if (document.encoding == Encoding::bytes) return document.text;
    if (document.encoding == Encoding::utf8) return std::string(utf8Mark) + document.text;
    std::string bytes(utf16Mark);
    bytes.reserve(utf16Mark.size() + 2 * document.text.size());
    forEachUnit(document.text, [&](unsigned unit) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    });
    return bytes;
}

std::string toDocument(std::string_view text, Encoding encoding) {
    if (encoding != Encoding::utf16) return std::string(text);
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) appendUnit(result, unitOfByte(byteAt(text, i)));
    return result;
}

std::string fromDocument(std::string_view text, Encoding encoding) {
    if (encoding != Encoding::utf16) return std::string(text);
    std::string result;
    forEachUnit(text, [&](unsigned unit) { result += byteOfUnit(unit); });
    return result;
}

}  // namespace tarn::profile
