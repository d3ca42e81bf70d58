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
    const std::int32_t rows[][3] = {{1, 6, 1}, {1, 7, 0}, {0, 6, 0}, {2, 6, 0}, {-1, 6, 0}, {1, 0, 0}};
    for (const auto& [kind, answer, result] : rows) {  // the answer 0: there is no dialog
        Host host;
        host.answer = answer;
        tarnException failure(static_cast<TARN_EXCEPTION_TYPE>(kind), tarnString("Lost"));
        EXPECT_EQ(failure.displayMessage(&host) + failure.displayMessage(nullptr), result) << kind;
        EXPECT_EQ(host.asked, kind == 1 && answer != 0
                                  ? "Lost|Do you want to try to restore the old flow? |1048577"
                                  : "");
    }
}

#if !defined(_WIN32)

TEST(Exception, AModuleThatFailsShowsABoxUnlessQuiet) {
    static std::string shownBox;
    tarn::setMessageBox([](const char* text, const char* caption, std::uint32_t style) -> int {
        shownBox =
            std::string(" ") + caption + (text == nullptr ? ", -, " : ", text, ") + std::to_string(style);
        return IDOK;
    });
    SetLastError(0xFFFFFFFF), showGetLastError("x.dll");  // a code without a text
    EXPECT_EQ(std::exchange(shownBox, ""), " GetLastError( -1 ) : x.dll, -, 65536");
    tarntest::expectAnswers(
        "load:libc.so.6|getpid||1;libc.so.6|tarnNoSuchFunction||0;tarn-no-such|any|quiet|0;"
        "tarn-no-such|any||0 GetLastError( 126 ) : tarn-no-such, text, 65536;NULL|any||0 GetLastError( 126 ) "
        ": , text, 65536",
        [](auto&, auto& cells) {
            auto* module = reinterpret_cast<HINSTANCE>(&shownBox);
            auto* function = reinterpret_cast<int (*)()>(&shownBox);
            const char* const file = cells[0] == "NULL" ? nullptr : cells[0].c_str();
            const int result =
                loadDllFunc(module, &function, file, cells[1].c_str(), cells[2].empty() ? 0 : 1);
            EXPECT_EQ(function != nullptr, result == 1);
            if (module != nullptr) FreeLibrary(module);
            return std::to_string(result) + std::exchange(shownBox, "");
        });
}

#endif

}  // namespace
