// The codec, its piece rules and its paths: store/uu_codec*.cpp.

#include "store/uu_codec.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "store/uu_codec_paths.h"
#include "tests/support.h"

namespace {

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

std::vector<tarn::VectorLevel> levels() {
    std::vector<tarn::VectorLevel> all{tarn::VectorLevel::none};
    for (const auto level : {tarn::VectorLevel::avx2, tarn::VectorLevel::avx512}) {
        if (level <= tarn::vectorLevel()) all.push_back(level);
    }
    return all;
}

// The told rules for one piece, character by character: the slow plain form.
std::string plainPiece(const std::string& piece, std::string_view alphabet) {
    std::size_t start = 0;
    while (start < piece.size() && (piece[start] == ' ' || piece[start] == '\t')) ++start;
    const auto value = [&](std::size_t i) {
        const std::size_t at = start + i < piece.size() ? alphabet.find(piece[start + i]) : std::string::npos;
        return static_cast<unsigned>(at == std::string::npos ? 64 : at);
    };
    std::size_t count = 0;
    while (value(count) != 64) ++count;
    const std::size_t groups = (count + 3) / 4;
    std::string bytes;
    for (std::size_t i = 0; i < 4 * groups; i += 4) {
        bytes += static_cast<char>(value(i) << 2 | value(i + 1) >> 4);
        bytes += static_cast<char>(value(i + 1) << 4 | value(i + 2) >> 2);
        bytes += static_cast<char>(value(i + 2) << 6 | value(i + 3));
    }
    if (count % 4 != 0) bytes.erase(3 * groups - (value(4 * groups - 2) != 64 ? 1 : 2));
    return bytes;
}

std::string plainDecoded(const std::string& text, std::string_view alphabet) {
    if (text.size() < 64) return plainPiece(text, alphabet);
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += 64) bytes += plainPiece(text.substr(at, 64), alphabet);
    return bytes;
}

// Base64 bit by bit.
std::string plainEncoded(const std::string& bytes, char pad, std::string_view alphabet) {
    std::string text;
    for (std::size_t bit = 0; bit < 8 * bytes.size(); bit += 6) {
        unsigned value = 0;
        for (std::size_t i = bit; i < bit + 6; ++i) {
            const unsigned byte = i / 8 < bytes.size() ? static_cast<unsigned char>(bytes[i / 8]) : 0;
            value = value << 1 | (byte >> (7 - i % 8) & 1);
        }
        text += alphabet[value];
    }
    while (text.size() % 4 != 0) text += pad;
    return text;
}

TEST(UuCodec, PublishedVectorsHoldBothWays) {
    const struct {
        const char *bytes, *text;
    } rows[] = {// RFC 4648, section 10
                {"", ""},
                {"f", "Zg=="},
                {"fo", "Zm8="},
                {"foo", "Zm9v"},
                {"foob", "Zm9vYg=="},
                {"fooba", "Zm9vYmE="},
                {"foobar", "Zm9vYmFy"},
                {"\xFB\xFF\xBF", "+/+/"}};
    for (const auto& row : rows) {
        EXPECT_EQ(encoded(row.bytes), row.text);
        EXPECT_EQ(decoded(row.text), row.bytes);
        const std::string bare = std::string(row.text).substr(0, std::string(row.text).find('='));
        EXPECT_EQ(decoded(bare), row.bytes) << "without pads";
        EXPECT_EQ(decoded(" \t" + bare + "\r\nZg"), row.bytes) << "between blanks and a line end";
    }
    EXPECT_EQ(encoded("\xFB\xFF\xBF", '=', 0), "?_?_");
    EXPECT_EQ(decoded("?_?_", 0), "\xFB\xFF\xBF");
    EXPECT_EQ(decoded("?_?_", 1), "");
}

