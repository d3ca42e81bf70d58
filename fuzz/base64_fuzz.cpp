// Base64: every path decodes as the plain form does, and what it encodes decodes to the same bytes, within
// its buffer.  The lowest bits of the first byte choose the alphabet and the pad; the rest is decoded and
// encoded.

#include "fuzz/property.h"
#include "store/uu_codec.h"
#include "tests/plain/base64.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const bool standard = (choice & 1) != 0;
    const char pad = (choice & 4) != 0 ? '*' : '=';
    const std::string bytes = input.rest();
    const std::string decoded = tarnplain::decoded(bytes, standard);
    for (const auto level : {tarn::VectorLevel::none, tarn::vectorLevel()}) {
        tarnfuzz::requireSame(tarnplain::decodedBy(level, bytes, standard), decoded,
                              "every path decodes as the plain form");
        const std::string text = tarnplain::encodedBy(level, bytes, pad, standard);
        tarnfuzz::requireSame(tarnplain::decoded(text, standard), bytes, "what is encoded decodes");
    }

    const tarnfuzz::Text text(bytes.c_str());  // from the outside, where a text ends at its NUL
    const std::unique_ptr<unsigned char[]> target(new unsigned char[(text.copy().size() + 3) / 4 * 3]);
    const int count = UUdecode(text.get(), target.get(), 0, standard ? 1 : 0);
    tarnfuzz::requireSame(std::string(target.get(), target.get() + count),
                          tarnplain::decoded(text.copy(), standard), "a text decodes as by the plain form");
    return 0;
}
