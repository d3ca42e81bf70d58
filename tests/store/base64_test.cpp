// Strict Base64: store/base64.cpp.

#include "store/base64.h"

#include "tests/support.h"

namespace {

using namespace std::string_view_literals;
using tarn::Base64Error;

std::string decoded(std::string_view text, tarn::Base64 form = {}) {
    std::vector<std::byte> bytes;
    const tarn::Base64Read read = tarn::fromBase64(text, bytes, form);
    EXPECT_EQ(read.error, Base64Error::none) << text;
    EXPECT_EQ(read.offset, text.size()) << text;
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string encoded(std::string_view bytes, tarn::Base64 form = {}) {
    return tarn::toBase64(std::as_bytes(std::span(bytes)), form);
}

TEST(StrictBase64, PublishedTextDiffers) {
    const struct {
        std::string bytes, text;
        tarn::Base64 form = {};
    } cases[] = {
        {"", ""},  // RFC 4648, section 10
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foobar", "Zm9vYmFy"},
        {"fooba", "Zm9vYmE", {true, '\0'}},
        {"\xFB\xFF", "?_8*", {false, '*'}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(encoded(each.bytes, each.form), each.text);
        EXPECT_EQ(decoded(each.text, each.form), each.bytes);
    }
}

TEST(StrictBase64, BadTextPassesOrIsBlamedElsewhere) {
    const struct {
        std::string_view text;
        Base64Error error;
        std::size_t offset, size = 0;
        tarn::Base64 form = {};
    } cases[] = {
        {"Zm9vZ", Base64Error::badLength, 5, 3},    {"Z*=v", Base64Error::badCharacter, 1},
        {"Z=*v", Base64Error::badCharacter, 2},     {"Zg=\0"sv, Base64Error::badCharacter, 3},
        {"Zg=v", Base64Error::badPadding, 2},       {"Zg==", Base64Error::badCharacter, 2, 0, {true, '\0'}},
        {"Zg", Base64Error::badPadding, 2},         {"Zg===", Base64Error::badPadding, 4},
        {"Zm9v=", Base64Error::badPadding, 4, 3},   {"Zh==", Base64Error::strayBits, 1},
        {"Zm9vZm9=", Base64Error::strayBits, 6, 3},
    };
    for (const auto& each : cases) {
        for (const std::size_t room : {std::size_t{0}, std::size_t{9}}) {
            std::vector<std::byte> out(room);
            const tarn::Base64Read read = tarn::fromBase64(each.text, std::span(out), each.form);
            EXPECT_EQ(read.error, each.error) << each.text;
            EXPECT_EQ(read.offset, each.offset) << each.text;
            EXPECT_EQ(read.size, room == 0 ? 0 : each.size) << each.text;
        }
    }
}

// Texts of every length up to some vectors, with a byte outside the alphabet at each place.
TEST(StrictBase64, DamagedCharacterIsMissedOrBytesAreLost) {
    std::string bytes;
    for (; bytes.size() < 150; bytes += static_cast<char>(bytes.size() * 37)) {
        const std::string text = encoded(bytes);
        EXPECT_EQ(decoded(text), bytes);
        for (std::size_t at = 0; at < text.size(); ++at) {
            std::string damaged = text;
            damaged[at] = static_cast<char>(bytes.size() % 2 == 0 ? 0x80 + at % 128 : '*');
            std::vector<std::byte> out;
            const tarn::Base64Read read = tarn::fromBase64(damaged, out);
            EXPECT_EQ(read.error, Base64Error::badCharacter) << damaged;
            EXPECT_EQ(read.offset, at) << damaged;
            EXPECT_EQ(out.size(), at / 4 * 3);
        }
    }
}

}  // namespace
