// The codec and its pieces: store/uu_codec.cpp, store/uu_codec_avx2.cpp.  fuzz/base64_fuzz.cpp compares its paths.

#include "store/uu_codec.h"

#include "tests/support.h"

using namespace std::string_literals;

namespace {

std::string encoded(const std::string& bytes, char pad = '=', int standard = 1) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, 'x');
    const int length = UUencode(reinterpret_cast<const unsigned char*>(bytes.data()),
                                static_cast<std::uint32_t>(bytes.size()), text.data(), pad, standard);
    return text.substr(0, static_cast<std::size_t>(length) + 1).c_str();
}

std::string decoded(const std::string& text, int standard = 1) {
    std::vector<unsigned char> bytes((text.size() + 3) / 4 * 3);
    const int length = UUdecode(text.c_str(), bytes.data(), -1, standard);
    return {bytes.data(), bytes.data() + length};
}

TEST(UuCodec, KnownTextsHaveTheirBytes) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const struct {
        std::string text, bytes;
        bool isEncoded = true;
        int standard = 1;
    } cases[] = {
        {"", ""},  // RFC 4648, section 10
        {"Zg==", "f"},
        {"Zm8=", "fo"},
        {"Zm9vYmFy", "foobar"},
        {alphabet,
         "\0\x10\x83\x10\x51\x87\x20\x92\x8B\x30\xD3\x8F\x41\x14\x93\x51\x55\x97\x61\x96\x9B\x71\xD7\x9F"
         "\x82\x18\xA3\x92\x59\xA7\xA2\x9A\xAB\xB2\xDB\xAF\xC3\x1C\xB3\xD3\x5D\xB7\xE3\x9E\xBB\xF3\xDF\xBF"s},
        {"?_?_", "\xFB\xFF\xBF", true, 0},
        {std::string(80'000, 'A'), std::string(60'000, '\0')},  // looked through in more than one stretch
        {"Z", "d", false},           // Z << 2 | 64 >> 4, though no character is behind it
        {"A=CD", "\x04\0"s, false},  // the third is in the alphabet, though the second isn't
        {" \tZm8\r\nZg", "fo", false},
        {std::string(60, 'A') + "====Zm9v", std::string(45, '\0') + "foo", false},
        {encoded("f", 'A'), "f\0\0"s, false},  // a pad of the alphabet is data
    };
    for (const auto& each : cases) {
        EXPECT_EQ(decoded(each.text, each.standard), each.bytes) << each.text;
        if (!each.isEncoded) continue;
        EXPECT_EQ(encoded(each.bytes, '=', each.standard), each.text);
    }
}

}  // namespace
