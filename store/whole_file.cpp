// Whole files through the Win32 file operations; the file is closed before an answer is given.

#include "store/whole_file.h"

#include <algorithm>
#include <cstdint>

namespace tarn {
namespace {

class File {
  public:
    File(const char* name, DWORD access, DWORD share, DWORD creation, DWORD flags)
        : handle_(name == nullptr ? INVALID_HANDLE_VALUE
                                  : CreateFileA(name, access, share, nullptr, creation, flags, nullptr)) {}
    ~File() {
        if (isOpen()) CloseHandle(handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    [[nodiscard]] bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE handle() const { return handle_; }

  private:
    HANDLE handle_;
};

// Asks the file's length.  A failure is above every limit as well.
bool measure(HANDLE file, DWORD longest, std::size_t& length) {
    DWORD high = 0;
    const DWORD low = GetFileSize(file, &high);
    length = low;
    return high == 0 && low <= longest;
}

}  // namespace

WholeFile readWholeFile(const char* name, DWORD share, DWORD flags, std::size_t room, DWORD longest) {
    WholeFile whole;
    const File file(name, GENERIC_READ, share, OPEN_EXISTING, flags);
    if (!file.isOpen()) return whole;
    whole.result = FileResult::cantMeasure;
    std::size_t length = 0;
    if (!measure(file.handle(), static_cast<DWORD>(std::min<std::size_t>(longest, SIZE_MAX / 2)), length))
        return whole;

    whole.length = length;
    whole.data = std::make_unique_for_overwrite<char[]>(length + room);
    DWORD moved = 0;
    const bool isMoved =
        ReadFile(file.handle(), whole.data.get(), static_cast<DWORD>(length), &moved, nullptr) != 0;
    whole.result = isMoved ? FileResult::done : FileResult::cantMove;
    whole.size = isMoved ? moved : 0;
    std::fill(whole.data.get() + whole.size, whole.data.get() + length + room, '\0');
    return whole;
}

FileResult writeWholeFile(const char* name, const char* data, std::size_t size, DWORD flags) {
    const File file(name, GENERIC_WRITE, 0, CREATE_ALWAYS, flags);
    if (!file.isOpen()) return FileResult::cantOpen;
    DWORD moved = 0;
    const bool isMoved = WriteFile(file.handle(), data, static_cast<DWORD>(size), &moved, nullptr) != 0;
    return isMoved && moved == size ? FileResult::done : FileResult::cantMove;
}

}  // namespace tarn
