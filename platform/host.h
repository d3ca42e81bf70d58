#pragma once

// Where a program or a test replaces what the machine gives: the clock, the screen, the resources of a module
// and the message box.  Not on Windows, where the system itself is the answer.
//
// Threads: set these before other threads use the library; nothing here is locked.

#include <cstdint>

#include "platform/win32.h"

namespace tarn {

// Makes GetSystemTime answer `utc` and GetLocalTime `local`, standing still.  Each that is NULL runs with the
// system's clock again.
TARN_LINKAGE void setClock(const SYSTEMTIME* utc, const SYSTEMTIME* local);

// Answers how many handles of all families are open in this process: files, registry keys, menus, device
// contexts and their objects, loaded modules.
TARN_LINKAGE std::int32_t openHandles();

}  // namespace tarn
