#pragma once

// The layer's own way to open a file and learn at once what came of it; programs call CreateFileA of
// platform/win32.h.  The last error is one word for the whole process: when it is asked for, it may be another
// thread's.

#include "platform/win32.h"

namespace tarn {

// As CreateFileA.  Answers the code that CreateFileA sets.
//   file  out: the handle, INVALID_HANDLE_VALUE after a failure.  Owner: the caller, CloseHandle
DWORD openFile(const char* name, DWORD access, DWORD share, DWORD creation, HANDLE& file);

}  // namespace tarn
