// Messages: a text for each error code that this layer sets, and the message box.
// Tests: tests/platform/messages_test.cpp.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/drawing/global_memory.h"
#include "platform/host.h"
#include "platform/win32.h"

namespace {

struct CodeText {
    DWORD code;
    std::string_view text;
};

constexpr CodeText codeTexts[] = {
    {ERROR_SUCCESS, "The operation succeeded."},
    {ERROR_FILE_NOT_FOUND, "The file was not found."},
    {ERROR_PATH_NOT_FOUND, "The path was not found."},
    {ERROR_TOO_MANY_OPEN_FILES, "Too many files are open."},
    {ERROR_ACCESS_DENIED, "Access was denied."},
    {ERROR_INVALID_HANDLE, "The handle is not valid."},
    {ERROR_NOT_ENOUGH_MEMORY, "There is not enough memory."},
    {ERROR_NOT_SAME_DEVICE, "The files are on different devices."},
    {ERROR_WRITE_FAULT, "The device could not be written."},
    {ERROR_READ_FAULT, "The device could not be read."},
    {ERROR_GEN_FAILURE, "The device does not work."},
    {ERROR_SHARING_VIOLATION, "The file is in use."},
    {ERROR_FILE_EXISTS, "The file exists."},
    {ERROR_INVALID_PARAMETER, "A parameter is not valid."},
    {ERROR_DISK_FULL, "The disk is full."},
    {ERROR_INSUFFICIENT_BUFFER, "The buffer is too small."},
    {ERROR_INVALID_NAME, "The name is not valid."},
    {ERROR_MOD_NOT_FOUND, "The module was not found."},
    {ERROR_PROC_NOT_FOUND, "The procedure was not found."},
    {ERROR_NEGATIVE_SEEK, "The position lies before the start of the file."},
    {ERROR_NOT_LOCKED, "The memory is not locked."},
    {ERROR_BAD_PATHNAME, "The path is not valid."},
    {ERROR_ALREADY_EXISTS, "It exists already."},
    {ERROR_BAD_EXE_FORMAT, "%1 is not a module for this system."},
    {ERROR_FILENAME_EXCED_RANGE, "The name is too long."},
    {ERROR_MORE_DATA, "There is more data."},
    {ERROR_NO_MORE_ITEMS, "There are no more items."},
    {ERROR_MR_MID_NOT_FOUND, "There is no text for this number."},
    {ERROR_NOACCESS, "The address is not valid."},
    {ERROR_REGISTRY_CORRUPT, "The registry is damaged."},
    {ERROR_KEY_DELETED, "The registry key was deleted."},
    {ERROR_FILE_CORRUPT, "The file is damaged."},
    {ERROR_INVALID_MENU_HANDLE, "The menu handle is not valid."},
    {ERROR_MENU_ITEM_NOT_FOUND, "The menu entry was not found."},
    {ERROR_RESOURCE_DATA_NOT_FOUND, "The module has no resources."},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, "The module has no resource of this type."},
    {ERROR_RESOURCE_NAME_NOT_FOUND, "The module has no resource of this name."},
};

constexpr std::string_view lineEnd = "\r\n";

constinit std::atomic<tarn::MessageBoxFunction> messageBox{nullptr};

DWORD refuse(DWORD code) {
    SetLastError(code);
    return 0;
}

}  // namespace

void tarn::setMessageBox(MessageBoxFunction function) {
    messageBox = function;
}

DWORD FormatMessageA(DWORD flags, const void*, DWORD code, DWORD, char* buffer, DWORD size, std::va_list*) {
    const bool allocate = (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0;
    if (buffer == nullptr) return refuse(ERROR_INVALID_PARAMETER);
    char* target = nullptr;
    if (allocate) std::memcpy(buffer, &target, sizeof target);
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0) return refuse(ERROR_INVALID_PARAMETER);
    const auto* found = std::ranges::find(codeTexts, code, &CodeText::code);
    if (found == std::end(codeTexts)) return refuse(ERROR_MR_MID_NOT_FOUND);
    const bool hasInsert = found->text.find('%') != std::string_view::npos;
    if (hasInsert && (flags & FORMAT_MESSAGE_IGNORE_INSERTS) == 0) return refuse(ERROR_INVALID_PARAMETER);

    const std::size_t length = found->text.size() + lineEnd.size();
    if (!allocate && size <= length) return refuse(ERROR_INSUFFICIENT_BUFFER);
    target =
        allocate ? static_cast<char*>(tarn::allocateFixed(std::max<std::size_t>(length + 1, size))) : buffer;
    if (target == nullptr) return 0;
    if (allocate) std::memcpy(buffer, &target, sizeof target);
    *std::ranges::copy(lineEnd, std::ranges::copy(found->text, target).out).out = '\0';
    return static_cast<DWORD>(length);
}

int MessageBoxA(HWND, const char* text, const char* caption, UINT style) {
    if (const tarn::MessageBoxFunction function = messageBox) return function(text, caption, style);
    std::string shown;
    for (const char* line : {caption, text}) {
        if (line != nullptr) shown += line;
        shown += '\n';
    }
    std::fwrite(shown.data(), 1, shown.size(), stderr);
    return IDOK;
}
