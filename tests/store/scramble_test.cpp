// The scrambled form and the paths to it: store/scramble.cpp, store/scramble_forms.h.

#include "store/scramble.h"

#include "store/file_tools.h"
#include "tests/plain/scramble.h"
#include "tests/plain/vector_levels.h"
#include "tests/support.h"

namespace {

TEST(Scramble, EveryPathTakesTheStepsAndTheWayBack) {
    std::mt19937 random(1);
    for (std::size_t size = 0; size <= 1200; ++size) {  // beyond the change to the wide path
        std::string plain(size + 20, '\0');             // the last 20 bytes have to stay
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
    for (const std::int32_t size : {15, 0, -1, INT32_MIN}) {
        scramble(text.data(), size);
        unscramble(text.data(), size);
    }
    scramble(nullptr, 32);
    unscramble(nullptr, 32);
    EXPECT_EQ(text, std::string(40, 'x'));
}

}  // namespace
