// Whole-file replacement.  The temporary name is the same for every writer of a file: a writer that has
// opened it, has locked it and then still finds it under its name is alone with the file.  A rename or an
// unlink takes the name away from the locked file, so that everyone who waited for that lock starts again
// with a new one.  Tests: tests/platform/profile_files_test.cpp and tests/faults/system_calls_test.cpp.

#define _FILE_OFFSET_BITS 64  // files beyond 2 GiB also in 32-bit code

#include "platform/files/replacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <span>
#include <utility>

#include "platform/error_codes.h"
#include "platform/files/path.h"
#include "platform/files/sharing.h"

namespace tarn {

namespace {

constexpr mode_t permissionBits = 0777;

constexpr std::int64_t longestWait = 5'000'000'000;  // for another writer, in nanoseconds
constexpr std::timespec pauseBetweenTries{0, 250'000};
constexpr DWORD tryAgain = ERROR_SHARING_VIOLATION;

std::int64_t nanosecondsNow() {
    std::timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// Locks the first byte, if it is free.  The lock belongs to this open file and ends with it.
DWORD lockFirstByte(int descriptor) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_len = 1;
    if (retried([&] { return ::fcntl(descriptor, F_OFD_SETLK, &lock); }) == 0) return ERROR_SUCCESS;
    return errno == EAGAIN ? tryAgain : fromErrno(errno);
}

// Removes a link, a pipe or an empty folder under a temporary name, which can't be locked themselves.  The
// folder around them is: without that, another writer's file could take the name between the look and the
// removal.
DWORD removeForeign(int folder, const std::string& name) {
    const Descriptor around(retried(
        [&] { return ::openat(folder, folderOf(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!around) return fromErrno(errno);
    if (::flock(around.number(), LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? tryAgain : fromErrno(errno);
    }
    struct stat found {};
    if (::fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT ? tryAgain : fromErrno(errno);
    }
    if (S_ISREG(found.st_mode)) return tryAgain;
    const int flags = S_ISDIR(found.st_mode) ? AT_REMOVEDIR : 0;
    if (::unlinkat(folder, name.c_str(), flags) == 0) return tryAgain;
    return errno == ENOTEMPTY ? ERROR_ACCESS_DENIED : fromErrno(errno);
}

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const auto count = retried([&] { return ::write(descriptor, content.data(), content.size()); });
        if (count == -1) return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// Fills a buffer from its byte `done` on, as far as the file reaches.  One system call may give less than
// there is.
bool readInto(int descriptor, std::span<char> buffer, std::size_t& done) {
    while (done < buffer.size()) {
        const auto rest = buffer.subspan(done);
        const auto count = retried([&] { return ::read(descriptor, rest.data(), rest.size()); });
        if (count == -1) return false;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

Replacement::~Replacement() {
    if (file_) ::unlinkat(folder_, temporary_.c_str(), 0);
}

DWORD Replacement::begin(int folder, const std::string& temporary, unsigned permissions) {
    folder_ = folder;
    temporary_ = temporary;
    const std::int64_t end = nanosecondsNow() + longestWait;
    for (;;) {
        const DWORD code = tryToBegin(permissions);
        if (code != tryAgain || nanosecondsNow() >= end) return code;
        ::nanosleep(&pauseBetweenTries, nullptr);
    }
}

DWORD Replacement::tryToBegin(unsigned permissions) {
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    Descriptor file(retried([&] { return ::openat(folder_, temporary_.c_str(), flags, permissions); }));
    if (!file) {
        const bool isForeign = errno == ELOOP || errno == EISDIR || errno == ENXIO;  // link, folder, socket
        return isForeign ? removeForeign(folder_, temporary_) : fromErrno(errno);
    }
    struct stat opened {};
    struct stat named {};
    if (::fstat(file.number(), &opened) != 0) return fromErrno(errno);
    if (!S_ISREG(opened.st_mode)) return removeForeign(folder_, temporary_);
    const DWORD code = lockFirstByte(file.number());
    if (code != ERROR_SUCCESS) return code;
    if (::fstatat(folder_, temporary_.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT ? tryAgain : fromErrno(errno);
    }
    if (!isSameFile(opened, named)) return tryAgain;
    if (named.st_nlink != 1 || named.st_uid != ::geteuid()) {  // another's, under our name
        return ::unlinkat(folder_, temporary_.c_str(), 0) == 0 ? tryAgain : fromErrno(errno);
    }
    if (named.st_size != 0 && retried([&] { return ::ftruncate(file.number(), 0); }) != 0) {
        return fromErrno(errno);
    }
    file_ = std::move(file);
    return ERROR_SUCCESS;
}

DWORD Replacement::write(std::string_view piece) {
    return writeAll(file_.number(), piece) ? ERROR_SUCCESS : fromErrno(errno);
}

DWORD Replacement::commit(const std::string& target, const struct stat* former) {
    const DWORD code = former == nullptr ? ERROR_SUCCESS : takeOver(file_.number(), *former);
    if (code != ERROR_SUCCESS) return code;
    if (retried([&] { return ::fsync(file_.number()); }) != 0 ||
        ::renameat(folder_, temporary_.c_str(), folder_, target.c_str()) != 0) {
        return fromErrno(errno);
    }
    const Descriptor closed = std::move(file_);
    return ERROR_SUCCESS;
}

DWORD Replacement::commit(const std::string& target, std::string_view content, const struct stat* former) {
    const DWORD code = write(content);
    return code != ERROR_SUCCESS ? code : commit(target, former);
}

// Only the permissions have to succeed: a file of another's stays writable to who could write it, but can't be
// given away.
DWORD takeOver(int descriptor, const struct stat& former) {
    struct stat made {};
    if (::fstat(descriptor, &made) != 0) return fromErrno(errno);
    if (made.st_uid != former.st_uid || made.st_gid != former.st_gid) {
        if (::fchown(descriptor, former.st_uid, former.st_gid) != 0 && errno != EPERM)
            return fromErrno(errno);
    } else if (((made.st_mode ^ former.st_mode) & permissionBits) == 0) {
        return ERROR_SUCCESS;
    }
    return ::fchmod(descriptor, former.st_mode & permissionBits) == 0 ? ERROR_SUCCESS : fromErrno(errno);
}

DWORD readWhole(int folder, const std::string& name, int flags, std::size_t limit, std::string& content) {
    const Descriptor file(retried([&] {
        return ::openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags);
    }));
    if (!file) return fromErrno(errno);
    if (isReadingDenied(file.number())) return ERROR_SHARING_VIOLATION;
    char first[16384];
    std::size_t done = 0;
    if (!readInto(file.number(), {first, sizeof first}, done)) return fromErrno(errno);
    std::string bytes(first, done);
    if (done == sizeof first) {
        struct stat status {};
        if (::fstat(file.number(), &status) != 0) return fromErrno(errno);
        if (!S_ISREG(status.st_mode)) return ERROR_ACCESS_DENIED;
        if (std::cmp_greater(status.st_size, limit)) return ERROR_FILE_CORRUPT;
        bytes.resize(std::max(done, static_cast<std::size_t>(status.st_size)));
        if (!readInto(file.number(), bytes, done)) return fromErrno(errno);
        bytes.resize(done);
    }
    if (done > limit) return ERROR_FILE_CORRUPT;
    content = std::move(bytes);
    return ERROR_SUCCESS;
}

DWORD syncFolder(int folder, const std::string& name) {
    const Descriptor opened(
        retried([&] { return ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened) return errno == EACCES ? ERROR_SUCCESS : fromErrno(errno);
    if (retried([&] { return ::fsync(opened.number()); }) == 0) return ERROR_SUCCESS;
    const bool cantSync = errno == EINVAL || errno == ENOTSUP;
    return cantSync ? ERROR_SUCCESS : fromErrno(errno);
}

}  // namespace tarn
