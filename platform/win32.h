#pragma once

/// @file
/// The Win32 operations, types and constants that the library and its clients use, under their published
/// names and values.  On Windows this is the system's own header; elsewhere the sources beside this file
/// implement the declarations:
///
///     files                     platform/files/
///     ini files                 platform/profile/
///     registry                  platform/registry/
///     screen, bitmaps,
///       resources, memory       platform/drawing/
///     menus                     platform/menus.cpp
///     messages, modules         platform/messages.cpp, platform/modules.cpp
///     numbers and texts         platform/text_services.cpp
///     clock, last error         platform/clock.cpp, platform/last_error.cpp
///
/// docs/platform.md says what each family does where Win32 leaves a choice.  Programs and tests that want
/// another clock, screen or message box than the machine's include platform/host.h.
///
/// Threads: every operation may be called from any thread; one handle belongs to one thread at a time.  The
/// last error is one word for the whole process.

#if defined(_WIN32)

#include <windows.h>

#include <cstdlib>
#include <cstring>

#else

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include "platform/linkage.h"

/// @name Basic types
/// @{

using BOOL = std::int32_t;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG_PTR = std::uintptr_t;
using HANDLE = void*;

// Other libraries define these names too, GLib and curses for instance.  As macros, and only where there are
// none, they let any order of headers compile.
#if !defined(WINAPI)
#define WINAPI
#endif
#if !defined(__stdcall)
#define __stdcall
#endif
#if !defined(FALSE)
#define FALSE 0
#endif
#if !defined(TRUE)
#define TRUE 1
#endif
/// @}

/// @name Last error
/// @{

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
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
constexpr DWORD ERROR_NOACCESS = 998;
constexpr DWORD ERROR_REGISTRY_CORRUPT = 1015;
constexpr DWORD ERROR_KEY_DELETED = 1018;
constexpr DWORD ERROR_FILE_CORRUPT = 1392;
constexpr DWORD ERROR_INVALID_MENU_HANDLE = 1401;
constexpr DWORD ERROR_MENU_ITEM_NOT_FOUND = 1456;
constexpr DWORD ERROR_RESOURCE_DATA_NOT_FOUND = 1812;
constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

/// Answers the code of the last failure, one word for the whole process.
TARN_LINKAGE DWORD GetLastError();
/// Sets that word.
TARN_LINKAGE void SetLastError(DWORD code);
/// @}

/// @name Files
/// @{

struct SECURITY_ATTRIBUTES;
struct OVERLAPPED;

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(~ULONG_PTR{0}))
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 1, FILE_SHARE_WRITE = 2;
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
constexpr DWORD MOVEFILE_REPLACE_EXISTING = 1;
constexpr DWORD MOVEFILE_COPY_ALLOWED = 2;
constexpr DWORD MOVEFILE_WRITE_THROUGH = 8;
constexpr DWORD MAX_PATH = 260;

/// Opens or makes a file.  `\` in a name counts as `/`.  Sharing modes hold between all opens that go through
/// this layer, in this and in other processes.  The security attributes and the template must be NULL.
/// - Answers INVALID_HANDLE_VALUE if it fails.
/// - Owner: the caller, CloseHandle.
TARN_LINKAGE HANDLE CreateFileA(const char* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                                DWORD creation, DWORD flags, HANDLE pattern);

/// Answers the low 32 bits of the size, INVALID_FILE_SIZE if it fails.
/// - `high`: out, the high 32 bits; may be NULL
TARN_LINKAGE DWORD GetFileSize(HANDLE file, DWORD* high);
/// Moves the file's position and answers its low 32 bits, INVALID_SET_FILE_POINTER if it fails.
/// - `distanceHigh`: in and out, the high 32 bits; may be NULL
TARN_LINKAGE DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method);
/// Reads bytes from the file's position.  The overlapped structure must be NULL.
/// - `bytesRead`: out, how many were read; fewer at the end of the file
/// - Answers FALSE for a fault of the device and for a handle without read access.
TARN_LINKAGE BOOL ReadFile(HANDLE file, void* buffer, DWORD bytes, DWORD* bytesRead, OVERLAPPED* overlapped);
/// Writes bytes at the file's position.  The overlapped structure must be NULL.
/// - `bytesWritten`: out, how many were written; fewer if the disk takes no more
/// - Answers FALSE for a fault of the device and for a handle without write access.
TARN_LINKAGE BOOL WriteFile(HANDLE file, const void* buffer, DWORD bytes, DWORD* bytesWritten,
                            OVERLAPPED* overlapped);