TEST(UuCodec, OddEndsFollowTheThirdCharacter) {
    const struct {
        const char* text;
        const char* bytes;
        std::size_t count;
    } rows[] = {{"Z", "d", 1},          // d = Z << 2 | 64 >> 4, though nothing rests on it
                {"A=CD", "\x04\0", 2},  // the third is in the alphabet, though the second isn't
                {"A==D", "\x04", 1},     {"AB=D", "\0", 1},           {"ABC=", "\0\x10", 2},
                {"ABC", "\0\x10", 2},    {"\xC0\xC1\xC2\xC3", "", 0},  // bytes above 127 are outside
                {"Zm9v=Zm9v", "foo", 3},                               // a pad in the middle ends the text
                {"Zm9v Zm9v", "foo", 3}};
    for (const auto& row : rows) EXPECT_EQ(decoded(row.text), std::string(row.bytes, row.count)) << row.text;
    EXPECT_EQ(decoded(encoded("f", 'A')), std::string("f\0\0", 3)) << "a pad of the alphabet is data";
}

// Every path against bit by bit, over all lengths up to four vectors and beyond, within guarded buffers.
TEST(UuCodec, EveryPathEncodesLikeThePlainForm) {
    std::mt19937 random(1);
    for (std::size_t size = 0; size < 300; ++size) {
        std::string bytes(size, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        for (const bool standard : {true, false}) {
            const auto alphabet = standard ? tarn::standardCharacters : tarn::variantCharacters;
            const std::string expected = plainEncoded(bytes, '*', alphabet);
            for (const auto level : levels()) {
                const std::vector<unsigned char> source(bytes.begin(), bytes.end());  // of exactly this size
                std::string text(expected.size() + 33, guard);
                const std::size_t length =
                    tarn::encodeText(source.data(), size, text.data(), '*', standard, level);
                ASSERT_EQ(text, expected + '\0' + std::string(32, guard)) << size;
                ASSERT_EQ(length, expected.size());
            }
            ASSERT_EQ(decoded(expected, standard), bytes) << size;
        }
    }
}

TEST(UuCodec, EveryPathDecodesAnyTextByTheToldPieces) {
    std::mt19937 random(2);
    const std::string junk = "=\n \t-?_+/\x80\xFF@[`{\x01";
    for (int round = 0; round < 20'000; ++round) {
        std::string text(random() % 330, 'A');
        const unsigned oneIn = 1U << random() % 9;  // how rare the junk is
        const bool standard = random() % 2 != 0;
        const auto alphabet = standard ? tarn::standardCharacters : tarn::variantCharacters;
        for (char& character : text) {
            character = random() % oneIn != 0 ? alphabet[random() % 64] : junk[random() % junk.size()];
        }
        const std::size_t blanks = random() % 4;
        std::fill_n(text.begin(), std::min(blanks, text.size()), ' ');
        const std::string expected = plainDecoded(text, alphabet);
        for (const auto level : levels()) {
            const std::size_t room = (text.size() + 3) / 4 * 3;
            std::vector<unsigned char> bytes(room + 8, static_cast<unsigned char>(guard));
            const std::size_t count = tarn::decodeText(text, bytes.data(), standard, level);
            ASSERT_EQ(std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)),
                      expected)
                << text;
            ASSERT_EQ(std::count(bytes.end() - 8, bytes.end(), guard), 8);
        }
    }
}

// Each byte value at each place of a clean piece: the vector path must know the alphabet exactly.
TEST(UuCodec, EveryByteIsJudgedRightlyAtEveryPlace) {
    for (const bool standard : {true, false}) {
        const auto alphabet = standard ? tarn::standardCharacters : tarn::variantCharacters;
        for (std::size_t place = 0; place < 64; ++place) {
            for (int byte = 1; byte < 256; ++byte) {
                std::string text(alphabet);
                text[place] = static_cast<char>(byte);
                const std::string expected = plainDecoded(text, alphabet);
                for (const auto level : levels()) {
                    unsigned char bytes[48];
                    const std::size_t count = tarn::decodeText(text, bytes, standard, level);
                    ASSERT_EQ(std::string(bytes, bytes + count), expected) << place << ' ' << byte;
                }
            }
        }
    }
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
