// Messages and modules: platform/messages.cpp, platform/modules.cpp, and the system's own on Windows.

#include "tests/support.h"

namespace {

using namespace std::string_literals;

constexpr DWORD fromSystem = FORMAT_MESSAGE_FROM_SYSTEM;
constexpr DWORD allocated = FORMAT_MESSAGE_ALLOCATE_BUFFER | fromSystem;

TEST(Messages, TextsEndTheirLineAndUnknownCodesHaveNone) {
    const struct { DWORD code, error; } rows[] = {{2, 0}, {126, 0}, {~0U, 317}, {193, 87}};  // 193 holds %1
    for (const auto& each : rows) {
        char rubbish = 'x', buffer[200];
        char* text = &rubbish;
        SetLastError(0);
        const DWORD length =
            FormatMessageA(allocated, nullptr, each.code, 1024, reinterpret_cast<char*>(&text), 0, nullptr);
        EXPECT_EQ(GetLastError(), each.error) << each.code;
        EXPECT_EQ(length, static_cast<DWORD>(lstrlenA(text)));
        EXPECT_EQ(text == nullptr, each.error != 0) << each.code;
        if (text == nullptr) continue;
        EXPECT_TRUE(std::string(text).ends_with("\r\n")) << each.code;
        const DWORD enough =
            FormatMessageA(fromSystem, nullptr, each.code, 1024, buffer, length + 1, nullptr);
        EXPECT_EQ(enough, length);
        EXPECT_STREQ(buffer, text);
        EXPECT_EQ(FormatMessageA(fromSystem, nullptr, each.code, 1024, buffer, length, nullptr), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(LocalFree(text), nullptr);
    }
}

void expectNoModule(const std::string& file, DWORD error) {
    EXPECT_EQ(LoadLibraryA(file.c_str()), nullptr) << file;
    EXPECT_EQ(GetLastError(), error) << file;
}

TEST(Modules, WhatCanNotBeLoadedSaysWhy) {
    SetErrorMode(SEM_NOOPENFILEERRORBOX);
    const tarntest::TemporaryFolder folder;
    for (const char* name : {"text.dll", "text.so"}) tarntest::fill(folder.file(name), "text");
    for (const char* name : {"text", "text.dll"})
        expectNoModule(folder.path().string() + '\\' + name, ERROR_BAD_EXE_FORMAT);
    for (const std::string& name : {"tarn-none"s, ""s, folder.file("missing.dll")})
        expectNoModule(name, ERROR_MOD_NOT_FOUND);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(DisableThreadLibraryCalls(nullptr));
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(SetErrorMode(0), SEM_NOOPENFILEERRORBOX);
}

#if !defined(_WIN32)

TEST(Messages, AProgramsOwnBoxGetsWhatTheCallerGave) {
    tarn::setMessageBox([](const char* text, const char* caption, std::uint32_t style) {
        EXPECT_EQ(text, nullptr);
        EXPECT_STREQ(caption, "caption");
        return static_cast<int>(style);
    });
    EXPECT_EQ(MessageBoxA(nullptr, nullptr, "caption", 6), 6);
    tarn::setMessageBox(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption\ntext\n");
}

#endif

}  // namespace