/// Writes a file through to the disk.
/// - Answers FALSE for a fault of the device and for a handle without write access.
TARN_LINKAGE BOOL FlushFileBuffers(HANDLE file);
/// Closes a file.  Answers FALSE for what is no open file.
TARN_LINKAGE BOOL CloseHandle(HANDLE handle);
/// Gives a file or folder another name, in one step where both names are on the same file system.
/// - `flags`: MOVEFILE_REPLACE_EXISTING lets a file that has the new name be replaced; the moved file takes over
///   its permissions, and a symbolic link under the new name is followed.  MOVEFILE_COPY_ALLOWED copies a file
///   to another file system.  With MOVEFILE_WRITE_THROUGH the new name is on the disk when the call returns; the
///   content is what FlushFileBuffers made of it.
/// - Answers FALSE, with both files as they were, for a file that is open and for a folder under the new name.
///   After a failure to write a folder through the file has its new name.
TARN_LINKAGE BOOL MoveFileExA(const char* from, const char* to, DWORD flags);
/// Deletes a file, or a symbolic link itself.
/// - Answers FALSE for a folder and for a file that is open.
TARN_LINKAGE BOOL DeleteFileA(const char* name);
/// Writes the current directory and answers its length without the NUL.  If the buffer is too small, it
/// answers the size that the buffer should have.
TARN_LINKAGE DWORD GetCurrentDirectoryA(DWORD size, char* buffer);
/// @}

/// @name Clock
/// @{

struct SYSTEMTIME {
    WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;  ///< Sunday is 0
};

/// The time in Coordinated Universal Time.
TARN_LINKAGE void GetSystemTime(SYSTEMTIME* time);
/// The time in the time zone of the environment.
TARN_LINKAGE void GetLocalTime(SYSTEMTIME* time);
/// @}

/// @name Number and text
/// @{

/// Writes a number and answers the buffer.  The radix is 2 to 36; only radix 10 writes a sign, every other
/// shows the 32 bits as unsigned.
TARN_LINKAGE char* _itoa(int value, char* buffer, int radix);
/// The same as _itoa.
TARN_LINKAGE char* _ltoa(LONG value, char* buffer, int radix);
/// Writes a number with up to 17 significant digits, without trailing zeros and without a point behind a
/// whole number, and answers the buffer.
TARN_LINKAGE char* _gcvt(double value, int digits, char* buffer);
/// Compares by unsigned bytes, without the case of A to Z.
TARN_LINKAGE int _stricmp(const char* a, const char* b);
/// Compares at most `length` bytes in the same way.
TARN_LINKAGE int _strnicmp(const char* a, const char* b, std::size_t length);
/// Compares in the same way, and takes NULL, which is before every text.
TARN_LINKAGE int lstrcmpiA(const char* a, const char* b);
/// Answers the length of a text, of NULL 0.
TARN_LINKAGE int lstrlenA(const char* text);
/// @}

/// @name Profile files
/// Ini files.  A path without a folder means the current folder.  Names of sections and keys are compared
/// without the case of A to Z and without blanks at their ends.  A write replaces the file whole, under a
/// lock that other writers wait for (five seconds at most, then error 32), and keeps every line that it
/// doesn't change.  During a write a crash leaves the old file or the new one, after it the new one.
/// @{

/// Reads a text.  NULL as section lists the sections, NULL as key the section's keys, each name with a NUL
/// and one more at the end.  What doesn't fit is cut, to size - 1 characters for a text, size - 2 for a list.
/// The last error is set in any case: 0, 234 (cut), 2 or 3 (not there, and the default delivered), 32 (open
/// elsewhere and not shared).
/// - Answers the number of characters without the last NUL.
TARN_LINKAGE DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* defaultText,
                                            char* buffer, DWORD size, const char* file);
