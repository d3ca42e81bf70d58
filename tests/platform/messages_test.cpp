// Messages and modules: platform/messages.cpp, platform/modules.cpp, and the system's own on Windows.

#include <cstring>
#include <string>

#include "platform/win32.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include <dlfcn.h>

#include "platform/host.h"
#endif

namespace {

constexpr DWORD allocated = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;

TEST(Messages, EveryKnownCodeHasATextThatEndsItsLine) {
    for (const DWORD code :
         {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_MOD_NOT_FOUND, ERROR_INVALID_HANDLE}) {
        char* text = nullptr;
        const DWORD length =
            FormatMessageA(allocated, nullptr, code, 1024, reinterpret_cast<char*>(&text), 0, nullptr);
        ASSERT_NE(text, nullptr) << code;
        EXPECT_EQ(length, std::strlen(text));
        EXPECT_GT(length, 4U);
        EXPECT_STREQ(text + length - 2, "\r\n");
        EXPECT_EQ(LocalFree(text), nullptr);
    }
    const struct {
        DWORD code, error;
    } rows[] = {{0xDEAD, ERROR_MR_MID_NOT_FOUND},
                {0xFFFFFFFF, ERROR_MR_MID_NOT_FOUND},
                {ERROR_BAD_EXE_FORMAT, ERROR_INVALID_PARAMETER}};  // its text holds %1
    for (const auto& row : rows) {
        char rubbish = 'x';
        char* text = &rubbish;
        EXPECT_EQ(
            FormatMessageA(allocated, nullptr, row.code, 1024, reinterpret_cast<char*>(&text), 0, nullptr),
            0U);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(text, nullptr);
    }
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}

TEST(Messages, AMessageNeedsRoomForItsTerminator) {
    char text[200];
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD length =
        FormatMessageA(flags, nullptr, ERROR_BAD_EXE_FORMAT, 1024, text, sizeof text, nullptr);
    ASSERT_GT(length, 0U);
    EXPECT_NE(std::strstr(text, "%1"), nullptr);
    EXPECT_EQ(FormatMessageA(flags, nullptr, ERROR_BAD_EXE_FORMAT, 1024, text, length + 1, nullptr), length);
    EXPECT_EQ(FormatMessageA(flags, nullptr, ERROR_BAD_EXE_FORMAT, 1024, text, length, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST(Modules, WhatCanNotBeLoadedSaysWhy) {
    const tarntest::TemporaryFolder folder;
    tarntest::fill(folder.file("text.dll"), std::string(5000, 'x'));
    tarntest::fill(folder.file("text.so"), std::string(5000, 'x'));
    tarntest::fill(folder.file("empty.dll"), "");
    const struct {
        std::string name;
        DWORD error;
    } rows[] = {{folder.file("missing.dll"), ERROR_MOD_NOT_FOUND},
                {folder.file("no/folder.dll"), ERROR_MOD_NOT_FOUND},
                {"tarn-no-such-module", ERROR_MOD_NOT_FOUND},
                {"", ERROR_MOD_NOT_FOUND},
                {folder.file("text"), ERROR_BAD_EXE_FORMAT},
                {folder.file("text.dll"), ERROR_BAD_EXE_FORMAT},
                {folder.file("empty.dll"), ERROR_BAD_EXE_FORMAT}};
    for (const auto& row : rows) {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryA(row.name.c_str()), nullptr) << row.name;
        EXPECT_EQ(GetLastError(), row.error) << row.name;
    }
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
}

TEST(Modules, TheErrorModeAnswersTheEarlierOne) {
    SetErrorMode(0);
    EXPECT_EQ(SetErrorMode(SEM_NOOPENFILEERRORBOX), 0U);
    EXPECT_EQ(GetErrorMode(), SEM_NOOPENFILEERRORBOX);
    EXPECT_EQ(SetErrorMode(0), SEM_NOOPENFILEERRORBOX);
}

#if defined(_WIN32)
constexpr const char* systemModule = "kernel32";
constexpr const char* systemFunction = "GetTickCount";
#else
constexpr const char* systemModule = "libm.so.6";
constexpr const char* systemFunction = "cos";
#endif

TEST(Modules, AFunctionIsFoundByItsExactName) {
    const HMODULE module = LoadLibraryA(systemModule);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(LoadLibraryA(systemModule), module);
    EXPECT_NE(GetProcAddress(module, systemFunction), nullptr);
    EXPECT_EQ(GetProcAddress(module, "tarnNoSuchFunction"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    EXPECT_TRUE(DisableThreadLibraryCalls(module));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_NE(GetProcAddress(module, systemFunction), nullptr) << "loaded twice, freed once";
    EXPECT_TRUE(FreeLibrary(module));
}

#if !defined(_WIN32)

TEST(Modules, AFreedModuleIsRefused) {
    const HMODULE module = LoadLibraryA(systemModule);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(GetProcAddress(module, systemFunction), nullptr);
    EXPECT_FALSE(DisableThreadLibraryCalls(module));
    EXPECT_EQ(GetProcAddress(nullptr, reinterpret_cast<const char*>(ULONG_PTR{7})), nullptr) << "an ordinal";
}

TEST(Modules, TheSuffixMayBeLeftOut) {
    Dl_info info{};
    ASSERT_NE(::dladdr(::dlsym(RTLD_DEFAULT, systemFunction), &info), 0);
    const tarntest::TemporaryFolder folder;
    std::filesystem::copy_file(info.dli_fname, folder.file("maths.so"));
    std::string name = folder.file("maths");
    name.replace(name.rfind('/'), 1, "\\");
    const HMODULE module = LoadLibraryA(name.c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_TRUE(FreeLibrary(module));
}

std::string shownBox;

TEST(Messages, AProgramsOwnBoxGetsWhatTheCallerGave) {
    tarn::setMessageBox([](const char* text, const char* caption, std::uint32_t style) {
        shownBox =
            std::string(caption) + '|' + (text == nullptr ? "none" : text) + '|' + std::to_string(style);
        return 6;
    });
    EXPECT_EQ(MessageBoxA(nullptr, nullptr, "caption", MB_SETFOREGROUND), 6);
    EXPECT_EQ(shownBox, "caption|none|65536");
    tarn::setMessageBox(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption\ntext\n");
}

#endif

}  // namespace
