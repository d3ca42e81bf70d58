// Strict Base64 on the groups of the old codec.  A text is data and the run of pads at its end; the data are
// decoded group by group up to the first that isn't clean, and what is left is judged by itself.
// Tests: tests/store/base64_test.cpp.

#include "store/base64.h"

#include <algorithm>

#include "store/uu_codec_paths.h"

namespace tarn {
namespace {

constexpr std::size_t groupCharacters = 4;
constexpr std::size_t groupBytes = 3;

// A text without the pads at its end.
std::string_view dataOf(std::string_view text, char pad) {
    if (pad == '\0') return text;
    return text.substr(0, text.find_last_not_of(pad) + 1);
}

constexpr std::size_t bytesOf(std::size_t characters) {
    const std::size_t rest = characters % groupCharacters;
    return characters / groupCharacters * groupBytes + (rest == 0 ? 0 : rest - 1);
}

Base64Read judgeCharacters(std::string_view data, std::size_t from, const Base64& form) {
    std::size_t firstPad = data.size();
    for (std::size_t i = from; i < data.size(); ++i) {
        if (valueOfCharacter(data[i], form.standardAlphabet) != outsideAlphabet) continue;
        const bool isPad = form.pad != '\0' && data[i] == form.pad;
        if (!isPad) return {0, i, Base64Error::badCharacter};
        firstPad = std::min(firstPad, i);
    }
    return {0, firstPad, firstPad == data.size() ? Base64Error::none : Base64Error::badPadding};
}

// What is wrong behind clean data of that size.
Base64Read judgeEnd(std::string_view text, std::size_t data, const Base64& form) {
    const std::size_t rest = data % groupCharacters;
    const std::size_t pads = text.size() - data;
    if (rest == 1 && pads == 0) return {0, text.size(), Base64Error::badLength};
    const std::size_t needed = form.pad == '\0' || rest < 2 ? 0 : groupCharacters - rest;
    if (pads != needed) return {0, data + std::min(pads, needed), Base64Error::badPadding};
    if (rest >= 2) {
        const unsigned unused = rest == 2 ? 0xF : 0x3;
        if ((valueOfCharacter(text[data - 1], form.standardAlphabet) & unused) != 0) {
            return {0, data - 1, Base64Error::strayBits};
        }
    }
    return {0, text.size(), Base64Error::none};
}

// Everything that can be wrong from a place on up to which the data are clean.
Base64Read judge(std::string_view text, std::string_view data, std::size_t from, const Base64& form) {
    const Base64Read read = judgeCharacters(data, from, form);
    return read ? judgeEnd(text, data.size(), form) : read;
}

// Decodes a last group of two or three characters.
void decodeRest(std::string_view rest, unsigned char* target, bool standard) {
    unsigned bits = 0;
    for (const char character : rest) bits = bits << 6 | valueOfCharacter(character, standard);
    bits <<= 6 * (groupCharacters - rest.size());
    target[0] = static_cast<unsigned char>(bits >> 16);
    if (rest.size() == 3) target[1] = static_cast<unsigned char>(bits >> 8);
}

}  // namespace

const char* toText(Base64Error error) {
    switch (error) {
        case Base64Error::none: return "no error";
        case Base64Error::badCharacter: return "a character outside the alphabet";
        case Base64Error::badLength: return "a character too many or too few";
        case Base64Error::badPadding: return "the padding is missing or wrong";
        case Base64Error::strayBits: return "the last character has bits of no byte";
        case Base64Error::noRoom: return "there isn't room for the bytes";
    }
    return "unknown";
}

std::string toBase64(std::span<const std::byte> bytes, Base64 form) {
    std::string text(base64Size(bytes.size()), '\0');
    encodeText(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), text.data(), form.pad,
               form.standardAlphabet, vectorLevel());
    if (form.pad == '\0') text.resize(text.size() - (groupBytes - bytes.size() % groupBytes) % groupBytes);
    return text;
}

Base64Read fromBase64(std::string_view text, std::span<std::byte> out, Base64 form) {
    const std::string_view data = dataOf(text, form.pad);
    const std::size_t needed = bytesOf(data.size());
    if (needed > out.size()) {
        const Base64Read read = judge(text, data, 0, form);
        return read ? Base64Read{needed, text.size(), Base64Error::noRoom} : read;
    }
    auto* const target = reinterpret_cast<unsigned char*>(out.data());
    const std::size_t clean = decodeGroups(data, target, form.standardAlphabet, vectorLevel());
    Base64Read read = judge(text, data, clean, form);
    read.size = clean / groupCharacters * groupBytes;
    if (!read || clean == data.size()) return read;
    decodeRest(data.substr(clean), target + read.size, form.standardAlphabet);
    read.size = needed;
    return read;
}

Base64Read fromBase64(std::string_view text, std::vector<std::byte>& out, Base64 form) {
    out.resize(bytesOf(text.size()));
    const Base64Read read = fromBase64(text, std::span(out), form);
    out.resize(read.size);
    return read;
}

}  // namespace tarn
