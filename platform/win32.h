#pragma once

// The Win32 operations, types and constants that the library and its clients use, under their published names
// and values.  On Windows this is the system's own header; elsewhere the sources beside this file stand
// behind the declarations, one source per family:
//
//   files          platform/files.cpp            profile files  platform/profile_files.cpp
//   clock          platform/clock.cpp            registry       platform/registry*.cpp
//   last error     platform/last_error.cpp       menus          platform/menus.cpp
//   number, text   platform/text_services.cpp    screen         platform/screen*.cpp, platform/resources.cpp
//   messages       platform/messages.cpp         modules        platform/modules.cpp
//
// docs/platform.md tells what each family does where Win32 leaves a choice.  Programs and tests that want
// another clock, screen or message box than the machine's include platform/host.h.
//
// Threads: every operation may be called from any thread; one handle belongs to one thread at a time.  The
// last error is one word for the whole process.

#if defined(_WIN32)

#include <windows.h>

#include <cstdlib>
#include <cstring>

#else

#include <cstddef>
#include <cstdint>

#include "platform/linkage.h"

// ---------------------------------------------------------------------------------------------- basic types

using BOOL = std::int32_t;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG_PTR = std::uintptr_t;
using HANDLE = void*;

#define WINAPI
#define __stdcall

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

// ----------------------------------------------------------------------------------------------- last error

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_WRITE_FAULT = 29;
constexpr DWORD ERROR_READ_FAULT = 30;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_NOT_LOCKED = 158;
constexpr DWORD ERROR_BAD_PATHNAME = 161;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
constexpr DWORD ERROR_KEY_DELETED = 1018;
constexpr DWORD ERROR_INVALID_MENU_HANDLE = 1401;
constexpr DWORD ERROR_MENU_ITEM_NOT_FOUND = 1456;
constexpr DWORD ERROR_RESOURCE_DATA_NOT_FOUND = 1812;
constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

TARN_LINKAGE DWORD GetLastError();
TARN_LINKAGE void SetLastError(DWORD code);

// ---------------------------------------------------------------------------------------------------- files

struct SECURITY_ATTRIBUTES;
struct OVERLAPPED;

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(~ULONG_PTR{0}))
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 1;
constexpr DWORD FILE_SHARE_WRITE = 2;
constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD OPEN_ALWAYS = 4;
constexpr DWORD TRUNCATE_EXISTING = 5;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr DWORD FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;
constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD FILE_CURRENT = 1;
constexpr DWORD FILE_END = 2;
constexpr DWORD MAX_PATH = 260;

// `\` in a name counts as `/`.  Sharing modes hold between all opens that go through this layer, in this and
// in other processes.  The security attributes, the template and the overlapped structure must be NULL.
TARN_LINKAGE HANDLE CreateFileA(const char* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                                DWORD creation, DWORD flags, HANDLE pattern);
TARN_LINKAGE DWORD GetFileSize(HANDLE file, DWORD* high);
TARN_LINKAGE DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method);
TARN_LINKAGE BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, OVERLAPPED* overlapped);
TARN_LINKAGE BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* bytesWritten,
                            OVERLAPPED* overlapped);
TARN_LINKAGE BOOL CloseHandle(HANDLE handle);
TARN_LINKAGE DWORD GetCurrentDirectoryA(DWORD size, char* buffer);

// ---------------------------------------------------------------------------------------------------- clock

struct SYSTEMTIME {
    WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;  // Sunday is 0
};

TARN_LINKAGE void GetSystemTime(SYSTEMTIME* time);  // Coordinated Universal Time
TARN_LINKAGE void GetLocalTime(SYSTEMTIME* time);

// ------------------------------------------------------------------------------------------ number and text

// The radix runs from 2 to 36; only radix 10 writes a sign, every other shows the 32 bits as unsigned.
TARN_LINKAGE char* _itoa(int value, char* buffer, int radix);
TARN_LINKAGE char* _ltoa(LONG value, char* buffer, int radix);
TARN_LINKAGE char* _gcvt(double value, int digits, char* buffer);
// Compare by unsigned bytes with A to Z folded; lstrcmpiA takes NULL, which stands before every text.
TARN_LINKAGE int _stricmp(const char* a, const char* b);
TARN_LINKAGE int _strnicmp(const char* a, const char* b, std::size_t length);
TARN_LINKAGE int lstrcmpiA(const char* a, const char* b);
TARN_LINKAGE int lstrlenA(const char* text);

// -------------------------------------------------------------------------------------------- profile files

// ---------------------------------------------------------------------------------------------------
// registry

// ------------------------------------------------------------------------------------------------------
// menus

// ------------------------------------------------------------------------------- screen, bitmaps, resources

// ---------------------------------------------------------------------------------------- messages, modules

#endif
