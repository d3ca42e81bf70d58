// Keys as folders, reached step by step from open folder to open folder, so that no path grows with the depth
// of a key and no symbolic link is followed below a root.  A key is changed under the lock of its folder, which is
// the temporary file of platform/files/replacement.h; who needs two locks takes the upper one first.
//
// Tests: tests/platform/registry_test.cpp.

#define _FILE_OFFSET_BITS 64  // file numbers beyond 32 bits also in 32-bit code

#include "platform/registry/store.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>

#include "platform/error_codes.h"
#include "platform/files/replacement.h"
#include "platform/registry/names.h"

namespace tarn::registry {

namespace {

// On disk.
constexpr const char* keyFile = "key";
constexpr const char* temporaryFile = ".new";
constexpr const char* rootFolders[rootCount] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",
                                                "HKEY_LOCAL_MACHINE", "HKEY_USERS"};
constexpr mode_t folderPermissions = 0700;
constexpr unsigned filePermissions = 0600;

// Something else in the place of a folder or file of ours is no missing path but a damaged registry.
DWORD storeCode(DWORD code) {
    const bool foreign =
        code == ERROR_PATH_NOT_FOUND || code == ERROR_FILE_CORRUPT || code == ERROR_FILE_EXISTS;
    return foreign ? ERROR_REGISTRY_CORRUPT : code;
}
DWORD storeError() {
    return storeCode(fromErrno(errno));
}

DWORD openFolder(int parent, const char* entry, Descriptor& folder) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    folder = Descriptor(retried([&] { return ::openat(parent, entry, flags); }));
    return folder ? ERROR_SUCCESS : storeError();
}

bool exists(int folder, const std::string& entry) {
    struct stat status {};
    return ::fstatat(folder, entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

// What was not found in a folder that is no key any more counts as that.
DWORD notFoundIn(const Folder& key, DWORD code) {
    return code == ERROR_FILE_NOT_FOUND && checkAlive(key) != ERROR_SUCCESS ? ERROR_KEY_DELETED : code;
}

DWORD listEntries(int folder, std::vector<std::string>& entries) {
    Descriptor opened;
    const DWORD code = openFolder(folder, ".", opened);
    if (code != ERROR_SUCCESS) return code;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(opened.number()), ::closedir);
    if (stream == nullptr) return storeError();
    static_cast<void>(opened.release());  // the stream closes it
    for (errno = 0;; errno = 0) {
        const dirent* const entry = ::readdir(stream.get());
        if (entry == nullptr) return errno == 0 ? ERROR_SUCCESS : storeError();
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") entries.emplace_back(name);
    }
}

DWORD readRecord(int folder, const std::string& entry, RecordKind kind, Record& record) {
    std::string bytes;
    const DWORD code = readWhole(folder, entry, O_NOFOLLOW, largestRecord, bytes);
    if (code != ERROR_SUCCESS) return storeCode(code);
    return decodeRecord(kind, bytes, record) ? ERROR_SUCCESS : ERROR_REGISTRY_CORRUPT;
}

// Opens the key that an entry holds, with its record.
DWORD openEntry(int parent, const std::string& entry, Folder& key, Record& record) {
    Descriptor opened;
    DWORD code = openFolder(parent, entry.c_str(), opened);
    if (code == ERROR_SUCCESS) code = readRecord(opened.number(), keyFile, RecordKind::key, record);
    if (code != ERROR_SUCCESS) return code;
    if (keyEntry(record.name) != entry) return ERROR_REGISTRY_CORRUPT;
    key = {std::move(opened), false};
    return ERROR_SUCCESS;
}

// Takes a key's lock and makes sure that it still is one.
DWORD lock(Replacement& replacement, const Folder& key) {
    const DWORD code = replacement.begin(key.number(), temporaryFile, filePermissions);
    if (checkAlive(key) != ERROR_SUCCESS) return ERROR_KEY_DELETED;
    return storeCode(code);
}

// Removes what is ours from a folder that is no key, and from folders in it that are none either.  Whatever
// can't be removed stays, and the folder with it.
void removeRemains(int folder, std::size_t deepest) {
    std::vector<std::string> entries;
    if (deepest == 0 || listEntries(folder, entries) != ERROR_SUCCESS) return;
    for (const std::string& entry : entries) {
        if (isValueEntry(entry)) ::unlinkat(folder, entry.c_str(), 0);
        Descriptor below;
        if (!isKeyEntry(entry) || openFolder(folder, entry.c_str(), below) != ERROR_SUCCESS) continue;
        if (exists(below.number(), keyFile)) continue;
        removeRemains(below.number(), deepest - 1);
        ::unlinkat(below.number(), temporaryFile, 0);
        ::unlinkat(folder, entry.c_str(), AT_REMOVEDIR);
    }
}

// Answers ERROR_ACCESS_DENIED for a key that can't go: one with keys below it or with files of others.
DWORD checkDeletable(int folder) {
    std::vector<std::string> entries;
    const DWORD code = listEntries(folder, entries);
    if (code != ERROR_SUCCESS) return code;
    const bool deletable = std::all_of(entries.begin(), entries.end(), [&](const std::string& entry) {
        if (isKeyEntry(entry)) return !exists(folder, entry + "/" + keyFile);
        return isValueEntry(entry) || entry == keyFile || entry == temporaryFile;
    });
    return deletable ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

// Calls with the record of every key below.
template <typename Use>
DWORD forEachKey(const Folder& key, Use use) {
    std::vector<std::string> entries;
    DWORD code = listEntries(key.number(), entries);
    if (code != ERROR_SUCCESS) return notFoundIn(key, code);
    for (const std::string& entry : entries) {
        if (!isKeyEntry(entry)) continue;
        Folder below;
        Record record;
        code = openEntry(key.number(), entry, below, record);
        if (code == ERROR_FILE_NOT_FOUND) continue;  // remains, or deleted meanwhile
        if (code != ERROR_SUCCESS) return code;
        use(record);
    }
    return ERROR_SUCCESS;
}

// Answers the folder of the roots, empty where the environment names no data folder.
std::string registryPath() {
    const auto absolute = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::string(value != nullptr && *value == '/' ? value : "");
    };
    std::string data = absolute("XDG_DATA_HOME");
    if (data.empty()) {
        data = absolute("HOME");
        if (data.empty()) return data;
        data += "/.local/share";
    }
    return data + "/tarnutil/registry";
}

// Makes a folder with those above it that are missing.
void makeFolders(const std::string& path) {
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        ::mkdir(path.substr(0, end).c_str(), folderPermissions);
    }
    ::mkdir(path.c_str(), folderPermissions);
}

}  // namespace

