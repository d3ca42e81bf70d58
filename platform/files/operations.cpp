// Files on the system's descriptors.  A handle is no pointer but a number: the descriptor, the access that
// was asked for and a tag in one word.  So there is no table and nothing to lock, and the system itself
// refuses a closed handle (EBADF, which is ERROR_INVALID_HANDLE).  Sharing modes are in
// platform/files/sharing.cpp. Tests: tests/platform/files_test.cpp.

#define _FILE_OFFSET_BITS 64  // files beyond 2 GiB also in 32-bit code

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "platform/error_codes.h"
#include "platform/files/descriptor.h"
#include "platform/files/opening.h"
#include "platform/files/path.h"
#include "platform/files/sharing.h"
#include "platform/handle_count.h"
#include "platform/win32.h"

namespace {

// ------------------------------------------------------------------------------------------------- handles

using tarn::readAccess;
using tarn::retried;
using tarn::writeAccess;

constexpr ULONG_PTR fileTag = 5;  // no aligned pointer ends in it, neither do NULL and INVALID_HANDLE_VALUE
constexpr int tagBits = 3;
constexpr int accessBits = 2;
constexpr int highestDescriptor = (1 << 26) - 1;  // what a word of 32 bits has room for

struct OpenFile {
    int descriptor;  // -1 for what is no file handle
    DWORD access;
};

HANDLE toHandle(const OpenFile& file) {
    const auto number = static_cast<ULONG_PTR>(file.descriptor) << accessBits | file.access;
    return reinterpret_cast<HANDLE>(number << tagBits | fileTag);
}

OpenFile toFile(HANDLE handle) {
    const auto word = reinterpret_cast<ULONG_PTR>(handle);
    const ULONG_PTR descriptor = word >> (tagBits + accessBits);
    if ((word & ((1U << tagBits) - 1)) != fileTag || descriptor > highestDescriptor) return {-1, 0};
    return {static_cast<int>(descriptor), static_cast<DWORD>(word >> tagBits) & (readAccess | writeAccess)};
}

// -------------------------------------------------------------------------------------------------- errors

template <typename Result>
Result fail(DWORD code, Result result) {
    SetLastError(code);
    return result;
}

// ------------------------------------------------------------------------------------------------- opening

bool mayCreate(DWORD creation) {
    return creation == CREATE_NEW || creation == CREATE_ALWAYS || creation == OPEN_ALWAYS;
}
bool truncates(DWORD creation) {
    return creation == CREATE_ALWAYS || creation == TRUNCATE_EXISTING;
}

// A lock can only be set through a descriptor that reads, so a file that is to be written is opened for both
// where the system permits it.  No open waits (a fifo's would), and no child process inherits one.
int openDescriptor(const std::string& path, DWORD access, int flags) {
    const auto open = [&](int mode) {
        return retried(
            [&] { return ::open(path.c_str(), mode | flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666); });
    };
    if ((access & writeAccess) == 0) return open(O_RDONLY);
    const int descriptor = open(O_RDWR);
    if (descriptor != -1 || errno != EACCES || (access & readAccess) != 0) return descriptor;
    return open(O_WRONLY);
}

// Opens or creates by the Win32 rule.  Another process may make or remove the file between two steps, hence
// the second round; the last step also makes the target of a link that leads nowhere.
//   existed  out: whether the file was there before
int openOrCreate(const std::string& path, DWORD access, DWORD creation, bool& existed) {
    existed = creation != CREATE_NEW;
    if (!existed) return openDescriptor(path, access, O_CREAT | O_EXCL);
    for (int exclusive : {O_EXCL, 0}) {
        existed = true;
        const int present = openDescriptor(path, access, 0);
        if (present != -1 || errno != ENOENT || !mayCreate(creation)) return present;
        existed = false;
        const int made = openDescriptor(path, access, O_CREAT | exclusive);
        if (made != -1 || errno != EEXIST) return made;
    }
    return -1;
}

// Refuses a folder, keeps the sharing modes of a file, and only then cuts it to nothing.  An open that uses
// nothing takes no part in sharing.  Answers the Win32 code.
DWORD shareAndTruncate(int descriptor, const tarn::SharingTerms& terms, bool truncated) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return tarn::fromErrno(errno);
    if (S_ISDIR(status.st_mode)) return ERROR_ACCESS_DENIED;
    if (descriptor > highestDescriptor) return ERROR_TOO_MANY_OPEN_FILES;
    if (!S_ISREG(status.st_mode)) return ERROR_SUCCESS;
    if (terms.used != 0 && !tarn::share(descriptor, terms)) return ERROR_SHARING_VIOLATION;
    if (truncated && retried([&] { return ::ftruncate(descriptor, 0); }) != 0) return tarn::fromErrno(errno);
    return ERROR_SUCCESS;
}

