#pragma once

// The layer's own translation of the system's errors; programs include platform/win32.h and ask GetLastError.
//
// Threads: both functions only read their arguments.

#include <string>

#include "platform/win32.h"

namespace tarn {

// Answers the Win32 code for a value of errno, ERROR_GEN_FAILURE for one without a counterpart.
DWORD fromErrno(int error);

// The same for a failed call on `path`: a name that isn't there answers ERROR_FILE_NOT_FOUND when its folder
// exists and ERROR_PATH_NOT_FOUND when it doesn't.
DWORD fromErrno(int error, const std::string& path);

}  // namespace tarn