/// Answers the number that the value begins with, modulo 2^32, or the default for a missing or empty one.
TARN_LINKAGE UINT GetPrivateProfileIntA(const char* section, const char* key, std::int32_t defaultValue,
                                        const char* file);
/// Reads a block of bytes.
/// - Answers TRUE if the value is an undamaged block of exactly `size` bytes; otherwise the buffer stays.
TARN_LINKAGE BOOL GetPrivateProfileStructA(const char* section, const char* key, void* buffer, UINT size,
                                           const char* file);
/// Writes a text.  A NULL text removes the key, a NULL key the section.  NULL for all three would flush, for
/// which there is nothing to do, and answers FALSE.
TARN_LINKAGE BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* text,
                                             const char* file);
/// Writes a block of bytes.  NULL data removes the key, a NULL key the section.
TARN_LINKAGE BOOL WritePrivateProfileStructA(const char* section, const char* key, void* data, UINT size,
                                             const char* file);
/// @}

/// @name Registry
/// Keys and values in the user's data folder; docs/registry-folder.md has the layout.  Anything may be
/// created below any root.  A name of a key holds 1 to 255 bytes, that of a value up to 16383, and a value 1
/// MiB; keys are nested 512 deep at most.  Names are compared without the case of A to Z and keep the
/// spelling that they were made with.
///
/// The operations answer 0 or an error: 2 for what isn't there, 5 for a key that still has keys below it, 6
/// for no handle of an open key, 87 for what is too long or too deep or has NULL where it can't be, 1015 for
/// a key or value whose file is damaged or isn't the registry's, 1018 for a handle of a deleted key.  The
/// access mask, options and security attributes are ignored: every handle may do everything.
/// @{

struct HKEY__;
using HKEY = HKEY__*;
using REGSAM = DWORD;
using LSTATUS = LONG;

struct FILETIME {
    DWORD dwLowDateTime, dwHighDateTime;  ///< 100 ns since 1601
};

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000000))))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000001))))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000002))))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000003))))

constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
constexpr REGSAM KEY_SET_VALUE = 0x0002;
constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;
constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;
constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_DWORD_LITTLE_ENDIAN = 4;
constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
constexpr DWORD REG_LINK = 6;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_QWORD = 11;

/// Opens a key.
/// - Owner: the caller, RegCloseKey.
TARN_LINKAGE LSTATUS RegOpenKeyExA(HKEY key, const char* name, DWORD options, REGSAM access, HKEY* result);
/// Opens a key or makes it, and its parents too; the class text is given to the last key alone, and only if
/// it is new.
/// - Owner: the caller, RegCloseKey.
TARN_LINKAGE LSTATUS RegCreateKeyExA(HKEY key, const char* name, DWORD reserved, char* classText,
                                     DWORD options, REGSAM access, const SECURITY_ATTRIBUTES* security,
                                     HKEY* result, DWORD* disposition);
/// Closes a handle; a root stays open.
TARN_LINKAGE LSTATUS RegCloseKey(HKEY key);
/// Deletes a key below this one, which must have no keys below it unless it is damaged.
TARN_LINKAGE LSTATUS RegDeleteKeyA(HKEY key, const char* name);
/// Deletes a value of this key.
TARN_LINKAGE LSTATUS RegDeleteValueA(HKEY key, const char* name);
/// Reads the name of one of the keys below, in the order of their names without case.  A damaged key is
/// listed with small letters.  Answers 259 behind the last, 234 for too small a buffer.
TARN_LINKAGE LSTATUS RegEnumKeyA(HKEY key, DWORD index, char* name, DWORD size);
/// Stores `size` bytes as they are, under any type.
TARN_LINKAGE LSTATUS RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                                    DWORD size);
/// Reads a value.  A text that was stored without its NUL gets one if the buffer has room.  For too
/// small a buffer, which then stays, it answers 234 and the size.
TARN_LINKAGE LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                                      DWORD* size);
/// Writes the key and its parents through to the disk; until then a power cut may undo what was stored.
TARN_LINKAGE LSTATUS RegFlushKey(HKEY key);
/// Reads how much a key holds.  Every out argument may be NULL.  Lengths are in bytes, those of names and
/// classes without the NUL.
TARN_LINKAGE LSTATUS RegQueryInfoKeyA(HKEY key, char* classText, DWORD* classSize, DWORD* reserved,
                                      DWORD* subKeys, DWORD* longestSubKey, DWORD* longestClass,
                                      DWORD* values, DWORD* longestValueName, DWORD* largestValue,
                                      DWORD* securityDescriptor, FILETIME* lastWriteTime);
