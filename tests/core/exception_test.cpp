// core/exception.cpp.  tests/shared loads modules of its own.

#include "core/exception.h"

#include <utility>

#include "tests/support.h"

namespace {

struct Host : tarnGlobalInterfaces, tarnUserDialog {
    std::int32_t answer = 6;
    std::string asked;
    bool hasDialog = true;

    tarnUserDialog* userDialog() override { return hasDialog ? this : nullptr; }
    tarnFieldDictionary* fieldDictionary() override { return nullptr; }
    std::int32_t askUser(const char* text, const char* question, std::int32_t style) override {
        asked = std::string(text) + '|' + question + '|' + std::to_string(style);
        return answer;
    }
};

TEST(Exception, OnlyTheFirstKindAsksAndOnlySixIsYes) {
    const std::string question = "Lost|Do you want to try to restore the old flow? |1048577";
    const struct {
        std::int32_t kind, answer;
        int result;
    } rows[] = {{1, 6, 1}, {1, 7, 0}, {1, 1, 0}, {0, 6, 0}, {2, 6, 0}, {-1, 6, 0}};
    for (const auto& [kind, answer, result] : rows) {
        Host host;
        host.answer = answer;
        tarnString text("Lost");
        tarnException failure(static_cast<TARN_EXCEPTION_TYPE>(kind), text);
        text.assign("changed later");
        EXPECT_EQ(failure.displayMessage(&host), result) << kind << ' ' << answer;
        EXPECT_EQ(host.asked, kind == 1 ? question : "") << kind;
        EXPECT_EQ(failure.code, 0);
    }
    Host host;
    tarnException numbered(std::int32_t{1}, tarnString("Lost"));
    EXPECT_EQ(std::pair(numbered.type + 0, numbered.code), std::pair(0, 1));
    EXPECT_EQ(numbered.displayMessage(&host), 0);

    tarnException failure(TARN_EXCEPTION_TYPE{1}, tarnString("Lost"));
    EXPECT_EQ(failure.displayMessage(nullptr), 0);
    host.hasDialog = false;
    EXPECT_EQ(failure.displayMessage(&host), 0);
    EXPECT_EQ(host.asked, "");
}

#if defined(_WIN32)
constexpr const char* systemModule = "kernel32";
constexpr const char* systemFunction = "GetTickCount";
#else
constexpr const char* systemModule = "libc.so.6";
constexpr const char* systemFunction = "getpid";

std::string shownBox;

int recordBox(const char* text, const char* caption, std::uint32_t style) {
    shownBox = std::string(caption) + '|' + (text == nullptr ? "-" : "text") + '|' + std::to_string(style);
    return IDOK;
}

TEST(Exception, TheBoxNamesTheCodeAndItsTitle) {
    const std::pair<DWORD, std::string> rows[] = {
        {2, "GetLastError( 2 ) : x.dll|text|65536"},
        {0xFFFFFFFF, "GetLastError( -1 ) : x.dll|-|65536"},  // a code without a text
    };
    tarn::setMessageBox(recordBox);
    for (const auto& [code, box] : rows) {
        SetLastError(code);
        showGetLastError("x.dll");
        EXPECT_EQ(shownBox, box);
    }
    SetLastError(5);
    showGetLastError(nullptr);
    EXPECT_EQ(shownBox, "GetLastError( 5 ) : |text|65536");
    tarn::setMessageBox(nullptr);
    EXPECT_EQ(tarn::openHandles(), 0);
}
#endif

TEST(Exception, AModuleThatFailsShowsABoxUnlessQuiet) {
    const struct {
        const char *file, *name;
        int quiet, result;
        const char* box;
    } rows[] = {{systemModule, systemFunction, 0, 1, ""},
                {systemModule, systemFunction, 1, 1, ""},
                {systemModule, "tarnNoSuchFunction", 0, 0, ""},
                {systemModule, "tarnNoSuchFunction", 1, 0, ""},
                {"tarn-no-such", "any", 1, 0, ""},
                {"tarn-no-such", "any", 0, 0, "GetLastError( 126 ) : tarn-no-such|text|65536"},
                {nullptr, "any", 0, 0, "GetLastError( 126 ) : |text|65536"}};
    int rubbish = 0;
    for (const auto& [file, name, quiet, result, box] : rows) {
        if (tarntest::onWindows && *box != '\0') continue;  // it would wait for a user
        auto* module = reinterpret_cast<HINSTANCE>(&rubbish);
        auto* function = reinterpret_cast<int(__stdcall*)()>(&rubbish);
        const UINT earlier = SetErrorMode(SEM_FAILCRITICALERRORS);
#if !defined(_WIN32)
        shownBox.clear();
        tarn::setMessageBox(recordBox);
#endif
        EXPECT_EQ(loadDllFunc(module, &function, file, name, quiet), result)
            << (file == nullptr ? "NULL" : file) << ' ' << name;
        EXPECT_EQ(function != nullptr, result == 1) << name;
        EXPECT_EQ(module != nullptr, file == systemModule) << name;
        EXPECT_EQ(SetErrorMode(earlier), quiet != 0 ? 0U : SEM_FAILCRITICALERRORS);
        if (module != nullptr) FreeLibrary(module);
#if !defined(_WIN32)
        EXPECT_EQ(shownBox, box);
        tarn::setMessageBox(nullptr);
        EXPECT_EQ(tarn::openHandles(), 0);
#endif
    }
}

}  // namespace
