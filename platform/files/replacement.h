#pragma once

// Replacement of whole files, for the layer itself; programs write settings by platform/win32.h.
//
// The new content is written under a temporary name in the same folder, which is then renamed.  So a crash at
// any moment leaves the old file or the new one, and a reader sees one of the two.  The temporary file is
// also the lock under which a writer reads, changes and renames.  The lock ends with the process that holds
// it, and a file that a dead process left is used by the next.
//
//   Replacement replacement;
//   replacement.begin(AT_FDCWD, "data/.x.new", 0666);   // waits for other writers, five seconds at most
//   replacement.commit("data/x", content, nullptr);     // without it the temporary file is removed
//
// Threads: one object belongs to one thread; two objects exclude each other in one process too.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/files/descriptor.h"
#include "platform/win32.h"

struct stat;

namespace tarn {

// All names may be relative to an open folder, or to AT_FDCWD.  Each function answers a Win32 code.

class Replacement {
  public:
    Replacement() = default;
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    // Gives up what wasn't committed.
    ~Replacement();

    // Takes the lock by making the temporary file, with these permissions less the process's mask.  A link, a
    // pipe, another user's file or an empty folder under its name is removed.  Answers
    // ERROR_SHARING_VIOLATION if another holds the lock for longer than five seconds.
    DWORD begin(int folder, const std::string& temporary, unsigned permissions);

    // Puts a piece of the content at the end.
    DWORD write(std::string_view piece);

    // Writes the content through to the disk and renames the file; the folder is left to the system, see
    // syncFolder.  With `former`, the file gets the permissions and, where the system allows it, the owner of
    // the file that it replaces.  The lock ends here.
    DWORD commit(const std::string& target, const struct stat* former);
    // The same with a content of one piece.
    DWORD commit(const std::string& target, std::string_view content, const struct stat* former);

  private:
    DWORD tryToBegin(unsigned permissions);

    int folder_ = -1;
    std::string temporary_;
    Descriptor file_;
};

// Gives an open file the permissions and, where the system allows it, the owner of the file that it replaces.
DWORD takeOver(int descriptor, const struct stat& former);

// Reads a file whole, a small one without asking for its size first.
//   flags    of open, beside reading: O_NOFOLLOW refuses a symbolic link
//   content  out: at most `limit` bytes; untouched on failure
// Bad input: never waits for a pipe and never reads an endless device.  A file longer than `limit` answers
// ERROR_FILE_CORRUPT, one that another open file denies reading of ERROR_SHARING_VIOLATION.
DWORD readWhole(int folder, const std::string& name, int flags, std::size_t limit, std::string& content);

// Writes through to the disk what was renamed in a folder.  Without it a crash may bring the former file
// back, whole.  A folder that the system can't sync, or that may be written but not read, is left to the
// system.
DWORD syncFolder(int folder, const std::string& name);

}  // namespace tarn
