// The scrambled form and the paths to it: store/scramble.cpp, store/scramble_forms.h.

#include "store/scramble.h"

#include "store/file_tools.h"
#include "tests/support.h"

namespace {

// The steps of scrambling, one by one.
void takeSteps(std::string& data, std::size_t size) {
    for (std::size_t block = 0; block < size / 16; ++block) {
        const std::size_t span = block * 16 - (block == 0 ? 0 : 1);
        for (std::size_t k = 0; k < 16; ++k) {
            const std::uint8_t entry = tarn::scrambleTable[k];
            std::swap(data[span + k], data[span + entry]);
            for (const std::size_t place : {k, std::size_t{entry}})
                data[span + place] = static_cast<char>(data[span + place] + entry);
        }
    }
}

TEST(Scramble, EveryPathTakesTheStepsAndTheWayBack) {
    std::mt19937 random(1);
    for (std::size_t size = 0; size <= 1200; ++size) {  // beyond the change to the wide path
        std::string plain(size + 20, '\0');             // the last 20 bytes have to stay
        for (char& character : plain) character = static_cast<char>(random());
        std::string expected = plain;
        takeSteps(expected, size);
        for (const auto wanted :
             {tarn::VectorLevel::none, tarn::VectorLevel::ssse3, tarn::VectorLevel::avx2}) {
            const auto level = std::min(wanted, tarn::vectorLevel());
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
