// Messages and modules: platform/messages.cpp, platform/modules.cpp, and the system's own on Windows.

#include "tests/support.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

namespace {

TEST(Messages, AllocatedTextsEndTheirLine) {
    // 193 holds %1.
    for (const auto& [code, error] : {std::pair{2U, 0U}, {126U, 0U}, {~0U, 317U}, {193U, 87U}}) {
        char rubbish = 'x';
        char* text = &rubbish;
        SetLastError(0);
        const DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM,
                                            nullptr, code, 1024, reinterpret_cast<char*>(&text), 0, nullptr);
        EXPECT_EQ(GetLastError(), error) << code;
        EXPECT_EQ(length, static_cast<DWORD>(lstrlenA(text)));
        EXPECT_TRUE(error != 0 || std::strcmp(text + length - 2, "\r\n") == 0);
        EXPECT_EQ(LocalFree(text), nullptr);
    }
}

TEST(Modules, WhatCanNotBeLoadedSaysWhy) {
    const tarntest::TemporaryFolder folder;
    tarntest::fill(folder.file("text.dll"), "text");
    tarntest::fill(folder.file("text.so"), "text");
    for (const std::string name : {"missing.dll", "text", "text.dll"}) {
        const DWORD error = name[0] == 't' ? 193 : 126;
        EXPECT_TRUE(!LoadLibraryA(folder.file(name).c_str()) && GetLastError() == error) << name;
    }
    for (const char* name : {"tarn-none", ""})
        EXPECT_TRUE(!LoadLibraryA(name) && GetLastError() == 126) << name;
    SetErrorMode(0);
    EXPECT_TRUE(SetErrorMode(SEM_NOOPENFILEERRORBOX) == 0 && SetErrorMode(0) == SEM_NOOPENFILEERRORBOX);
}

TEST(Modules, AModuleGoesWithItsLastRelease) {
#if defined(_WIN32)
    const std::string name = "kernel32", function = "GetTickCount";
#else
    const tarntest::TemporaryFolder folder;
    const std::string name = folder.file("maths"), function = "cos";
    Dl_info info{};
    ASSERT_NE(::dladdr(::dlsym(RTLD_DEFAULT, function.c_str()), &info), 0);
    std::filesystem::copy_file(info.dli_fname, name + ".so");
#endif
    const HMODULE module = LoadLibraryA(name.c_str());
    EXPECT_EQ(LoadLibraryA(name.c_str()), module);
    EXPECT_TRUE(!GetProcAddress(module, "tarnNoSuchFunction") && GetLastError() == ERROR_PROC_NOT_FOUND);
    EXPECT_TRUE(DisableThreadLibraryCalls(module) && FreeLibrary(module));
    EXPECT_NE(GetProcAddress(module, function.c_str()), nullptr);
    EXPECT_TRUE(FreeLibrary(module));
#if !defined(_WIN32)
    EXPECT_FALSE(FreeLibrary(module) || DisableThreadLibraryCalls(module));
    EXPECT_EQ(GetProcAddress(module, function.c_str()), nullptr);
#endif
}

#if !defined(_WIN32)

TEST(Messages, AProgramsOwnBoxGetsWhatTheCallerGave) {
    tarn::setMessageBox([](const char* text, const char* caption, std::uint32_t style) {
        return text == nullptr && std::string(caption) == "caption" && style == MB_SETFOREGROUND ? 6 : 0;
    });
    EXPECT_EQ(MessageBoxA(nullptr, nullptr, "caption", MB_SETFOREGROUND), 6);
    tarn::setMessageBox(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption\ntext\n");
}

#endif

}  // namespace