/// @}

/// @name Menus
/// @{

using HMENU = struct HMENU__*;
using HBITMAP = struct HBITMAP__*;

constexpr UINT MF_BYCOMMAND = 0, MF_BYPOSITION = 0x400;
constexpr UINT MF_STRING = 0, MF_BITMAP = 4;
constexpr UINT MF_GRAYED = 1, MF_DISABLED = 2, MF_CHECKED = 8;
constexpr UINT MF_POPUP = 0x10;
constexpr UINT MF_OWNERDRAW = 0x100;
constexpr UINT MF_SEPARATOR = 0x800;

constexpr UINT MIIM_STATE = 1;
constexpr UINT MIIM_ID = 2;
constexpr UINT MIIM_SUBMENU = 4;
constexpr UINT MIIM_TYPE = 0x10;
constexpr UINT MIIM_DATA = 0x20;
constexpr UINT MIIM_STRING = 0x40;
constexpr UINT MIIM_FTYPE = 0x100;
constexpr UINT MFT_OWNERDRAW = MF_OWNERDRAW;

struct MENUITEMINFOA {
    UINT cbSize;  ///< sizeof(MENUITEMINFOA), or that without hbmpItem
    UINT fMask;
    UINT fType;
    UINT fState;
    UINT wID;
    HMENU hSubMenu;
    HBITMAP hbmpChecked;
    HBITMAP hbmpUnchecked;
    ULONG_PTR dwItemData;
    char* dwTypeData;
    UINT cch;
    HBITMAP hbmpItem;
};

/// Makes a menu without entries.
/// - Owner: the caller, DestroyMenu, until it is appended to another menu.
TARN_LINKAGE HMENU CreatePopupMenu();
/// Adds an entry at the end.  With MF_POPUP `id` is a menu, which belongs to this one from now on; with
/// MF_OWNERDRAW `content` is the entry's data.
TARN_LINKAGE BOOL AppendMenuA(HMENU menu, UINT flags, ULONG_PTR id, const char* content);
/// Removes an entry and its menu.  By command the menu and all menus below it are searched, depth first, for
/// the first entry of that id.
TARN_LINKAGE BOOL DeleteMenu(HMENU menu, UINT item, UINT flags);
/// Destroys a menu and every menu below it.
TARN_LINKAGE BOOL DestroyMenu(HMENU menu);
/// Answers the number of entries, -1 for what is no menu.
TARN_LINKAGE int GetMenuItemCount(HMENU menu);
/// Answers an entry's id, -1 for what isn't there and for a popup.
TARN_LINKAGE UINT GetMenuItemID(HMENU menu, int position);
/// Answers an entry's menu, NULL if it has none.
/// - Owner: the menu.
TARN_LINKAGE HMENU GetSubMenu(HMENU menu, int position);
/// Answers an entry's MF_ flags, -1 for what isn't there.  Those of a popup have the number of its entries in
/// bits 8 to 15.
TARN_LINKAGE UINT GetMenuState(HMENU menu, UINT item, UINT flags);
/// Reads the members of an entry that `fMask` asks for.
TARN_LINKAGE BOOL GetMenuItemInfoA(HMENU menu, UINT item, BOOL byPosition, MENUITEMINFOA* info);
/// @}

/// @name Screen, bitmaps, resources
/// @{

using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = struct HWND__*;
using HDC = struct HDC__*;
using HPALETTE = struct HPALETTE__*;
using HBRUSH = struct HBRUSH__*;
using HRSRC = struct HRSRC__*;
using HGDIOBJ = void*;
using HGLOBAL = HANDLE;
using HLOCAL = HANDLE;
using COLORREF = DWORD;  ///< 0x00BBGGRR