// ------------------------------------------------------------------------------------------ moving of bytes

constexpr DWORD largestStep = 1U << 30;  // below every system's limit for one call

// Moves `bytes` bytes by single system calls until all are moved or no more come.  At least one call is made,
// so that a closed handle is found out also where there is nothing to move.  A pipe that gave something and
// has no more at the moment is no failure.
template <typename Step>
BOOL moveBytes(DWORD bytes, DWORD* moved, Step step) {
    DWORD done = 0;
    BOOL result = TRUE;
    do {
        const auto count = retried([&] { return step(done, std::min(bytes - done, largestStep)); });
        if (count == -1 && (done == 0 || errno != EAGAIN)) {
            SetLastError(tarn::fromErrno(errno));
            result = FALSE;
        }
        if (count <= 0) break;
        done += static_cast<DWORD>(count);
    } while (done < bytes);
    if (moved != nullptr) *moved = done;
    return result;
}

// The code for a handle that wasn't opened for what is asked of it, or is closed.
DWORD wrongAccess(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) == -1 ? ERROR_INVALID_HANDLE : ERROR_ACCESS_DENIED;
}

}  // namespace

DWORD tarn::openFile(const char* name, DWORD access, DWORD share, DWORD creation, HANDLE& file) {
    file = INVALID_HANDLE_VALUE;
    const DWORD asked =
        ((access & GENERIC_READ) != 0 ? readAccess : 0) | ((access & GENERIC_WRITE) != 0 ? writeAccess : 0);
    if (creation < CREATE_NEW || creation > TRUNCATE_EXISTING ||
        (creation == TRUNCATE_EXISTING && (asked & writeAccess) == 0)) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::string path = tarn::systemPath(name);
    if (tarn::isReservedName(path)) return ERROR_INVALID_NAME;

    bool existed = false;
    const DWORD used = truncates(creation) ? asked | writeAccess : asked;
    const int descriptor = openOrCreate(path, used, creation, existed);
    if (descriptor == -1) return tarn::fromErrno(errno, path);
    const DWORD code = shareAndTruncate(descriptor, {used, asked, share}, existed && truncates(creation));
    if (code != ERROR_SUCCESS) {
        ::close(descriptor);
        return code;
    }
    tarn::handleOpened();
    file = toHandle({descriptor, asked});
    const bool reportsExisted = existed && (creation == CREATE_ALWAYS || creation == OPEN_ALWAYS);
    return reportsExisted ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS;
}