// ---------------------------------------------------------------------------------------------------- keys

DWORD openRoot(std::size_t root, bool create, Folder& folder) {
    std::string path = registryPath();
    if (path.empty()) return ERROR_PATH_NOT_FOUND;
    path.append("/").append(rootFolders[root]);
    Descriptor opened;
    DWORD code = openFolder(AT_FDCWD, path.c_str(), opened);
    if (code == ERROR_FILE_NOT_FOUND && create) {
        makeFolders(path);
        code = openFolder(AT_FDCWD, path.c_str(), opened);
    }
    folder = {std::move(opened), true};
    return code;
}

DWORD openKey(const Folder& parent, std::string_view name, Folder& key) {
    if (name.size() > longestKeyName) return ERROR_FILE_NOT_FOUND;
    Record record;
    return openEntry(parent.number(), keyEntry(name), key, record);
}

DWORD createKey(const Folder& parent, std::string_view name, std::string_view classText, Folder& key,
                bool& created) {
    created = false;
    DWORD code = openKey(parent, name, key);
    if (code != ERROR_FILE_NOT_FOUND) return code;
    Replacement parentLock;
    code = lock(parentLock, parent);
    if (code == ERROR_SUCCESS) code = openKey(parent, name, key);
    if (code != ERROR_FILE_NOT_FOUND) return code;

    const std::string entry = keyEntry(name);
    Descriptor remains;
    if (openFolder(parent.number(), entry.c_str(), remains) == ERROR_SUCCESS) {
        removeRemains(remains.number(), deepestKey);
        ::unlinkat(remains.number(), temporaryFile, 0);
        ::unlinkat(parent.number(), entry.c_str(), AT_REMOVEDIR);
    }
    Descriptor made;
    if (::mkdirat(parent.number(), entry.c_str(), folderPermissions) != 0) return storeError();
    code = openFolder(parent.number(), entry.c_str(), made);
    if (code != ERROR_SUCCESS) return code;
    Replacement record;
    code = record.begin(made.number(), temporaryFile, filePermissions);
    if (code != ERROR_SUCCESS) return storeCode(code);
    const Record content{0, std::string(name), std::string(classText)};
    code = record.commit(keyFile, encodeRecord(RecordKind::key, content), nullptr);
    if (code != ERROR_SUCCESS) return storeCode(code);
    key = {std::move(made), false};
    created = true;
    return ERROR_SUCCESS;
}