constexpr int SM_CXSCREEN = 0, SM_CYSCREEN = 1, SM_CXVSCROLL = 2, SM_CYHSCROLL = 3, SM_CYCAPTION = 4;
constexpr int SM_CXBORDER = 5, SM_CYBORDER = 6, SM_CXDLGFRAME = 7, SM_CYDLGFRAME = 8;
constexpr int SM_CXICON = 11, SM_CYICON = 12, SM_CYMENU = 15, SM_CXFULLSCREEN = 16, SM_CYFULLSCREEN = 17;
constexpr int SM_CYVSCROLL = 20, SM_CYSIZE = 31, SM_CXFRAME = 32, SM_CYFRAME = 33;
constexpr int SM_CXEDGE = 45, SM_CYEDGE = 46, SM_CXSMICON = 49, SM_CYSMICON = 50, SM_CYSMCAPTION = 51;
constexpr int SM_CXMENUCHECK = 71, SM_CYMENUCHECK = 72;

constexpr int COLOR_MENU = 4, COLOR_WINDOW = 5, COLOR_WINDOWTEXT = 8, COLOR_HIGHLIGHT = 13;
constexpr int COLOR_HIGHLIGHTTEXT = 14, COLOR_BTNFACE = 15, COLOR_BTNSHADOW = 16, COLOR_BTNTEXT = 18;
constexpr int COLOR_BTNHIGHLIGHT = 20, COLOR_3DLIGHT = 22, COLOR_INFOBK = 24;

constexpr UINT SPI_GETICONTITLELOGFONT = 31;
constexpr DWORD VER_PLATFORM_WIN32s = 0, VER_PLATFORM_WIN32_WINDOWS = 1, VER_PLATFORM_WIN32_NT = 2;
constexpr int HORZRES = 8, VERTRES = 10, BITSPIXEL = 12, PLANES = 14, NUMCOLORS = 24;
constexpr int LOGPIXELSX = 88, LOGPIXELSY = 90, SIZEPALETTE = 104;
constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;
constexpr DWORD BI_RGB = 0, BI_RLE8 = 1, BI_RLE4 = 2, BI_BITFIELDS = 3;
constexpr DWORD CBM_INIT = 4;
constexpr UINT DIB_RGB_COLORS = 0;
constexpr UINT GMEM_FIXED = 0, GMEM_MOVEABLE = 2, GMEM_ZEROINIT = 0x40, GHND = 0x42;
constexpr UINT GDI_ERROR = 0xFFFFFFFF;

#define RGB(red, green, blue)                                                       \
    (static_cast<COLORREF>(static_cast<BYTE>(red) | static_cast<BYTE>(green) << 8 | \
                           static_cast<BYTE>(blue) << 16))
#define MAKEINTRESOURCEA(number) \
    (reinterpret_cast<const char*>(static_cast<ULONG_PTR>(static_cast<WORD>(number))))
#define RT_BITMAP MAKEINTRESOURCEA(2)

struct RECT {
    LONG left, top, right, bottom;
};
struct LOGFONTA {
    LONG lfHeight, lfWidth, lfEscapement, lfOrientation, lfWeight;
    BYTE lfItalic, lfUnderline, lfStrikeOut, lfCharSet, lfOutPrecision, lfClipPrecision, lfQuality;
    BYTE lfPitchAndFamily;
    char lfFaceName[32];
};
struct OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize, dwMajorVersion, dwMinorVersion, dwBuildNumber, dwPlatformId;
    char szCSDVersion[128];
};
struct BITMAP {
    LONG bmType, bmWidth, bmHeight, bmWidthBytes;
    WORD bmPlanes, bmBitsPixel;
    void* bmBits;
};
struct PALETTEENTRY {
    BYTE peRed, peGreen, peBlue, peFlags;
};
struct LOGPALETTE {
    WORD palVersion, palNumEntries;
    PALETTEENTRY palPalEntry[1];
};
struct RGBQUAD {
    BYTE rgbBlue, rgbGreen, rgbRed, rgbReserved;
};
struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth, biHeight;  ///< rows run upward when the height is above 0
    WORD biPlanes, biBitCount;
    DWORD biCompression, biSizeImage;
    LONG biXPelsPerMeter, biYPelsPerMeter;
    DWORD biClrUsed, biClrImportant;
};
struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