HANDLE CreateFileA(const char* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES*, DWORD creation,
                   DWORD flags, HANDLE) {
    HANDLE file = nullptr;
    const DWORD code = tarn::openFile(name, access, share, creation, file);
    if (file != INVALID_HANDLE_VALUE && (flags & FILE_FLAG_SEQUENTIAL_SCAN) != 0) {
        ::posix_fadvise(toFile(file).descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    SetLastError(code);
    return file;
}

DWORD GetFileSize(HANDLE file, DWORD* high) {
    struct stat status {};
    if (::fstat(toFile(file).descriptor, &status) != 0) {
        return fail(tarn::fromErrno(errno), INVALID_FILE_SIZE);
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (high != nullptr) *high = static_cast<DWORD>(size >> 32);
    const auto low = static_cast<DWORD>(size);
    if (low == INVALID_FILE_SIZE) SetLastError(ERROR_SUCCESS);  // the length of a file, no failure
    return low;
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method) {
    if (method > FILE_END) return fail(ERROR_INVALID_PARAMETER, INVALID_SET_FILE_POINTER);
    static_assert(FILE_BEGIN == SEEK_SET && FILE_CURRENT == SEEK_CUR && FILE_END == SEEK_END);
    std::int64_t offset = distance;
    if (distanceHigh != nullptr) {
        offset = static_cast<std::int64_t>(static_cast<std::uint64_t>(*distanceHigh) << 32 |
                                           static_cast<DWORD>(distance));
    }
    const int descriptor = toFile(file).descriptor;
    const off_t before = ::lseek(descriptor, 0, SEEK_CUR);
    const off_t position = ::lseek(descriptor, offset, static_cast<int>(method));
    if (position == -1) {
        const DWORD code = errno == EINVAL && offset < 0 ? ERROR_NEGATIVE_SEEK : tarn::fromErrno(errno);
        return fail(code, INVALID_SET_FILE_POINTER);
    }
    if (distanceHigh == nullptr && position > off_t{0xFFFFFFFF}) {  // the answer has no room for it
        ::lseek(descriptor, before, SEEK_SET);
        return fail(ERROR_INVALID_PARAMETER, INVALID_SET_FILE_POINTER);
    }
    if (distanceHigh != nullptr) *distanceHigh = static_cast<LONG>(position >> 32);
    const auto low = static_cast<DWORD>(position);
    if (low == INVALID_SET_FILE_POINTER) SetLastError(ERROR_SUCCESS);
    return low;
}

BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, OVERLAPPED*) {
    const OpenFile source = toFile(file);
    if (bytesRead != nullptr) *bytesRead = 0;
    if ((source.access & readAccess) == 0) return fail(wrongAccess(source.descriptor), FALSE);
    return moveBytes(bytes, bytesRead, [&](DWORD done, DWORD count) {
        return ::read(source.descriptor, static_cast<char*>(buffer) + done, count);
    });
}

BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* bytesWritten, OVERLAPPED*) {
    const OpenFile target = toFile(file);
    if (bytesWritten != nullptr) *bytesWritten = 0;
    if ((target.access & writeAccess) == 0) return fail(wrongAccess(target.descriptor), FALSE);
    return moveBytes(bytes, bytesWritten, [&](DWORD done, DWORD count) {
        return ::write(target.descriptor, static_cast<const char*>(buffer) + done, count);
    });
}

BOOL FlushFileBuffers(HANDLE file) {
    const OpenFile target = toFile(file);
    if ((target.access & writeAccess) == 0) return fail(wrongAccess(target.descriptor), FALSE);
    if (retried([&] { return ::fsync(target.descriptor); }) != 0) return fail(tarn::fromErrno(errno), FALSE);
    return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
    if (handle == INVALID_HANDLE_VALUE) return TRUE;  // the process's own handle, which nothing closes
    if (::close(toFile(handle).descriptor) != 0 && errno == EBADF) return fail(ERROR_INVALID_HANDLE, FALSE);
    tarn::handleClosed();
    return TRUE;
}

DWORD GetCurrentDirectoryA(DWORD size, char* buffer) {
    std::string folder(MAX_PATH, '\0');
    while (::getcwd(folder.data(), folder.size()) == nullptr) {
        if (errno != ERANGE) return fail(tarn::fromErrno(errno), DWORD{0});
        folder.resize(folder.size() * 2);
    }
    const std::size_t length = std::strlen(folder.c_str());
    if (buffer == nullptr || size <= length) return static_cast<DWORD>(length + 1);
    std::memcpy(buffer, folder.c_str(), length + 1);
    return static_cast<DWORD>(length);
}
