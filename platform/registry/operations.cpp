// The registry operations: handles, paths and buffers; platform/registry/store.cpp has what is on the disk.
// Nothing is kept between calls but the open folders of the handles, and the names below a key while a
// program walks through them.
//
// Tests: tests/platform/registry_test.cpp.

#define _FILE_OFFSET_BITS 64  // times and file numbers of 64 bits also in 32-bit code

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/handle_table.h"
#include "platform/registry/names.h"
#include "platform/registry/store.h"
#include "platform/win32.h"

namespace {

using namespace tarn::registry;

LSTATUS answer(DWORD code) {
    return static_cast<LSTATUS>(code);
}

// ------------------------------------------------------------------------------------ keys and their paths

// The names below a key as they were, for the calls that walk through them by index.
struct Listing {
    bool valid = false;
    std::int64_t folderChanged = 0;  // ns, by the system's clock
    std::vector<std::string> names;
};

struct OpenKey {
    std::size_t root = 0;
    std::size_t depth = 0;  // 0 is the root itself, whose folder is opened for each call
    Folder folder;
    std::string name;  // the last of the path
    Listing listing;
};

constinit tarn::HandleTable<OpenKey> openKeys(tarn::HandleFamily::registryKey);

// The key that a call is about: one that is open, or a root, whose folder is opened for the call.
struct Target {
    std::size_t root = 0;
    std::size_t depth = 0;
    OpenKey* open = nullptr;  // NULL for a root
    Folder ownFolder;

    [[nodiscard]] const Folder& folder() const {
        return open == nullptr || depth == 0 ? ownFolder : open->folder;
    }
};

// Answers the number of a root, rootCount for every other handle.
std::size_t rootOf(HKEY handle) {
    const HKEY roots[rootCount] = {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS};
    return static_cast<std::size_t>(std::find(std::begin(roots), std::end(roots), handle) -
                                    std::begin(roots));
}

// A root whose folder isn't there yet answers ERROR_FILE_NOT_FOUND, which every call reads as an empty key.
DWORD resolve(HKEY handle, bool create, Target& target) {
    target.root = rootOf(handle);
    if (target.root == rootCount) {
        target.open = openKeys.find(handle);
        if (target.open == nullptr) return ERROR_INVALID_HANDLE;
        target.root = target.open->root;
        target.depth = target.open->depth;
        if (target.depth != 0) return checkAlive(target.open->folder);
    }
    return openRoot(target.root, create, target.ownFolder);
}

// Cuts a path into the names of its keys.  A `\` in front isn't allowed, others between names don't count.
DWORD splitPath(const char* path, std::vector<std::string_view>& names) {
    std::string_view rest = path == nullptr ? "" : path;
    if (rest.starts_with('\\')) return ERROR_BAD_PATHNAME;
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find('\\'));
        if (!name.empty()) names.push_back(name);
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
    }
    return ERROR_SUCCESS;
}

// Opens the key that the names lead to; no names lead to the target itself.
DWORD openPath(const Target& target, const std::vector<std::string_view>& names, Folder& folder) {
    DWORD code = reopen(target.folder(), folder);
    for (const std::string_view name : names) {
        if (code != ERROR_SUCCESS) break;
        Folder below;
        code = openKey(folder, name, below);
        folder = std::move(below);
    }
    return code;
}

// The same for keys that are made where they are missing; the last gets the class text.
DWORD createOnce(const Target& target, const std::vector<std::string_view>& names, const char* classText,
                 Folder& folder, bool& created) {
    created = false;
    DWORD code = reopen(target.folder(), folder);
    for (const std::string_view name : names) {
        if (code != ERROR_SUCCESS) break;
        const bool isLast = name.data() == names.back().data();
        Folder below;
        code = createKey(folder, name, isLast && classText != nullptr ? classText : "", below, created);
        folder = std::move(below);
    }
    return code;
}

// Begins again from the top when a key on the way was deleted meanwhile.
DWORD createPath(const Target& target, const std::vector<std::string_view>& names, const char* classText,
                 Folder& folder, bool& created) {
    if (target.depth + names.size() > deepestKey || !std::all_of(names.begin(), names.end(), isKeyName)) {
        return ERROR_INVALID_PARAMETER;
    }
    for (;;) {
        const DWORD code = createOnce(target, names, classText, folder, created);
        if (code != ERROR_KEY_DELETED || checkAlive(target.folder()) != ERROR_SUCCESS) return code;
    }
}

// Makes a handle for the key that the names lead to.
DWORD openHandle(const Target& target, const std::vector<std::string_view>& names, Folder folder,
                 HKEY* result) {
    auto key = std::make_unique<OpenKey>();
    key->root = target.root;
    key->depth = target.depth + names.size();
    if (key->depth != 0) key->folder = std::move(folder);
    if (!names.empty()) {
        key->name = names.back();
    } else if (target.open != nullptr) {
        key->name = target.open->name;
    }
    *result = static_cast<HKEY>(openKeys.open(std::move(key)));
    return *result == nullptr ? ERROR_TOO_MANY_OPEN_FILES : ERROR_SUCCESS;
}

