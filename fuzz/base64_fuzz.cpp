// Base64: every path decodes as the plain form does, within its buffer; what is encoded decodes to the same.

#include <algorithm>

#include "fuzz/property.h"
#include "store/uu_codec.h"
#include "tests/plain/base64.h"
#include "tests/plain/vector_levels.h"

namespace {

using tarnfuzz::require;

// RFC 4648 in its own words: groups of 24 bits, cut into four of 6.
std::string plainEncoded(const std::string& bytes, char pad, std::string_view alphabet) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const auto byte = [&](std::size_t i) {
            return at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U;
        };
        const std::size_t bits = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (std::size_t i = 0; i < 4; ++i)
            text += at + i > bytes.size() ? pad : alphabet[bits >> (18 - 6 * i) & 63];
    }
    return text;
}

void decode(const std::string& text, bool standard) {
    const std::string expected = tarnplain::decoded(text, tarnplain::alphabetOf(standard));
    const std::size_t room = (text.size() + 3) / 4 * 3;
    for (const auto level : tarnplain::vectorLevels()) {
        const std::unique_ptr<unsigned char[]> bytes(new unsigned char[room]);
        const std::size_t count = tarn::decodeText(text, bytes.get(), standard, level);
        require(expected == std::string(bytes.get(), bytes.get() + count), "every path decodes plainly");
    }
}

void encode(const std::string& bytes, char pad, bool standard) {
    const std::string expected = plainEncoded(bytes, pad, tarnplain::alphabetOf(standard));
    for (const auto level : tarnplain::vectorLevels()) {
        const tarnfuzz::Text text(expected);
        const std::size_t count = tarn::encodeText(reinterpret_cast<const unsigned char*>(bytes.data()),
                                                   bytes.size(), text.get(), pad, standard, level);
        require(count == expected.size() && text.get()[count] == '\0', "a text has its told length");
        tarnfuzz::requireSame(text.copy(), expected, "every path encodes plainly");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const bool standard = (choice & 1) != 0;
    const std::string bytes = input.rest();
    if ((choice & 2) != 0) decode(bytes, standard);

    // From the outside, where a text ends at its NUL.
    const tarnfuzz::Text text(bytes.c_str());
    const std::unique_ptr<unsigned char[]> decoded(new unsigned char[(bytes.size() + 3) / 4 * 3]);
    const int count = UUdecode(text.get(), decoded.get(), 0, standard ? 1 : 0);
    require(std::string(decoded.get(), decoded.get() + count) ==
                tarnplain::decoded(text.copy(), tarnplain::alphabetOf(standard)),
            "a text decodes plainly");

    encode(bytes, (choice & 4) != 0 ? '*' : '=', standard);
    const std::string told = plainEncoded(bytes, '=', tarnplain::alphabetOf(standard));
    const tarnfuzz::Text back(told);
    const std::unique_ptr<unsigned char[]> again(new unsigned char[told.size() / 4 * 3]);
    const int length = UUdecode(back.get(), again.get(), 0, standard ? 1 : 0);
    require(bytes == std::string(again.get(), again.get() + length), "what is encoded decodes to the same");
    return 0;
}
