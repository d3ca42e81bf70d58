// Whole files and their translation: store/file_tools.cpp, store/whole_file.cpp, store/file_handle.h.

#include "store/file_tools.h"

#include "tests/support.h"

namespace {

using namespace tarntest;

struct FileTools : testing::Test {
    TemporaryFolder folder;
    std::string here = folder.path().string(), name = folder.file("file"), form = folder.file("form");

    static void expectRead(const std::string& file, const std::string& content) {
        std::int32_t size = 77;
        const std::unique_ptr<char[]> data(readFile(file.c_str(), size));
        ASSERT_NE(data, nullptr) << file;
        EXPECT_EQ(std::string(data.get(), static_cast<std::size_t>(size)), content) << file;
        EXPECT_EQ(data[static_cast<std::size_t>(size)], '\0');
    }
    static void expectUnreadable(const char* file) {
        std::int32_t size = 77;
        const std::unique_ptr<char[]> data(readFile(file, size));
        EXPECT_EQ(data, nullptr) << file;
        EXPECT_EQ(size, 0);
    }
};

TEST_F(FileTools, EveryByteIsWrittenAndReadBack) {
    std::string all(70'000, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    for (const std::string& text : {all, std::string("\0\r\n\x1A", 4), std::string()}) {  // each shorter
        EXPECT_NE(writeFile(name.c_str(), text.data(), static_cast<std::int32_t>(text.size())), 0);
        EXPECT_EQ(contentOf(name), text);
        expectRead(name, text);
    }
}

TEST_F(FileTools, WhatCantBeReadIsNull) {
    for (const char* file : {form.c_str(), here.c_str(), "", static_cast<const char*>(nullptr)})
        expectUnreadable(file);
    // Lengths that 32 bits would take for -2147483648, and for 5.
    for (const std::uintmax_t size : {std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 5}) {
        fill(name, "");
        std::filesystem::resize_file(name, size);
        expectUnreadable(name.c_str());
    }
}

TEST_F(FileTools, ARefusedWriteLeavesTheFileAlone) {
    fill(name, "content");
    EXPECT_EQ(writeFile(name.c_str(), "text", -1), 0);
    EXPECT_EQ(writeFile(name.c_str(), nullptr, 4), 0);
    EXPECT_EQ(writeFile(nullptr, "text", 4), 0);
    EXPECT_EQ(writeFile(here.c_str(), "text", 4), 0);
    const HANDLE held = CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(writeFile(name.c_str(), "text", 4), 0);
    expectUnreadable(name.c_str());
    CloseHandle(held);
    EXPECT_EQ(contentOf(name), "content");
    EXPECT_NE(writeFile(name.c_str(), nullptr, 0), 0);
    EXPECT_EQ(contentOf(name), "");
}

TEST_F(FileTools, AFullDiskFailsTheWrite) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "/dev/full";
    EXPECT_EQ(writeFile("/dev/full", "text", 4), 0);
    expectRead("/dev/full", "");  // a device has no length
}

TEST_F(FileTools, TranslationFillsUpWithBlanksAndKeepsThem) {
    for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 100U, 112U}) {
        const std::string text(size, 'x'), filled = text + std::string((16 - size % 16) % 16, ' ');
        std::string scrambled = filled;
        scramble(scrambled.data(), static_cast<std::int32_t>(scrambled.size()));
        fill(name, text);
        translateFile(0, name.c_str(), form.c_str());
        EXPECT_EQ(contentOf(form), scrambled) << size;
        translateFile(1, form.c_str(), form.c_str());  // onto itself
        EXPECT_EQ(contentOf(form), filled) << size;
    }
    // A scrambled file of another length is not filled up: the rest behind its whole blocks stays.
    std::string odd = "0123456789ABCDEF0123";
    fill(name, odd);
    unscramble(odd.data(), 20);
    translateFile(1, name.c_str(), form.c_str());
    EXPECT_EQ(contentOf(form), odd);
}

TEST_F(FileTools, AnUnreadableSourceLeavesTheTargetAlone) {
    fill(name, "content");
    translateFile(2, form.c_str(), name.c_str());
    translateFile(2, here.c_str(), name.c_str());
    translateFile(1, nullptr, name.c_str());
    translateFile(1, name.c_str(), nullptr);
    EXPECT_EQ(contentOf(name), "content");
}

}  // namespace