DWORD deleteKey(const Folder& parent, const std::string& entry) {
    Replacement parentLock;
    DWORD code = lock(parentLock, parent);
    Folder key;
    if (code == ERROR_SUCCESS) code = openFolder(parent.number(), entry.c_str(), key.descriptor);
    if (code == ERROR_SUCCESS) code = checkAlive(key) == ERROR_SUCCESS ? code : ERROR_FILE_NOT_FOUND;
    if (code != ERROR_SUCCESS) return code;
    {
        Replacement keyLock;
        code = lock(keyLock, key);
        if (code == ERROR_SUCCESS) code = checkDeletable(key.number());
        if (code != ERROR_SUCCESS) return code;
        if (::unlinkat(key.number(), keyFile, 0) != 0) return storeError();
        removeRemains(key.number(), deepestKey);
    }
    ::unlinkat(parent.number(), entry.c_str(), AT_REMOVEDIR);  // without its record it is no key anyhow
    return ERROR_SUCCESS;
}

DWORD checkAlive(const Folder& key) {
    return key.isRoot || exists(key.number(), keyFile) ? ERROR_SUCCESS : ERROR_KEY_DELETED;
}

DWORD reopen(const Folder& key, Folder& copy) {
    copy.isRoot = key.isRoot;
    return openFolder(key.number(), ".", copy.descriptor);
}

DWORD openParent(const Folder& key, bool isRoot, Folder& parent) {
    parent.isRoot = isRoot;
    return openFolder(key.number(), "..", parent.descriptor);
}

bool isEntryOf(const Folder& parent, const std::string& entry, const Folder& key) {
    struct stat named {};
    struct stat opened {};
    return ::fstatat(parent.number(), entry.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           ::fstat(key.number(), &opened) == 0 && named.st_dev == opened.st_dev &&
           named.st_ino == opened.st_ino;
}

DWORD readKeyRecord(const Folder& key, Record& record) {
    if (key.isRoot) return ERROR_SUCCESS;
    const DWORD code = readRecord(key.number(), keyFile, RecordKind::key, record);
    return code == ERROR_FILE_NOT_FOUND ? ERROR_KEY_DELETED : code;
}

DWORD listKeys(const Folder& key, std::vector<std::string>& names) {
    std::vector<std::pair<std::string, std::string>> found;  // folded, spelled
    const DWORD code = forEachKey(
        key, [&](const Record& record) { found.emplace_back(foldedName(record.name), record.name); });
    std::sort(found.begin(), found.end());
    names.clear();
    for (auto& [folded, spelled] : found) names.push_back(std::move(spelled));
    return code;
}

DWORD measureKeys(const Folder& key, Measures& measures) {
    return forEachKey(key, [&](const Record& record) { measures.add(record); });
}

// -------------------------------------------------------------------------------------------------- values

DWORD readValue(const Folder& key, std::string_view name, Record& value) {
    const DWORD code = readRecord(key.number(), valueEntry(name), RecordKind::value, value);
    if (code != ERROR_SUCCESS) return notFoundIn(key, code);
    return foldedName(value.name) == foldedName(name) ? checkAlive(key) : ERROR_REGISTRY_CORRUPT;
}

DWORD writeValue(const Folder& key, const Record& value) {
    Replacement replacement;
    const DWORD code = lock(replacement, key);
    if (code != ERROR_SUCCESS) return code;
    return storeCode(
        replacement.commit(valueEntry(value.name), encodeRecord(RecordKind::value, value), nullptr));
}

DWORD deleteValue(const Folder& key, std::string_view name) {
    if (checkAlive(key) != ERROR_SUCCESS) return ERROR_KEY_DELETED;
    return ::unlinkat(key.number(), valueEntry(name).c_str(), 0) == 0 ? ERROR_SUCCESS : storeError();
}

DWORD measureValues(const Folder& key, Measures& measures) {
    std::vector<std::string> entries;
    DWORD code = listEntries(key.number(), entries);
    if (code != ERROR_SUCCESS) return notFoundIn(key, code);
    for (const std::string& entry : entries) {
        if (!isValueEntry(entry)) continue;
        Record value;
        code = readRecord(key.number(), entry, RecordKind::value, value);
        if (code == ERROR_FILE_NOT_FOUND) continue;  // deleted meanwhile
        if (code != ERROR_SUCCESS) return code;
        measures.add(value);
    }
    return ERROR_SUCCESS;
}

DWORD flush(const Folder& key, std::size_t foldersAbove) {
    Folder current;
    DWORD code = reopen(key, current);
    for (std::size_t i = 0; code == ERROR_SUCCESS; ++i) {
        if (retried([&] { return ::fsync(current.number()); }) != 0) return storeError();
        if (i == foldersAbove) break;
        Folder above;
        code = openParent(current, true, above);
        current = std::move(above);
    }
    return code;
}

}  // namespace tarn::registry
