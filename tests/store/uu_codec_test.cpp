// The codec, its piece rules and its paths: store/uu_codec*.cpp.

#include "store/uu_codec.h"

#include "tests/plain/base64.h"
#include "tests/plain/vector_levels.h"
#include "tests/support.h"

using namespace std::string_literals;

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

TEST(UuCodec, PublishedVectorsHoldBothWaysAndOddEndsFollowTheThirdCharacter) {
    const std::pair<std::string, std::string> published[] = {
        {"", ""},  // RFC 4648, section 10
        {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {"\xFB\xFF\xBF", "+/+/"}};
    for (const auto& [bytes, text] : published) {
        EXPECT_EQ(encoded(bytes), text);
        // Also without pads, between blanks and a line end.
        for (const std::string& form : {text, " \t" + text.substr(0, text.find('=')) + "\r\nZg"})
            EXPECT_EQ(decoded(form), bytes);
    }
    const std::pair<const char*, std::string> odd[] = {
        {"Z", "d"},           // Z << 2 | 64 >> 4, though nothing rests on it
        {"A=CD", "\x04\0"s},  // the third is in the alphabet, though the second isn't
        {"A==D", "\x04"},     {"AB=D", "\0"s},      {"ABC", "\0\x10"s},
        {"Zm9v=Zm9v", "foo"}, {"Zm9v Zm9v", "foo"}, {"?_?_", ""}};
    for (const auto& [text, bytes] : odd) EXPECT_EQ(decoded(text), bytes) << text;
    EXPECT_EQ(encoded("\xFB\xFF\xBF", '=', 0) + decoded("?_?_", 0), "?_?_\xFB\xFF\xBF");
    EXPECT_EQ(decoded(encoded("f", 'A')), "f\0\0"s) << "a pad of the alphabet is data";
}

// Within guarded buffers; the slow plain form reads back what every path wrote.
TEST(UuCodec, EveryPathDecodesAnyTextByTheToldPiecesAndEncodesWhatItGave) {
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
        for (const auto level : tarnplain::vectorLevels()) {
            std::vector<unsigned char> bytes((text.size() + 3) / 4 * 3 + 8, guard);
            const std::size_t count = tarn::decodeText(text, bytes.data(), standard, level);
            ASSERT_EQ(std::string(bytes.data(), bytes.data() + count), expected) << text;
            ASSERT_EQ(std::count(bytes.end() - 8, bytes.end(), guard), 8);
            const std::vector<unsigned char> exact(bytes.data(), bytes.data() + count);
            const std::size_t length = 4 * ((count + 2) / 3);
            std::string back(length + 33, guard);
            ASSERT_EQ(tarn::encodeText(exact.data(), count, back.data(), '*', standard, level), length);
            ASSERT_EQ(back.substr(length), '\0' + std::string(32, guard)) << count;
            back.resize(length);
            ASSERT_EQ(std::count(back.begin(), back.end(), '*'), (3 - count % 3) % 3);
            ASSERT_EQ(tarnplain::decoded(back, alphabetOf(standard)), expected) << count;
        }
    }
    // The way from the outside, beyond one stretch of the search for the text's end.
    const std::string bytes(100'000, 'x');
    EXPECT_EQ(decoded(encoded(bytes)), bytes);
}

TEST(UuCodec, UnusableArgumentsGiveNothing) {
    unsigned char bytes[4] = {1, 2, 3, 4};
    EXPECT_EQ(UUencode(bytes, 3, nullptr, '=', 1), 0);
    for (const unsigned char* source :
         {static_cast<const unsigned char*>(bytes), static_cast<const unsigned char*>(nullptr)}) {
        char text[] = "untouched";
        EXPECT_EQ(UUencode(source, source == nullptr ? 3 : 1610612734, text, '=', 1), 0);
        EXPECT_STREQ(text, "");
    }
    EXPECT_EQ(UUdecode(nullptr, bytes, 4, 1) + UUdecode("Zm9v", nullptr, 4, 1) + UUdecode("", bytes, 4, 1),
              0);
    EXPECT_EQ(bytes[0], 1);
}

}  // namespace
