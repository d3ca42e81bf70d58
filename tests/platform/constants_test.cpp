// Constants by their published values, which clients' programs are built with: platform/win32.h, and the system's
// header on Windows.

#include "tests/support.h"

namespace {

TEST(Constants, ErrorCodesAreThoseOfTheSystem) {
    const std::vector<DWORD> ours = {
        ERROR_FILE_NOT_FOUND,      ERROR_PATH_NOT_FOUND,      ERROR_TOO_MANY_OPEN_FILES,
        ERROR_ACCESS_DENIED,       ERROR_INVALID_HANDLE,      ERROR_WRITE_FAULT,
        ERROR_READ_FAULT,          ERROR_SHARING_VIOLATION,   ERROR_FILE_EXISTS,
        ERROR_DISK_FULL,           ERROR_INVALID_NAME,        ERROR_NEGATIVE_SEEK,
        ERROR_ALREADY_EXISTS,      ERROR_BAD_EXE_FORMAT,      ERROR_FILENAME_EXCED_RANGE,
        ERROR_NO_MORE_ITEMS,       ERROR_FILE_CORRUPT,        ERROR_KEY_DELETED,
        ERROR_INVALID_MENU_HANDLE, ERROR_MENU_ITEM_NOT_FOUND, ERROR_RESOURCE_TYPE_NOT_FOUND};
    EXPECT_EQ(ours, (std::vector<DWORD>{2,   3,   4,   5,   6,   29,   30,   32,   80,   112, 123,
                                        131, 183, 193, 206, 259, 1392, 1018, 1401, 1456, 1813}));
}

TEST(Constants, ModesAndFlagsAreThoseOfTheSystem) {
    const std::vector<DWORD> files = {GENERIC_READ, GENERIC_WRITE, CREATE_NEW, OPEN_ALWAYS,
                                      TRUNCATE_EXISTING};
    EXPECT_EQ(files, (std::vector<DWORD>{0x80000000, 0x40000000, 1, 4, 5}));
    const std::vector<UINT> menus = {MF_GRAYED, MF_CHECKED, MF_POPUP, MF_OWNERDRAW, MF_SEPARATOR, MIIM_DATA};
    EXPECT_EQ(menus, (std::vector<UINT>{1, 8, 0x10, 0x100, 0x800, 0x20}));
    const std::vector<DWORD> values = {REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD};
    EXPECT_EQ(values, (std::vector<DWORD>{1, 2, 3, 4, 7, 11}));
    const std::vector<UINT> memory = {GMEM_FIXED, GMEM_MOVEABLE, GMEM_ZEROINIT, GHND};
    EXPECT_EQ(memory, (std::vector<UINT>{0, 2, 0x40, 0x42}));
}

}  // namespace
