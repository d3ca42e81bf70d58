#pragma once

// The one thing that all modules of a process share through this library: a pointer slot.  What it points to,
// who owns that and who locks it is a matter of the modules; the library neither reads nor writes it.
//
//   *getGlobalPointer() = &session;
//   static_cast<Session*>(*getGlobalPointer());   // &session, also in another module
//
// Nothing has to be started: the library has no global object with a constructor.  Loaded as a Windows DLL it
// switches off the notices of threads, and does nothing else.

#include "core/export.h"

// Answers the address of the slot, the same at every call.  It holds NULL until a module writes it.
TARN_EXPORT void** getGlobalPointer();
