// Messages and modules: platform/messages.cpp, platform/modules.cpp, and the system's own on Windows.

#include "tests/support.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

namespace {

constexpr DWORD allocated = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;

TEST(Messages, AllocatedTextsEndTheirLineAndUnknownCodesHaveNone) {
    const struct { DWORD code, error; } rows[] = {{2, 0}, {126, 0}, {~0U, 317}, {193, 87}};  // 193 holds %1
    for (const auto& each : rows) {
        char rubbish = 'x';
        char* text = &rubbish;
        SetLastError(0);
        const DWORD length =
            FormatMessageA(allocated, nullptr, each.code, 1024, reinterpret_cast<char*>(&text), 0, nullptr);
        EXPECT_EQ(GetLastError(), each.error) << each.code;
        EXPECT_EQ(length, static_cast<DWORD>(lstrlenA(text)));
        EXPECT_EQ(text == nullptr, each.error != 0) << each.code;
        EXPECT_TRUE(std::string(length == 0 ? "\r\n" : text).ends_with("\r\n")) << each.code;
        EXPECT_EQ(LocalFree(text), nullptr);
    }
}

TEST(Messages, TheCallersBufferHoldsTheWholeTextOrNothing) {
    const auto format = [](char* buffer, DWORD size) {
        return FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 126, 1024, buffer, size, nullptr);
    };
    char whole[200], exact[200];
    const DWORD length = format(whole, sizeof whole);
    EXPECT_EQ(length, std::strlen(whole));
    EXPECT_EQ(format(exact, length), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(format(exact, length + 1), length);
    EXPECT_STREQ(exact, whole);
}

void expectNoModule(const std::string& file, DWORD error) {
    EXPECT_EQ(LoadLibraryA(file.c_str()), nullptr) << file;
    EXPECT_EQ(GetLastError(), error) << file;
}

TEST(Modules, WhatCanNotBeLoadedSaysWhy) {
    const tarntest::TemporaryFolder folder;
    for (const char* name : {"text.dll", "text.so"}) tarntest::fill(folder.file(name), "text");
    for (const char* name : {"text", "text.dll"}) expectNoModule(folder.file(name), ERROR_BAD_EXE_FORMAT);
    for (const char* name : {"tarn-none", ""}) expectNoModule(name, ERROR_MOD_NOT_FOUND);
    expectNoModule(folder.file("missing.dll"), ERROR_MOD_NOT_FOUND);
}

TEST(Modules, TheErrorModeIsKept) {
    SetErrorMode(SEM_NOOPENFILEERRORBOX);
    EXPECT_EQ(GetErrorMode(), SEM_NOOPENFILEERRORBOX);
    EXPECT_EQ(SetErrorMode(0), SEM_NOOPENFILEERRORBOX);
}

TEST(Modules, AModuleIsUnloadedByItsLastRelease) {
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
    EXPECT_EQ(GetProcAddress(module, "tarnNoSuchFunction"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    EXPECT_TRUE(DisableThreadLibraryCalls(module));
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_NE(GetProcAddress(module, function.c_str()), nullptr);
    EXPECT_TRUE(FreeLibrary(module));
#if !defined(_WIN32)
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_FALSE(DisableThreadLibraryCalls(module));
    EXPECT_EQ(GetProcAddress(module, function.c_str()), nullptr);
#endif
}

#if !defined(_WIN32)

TEST(Modules, AModuleThatLacksAnotherIsNotOneOfAnotherSystem) {
    const tarntest::TemporaryFolder folder;
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = descriptors();
    // The beginning of a module, which the loader refuses for what follows; its fifth byte is 2 for 64 bits.
    const char thisClass = sizeof(void*) == 8 ? 2 : 1, otherClass = sizeof(void*) == 8 ? 1 : 2;
    for (const char elfClass : {thisClass, otherClass}) {
        tarntest::fill(folder.file("a.so"), std::string("\x7F"
                                                        "ELF") +
                                                elfClass + std::string(100, '\0'));
        expectNoModule(folder.file("a"), elfClass == thisClass ? ERROR_MOD_NOT_FOUND : ERROR_BAD_EXE_FORMAT);
    }
    expectNoModule(folder.path().string(), ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(descriptors(), before);
}

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
