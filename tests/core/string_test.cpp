// Strings and buffers: core/string.cpp, core/buffer.cpp.

#include "core/string.h"
#include "tests/support.h"

namespace {

using Text = std::unique_ptr<char[]>;
constexpr const char* null = nullptr;

TEST(StringTest, AStringTakesPartsOfItself) {
    tarnString string("abcdef");
    string.assign(string.text + 2);
    string.append(string.text + 1);
    EXPECT_STREQ(string.text, "cdefdef");
    for (int i = 0; i < 10; ++i) string.append(string.text);  // in place as well as into a larger block
    EXPECT_EQ(string.length, 7 << 10);
    EXPECT_EQ(std::string(string.text).substr(3584, 7), "cdefdef");
}

TEST(StringTest, LengthAndTextStayTogether) {
    tarnString string("--a b  c-");
    string.trim('-');
    string.removeSpace();
    string.append(std::int32_t{-7});
    string.appendDouble(0.5);
    EXPECT_EQ(string.length, 13);
    EXPECT_EQ(string.find("c-7"), 2);
    EXPECT_EQ(string.findChar('x'), -1);
    const tarnString copy(string);
    string = tarnString("Abc");
    EXPECT_STREQ(copy.text, "abc-70.500000");
    EXPECT_EQ(string.isequal("aBC", 0), 1);
    EXPECT_EQ(string.isequal("aBC", 1), 0);
    string.assign(null);
    EXPECT_EQ(string.length, 0);
}

TEST(StringTest, ACopyStopsAtTheTextsEndAndItsBlockIsZeroed) {
    EXPECT_STREQ(Text(newstr("abcdef", 3)).get(), "abc");
    EXPECT_EQ(std::string(Text(newstr("ab", 5)).get(), 6), std::string("ab\0\0\0\0", 6));
    EXPECT_STREQ(Text(newstr(null)).get(), "");
}

TEST(StringTest, OnlyPricesThatAUserMayTypeAreValid) {
    for (const char* text : {"", "12 1/2", "12.50 ", "1. 5", "1/", "1/ 8", "1/1", "1/256"})
        EXPECT_EQ(tarnString(text).isValidPrice(), 1) << text;
    for (const char* text : {"1/3", "1/512", "1/0", "1/0008", "1.5/8", "1/8.5", "1/2/4", "-1"})
        EXPECT_EQ(tarnString(text).isValidPrice(), 0) << text;
}

TEST(StringTest, OneToFiveDecimalsStayAndOtherCountsAreStripped) {
    const struct {
        double number;
        std::int16_t decimals;
        const char* text;
    } rows[] = {{-0.125, 1, "-0.1"}, {0.5, 5, "0.50000"}, {2.5, 6, "2.5"}, {1200, 0, "1200.0"}};
    for (const auto& each : rows) {
        tarnString string;
        string.assign(each.number, each.decimals);
        EXPECT_STREQ(string.text, each.text);
    }
}

TEST(StringTest, TrimCutsBothEndsInsideTheBuffer) {
    const struct {
        const char* text;
        const char* trimmed;
        std::ptrdiff_t start;
    } rows[] = {{"  a b  ", "a b", 2}, {"ab", "ab", 0}, {"    ", "", 4}, {"x ", "x", 0}};
    for (const auto& each : rows) {
        std::string buffer = each.text;
        std::uint32_t length = 77;
        const char* const start = trim(buffer.data(), length, ' ');
        EXPECT_STREQ(start, each.trimmed);
        EXPECT_EQ(length, std::strlen(each.trimmed)) << each.text;
        EXPECT_EQ(start - buffer.data(), each.start) << each.text;
    }
}

// A buffer's block as a string, which grows in steps of 4096 bytes of 0.
struct PlainBuffer {
    std::string block;
    std::size_t length = 0;

    void take(const std::string& content, bool intoNewBlock) {
        const std::size_t before = block.size();
        const std::size_t steps = content.size() > before ? (content.size() - before + 4095) / 4096 : 0;
        if (steps > 0 || intoNewBlock) block.assign(before + steps * 4096, '\0');
        block.replace(0, content.size(), content);
        length = content.size();
    }
};

TEST(BufferTest, RandomWorkMatchesThePlainForm) {
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        PlainBuffer plain{std::string(random() % 20, '\0')};
        tarnBuffer buffer(static_cast<std::int32_t>(plain.block.size()));
        for (int step = 0; step < 60; ++step) {
            const std::string bytes(random() % 3000, static_cast<char>(1 + step));
            const auto count = static_cast<std::int32_t>(bytes.size());
            const std::size_t place = random() % (plain.length + 2);
            const auto offset = static_cast<std::int32_t>(place);
            std::string content = plain.block.substr(0, plain.length);
            const auto work = random() % 5;
            if (work == 0) {
                buffer.append(bytes.data(), count);
                content += bytes;
            } else if (work == 1) {
                buffer.assign(bytes.data(), count);
                content = bytes;
            } else if (work == 2) {
                buffer.prepend(bytes.data(), count);
                content.insert(0, bytes);
            } else if (work == 3) {
                buffer.replace(bytes.data(), offset, count);
                if (place + bytes.size() <= content.size()) content.replace(place, bytes.size(), bytes);
            } else {
                buffer.removeRange(offset, count);
                if (place < content.size()) content.erase(place, bytes.size());
            }
            plain.take(content, work == 2);
            ASSERT_EQ(static_cast<std::size_t>(buffer.length), plain.length);
            ASSERT_EQ(std::string(buffer.data, buffer.data + buffer.capacity), plain.block);
        }
    }
}

TEST(BufferTest, ABufferTakesItselfAndNegativeCountsChangeNothing) {
    tarnBuffer buffer("abc", 3);
    for (int i = 0; i < 12; ++i) buffer.append(buffer);
    buffer.prepend(buffer);
    EXPECT_EQ(buffer.capacity, 24576);
    buffer.assign(buffer.data + 1, 4);
    buffer.replace(buffer.data + 2, 0, 1);
    buffer.replace("x", -1, 1);
    buffer.append("x", -1);
    buffer.assign("x", -1);
    buffer.prepend("x", -1);
    buffer.removeRange(-1, 1);
    EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.length), "acab");
}

}  // namespace
