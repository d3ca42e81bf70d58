// The codec, its piece rules and its paths: store/uu_codec*.cpp.

#include "store/uu_codec.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/plain/base64.h"
#include "tests/support.h"

namespace {

using tarnplain::alphabetOf;

constexpr char guard = '\x5A';

std::string encoded(const std::string& bytes, char pad = '=', int standard = 1) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, guard);
    const int length = UUencode(reinterpret_cast<const unsigned char*>(bytes.data()),
                                static_cast<std::uint32_t>(bytes.size()), text.data(), pad, standard);
    EXPECT_EQ(static_cast<std::size_t>(length) + 1, text.size());
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return text;
}

std::string decoded(const std::string& text, int standard = 1) {
    std::vector<unsigned char> bytes((text.size() + 3) / 4 * 3);
    const int length = UUdecode(text.c_str(), bytes.data(), -1, standard);
    return std::string(bytes.begin(), bytes.begin() + length);
}

TEST(UuCodec, PublishedVectorsHoldBothWays) {
    const struct {
        const char *bytes, *text;
    } rows[] = {
        {"", ""},  // RFC 4648, section 10
        {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {"\xFB\xFF\xBF", "+/+/"}};
    for (const auto& row : rows) {
        EXPECT_EQ(encoded(row.bytes), row.text);
        EXPECT_EQ(decoded(row.text), row.bytes);
        const std::string bare = std::string(row.text).substr(0, std::string(row.text).find('='));
        EXPECT_EQ(decoded(" \t" + bare + "\r\nZg"), row.bytes)
            << "without pads, between blanks and a line end";
    }
    EXPECT_EQ(encoded("\xFB\xFF\xBF", '=', 0), "?_?_");
    EXPECT_EQ(decoded("?_?_", 0), "\xFB\xFF\xBF");
    EXPECT_EQ(decoded("?_?_", 1), "");
}

TEST(UuCodec, OddEndsFollowTheThirdCharacter) {
    const struct {
        const char *text, *bytes;
        std::size_t count;
    } rows[] = {{"Z", "d", 1},          // Z << 2 | 64 >> 4, though nothing rests on it
                {"A=CD", "\x04\0", 2},  // the third is in the alphabet, though the second isn't
                {"A==D", "\x04", 1},     {"AB=D", "\0", 1},      {"ABC", "\0\x10", 2},
                {"Zm9v=Zm9v", "foo", 3}, {"Zm9v Zm9v", "foo", 3}};
    for (const auto& row : rows) EXPECT_EQ(decoded(row.text), std::string(row.bytes, row.count)) << row.text;
    EXPECT_EQ(decoded(encoded("f", 'A')), std::string("f\0\0", 3)) << "a pad of the alphabet is data";
}

// The slow plain form reads back what every path wrote, within guarded buffers.
TEST(UuCodec, EveryPathEncodesEveryLength) {
    std::mt19937 random(1);
    for (std::size_t size = 0; size < 300; ++size) {
        std::vector<unsigned char> bytes(size);  // of exactly this size
        for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
        for (const auto level : tarnplain::codecLevels()) {
            for (const bool standard : {true, false}) {
                const std::size_t length = 4 * ((size + 2) / 3);
                std::string text(length + 33, guard);
                ASSERT_EQ(tarn::encodeText(bytes.data(), size, text.data(), '*', standard, level), length);
                ASSERT_EQ(text.substr(length), '\0' + std::string(32, guard)) << size;
                text.resize(length);
                ASSERT_EQ(std::count(text.begin(), text.end(), '*'), (3 - size % 3) % 3);
                ASSERT_EQ(tarnplain::decoded(text, alphabetOf(standard)),
                          std::string(bytes.begin(), bytes.end()))
                    << size;
            }
        }
    }
}

TEST(UuCodec, EveryPathDecodesAnyTextByTheToldPieces) {
    std::mt19937 random(2);
    for (int round = 0; round < 20'000; ++round) {
        std::string text(random() % 330, 'A');
        const unsigned oneIn = 1U << random() % 9;  // how rare the junk is
        const bool standard = random() % 2 != 0;
        for (char& character : text) {
            const auto junk = static_cast<char>(1 + random() % 255);
            character = random() % oneIn != 0 ? alphabetOf(standard)[random() % 64] : junk;
        }
        std::fill_n(text.begin(), std::min<std::size_t>(random() % 4, text.size()), ' ');
        const std::string expected = tarnplain::decoded(text, alphabetOf(standard));
        for (const auto level : tarnplain::codecLevels()) {
            std::vector<unsigned char> bytes((text.size() + 3) / 4 * 3 + 8, guard);
            const std::size_t count = tarn::decodeText(text, bytes.data(), standard, level);
            ASSERT_EQ(std::string(bytes.data(), bytes.data() + count), expected) << text;
            ASSERT_EQ(std::count(bytes.end() - 8, bytes.end(), guard), 8);
        }
    }
    // The way from the outside, beyond one stretch of the search for the text's end.
    const std::string bytes(100'000, 'x');
    EXPECT_EQ(decoded(encoded(bytes)), bytes);
}

TEST(UuCodec, UnusableArgumentsGiveNothing) {
    char text[] = "untouched";
    unsigned char bytes[4] = {1, 2, 3, 4};
    EXPECT_EQ(UUencode(bytes, 3, nullptr, '=', 1), 0);
    EXPECT_EQ(UUencode(bytes, 1610612734, text, '=', 1), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(UUencode(nullptr, 3, text, '=', 1), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(UUdecode(nullptr, bytes, 4, 1), 0);
    EXPECT_EQ(UUdecode("Zm9v", nullptr, 4, 1), 0);
    EXPECT_EQ(UUdecode("", bytes, 4, 1), 0);
    EXPECT_EQ(bytes[0], 1);
}

}  // namespace
