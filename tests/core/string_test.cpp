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
    const auto shown = [](double number, std::int16_t decimals) {
        tarnString string;
        string.assign(number, decimals);
        return std::string(string.text);
    };
    EXPECT_EQ(shown(-0.125, 1), "-0.1");
    EXPECT_EQ(shown(0.5, 5), "0.50000");
    EXPECT_EQ(shown(2.5, 6), "2.5");
    EXPECT_EQ(shown(1200, 0), "1200.0");
}

TEST(BufferTest, RandomWorkMatchesAStringAndCapacityGrowsInSteps) {
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        std::size_t capacity = random() % 20;
        std::string content;
        tarnBuffer buffer(static_cast<std::int32_t>(capacity));
        for (int step = 0; step < 60; ++step) {
            const std::string bytes(random() % 3000, static_cast<char>(1 + step));
            const auto count = static_cast<std::int32_t>(bytes.size());
            const std::size_t place = random() % (content.size() + 2);
            const auto offset = static_cast<std::int32_t>(place);
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
            while (capacity < content.size()) capacity += 4096;
            ASSERT_EQ(static_cast<std::size_t>(buffer.capacity), capacity);
            ASSERT_EQ(std::string(buffer.data, buffer.data + buffer.length), content);
        }
    }
}

TEST(BufferTest, ABufferTakesItselfAndNegativeCountsChangeNothing) {
    tarnBuffer buffer("abc", 3);
    for (int i = 0; i < 11; ++i) buffer.append(buffer);
    buffer.prepend(buffer);
    EXPECT_EQ(buffer.length, 12288);
    buffer.append("x", 1);
    EXPECT_EQ(std::count(buffer.data + 12289, buffer.data + 16384, 0), 4095);  // the new block is zeroed
    buffer.assign(buffer.data + 1, 4);
    buffer.replace(buffer.data + 2, 0, 1);
    buffer.append("x", -1);
    buffer.removeRange(-1, 1);
    EXPECT_EQ(std::string(buffer.data, buffer.data + buffer.length), "acab");
}

}  // namespace
