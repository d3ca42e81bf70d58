#pragma once

// Opens a file and answers the error in the same call, for the layer itself; programs call CreateFileA of
// platform/win32.h.  The last error is one word for the whole process, so that by the time it is read it may
// be another thread's.

#include "platform/win32.h"

namespace tarn {

// As CreateFileA.  Answers the code that CreateFileA sets.
//   file  out: the handle, INVALID_HANDLE_VALUE after a failure.  Owner: the caller, CloseHandle
DWORD openFile(const char* name, DWORD access, DWORD share, DWORD creation, HANDLE& file);

}  // namespace tarn