/// Answers one of the screen's sizes (platform/host.h describes the screen), 0 for an unknown index.
TARN_LINKAGE int GetSystemMetrics(int index);
/// Answers one of the screen's colours, 0 for an unknown index.
TARN_LINKAGE COLORREF GetSysColor(int index);
/// Reads the font of icon titles; other actions answer FALSE.  Nothing is updated.
TARN_LINKAGE BOOL SystemParametersInfoA(UINT action, UINT size, void* out, UINT update);
/// Reads the version of Windows that the screen's description gives.
TARN_LINKAGE BOOL GetVersionExA(OSVERSIONINFOA* version);
/// Answers the desktop's handle, which GetDC accepts.
TARN_LINKAGE HWND GetDesktopWindow();

/// Makes a device context of the screen, which shows no pixels.
/// - Owner: the caller, ReleaseDC.
TARN_LINKAGE HDC GetDC(HWND window);
/// Releases a device context of GetDC.
TARN_LINKAGE int ReleaseDC(HWND window, HDC context);
/// Makes a memory device context, whose pixels are its bitmap's.
/// - Owner: the caller, DeleteDC.
TARN_LINKAGE HDC CreateCompatibleDC(HDC context);
/// Releases a device context of CreateCompatibleDC.
TARN_LINKAGE BOOL DeleteDC(HDC context);
/// Answers a size of the context's device, 0 for an unknown index.
TARN_LINKAGE int GetDeviceCaps(HDC context, int index);
/// Puts an object into the context and answers the one that was there, NULL if it can't be done.
TARN_LINKAGE HGDIOBJ SelectObject(HDC context, HGDIOBJ object);
/// Puts a palette into the context and answers the one that was there, NULL if it can't be done.
TARN_LINKAGE HPALETTE SelectPalette(HDC context, HPALETTE palette, BOOL background);
/// Answers 0: a true-colour screen maps no entries.
TARN_LINKAGE UINT RealizePalette(HDC context);
/// Writes the four sides of a rectangle.
TARN_LINKAGE BOOL SetRect(RECT* rectangle, int left, int top, int right, int bottom);
/// Fills a rectangle of the context's bitmap, without its right column and lower row.
TARN_LINKAGE int FillRect(HDC context, const RECT* rectangle, HBRUSH brush);
/// Answers one pixel, CLR_INVALID outside the bitmap.
TARN_LINKAGE COLORREF GetPixel(HDC context, int x, int y);

/// Makes an empty bitmap; NULL if it can't be done.
/// - Owner: the caller, DeleteObject.
TARN_LINKAGE HBITMAP CreateCompatibleBitmap(HDC context, int width, int height);
/// Makes a bitmap with the pixels of a device-independent one if `flags` is CBM_INIT; NULL if it can't be
/// done.  Runs (BI_RLE4, BI_RLE8) have biSizeImage bytes.
/// - Owner: the caller, DeleteObject.
TARN_LINKAGE HBITMAP CreateDIBitmap(HDC context, const BITMAPINFOHEADER* header, DWORD flags,
                                    const void* pixels, const BITMAPINFO* info, UINT usage);
/// Makes a palette; NULL if it can't be done.
/// - Owner: the caller, DeleteObject.
TARN_LINKAGE HPALETTE CreatePalette(const LOGPALETTE* palette);
/// Makes a brush of one colour; NULL if it can't be done.
/// - Owner: the caller, DeleteObject.
TARN_LINKAGE HBRUSH CreateSolidBrush(COLORREF color);
/// Reads entries of a palette and answers how many; 0 for what is no palette.
TARN_LINKAGE UINT GetPaletteEntries(HPALETTE palette, UINT first, UINT count, PALETTEENTRY* entries);
/// Reads the description of a bitmap or the number of a palette's entries; 0 for what is neither.
TARN_LINKAGE int GetObjectA(HANDLE object, int size, void* out);
/// Releases an object; refused while a bitmap is selected.
TARN_LINKAGE BOOL DeleteObject(HGDIOBJ object);

