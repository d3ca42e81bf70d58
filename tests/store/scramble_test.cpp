// The scrambled form and the paths to it: store/scramble.cpp, store/scramble_forms.h.

#include "store/scramble.h"

#include "store/file_tools.h"
#include "tests/support.h"

namespace {

using tarn::VectorLevel;

// Stored files hold the bytes that the plain path has to give (tests/data/stored_files_test.cpp).
TEST(Scramble, EveryPathScramblesAlikeAndTakesTheWayBack) {
    std::mt19937 random(1);
    for (std::size_t size = 0; size <= 1200; ++size) {  // beyond the change to the wide path
        std::string plain(size + 20, '\0');             // the last 20 bytes have to stay
        for (char& character : plain) character = static_cast<char>(random());
        std::string expected = plain;
        tarn::scrambleBytes(expected.data(), size, VectorLevel::none);
        for (const auto level : {VectorLevel::none, VectorLevel::ssse3, VectorLevel::avx2}) {
            if (level > tarn::vectorLevel()) continue;
            std::string data = plain;
            tarn::scrambleBytes(data.data(), size, level);
            ASSERT_EQ(data, expected) << size << " by level " << static_cast<int>(level);
            tarn::unscrambleBytes(data.data(), size, level);
            ASSERT_EQ(data, plain) << size << " by level " << static_cast<int>(level);
        }
    }
}

TEST(Scramble, ATextComesBackFromItsOwnBuffer) {
    char text[17] = "sixteen letters!";
    scramble(text, 16);
    unscramble(text, 16);
    EXPECT_STREQ(text, "sixteen letters!");
}

}  // namespace
