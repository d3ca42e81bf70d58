// Texts and buffers: core/string.h, core/string.cpp, core/buffer.cpp.

#include <memory>
#include <random>
#include <vector>

#include "core/string.h"
#include "tests/support.h"

namespace {

using Text = std::unique_ptr<char[]>;

TEST(StringTest, PricesAreCheckedAsTyped) {
    const struct {
        const char* text;
        int valid;
    } rows[] = {{"", 1},      {"12 1/2", 1}, {"12.50", 1},  {"1/3", 0},  {"1/256", 1},
                {"1/512", 0}, {"1/1024", 0}, {"1/0", 0},    {"1/", 1},   {"1.5/8", 0},
                {"1/8.5", 0}, {"-1", 0},     {"1/ 8", 1},   {"1. 5", 1}, {"1/2/4", 0},
                {"1.2.3", 0}, {"1/008", 1},  {"1/0008", 0}, {"a", 0},    {"12 ", 1}};
    for (const auto& row : rows) EXPECT_EQ(tarnString(row.text).isValidPrice(), row.valid) << row.text;
}

TEST(StringTest, NumbersTakeTheirToldDecimals) {
    const struct {
        double number;
        std::int16_t decimals;
        const char* text;
    } rows[] = {{2.5, 3, "2.500"},    {2.5, 6, "2.5"},  {2.5, 0, "2.5"},  {1200.0, 0, "1200.0"},
                {-0.125, 2, "-0.12"}, {0.0, -1, "0.0"}, {1e-9, 0, "0.0"}, {12345.678901, 0, "12345.678901"}};
    tarnString string;
    for (const auto& row : rows) {
        string.assign(row.number, row.decimals);
        EXPECT_STREQ(string.text, row.text);
    }
    string.assign(1e308, 5);
    EXPECT_EQ(string.length, 315);
    string.assign("x");
    string.append(std::int32_t{-7});
    string.appendDouble(1.5);
    EXPECT_STREQ(string.text, "x-71.500000");
}

TEST(StringTest, AStringTakesPartsOfItself) {
    tarnString string("abcdef");
    string.assign(string.text + 2);
    EXPECT_STREQ(string.text, "cdef");
    string.append(string.text + 1);
    EXPECT_STREQ(string.text, "cdefdef");
    for (int i = 0; i < 10; ++i) string.append(string.text);  // in place as well as into a larger block
    EXPECT_EQ(string.length, 7 << 10);
    EXPECT_EQ(std::string(string.text).substr(3584, 7), "cdefdef");
    string = *&string;
    EXPECT_EQ(string.length, 7 << 10);
}

TEST(StringTest, EmptyAndNullTextsChangeNothingButAnAssignment) {
    tarnString string;
    const char* const buffer = string.text;
    string.append("");
    string.append(static_cast<const char*>(nullptr));
    string.clear();
    EXPECT_EQ(string.text, buffer);
    EXPECT_EQ(string.isequal(nullptr, 0), 0);
    EXPECT_EQ(string.isequal(string.text, 1), 1);
    string.assign("Abc");
    EXPECT_EQ(string.isequal("aBC", 0), 1);
    EXPECT_EQ(string.isequal("aBC", 1), 0);
    EXPECT_EQ(string.find("c"), 2);
    EXPECT_EQ(string.findChar('x'), -1);
    string.assign(static_cast<const char*>(nullptr));
    EXPECT_EQ(string.length, 0);
    EXPECT_STREQ(string.text, "");
}

TEST(StringTest, FillersAndBlanksAreCut) {
    tarnString string("--a b  c-");
    string.trim('-');
    EXPECT_STREQ(string.text, "a b  c");
    string.removeSpace();
    EXPECT_STREQ(string.text, "abc");
    EXPECT_EQ(string.length, 3);

    const struct {
        const char *text, *trimmed;
        std::ptrdiff_t start;
        char filler;
    } rows[] = {{"  ab  ", "ab", 2, ' '},
                {"ab", "ab", 0, ' '},
                {"    ", "", 4, ' '},
                {"0012000", "12", 2, '0'},
                {"x ", "x", 0, ' '}};
    for (const auto& row : rows) {
        const Text buffer(newstr(row.text));
        std::uint32_t length = 99;
        const char* const trimmed = trim(buffer.get(), length, row.filler);
        EXPECT_STREQ(trimmed, row.trimmed);
        EXPECT_EQ(length, std::string(row.trimmed).size());
        EXPECT_EQ(trimmed - buffer.get(), row.start);
    }
}

TEST(StringTest, TrailingZerosGoButAPointKeepsOne) {
    const struct {
        const char *text, *stripped;
    } rows[] = {{"0", ""},          {"   ", ""},    {"12.50  ", "12.5"}, {"12.", "12.0"},
                {"12.000", "12.0"}, {"1200", "12"}, {".", ".0"}};
    for (const auto& row : rows) {
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, "%s", row.text);
        stripTrailZeros(buffer);
        EXPECT_STREQ(buffer, row.stripped);
    }
}

