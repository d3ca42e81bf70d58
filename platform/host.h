#pragma once

/// @file
/// Where a program or a test replaces what the machine gives: the clock, the screen, the resources of a
/// module and the message box.  Not on Windows, where the system itself is the answer.
///
/// Threads: set these before other threads use the library; nothing here is locked.

#include <cstdint>

#include "platform/win32.h"

namespace tarn {

/// Stops the clock: GetSystemTime answers `utc` and GetLocalTime `local` from now on.  Each that is NULL
/// follows the system's clock again.
TARN_LINKAGE void setClock(const SYSTEMTIME* utc, const SYSTEMTIME* local);

/// A screen, as GetSystemMetrics, GetSysColor, SystemParametersInfoA, GetDeviceCaps and GetVersionExA report
/// it.  The arrays are indexed by the Win32 index.
struct ScreenDescription {
    std::int32_t metrics[100];
    COLORREF colors[32];
    LOGFONTA iconTitleFont;
    std::int32_t numColors;  ///< -1: more than 256
    std::int32_t platformId, majorVersion;
};

/// Answers the layer's own screen: 1920 x 1080 pixels at 96 dpi, the classic colours, Windows NT 4.
TARN_LINKAGE ScreenDescription classicScreen();

/// Replaces the screen by a copy of `screen`; NULL puts the classic one back.
TARN_LINKAGE void setScreen(const ScreenDescription* screen);

/// Gives `module` (NULL: the program) a resource, with a copy of the bytes.  One of the same type and id is
/// replaced, and handles and pointers to it are no longer valid.
TARN_LINKAGE void addResource(HINSTANCE module, std::uint16_t type, std::uint16_t id, const void* data,
                              std::uint32_t size);
/// Takes all resources of `module` away.
TARN_LINKAGE void removeResources(HINSTANCE module);

/// Answers for a message box.  A text is NULL if the caller's was.
using MessageBoxFunction = int (*)(const char* text, const char* caption, std::uint32_t style);
/// Makes MessageBoxA call `function` and answer what it answers.  With NULL it writes caption and text to
/// standard error again and answers IDOK.
TARN_LINKAGE void setMessageBox(MessageBoxFunction function);

/// Answers how many handles of all families are open in this process: files, registry keys, menus, device
/// contexts and their objects, blocks of global memory, loaded modules.
TARN_LINKAGE std::int32_t openHandles();

}  // namespace tarn
