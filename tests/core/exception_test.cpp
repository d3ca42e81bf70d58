// core/exception.cpp.  tests/shared loads modules of its own, tests/consumer asks its own dialog.

#include "core/exception.h"

#include "tests/support.h"

namespace {

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
