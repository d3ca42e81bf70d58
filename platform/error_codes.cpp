// errno to Win32 code: one table, and the one question that errno leaves open, whether a name or its folder
// is missing.
//
// Tests: tests/platform/files_test.cpp.

#include "platform/error_codes.h"

#include <unistd.h>

#include <cerrno>

#include "platform/files/path.h"

namespace tarn {

DWORD fromErrno(int error) {
    static constexpr struct {
        int error;
        DWORD code;
    } rows[] = {
        {ENOENT, ERROR_FILE_NOT_FOUND},
        {ENOTDIR, ERROR_PATH_NOT_FOUND},
        {ELOOP, ERROR_PATH_NOT_FOUND},
        {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
        {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
        {EACCES, ERROR_ACCESS_DENIED},
        {EPERM, ERROR_ACCESS_DENIED},
        {EISDIR, ERROR_ACCESS_DENIED},
        {EROFS, ERROR_ACCESS_DENIED},
        {EBADF, ERROR_INVALID_HANDLE},
        {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
        {EXDEV, ERROR_NOT_SAME_DEVICE},
        {ETXTBSY, ERROR_SHARING_VIOLATION},
        {EEXIST, ERROR_FILE_EXISTS},
        {EINVAL, ERROR_INVALID_PARAMETER},
        {EFAULT, ERROR_INVALID_PARAMETER},
        {ESPIPE, ERROR_INVALID_PARAMETER},
        {ENOSPC, ERROR_DISK_FULL},
        {EDQUOT, ERROR_DISK_FULL},
        {EFBIG, ERROR_DISK_FULL},
        {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    };
    for (const auto& row : rows) {
        if (row.error == error) return row.code;
    }
    return ERROR_GEN_FAILURE;
}

DWORD fromErrno(int error, const std::string& path) {
    if (error != ENOENT) return fromErrno(error);
    return ::access(folderOf(path).c_str(), F_OK) == 0 ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

}  // namespace tarn