DWORD deleteItself(const Target& target) {
    if (target.depth == 0) return ERROR_ACCESS_DENIED;
    Folder parent;
    const DWORD code = openParent(target.folder(), target.depth == 1, parent);
    if (code != ERROR_SUCCESS) return code;
    if (!isEntryOf(parent, target.open->name, target.folder())) return ERROR_KEY_DELETED;
    return deleteKey(parent, target.open->name);
}

// ------------------------------------------------------------------------------------- names below a key

std::int64_t nanoseconds(const std::timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// Answers the time of a folder's last change, or 0.
std::int64_t changeTime(const Folder& folder) {
    struct stat status {};
    return ::fstat(folder.number(), &status) == 0 ? nanoseconds(status.st_mtim) : 0;
}

// Brings a listing up to date.  A folder's time doesn't move within a tick of the system's clock, so a
// listing made shortly after a change isn't kept: another change may have the same time.
DWORD refresh(const Folder& folder, Listing& listing) {
    constexpr std::int64_t longestTick = 50'000'000;
    const std::int64_t changed = changeTime(folder);
    if (listing.valid && listing.folderChanged == changed) return ERROR_SUCCESS;
    std::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const DWORD code = listKeys(folder, listing.names);
    listing.folderChanged = changed;
    listing.valid = code == ERROR_SUCCESS && nanoseconds(now) - changed > longestTick;
    return code;
}

// -------------------------------------------------------------------------------------------------- results

// Sets an out argument, which may be NULL.
template <typename Number>
void giveOut(DWORD* result, Number number) {
    if (result != nullptr) *result = static_cast<DWORD>(number);
}

// Copies a text with its NUL.  Answers ERROR_MORE_DATA where the room is too small.
DWORD copyText(const std::string& text, char* buffer, DWORD size) {
    if (text.size() >= size) return ERROR_MORE_DATA;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return ERROR_SUCCESS;
}

FILETIME fileTime(std::int64_t unixNanoseconds) {
    constexpr std::int64_t ticksFrom1601To1970 = 116'444'736'000'000'000;
    const auto ticks = static_cast<std::uint64_t>(unixNanoseconds / 100 + ticksFrom1601To1970);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

bool isText(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

}  // namespace

LSTATUS RegOpenKeyExA(HKEY key, const char* name, DWORD, REGSAM, HKEY* result) {
    if (result == nullptr) return answer(ERROR_INVALID_PARAMETER);
    Target target;
    DWORD code = resolve(key, false, target);
    if (code == ERROR_INVALID_HANDLE) return answer(code);
    *result = nullptr;
    std::vector<std::string_view> names;
    const DWORD pathCode = splitPath(name, names);
    if (pathCode != ERROR_SUCCESS) return answer(pathCode);
    Folder folder;
    if (code == ERROR_SUCCESS) code = openPath(target, names, folder);
    if (code == ERROR_FILE_NOT_FOUND && target.depth == 0 && names.empty()) code = ERROR_SUCCESS;
    return answer(code == ERROR_SUCCESS ? openHandle(target, names, std::move(folder), result) : code);
}

LSTATUS RegCreateKeyExA(HKEY key, const char* name, DWORD, char* classText, DWORD, REGSAM,
                        const SECURITY_ATTRIBUTES*, HKEY* result, DWORD* disposition) {
    if (result == nullptr) return answer(ERROR_INVALID_PARAMETER);
    std::vector<std::string_view> names;
    const DWORD pathCode = splitPath(name, names);
    Target target;
    DWORD code = resolve(key, pathCode == ERROR_SUCCESS, target);
    if (code == ERROR_INVALID_HANDLE) return answer(code);
    *result = nullptr;
    if (pathCode != ERROR_SUCCESS) return answer(pathCode);
    Folder folder;
    bool created = false;
    if (code == ERROR_SUCCESS) code = createPath(target, names, classText, folder, created);
    if (code == ERROR_SUCCESS) code = openHandle(target, names, std::move(folder), result);
    if (code == ERROR_SUCCESS) giveOut(disposition, created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY);
    return answer(code);
}

LSTATUS RegCloseKey(HKEY key) {
    const bool isOpen = rootOf(key) != rootCount || openKeys.close(key) != nullptr;
    return answer(isOpen ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

LSTATUS RegDeleteKeyA(HKEY key, const char* name) {
    Target target;
    DWORD code = resolve(key, false, target);
    if (code == ERROR_INVALID_HANDLE) return answer(code);
    if (name == nullptr) return answer(ERROR_INVALID_PARAMETER);
    std::vector<std::string_view> names;
    const DWORD pathCode = splitPath(name, names);
    if (pathCode != ERROR_SUCCESS) return answer(pathCode);
    if (code != ERROR_SUCCESS) return answer(code);
    if (names.empty()) return answer(deleteItself(target));
    const std::string_view last = names.back();
    names.pop_back();
    Folder parent;
    code = openPath(target, names, parent);
    return answer(code == ERROR_SUCCESS ? deleteKey(parent, last) : code);
}

LSTATUS RegDeleteValueA(HKEY key, const char* name) {
    Target target;
    const DWORD code = resolve(key, false, target);
    return answer(code == ERROR_SUCCESS ? deleteValue(target.folder(), name == nullptr ? "" : name) : code);
}

LSTATUS RegEnumKeyA(HKEY key, DWORD index, char* name, DWORD size) {
    Target target;
    DWORD code = resolve(key, false, target);
    if (code == ERROR_FILE_NOT_FOUND) return answer(ERROR_NO_MORE_ITEMS);
    if (code != ERROR_SUCCESS) return answer(code);
    Listing ownListing;
    Listing& listing = target.open != nullptr ? target.open->listing : ownListing;
    code = refresh(target.folder(), listing);
    if (code != ERROR_SUCCESS) return answer(code);
    if (index >= listing.names.size()) return answer(ERROR_NO_MORE_ITEMS);
    if (name == nullptr) return answer(ERROR_INVALID_PARAMETER);
    return answer(copyText(listing.names[index], name, size));
}

LSTATUS RegSetValueExA(HKEY key, const char* name, DWORD, DWORD type, const BYTE* data, DWORD size) {
    const std::string_view spelled = name == nullptr ? "" : name;
    Target target;
    const bool tooLong = spelled.size() > longestValueName || size > largestValue;
    const DWORD code = resolve(key, !tooLong, target);
    if (code == ERROR_INVALID_HANDLE || code == ERROR_KEY_DELETED) return answer(code);
    if (tooLong) return answer(ERROR_INVALID_PARAMETER);
    if (data == nullptr && size != 0) return answer(ERROR_NOACCESS);
    if (code != ERROR_SUCCESS) return answer(code);
    Record value{type, std::string(spelled), {}};
    if (size != 0) value.data.assign(reinterpret_cast<const char*>(data), size);
    return answer(writeValue(target.folder(), value));
}

LSTATUS RegQueryValueExA(HKEY key, const char* name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    Target target;
    DWORD code = resolve(key, false, target);
    if (code == ERROR_INVALID_HANDLE) return answer(code);
    if (data != nullptr && size == nullptr) return answer(ERROR_INVALID_PARAMETER);
    Record value;
    if (code == ERROR_SUCCESS) code = readValue(target.folder(), name == nullptr ? "" : name, value);
    if (code != ERROR_SUCCESS) {
        if (code != ERROR_FILE_NOT_FOUND) return answer(code);
        giveOut(type, REG_NONE);
        if (data == nullptr) giveOut(size, 0U);
        return answer(code);
    }
    giveOut(type, value.type);
    const std::size_t room = data == nullptr ? value.data.size() : *size;
    giveOut(size, value.data.size());
    if (room < value.data.size()) return answer(ERROR_MORE_DATA);
    if (data == nullptr || value.data.empty()) return answer(ERROR_SUCCESS);
    std::memcpy(data, value.data.data(), value.data.size());
    if (isText(value.type) && value.data.back() != '\0' && room > value.data.size()) {
        data[value.data.size()] = 0;
    }
    return answer(ERROR_SUCCESS);
}

LSTATUS RegFlushKey(HKEY key) {
    constexpr std::size_t foldersAboveRoots = 3;  // registry, tarnutil, the data folder
    Target target;
    const DWORD code = resolve(key, false, target);
    if (code == ERROR_FILE_NOT_FOUND) return answer(ERROR_SUCCESS);
    return answer(code == ERROR_SUCCESS ? flush(target.folder(), target.depth + foldersAboveRoots) : code);
}

LSTATUS RegQueryInfoKeyA(HKEY key, char* classText, DWORD* classSize, DWORD*, DWORD* subKeys,
                         DWORD* longestSubKey, DWORD* longestClass, DWORD* values, DWORD* longestNameOfValue,
                         DWORD* largestSizeOfValue, DWORD* securityDescriptor, FILETIME* lastWriteTime) {
    Target target;
    DWORD code = resolve(key, false, target);
    if (classText != nullptr && classSize == nullptr) return answer(ERROR_INVALID_PARAMETER);
    Record record;
    Measures keys;
    Measures contents;
    const bool isThere = code != ERROR_FILE_NOT_FOUND;
    if (code == ERROR_SUCCESS) code = readKeyRecord(target.folder(), record);
    if (code == ERROR_SUCCESS) code = measureKeys(target.folder(), keys);
    if (code == ERROR_SUCCESS) code = measureValues(target.folder(), contents);
    if (isThere && code != ERROR_SUCCESS) return answer(code);
    giveOut(subKeys, keys.count);
    giveOut(longestSubKey, keys.longestName);
    giveOut(longestClass, keys.longestData);
    giveOut(values, contents.count);
    giveOut(longestNameOfValue, contents.longestName);
    giveOut(largestSizeOfValue, contents.longestData);
    giveOut(securityDescriptor, 0U);
    if (lastWriteTime != nullptr) *lastWriteTime = fileTime(isThere ? changeTime(target.folder()) : 0);
    const DWORD room = classText == nullptr ? 0 : *classSize;
    giveOut(classSize, record.data.size());
    return answer(classText == nullptr ? ERROR_SUCCESS : copyText(record.data, classText, room));
}
