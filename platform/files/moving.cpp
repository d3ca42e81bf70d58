// Files that get another name or go away.  A move is one rename; between two file systems it is a replacement
// that is written piece by piece.  Tests: tests/platform/moving_test.cpp.

#define _FILE_OFFSET_BITS 64  // files beyond 2 GiB also in 32-bit code

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/error_codes.h"
#include "platform/files/descriptor.h"
#include "platform/files/path.h"
#include "platform/files/replacement.h"
#include "platform/files/sharing.h"
#include "platform/win32.h"

namespace {

using tarn::fromErrno;

// Opens a file to be looked at; a link under the name itself isn't followed.
tarn::Descriptor openToLook(const std::string& path) {
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
    return tarn::Descriptor(tarn::retried([&] { return ::openat(AT_FDCWD, path.c_str(), flags); }));
}

// A file that may not be read can't have been marked either.
bool isInUse(const std::string& path) {
    const tarn::Descriptor file = openToLook(path);
    return file && tarn::isInUse(file.number());
}

bool lookAt(const std::string& path, struct stat& status) {
    return ::fstatat(AT_FDCWD, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

struct Move {
    std::string from, to;
    DWORD flags;
    struct stat moved {};
    struct stat former {};  // what has the new name, if `replaces`
    bool replaces = false;

    [[nodiscard]] bool may(DWORD flag) const { return (flags & flag) != 0; }
};

// Looks at both names.  Answers why the move isn't allowed.
DWORD examine(Move& move) {
    if (tarn::isReservedName(move.from) || tarn::isReservedName(move.to)) return ERROR_INVALID_NAME;
    if (!lookAt(move.from, move.moved)) return fromErrno(errno, move.from);
    if (isInUse(move.from)) return ERROR_SHARING_VIOLATION;
    if (move.may(MOVEFILE_REPLACE_EXISTING)) move.to = tarn::linkedFile(move.to);
    if (!lookAt(move.to, move.former)) return errno == ENOENT ? ERROR_SUCCESS : fromErrno(errno, move.to);
    if (move.moved.st_dev == move.former.st_dev && move.moved.st_ino == move.former.st_ino)
        return ERROR_SUCCESS;
    if (!move.may(MOVEFILE_REPLACE_EXISTING)) return ERROR_ALREADY_EXISTS;
    move.replaces = true;
    const bool isFolder = S_ISDIR(move.former.st_mode) || S_ISDIR(move.moved.st_mode);
    return isFolder || isInUse(move.to) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

DWORD copyPieces(int descriptor, tarn::Replacement& replacement) {
    char piece[65536];
    for (;;) {
        const auto count = tarn::retried([&] { return ::read(descriptor, piece, sizeof piece); });
        if (count <= 0) return count == 0 ? ERROR_SUCCESS : fromErrno(errno);
        const DWORD code = replacement.write({piece, static_cast<std::size_t>(count)});
        if (code != ERROR_SUCCESS) return code;
    }
}

// Moves a file's content to another file system.
DWORD copy(const Move& move) {
    if (!S_ISREG(move.moved.st_mode)) return ERROR_NOT_SAME_DEVICE;
    const tarn::Descriptor file = openToLook(move.from);
    if (!file) return fromErrno(errno);
    tarn::Replacement replacement;
    DWORD code = replacement.begin(AT_FDCWD, tarn::temporaryName(move.to), move.moved.st_mode & 0666);
    if (code == ERROR_SUCCESS) code = copyPieces(file.number(), replacement);
    if (code == ERROR_SUCCESS) code = replacement.commit(move.to, move.replaces ? &move.former : &move.moved);
    if (code != ERROR_SUCCESS) return code;
    return ::unlinkat(AT_FDCWD, move.from.c_str(), 0) == 0 ? ERROR_SUCCESS : fromErrno(errno);
}

DWORD rename(const Move& move) {
    if (move.replaces && S_ISREG(move.moved.st_mode)) {
        const tarn::Descriptor file = openToLook(move.from);
        const DWORD code = file ? tarn::takeOver(file.number(), move.former) : fromErrno(errno);
        if (code != ERROR_SUCCESS) return code;
    }
    if (::renameat(AT_FDCWD, move.from.c_str(), AT_FDCWD, move.to.c_str()) == 0) return ERROR_SUCCESS;
    if (errno == EXDEV && move.may(MOVEFILE_COPY_ALLOWED)) return copy(move);
    return fromErrno(errno, move.to);
}

DWORD perform(Move move) {
    DWORD code = examine(move);
    if (code == ERROR_SUCCESS) code = rename(move);
    if (code != ERROR_SUCCESS || !move.may(MOVEFILE_WRITE_THROUGH)) return code;
    const std::string former = tarn::folderOf(move.from);
    const std::string present = tarn::folderOf(move.to);
    code = tarn::syncFolder(AT_FDCWD, present);
    return code != ERROR_SUCCESS || former == present ? code : tarn::syncFolder(AT_FDCWD, former);
}

DWORD remove(const std::string& path) {
    if (tarn::isReservedName(path)) return ERROR_INVALID_NAME;
    if (isInUse(path)) return ERROR_SHARING_VIOLATION;
    return ::unlinkat(AT_FDCWD, path.c_str(), 0) == 0 ? ERROR_SUCCESS : fromErrno(errno, path);
}

BOOL answer(DWORD code) {
    if (code != ERROR_SUCCESS) SetLastError(code);
    return code == ERROR_SUCCESS ? TRUE : FALSE;
}

}  // namespace

BOOL MoveFileExA(const char* from, const char* to, DWORD flags) {
    return answer(perform({tarn::systemPath(from), tarn::systemPath(to), flags}));
}

BOOL DeleteFileA(const char* name) {
    return answer(remove(tarn::systemPath(name)));
}
