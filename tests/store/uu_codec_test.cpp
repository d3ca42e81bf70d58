// The codec, its pieces and its paths: store/uu_codec.cpp, store/uu_codec_avx2.cpp.

#include "store/uu_codec.h"

#include "tests/plain/base64.h"
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

TEST(UuCodec, EveryPathDecodesAlikeAndEncodesWhatItDecodes) {
    std::mt19937 random(2);
    for (int round = 0; round < 10'000; ++round) {
        std::string text(random() % 330, 'A');
        const unsigned oneIn = 1U << random() % 9;  // how rare the characters outside the alphabet are
        const bool standard = random() % 2 != 0;
        for (char& character : text) {
            character = tarnplain::alphabetOf(standard)[random() % 64];
            if (random() % oneIn == 0) character = static_cast<char>(1 + random() % 255);
        }
        const std::string bytes = tarnplain::decodedBy(tarn::VectorLevel::none, text, standard);
        ASSERT_EQ(tarnplain::decodedBy(tarn::vectorLevel(), text, standard), bytes) << text;
        const std::string back = tarnplain::encodedBy(tarn::VectorLevel::none, bytes, '*', standard);
        ASSERT_EQ(tarnplain::encodedBy(tarn::vectorLevel(), bytes, '*', standard), back) << text;
        ASSERT_EQ(decoded(back, standard ? 1 : 0), bytes) << back;
    }
}

TEST(UuCodec, UnusableArgumentsGiveNothing) {
    const unsigned char bytes[] = {1, 2, 3, 4};
    char text[] = "old";  // becomes empty
    EXPECT_EQ(UUencode(bytes, 1610612734, text, '=', 1), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(UUdecode("Zm9v", nullptr, 4, 1), 0);
}

}  // namespace
