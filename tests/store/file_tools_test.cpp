// Whole files and their translation: store/file_tools.cpp, store/whole_file.cpp, store/file_handle.h.

#include "store/file_tools.h"

#include "tests/support.h"

namespace {

using namespace tarntest;
using namespace std::string_literals;

struct FileTools : testing::Test {
    TemporaryFolder folder;
    std::string here = folder.path().string(), name = folder.file("file"), form = folder.file("form");

    // What a file holds, with the NUL behind it.
    static std::string readBack(const std::string& file) {
        std::int32_t size = 77;
        const std::unique_ptr<char[]> data(readFile(file.c_str(), size));
        if (data == nullptr) return size == 0 ? "NULL" : "NULL and a size";
        return {data.get(), static_cast<std::size_t>(size) + 1};
    }
};

TEST_F(FileTools, EveryByteIsWrittenAndReadBack) {
    std::string all(70'000, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    for (const std::string& text : {all, ""s}) {
        EXPECT_NE(writeFile(name.c_str(), text.data(), static_cast<std::int32_t>(text.size())), 0);
        EXPECT_EQ(contentOf(name), text);
        EXPECT_EQ(readBack(name), text + "\0"s);
    }
}

// So does an unreadable source of a translation.
TEST_F(FileTools, WhatCantBeReadIsNullAndARefusedWriteLeavesTheFileAlone) {
    for (const std::string& file : {form, here}) EXPECT_EQ(readBack(file), "NULL") << file;
    // Lengths that 32 bits would take for -2147483648, and for 5.
    for (const std::uintmax_t size : {std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 5}) {
        fill(name, "");
        std::filesystem::resize_file(name, size);
        EXPECT_EQ(readBack(name), "NULL") << size;
    }
    fill(name, "content");
    EXPECT_EQ(writeFile(name.c_str(), "text", -1), 0);
    EXPECT_EQ(writeFile(name.c_str(), nullptr, 1), 0);
    EXPECT_EQ(writeFile(here.c_str(), "text", 4), 0);
    translateFile(2, form.c_str(), name.c_str());
    const HANDLE held = CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(writeFile(name.c_str(), "text", 4), 0);
    EXPECT_EQ(readBack(name), "NULL");
    CloseHandle(held);
    EXPECT_EQ(contentOf(name), "content");
}

// A scrambled file isn't filled up: the rest behind its whole blocks stays.
TEST_F(FileTools, TranslationFillsUpWithBlanksAndKeepsThem) {
    for (const std::size_t size : {0U, 15U, 16U, 17U}) {
        const std::string text(size, 'x'), blanks((16 - size % 16) % 16, ' ');
        fill(name, text);
        translateFile(0, name.c_str(), form.c_str());
        fill(form, contentOf(form) + "odd");
        translateFile(1, form.c_str(), form.c_str());  // onto itself
        EXPECT_EQ(contentOf(form), text + blanks + "odd");
    }
}

}  // namespace
