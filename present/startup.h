#pragma once

/// @file
/// A pointer that all modules of a process share through this library.  What it points to, who owns that and
/// who locks it is up to the modules; the library neither reads nor writes it.
///
///     *getGlobalPointer() = &session;
///     static_cast<Session*>(*getGlobalPointer());   // &session, also in another module
///
/// Nothing has to be started: the library has no global object with a constructor.  As a Windows DLL it
/// switches off the notices of new threads when it is loaded, and does nothing else.
///
/// Threads: the library doesn't lock the pointer; the modules do, if they need it.

#include "core/export.h"

/// Answers the address of the shared pointer, the same at every call.  It holds NULL until a module writes
/// it.
TARN_EXPORT void** getGlobalPointer();
