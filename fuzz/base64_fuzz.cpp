// Base64: every path decodes and encodes as the plain forms do, within its buffer.  The lowest bits of the
// first byte choose the alphabet and the pad; the rest is decoded and encoded.

#include "fuzz/property.h"
#include "store/uu_codec.h"
#include "tests/plain/base64.h"
#include "tests/plain/vector_levels.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarnfuzz::Input input(data, size);
    const unsigned choice = input.byte();
    const bool standard = (choice & 1) != 0;
    const char pad = (choice & 4) != 0 ? '*' : '=';
    const std::string bytes = input.rest();
    const std::string decoded = tarnplain::decoded(bytes, standard);
    const std::string encoded = tarnplain::encoded(bytes, pad, standard);
    for (const auto level : tarnplain::vectorLevels()) {
        tarnfuzz::requireSame(tarnplain::decodedBy(level, bytes, standard), decoded,
                              "every path decodes as the plain form");
        tarnfuzz::requireSame(tarnplain::encodedBy(level, bytes, pad, standard), encoded + '\0',
                              "every path encodes as the plain form");
    }

    const tarnfuzz::Text text(bytes.c_str());  // from the outside, where a text ends at its NUL
    const std::unique_ptr<unsigned char[]> target(new unsigned char[(text.copy().size() + 3) / 4 * 3]);
    const int count = UUdecode(text.get(), target.get(), 0, standard ? 1 : 0);
    tarnfuzz::requireSame(std::string(target.get(), target.get() + count),
                          tarnplain::decoded(text.copy(), standard), "a text decodes as by the plain form");
    return 0;
}
