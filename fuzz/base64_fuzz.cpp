// Base64: every path decodes as the plain form does, and what it encodes decodes to the same bytes, within
// its buffer.  The lowest bits of the first byte choose the alphabet and the pad; the rest is decoded and
// encoded.

#include <algorithm>

#include "fuzz/property.h"
#include "store/uu_codec.h"
#include "tests/plain/base64.h"

namespace {

// Piece by piece.  A group is 24 bits, four characters of 6 each; one outside the alphabet counts as 64.
std::string plainlyDecoded(const std::string& text, bool standard) {
    const std::string_view alphabet = tarnplain::alphabetOf(standard);
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += tarn::decodedPiece) {
        std::string piece = text.substr(at, tarn::decodedPiece);
        piece.erase(0, std::min(piece.find_first_not_of(" \t"), piece.size()));
        const std::size_t count = std::min(piece.find_first_not_of(alphabet), piece.size());
        piece.append(3, '\0');
        const auto value = [&](std::size_t i) {
            return static_cast<unsigned>(std::min<std::size_t>(alphabet.find(piece[i]), 64));
        };
        for (std::size_t i = 0; i < count; i += 4) {
            const unsigned bits = value(i) << 18 | value(i + 1) << 12 | value(i + 2) << 6 | value(i + 3);
            for (const int shift : {16, 8, 0}) bytes += static_cast<char>(bits >> shift);
        }
        if (count % 4 != 0) bytes.erase(bytes.size() - (value(count / 4 * 4 + 2) != 64 ? 1 : 2));
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const bool standard = (choice & 1) != 0;
    const char pad = (choice & 4) != 0 ? '*' : '=';
    const std::string bytes = input.rest();
    const std::string decoded = plainlyDecoded(bytes, standard);
    for (const auto level : {tarn::VectorLevel::none, tarn::vectorLevel()}) {
        tarnfuzz::requireSame(tarnplain::decodedBy(level, bytes, standard), decoded,
                              "every path decodes as the plain form");
        const std::string text = tarnplain::encodedBy(level, bytes, pad, standard);
        tarnfuzz::requireSame(plainlyDecoded(text, standard), bytes, "what is encoded decodes");
    }

    const tarnfuzz::Text text(bytes.c_str());  // from the outside, where a text ends at its NUL
    const std::unique_ptr<unsigned char[]> target(new unsigned char[(text.copy().size() + 3) / 4 * 3]);
    const int count = UUdecode(text.get(), target.get(), 0, standard ? 1 : 0);
    tarnfuzz::requireSame(std::string(target.get(), target.get() + count),
                          plainlyDecoded(text.copy(), standard), "a text decodes as by the plain form");
    return 0;
}
