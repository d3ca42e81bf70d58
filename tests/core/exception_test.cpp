// core/exception.cpp.  tests/shared loads modules of its own.

#include "core/exception.h"

#include "tests/support.h"

namespace {

struct Host : tarnGlobalInterfaces, tarnUserDialog {
    std::int32_t answer = 0;
    std::string asked;

    tarnUserDialog* userDialog() override { return answer == 0 ? nullptr : this; }
    tarnFieldDictionary* fieldDictionary() override { return nullptr; }
    std::int32_t askUser(const char* text, const char* question, std::int32_t style) override {
        asked = std::string(text) + '|' + question + '|' + std::to_string(style);
        return answer;
    }
};

TEST(Exception, OnlyTheFirstKindAsksAndOnlySixIsYes) {
    const struct {
        std::int32_t kind, answer;  // answer 0: there is no dialog
        int result;
    } rows[] = {{1, 6, 1}, {1, 7, 0}, {1, 0, 0}, {0, 6, 0}, {2, 6, 0}};
    for (const auto& [kind, answer, result] : rows) {
        Host host;
        host.answer = answer;
        tarnException failure(static_cast<TARN_EXCEPTION_TYPE>(kind), tarnString("Lost"));
        EXPECT_EQ(failure.displayMessage(&host), result) << kind;
        EXPECT_EQ(failure.displayMessage(nullptr), 0);
        const bool asked = kind == 1 && answer != 0;
        EXPECT_EQ(host.asked, asked ? "Lost|Do you want to try to restore the old flow? |1048577" : "");
    }
    EXPECT_EQ(tarnException(std::int32_t{5}, tarnString("Lost")).code, 5);
}

#if !defined(_WIN32)

std::string shownBox;

int rememberBox(const char* text, const char* caption, std::uint32_t style) {
    EXPECT_EQ(style, 65536u);
    shownBox = std::string(caption) + (text == nullptr ? ", no text" : ", text");
    return IDOK;
}

TEST(Exception, AModuleThatFailsShowsABoxUnlessQuiet) {
    const struct {
        const char *file, *name;
        int quiet, result;
        const char* box;
    } rows[] = {
        {"libc.so.6", "getpid", 0, 1, ""},
        {"libc.so.6", "tarnNoSuchFunction", 0, 0, ""},
        {"tarn-no-such", "any", 1, 0, ""},
        {"tarn-no-such", "any", 0, 0, "GetLastError( 126 ) : tarn-no-such, text"},
        {nullptr, "any", 0, 0, "GetLastError( 126 ) : , text"},
    };
    tarn::setMessageBox(rememberBox);
    for (const auto& each : rows) {
        auto* module = reinterpret_cast<HINSTANCE>(&shownBox);
        auto* function = reinterpret_cast<int (*)()>(&shownBox);
        shownBox.clear();
        EXPECT_EQ(loadDllFunc(module, &function, each.file, each.name, each.quiet), each.result);
        EXPECT_EQ(shownBox, each.box);
        EXPECT_EQ(function != nullptr, each.result == 1) << each.name;
        EXPECT_EQ(GetErrorMode(), 0u);
        if (module != nullptr) FreeLibrary(module);
    }
    SetLastError(0xFFFFFFFF);
    showGetLastError("x.dll");
    EXPECT_EQ(shownBox, "GetLastError( -1 ) : x.dll, no text");
    tarn::setMessageBox(nullptr);
}

#endif

}  // namespace
