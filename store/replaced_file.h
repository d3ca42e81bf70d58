#pragma once

// Internal: the temporary file that a safe save writes and moves over the old one; users want the savers.

#include <string>

#include "platform/win32.h"
#include "store/load_report.h"

namespace tarn {

// A name in the folder of a file, of no other file, for what is to replace it.
class ReplacedFile {
  public:
    explicit ReplacedFile(std::string target);
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    // Deletes a temporary file that wasn't moved.
    ~ReplacedFile();

    // The caller creates, writes and closes the file of this name.
    [[nodiscard]] const std::string& temporary() const { return temporary_; }

    // Moves the temporary file over the old one.  Answers a Win32 code; after a failure the old file is there, or
    // the new one if it couldn't be written through to the disk.
    DWORD replace(Durability durability);

  private:
    std::string target_;
    std::string temporary_;
    bool isMoved_ = false;
};

}  // namespace tarn
