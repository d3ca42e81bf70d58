// Texts and buffers: core/string.h, core/string.cpp, core/buffer.cpp.

#include "core/string.h"
#include "tests/support.h"

namespace {

using Text = std::unique_ptr<char[]>;

TEST(StringTest, AStringTakesPartsOfItself) {
    tarnString string("abcdef");
    string.assign(string.text + 2);
    EXPECT_STREQ(string.text, "cdef");
    string.append(string.text + 1);
    EXPECT_STREQ(string.text, "cdefdef");
    for (int i = 0; i < 10; ++i) string.append(string.text);  // in place as well as into a larger block
    EXPECT_EQ(string.length, 7 << 10);
    EXPECT_EQ(std::string(string.text).substr(3584, 7), "cdefdef");
    string.assign("--a b  c-");
    string.trim('-');
    string.removeSpace();
    string.append(std::int32_t{-7});
    EXPECT_STREQ(string.text, "abc-7");
    string.assign(1e308, 5);
    EXPECT_EQ(string.length, 315);
}

TEST(StringTest, EmptyAndNullTextsChangeNothingButAnAssignment) {
    tarnString string;
    const char* const buffer = string.text;
    for (const char* nothing : {"", static_cast<const char*>(nullptr)}) string.append(nothing);
    string.clear();
    EXPECT_EQ(string.text, buffer);
    EXPECT_TRUE(string.isequal(nullptr, 0) == 0 && string.isequal(string.text, 1) == 1);
    string.assign("Abc");
    EXPECT_TRUE(string.isequal("aBC", 0) == 1 && string.isequal("aBC", 1) == 0);
    EXPECT_TRUE(string.find("c") == 2 && string.findChar('x') == -1);
    string.assign(static_cast<const char*>(nullptr));
    EXPECT_EQ(string.text + std::to_string(string.length), "0");
    EXPECT_STREQ(Text(newstr("abcdef", 3)).get(), "abc");
    EXPECT_EQ(std::string(Text(newstr("ab", 5)).get(), 6), std::string("ab\0\0\0\0", 6));
    EXPECT_STREQ(Text(newstr(static_cast<const char*>(nullptr))).get(), "");
    EXPECT_STREQ(Text(newstr(nullptr, 0)).get(), "");
}

// The buffer as it is told: capacity in steps of 4096, a new block zeroed.
struct PlainBuffer {
    std::string block;
    std::size_t length = 0;

    void grow(std::size_t needed) {
        const std::size_t before = block.size();
        if (needed <= before) return;
        block.resize(length);
        block.resize(before + (needed - before + 4095) / 4096 * 4096);
    }
};

TEST(BufferTest, RandomWorkMatchesThePlainForm) {
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        const auto capacity = static_cast<std::int32_t>(random() % 20);
        tarnBuffer buffer(capacity);
        PlainBuffer plain{std::string(static_cast<std::size_t>(capacity), '\0')};
        for (int step = 0; step < 60; ++step) {
            const std::string bytes(random() % 3000, static_cast<char>(1 + step));
            const auto count = static_cast<std::int32_t>(bytes.size());
            const std::size_t at = random() % (plain.length + 1), all = plain.length + bytes.size();
            const auto work = random() % 5;
            if (work == 0) {
                buffer.append(bytes.data(), count);
                plain.grow(all);
                plain.block.replace(plain.length, bytes.size(), bytes);
                plain.length = all;
            } else if (work == 1) {
                buffer.assign(bytes.data(), count);
                if (bytes.size() > plain.block.size()) plain.length = 0;
                plain.grow(bytes.size());
                plain.block.replace(0, bytes.size(), bytes);
                plain.length = bytes.size();
            } else if (work == 2) {
                const auto offset = static_cast<std::int32_t>(at) + (step % 4 == 0 ? step % 3 * 2 - 2 : 0);
                buffer.replace(step % 10 == 0 ? nullptr : bytes.data(), offset,
                               step % 9 == 0 ? -count : count);
                if (step % 10 != 0 && step % 9 != 0 && offset >= 0 &&
                    static_cast<std::size_t>(offset) + bytes.size() <= plain.length)
                    plain.block.replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
            } else if (work == 3) {
                buffer.prepend(bytes.data(), count);
                plain.grow(all);
                const std::size_t size = plain.block.size();
                plain.block = bytes + plain.block.substr(0, plain.length);
                plain.block.resize(size);
                plain.length = all;
            } else {
                buffer.removeRange(static_cast<std::int32_t>(at), count);
                const std::size_t cut = std::min(bytes.size(), plain.length - at);
                const std::string rest = plain.block.substr(at + cut, plain.length - at - cut);
                plain.block.replace(at, rest.size(), rest);
                plain.length -= cut;
            }
            ASSERT_EQ(static_cast<std::size_t>(buffer.length), plain.length);
            ASSERT_EQ(std::string(buffer.data, buffer.data + buffer.capacity), plain.block);
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
