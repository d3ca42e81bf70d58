// The scrambled form and the paths to it: store/scramble.cpp.

#include "store/scramble.h"

#include "store/file_tools.h"
#include "tests/plain/scramble.h"
#include "tests/plain/vector_levels.h"
#include "tests/support.h"

namespace {

TEST(Scramble, EveryPathTakesTheToldStepsAndBack) {
    std::mt19937 random(1);
    constexpr std::size_t longest = 1200;  // beyond the change to the wide path
    for (std::size_t size = 0; size <= longest; ++size) {
        std::string plain(size + 20, '\0');  // 20 bytes that nothing may touch
        for (char& character : plain) character = static_cast<char>(random());
        std::string expected = plain;
        tarnplain::scramble(expected, size);
        for (const auto level : tarnplain::vectorLevels()) {
            std::string data = plain;
            tarn::scrambleBytes(data.data(), size, level);
            ASSERT_EQ(data, expected) << size << " by level " << static_cast<int>(level);
            tarn::unscrambleBytes(data.data(), size, level);
            ASSERT_EQ(data, plain) << size << " by level " << static_cast<int>(level);
        }
    }
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