/// Finds a resource of tarn::addResource by its name and type, each a number or a text like "#101".
/// - Owner: the module, as of what LoadResource and LockResource answer; nothing has to be freed.
TARN_LINKAGE HRSRC FindResourceA(HINSTANCE module, const char* name, const char* type);
/// Answers the handle of a resource's bytes.
TARN_LINKAGE HGLOBAL LoadResource(HINSTANCE module, HRSRC resource);
/// Answers a resource's bytes.
TARN_LINKAGE void* LockResource(HGLOBAL resource);
/// Answers the number of a resource's bytes.
TARN_LINKAGE DWORD SizeofResource(HINSTANCE module, HRSRC resource);
/// Does nothing and answers FALSE.
TARN_LINKAGE BOOL FreeResource(HGLOBAL resource);
/// Makes a bitmap of a resource.
/// - Owner: the caller, DeleteObject.
TARN_LINKAGE HBITMAP LoadBitmapA(HINSTANCE module, const char* name);

/// Makes a block of zeroed memory.
/// - Owner: the caller, GlobalFree.
TARN_LINKAGE HGLOBAL GlobalAlloc(UINT flags, std::size_t bytes);
/// Answers the address of a block's bytes; a moveable block counts its locks.
TARN_LINKAGE void* GlobalLock(HGLOBAL memory);
/// Takes one lock back.
TARN_LINKAGE BOOL GlobalUnlock(HGLOBAL memory);
/// Releases a block and answers NULL.
TARN_LINKAGE HGLOBAL GlobalFree(HGLOBAL memory);
/// Releases a text of FormatMessageA, or another block, and answers NULL.
TARN_LINKAGE HLOCAL LocalFree(HLOCAL memory);
/// @}

/// @name Messages, modules
/// @{

using FARPROC = std::intptr_t(WINAPI*)();

constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x100;
constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
constexpr UINT MB_OK = 0;
constexpr UINT MB_SETFOREGROUND = 0x10000;
constexpr int IDOK = 1;
constexpr UINT SEM_FAILCRITICALERRORS = 1;
constexpr UINT SEM_NOOPENFILEERRORBOX = 0x8000;
constexpr DWORD DLL_PROCESS_ATTACH = 1;

/// Writes the text of an error code and answers its length.  With FORMAT_MESSAGE_ALLOCATE_BUFFER `buffer` is
/// the address of a char*, which LocalFree releases.  Inserts (`%1`) are never filled: a text that holds one
/// is written only with FORMAT_MESSAGE_IGNORE_INSERTS.
TARN_LINKAGE DWORD FormatMessageA(DWORD flags, const void* source, DWORD code, DWORD language, char* buffer,
                                  DWORD size, std::va_list* arguments);
/// Shows a box: by the function of tarn::setMessageBox, or on standard error, which answers IDOK.
TARN_LINKAGE int MessageBoxA(HWND owner, const char* text, const char* caption, UINT style);

/// Loads a module; each call counts.  `file` may leave out the suffix ".so"; without a folder it is searched
/// for where the system searches.
/// - Owner: the caller, FreeLibrary.
TARN_LINKAGE HMODULE LoadLibraryA(const char* file);
/// Finds a function; the module NULL is the program itself.
TARN_LINKAGE FARPROC GetProcAddress(HMODULE module, const char* name);
/// Takes one load back.
TARN_LINKAGE BOOL FreeLibrary(HMODULE module);
/// Does nothing; answers FALSE for what is no loaded module.
TARN_LINKAGE BOOL DisableThreadLibraryCalls(HMODULE module);
/// Keeps a mode that nothing here reads, and answers the earlier one.
TARN_LINKAGE UINT SetErrorMode(UINT mode);
/// Answers the mode that was kept.
TARN_LINKAGE UINT GetErrorMode();
/// @}

#endif
