// The scrambled form and the paths to it: store/scramble.cpp.

#include "store/scramble.h"

#include <random>
#include <string>
#include <vector>

#include "store/file_tools.h"
#include "tests/plain/scramble.h"
#include "tests/support.h"

namespace {

std::vector<tarn::VectorLevel> levels() {
    std::vector<tarn::VectorLevel> all;
    for (const auto level : {tarn::VectorLevel::none, tarn::VectorLevel::ssse3, tarn::VectorLevel::avx2}) {
        if (level <= tarn::vectorLevel()) all.push_back(level);
    }
    return all;
}

TEST(Scramble, EveryPathTakesTheToldStepsAndBack) {
    std::mt19937 random(1);
    constexpr std::size_t longest = 1200;  // beyond the change to the wide path
    for (std::size_t size = 0; size <= longest; ++size) {
        std::string plain(size + 20, '\0');  // 20 bytes that nothing may touch
        for (char& character : plain) character = static_cast<char>(random());
        std::string expected = plain;
        tarnplain::scramble(expected, size);
        for (const auto level : levels()) {
            std::string data = plain;
            tarn::scrambleBytes(data.data(), size, level);
            ASSERT_EQ(data, expected) << size << " by level " << static_cast<int>(level);
            tarn::unscrambleBytes(data.data(), size, level);
            ASSERT_EQ(data, plain) << size << " by level " << static_cast<int>(level);
        }
    }
}

// The form on disk must never change.  Worked out apart from the library, from the table alone.
TEST(Scramble, AKnownTextHasItsKnownForm) {
    std::string text = "POPUP \"&File\" MENUITEM \"&Open\" 101 END";
    const std::string plain = text;
    const auto size = static_cast<std::int32_t>(text.size());
    scramble(text.data(), size);
    EXPECT_EQ(text, std::string("ZjRh*TNc[+(wu\2033_'Vs$/*b0nSjifX\221101 END"));
    unscramble(text.data(), size);
    EXPECT_EQ(text, plain);
}

TEST(Scramble, UnusableBuffersAreLeftAlone) {
    std::string text(40, 'x');
    for (const std::int32_t size : {15, 0, -1, -2147483647 - 1}) {
        for (char* const data : {text.data(), static_cast<char*>(nullptr)}) {
            scramble(data, size);
            unscramble(data, size);
        }
    }
    scramble(nullptr, 32);
    EXPECT_EQ(text, std::string(40, 'x'));
}

}  // namespace
