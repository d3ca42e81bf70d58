// Whole files and their translation: store/file_tools.cpp and store/whole_file.cpp.

#include "store/file_tools.h"

#include <filesystem>
#include <memory>
#include <optional>

#include "platform/win32.h"
#include "tests/support.h"

namespace {

using tarntest::contentOf;
using tarntest::fill;

class FileTools : public testing::Test {
  protected:
    tarntest::TemporaryFolder folder;

    // What readFile answers, nothing for NULL; the terminator is part of the contract.
    static std::optional<std::string> read(const char* name) {
        std::int32_t size = 77;
        const std::unique_ptr<char[]> data(readFile(name, size));
        if (data == nullptr) {
            EXPECT_EQ(size, 0);
            return std::nullopt;
        }
        EXPECT_EQ(data[static_cast<std::size_t>(size)], '\0');
        return std::string(data.get(), static_cast<std::size_t>(size));
    }
    static int write(const std::string& name, const std::string& data) {
        return writeFile(name.c_str(), data.data(), static_cast<std::int32_t>(data.size()));
    }
};

TEST_F(FileTools, EveryByteGoesToDiskAndBack) {
    std::string all(70'000, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    const std::string name = folder.file("file");
    for (const std::string& text :
         {all, std::string("\0\r\n\x1A", 4), std::string()}) {  // each shorter than before
        EXPECT_NE(write(name, text), 0);
        EXPECT_EQ(contentOf(name), text);
        EXPECT_EQ(read(name.c_str()), text);
    }
}

TEST_F(FileTools, WhatCantBeReadIsNull) {
    EXPECT_EQ(read(folder.file("missing").c_str()), std::nullopt);
    EXPECT_EQ(read(folder.path().string().c_str()), std::nullopt);
    EXPECT_EQ(read(""), std::nullopt);
    EXPECT_EQ(read(nullptr), std::nullopt);
    // Lengths that 32 bits would take for -2147483648, and for 5.
    const std::string name = folder.file("long");
    for (const std::uintmax_t size : {std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 5}) {
        fill(name, "");
        std::filesystem::resize_file(name, size);
        EXPECT_EQ(read(name.c_str()), std::nullopt);
    }
}

TEST_F(FileTools, ARefusedWriteLeavesTheFileAlone) {
    const std::string name = folder.file("file");
    fill(name, "content");
    EXPECT_EQ(writeFile(name.c_str(), "text", -1), 0);
    EXPECT_EQ(writeFile(name.c_str(), nullptr, 4), 0);
    EXPECT_EQ(writeFile(nullptr, "text", 4), 0);
    EXPECT_EQ(write(folder.path().string(), "text"), 0);
    {
        const HANDLE reader = CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(write(name, "text"), 0);
        EXPECT_EQ(read(name.c_str()), std::nullopt);
        CloseHandle(reader);
    }
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
    const std::string plain = folder.file("plain"), form = folder.file("form");
    for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 100U, 112U}) {
        const std::string text(size, 'x');
        const std::string filled = text + std::string((16 - size % 16) % 16, ' ');
        std::string scrambled = filled;
        scramble(scrambled.data(), static_cast<std::int32_t>(scrambled.size()));
        fill(plain, text);
        translateFile(0, plain.c_str(), form.c_str());
        EXPECT_EQ(contentOf(form), scrambled) << size;
        translateFile(1, form.c_str(), form.c_str());  // onto itself
        EXPECT_EQ(contentOf(form), filled) << size;
    }
    // A scrambled file of another length is not filled up: the rest behind its whole blocks stays.
    std::string odd = "0123456789ABCDEF0123";
    fill(plain, odd);
    unscramble(odd.data(), 20);
    translateFile(1, plain.c_str(), form.c_str());
    EXPECT_EQ(contentOf(form), odd);
}

TEST_F(FileTools, AnUnreadableSourceLeavesTheTargetUntouched) {
    const std::string target = folder.file("target");
    fill(target, "content");
    translateFile(2, folder.file("missing").c_str(), target.c_str());
    translateFile(1, folder.path().string().c_str(), target.c_str());
    translateFile(1, nullptr, target.c_str());
    translateFile(1, target.c_str(), nullptr);
    EXPECT_EQ(contentOf(target), "content");
}

}  // namespace
