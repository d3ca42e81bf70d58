// Whole files through the Win32 file operations; the file is closed before an answer is given.
// Tests: tests/store/file_tools_test.cpp.

#include "store/whole_file.h"

#include <algorithm>
#include <cstdint>

#include "store/file_handle.h"

namespace tarn {
namespace {

// Asks the file's length.  A failure is above every limit as well.
bool measure(HANDLE file, std::size_t longest, std::size_t& length) {
    DWORD high = 0;
    const DWORD low = GetFileSize(file, &high);
    length = low;
    return high == 0 && low <= longest;
}

}  // namespace

WholeFile readWholeFile(const char* name, DWORD share, DWORD flags, std::size_t room, DWORD longest) {
    WholeFile whole;
    const FileHandle file(name, GENERIC_READ, share, OPEN_EXISTING, flags);
    if (!file.isOpen()) return whole;
    whole.result = FileResult::cantMeasure;
    std::size_t length = 0;
    if (!measure(file.get(), std::min<std::size_t>(longest, longestReadable), length)) return whole;

    whole.length = length;
    whole.data = std::make_unique_for_overwrite<char[]>(length + room);
    DWORD moved = 0;
    const bool isMoved =
        ReadFile(file.get(), whole.data.get(), static_cast<DWORD>(length), &moved, nullptr) != 0;
    whole.result = isMoved ? FileResult::done : FileResult::cantMove;
    whole.size = isMoved ? moved : 0;
    std::fill(whole.data.get() + whole.size, whole.data.get() + length + room, '\0');
    return whole;
}

FileResult writeWholeFile(const char* name, const char* data, std::size_t size, DWORD flags) {
    const FileHandle file(name, GENERIC_WRITE, 0, CREATE_ALWAYS, flags);
    if (!file.isOpen()) return FileResult::cantOpen;
    DWORD moved = 0;
    const bool isMoved = WriteFile(file.get(), data, static_cast<DWORD>(size), &moved, nullptr) != 0;
    return isMoved && moved == size ? FileResult::done : FileResult::cantMove;
}

}  // namespace tarn
