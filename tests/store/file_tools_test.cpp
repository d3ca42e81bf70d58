// Whole files and their translation: store/file_tools.cpp and store/whole_file.cpp.

#include "store/file_tools.h"

#include <optional>

#include "tests/support.h"

namespace {

using namespace tarntest;

struct FileTools : testing::Test {
    TemporaryFolder folder;
    std::string name = folder.file("file"), form = folder.file("form");

    // What readFile answers, nothing for NULL; the terminator is part of the contract.
    static std::optional<std::string> read(const char* file) {
        std::int32_t size = 77;
        const std::unique_ptr<char[]> data(readFile(file, size));
        EXPECT_TRUE(data == nullptr ? size == 0 : data[static_cast<std::size_t>(size)] == '\0');
        if (data == nullptr) return std::nullopt;
        return std::string(data.get(), static_cast<std::size_t>(size));
    }
    static int write(const std::string& file, const std::string& data) {
        return writeFile(file.c_str(), data.data(), static_cast<std::int32_t>(data.size()));
    }
};

TEST_F(FileTools, EveryByteGoesToDiskAndBack) {
    std::string all(70'000, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    for (const std::string& text : {all, std::string("\0\r\n\x1A", 4), std::string()}) {  // each shorter
        EXPECT_NE(write(name, text), 0);
        EXPECT_EQ(contentOf(name), text);
        EXPECT_EQ(read(name.c_str()), text);
    }
}

TEST_F(FileTools, WhatCantBeReadIsNull) {
    const std::string here = folder.path().string();
    for (const char* file : {form.c_str(), here.c_str(), "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(read(file), std::nullopt);
    // Lengths that 32 bits would take for -2147483648, and for 5.
    for (const std::uintmax_t size : {std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 5}) {
        fill(name, "");
        std::filesystem::resize_file(name, size);
        EXPECT_EQ(read(name.c_str()), std::nullopt);
    }
}

TEST_F(FileTools, ARefusedWriteOrAnUnreadableSourceLeavesTheTargetAlone) {
    fill(name, "content");
    const std::string here = folder.path().string();
    EXPECT_EQ(writeFile(name.c_str(), "text", -1) + writeFile(name.c_str(), nullptr, 4), 0);
    EXPECT_EQ(writeFile(nullptr, "text", 4) + write(here, "text"), 0);
    for (const char* source : {form.c_str(), here.c_str(), static_cast<const char*>(nullptr)})
        translateFile(source == nullptr ? 1 : 2, source, name.c_str());
    translateFile(1, name.c_str(), nullptr);
    const HANDLE reader = CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(write(name, "text") == 0 && !read(name.c_str()));
    CloseHandle(reader);
    EXPECT_EQ(contentOf(name), "content");
    EXPECT_NE(writeFile(name.c_str(), nullptr, 0), 0);
    EXPECT_EQ(contentOf(name), "");
}

TEST_F(FileTools, AFullDiskFailsTheWrite) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "/dev/full";
    EXPECT_EQ(write("/dev/full", "text"), 0);
    EXPECT_EQ(read("/dev/full"), "");  // a device has no length
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

}  // namespace
