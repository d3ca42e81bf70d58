// The exception object, the box that shows the last error, and the loading of modules.
// Tests: tests/core/exception_test.cpp.

#include "core/exception.h"

#include <memory>
#include <string>

#include "core/number_text.h"

namespace {

constexpr std::int32_t kindPutToUser = 1;
constexpr std::int32_t questionStyle = 0x100001;
constexpr std::int32_t answerYes = 6;
constexpr DWORD userDefaultLanguage = 1024;

// Keeps the system from showing boxes of its own, as long as it lives.
class QuietSystem {
  public:
    explicit QuietSystem(bool quiet) : quiet_(quiet) {
        if (quiet_) SetErrorMode(SEM_NOOPENFILEERRORBOX);
    }
    QuietSystem(const QuietSystem&) = delete;
    QuietSystem& operator=(const QuietSystem&) = delete;
    ~QuietSystem() {
        if (quiet_) SetErrorMode(0);
    }

  private:
    bool quiet_;
};

}  // namespace

tarnException::tarnException(TARN_EXCEPTION_TYPE kind, const tarnString& text)
    : message(text), type(kind), code(0) {}

tarnException::tarnException(std::int32_t number, const tarnString& text)
    : message(text), type{}, code(number) {}

tarnException::~tarnException() = default;

int tarnException::displayMessage(tarnGlobalInterfaces* host) {
    if (type != kindPutToUser || host == nullptr) return 0;
    tarnUserDialog* const dialog = host->userDialog();
    if (dialog == nullptr) return 0;
    const std::int32_t answer =
        dialog->askUser(message.text, "Do you want to try to restore the old flow? ", questionStyle);
    return answer == answerYes ? 1 : 0;
}

void showGetLastError(const char* title) {
    const DWORD code = GetLastError();
    char* text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code,
                   userDefaultLanguage, reinterpret_cast<char*>(&text), 0, nullptr);
    const std::unique_ptr<char, decltype([](char* block) { LocalFree(block); })> owner(text);
    char number[12];
    tarn::writeLong(number, static_cast<std::int32_t>(code));
    const std::string caption =
        "GetLastError( " + std::string(number) + " ) : " + (title == nullptr ? "" : title);
    MessageBoxA(nullptr, text, caption.c_str(), MB_SETFOREGROUND);
}

int loadDllFunc(HINSTANCE& module, int(__stdcall** function)(), const char* file, const char* name,
                int quiet) {
    if (function != nullptr) *function = nullptr;
    const QuietSystem system(quiet != 0);
    module = LoadLibraryA(file);
    int found = 0;
    if (module != nullptr) {
        // Every function pointer fits into any other; the caller knows the true type.
        const auto plain = reinterpret_cast<void (*)()>(GetProcAddress(module, name));
        const auto address = reinterpret_cast<int(__stdcall*)()>(plain);
        if (function != nullptr) *function = address;
        found = address != nullptr ? 1 : 0;
    } else if (quiet == 0) {
        showGetLastError(file);
    }
    return found;
}
