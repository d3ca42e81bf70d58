#pragma once

// Internal: the owner of an open file.  Users want store/file_tools.h.

#include "platform/win32.h"

namespace tarn {

class FileHandle {
  public:
    // Opens or creates the file, as CreateFileA does; NULL is the name of no file.
    FileHandle(const char* name, DWORD access, DWORD share, DWORD creation, DWORD flags)
        : handle_(name == nullptr ? INVALID_HANDLE_VALUE
                                  : CreateFileA(name, access, share, nullptr, creation, flags, nullptr)) {}
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (isOpen()) CloseHandle(handle_);
    }

    [[nodiscard]] bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

}  // namespace tarn