TEST(StringTest, CopiesStopAtTheLengthAndAtTheTerminator) {
    EXPECT_STREQ(Text(newstr("abcdef", 3)).get(), "abc");
    const Text longer(newstr("ab", 5));
    EXPECT_EQ(std::string(longer.get(), 6), std::string("ab\0\0\0\0", 6));
    EXPECT_STREQ(Text(newstr(static_cast<const char*>(nullptr))).get(), "");
    EXPECT_STREQ(Text(newstr(nullptr, 0)).get(), "");
}

// The buffer as it is told: capacity in steps of 4096, a new block zeroed.
struct PlainBuffer {
    std::vector<unsigned char> block;
    std::size_t length = 0;

    explicit PlainBuffer(std::size_t capacity) : block(capacity) {}
    void grow(std::size_t needed) {
        const std::size_t before = block.size();
        while (block.size() < needed) block.resize(block.size() + 4096);
        if (block.size() != before)
            std::fill(block.begin() + static_cast<std::ptrdiff_t>(length), block.end(), std::uint8_t{0});
    }
};

TEST(BufferTest, RandomWorkMatchesThePlainForm) {
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        const auto capacity = static_cast<std::int32_t>(random() % 20);
        tarnBuffer buffer(capacity);
        PlainBuffer plain(static_cast<std::size_t>(capacity));
        for (int step = 0; step < 60; ++step) {
            const auto count = static_cast<std::int32_t>(random() % 3000);
            const std::vector<unsigned char> bytes(static_cast<std::size_t>(count),
                                                   static_cast<unsigned char>(1 + step));
            const auto at = static_cast<std::ptrdiff_t>(random() % (plain.length + 1));
            const auto put = [&](std::ptrdiff_t place) {
                std::copy(bytes.begin(), bytes.end(), plain.block.begin() + place);
            };
            switch (random() % 5) {
                case 0:
                    buffer.append(bytes.data(), count);
                    plain.grow(plain.length + bytes.size());
                    put(static_cast<std::ptrdiff_t>(plain.length));
                    plain.length += bytes.size();
                    break;
                case 1:
                    buffer.assign(bytes.data(), count);
                    if (bytes.size() > plain.block.size()) plain.length = 0;
                    plain.grow(bytes.size());
                    put(0);
                    plain.length = bytes.size();
                    break;
                case 2:
                    buffer.replace(bytes.data(), static_cast<std::int32_t>(at), count);
                    if (static_cast<std::size_t>(at) + bytes.size() <= plain.length) put(at);
                    break;
                case 3: {
                    buffer.prepend(bytes.data(), count);
                    plain.grow(plain.length + bytes.size());
                    std::vector<unsigned char> block(plain.block.size());
                    std::copy_n(plain.block.begin(), plain.length,
                                std::copy(bytes.begin(), bytes.end(), block.begin()));
                    plain.block = block;
                    plain.length += bytes.size();
                    break;
                }
                default: {
                    buffer.removeRange(static_cast<std::int32_t>(at), count);
                    const auto cut = std::min(bytes.size(), plain.length - static_cast<std::size_t>(at));
                    std::copy(plain.block.begin() + at + static_cast<std::ptrdiff_t>(cut),
                              plain.block.begin() + static_cast<std::ptrdiff_t>(plain.length),
                              plain.block.begin() + at);
                    plain.length -= cut;
                    break;
                }
            }
            ASSERT_EQ(static_cast<std::size_t>(buffer.length), plain.length);
            ASSERT_EQ(std::vector<unsigned char>(buffer.data, buffer.data + buffer.capacity), plain.block);
        }
    }
}

TEST(BufferTest, ABufferTakesItself) {
    tarnBuffer buffer("abc", 3);
    for (int i = 0; i < 12; ++i) buffer.append(buffer);
    buffer.prepend(buffer);
    buffer.assign(buffer.data + 1, 4);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer.data), 4), "bcab");
    EXPECT_EQ(buffer.capacity, 24576);
    buffer.replace("xyz", 2, 3);
    buffer.append(nullptr, 5);
    buffer.append("x", -1);
    EXPECT_EQ(buffer.length, 4);
}

}  // namespace
