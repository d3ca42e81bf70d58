// The scrambled form and the paths to it: store/scramble.cpp.

#include "store/scramble.h"

#include "store/file_tools.h"
#include "tests/support.h"
#include "tests/vector_levels.h"

namespace {

// The told steps, taken one by one: the slow plain form.
void scrambleByTheSteps(std::string& data, std::size_t size) {
    for (std::size_t block = 0; block < size / 16; ++block) {
        const std::size_t span = block * 16 - (block == 0 ? 0 : 1);
        for (std::size_t k = 0; k < 16; ++k) {
            const std::uint8_t entry = tarn::scrambleTable[k];
            char& p = data[span + k];
            char& q = data[span + entry];
            std::swap(p, q);
            p = static_cast<char>(p + entry);
            q = static_cast<char>(q + entry);
        }
    }
}

TEST(Scramble, EveryPathTakesTheToldStepsAndBack) {
    std::mt19937 random(1);
    constexpr std::size_t longest = 1200;  // beyond the change to the wide path
    for (std::size_t size = 0; size <= longest; ++size) {
        std::string plain(size + 20, '\0');  // 20 bytes that nothing may touch
        for (char& character : plain) character = static_cast<char>(random());
        std::string expected = plain;
        scrambleByTheSteps(expected, size);
        for (const auto level : tarntest::vectorLevels()) {
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
