// Keys as folders, reached step by step from open folder to open folder, so that no path grows with the depth
// of a key and no symbolic link is followed below a root.  A key is changed under the lock of its folder,
// which is the temporary file of platform/files/replacement.h; who needs two locks takes the upper one first.
//
// Tests: tests/platform/registry_test.cpp, tests/faults/system_calls_test.cpp.

#define _FILE_OFFSET_BITS 64  // file numbers beyond 32 bits also in 32-bit code

#include "platform/registry/store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/error_codes.h"
#include "platform/files/replacement.h"
#include "platform/registry/folders.h"
#include "platform/registry/names.h"

namespace tarn::registry {

namespace {

// On disk.
constexpr const char* keyFile = "key";
constexpr const char* temporaryFile = ".new";
constexpr const char* madeFolder = ".made";
constexpr const char* rootFolders[rootCount] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",
                                                "HKEY_LOCAL_MACHINE", "HKEY_USERS"};
constexpr mode_t folderPermissions = 0700;
constexpr unsigned filePermissions = 0600;

// What was not found in a folder that is no key any more counts as that.
DWORD notFoundIn(const Folder& key, DWORD code) {
    return code == ERROR_FILE_NOT_FOUND && checkAlive(key) != ERROR_SUCCESS ? ERROR_KEY_DELETED : code;
}

bool isFolder(int folder, const std::string& entry) {
    Descriptor opened;
    return openFolder(folder, entry.c_str(), opened) == ERROR_SUCCESS;
}

DWORD readRecord(int folder, const std::string& entry, RecordKind kind, Record& record) {
    std::string bytes;
    const DWORD code = readWhole(folder, entry, O_NOFOLLOW, largestRecord, bytes);
    if (code == ERROR_ACCESS_DENIED && isFolder(folder, entry)) return ERROR_REGISTRY_CORRUPT;
    if (code != ERROR_SUCCESS) return storeCode(code);
    return decodeRecord(kind, bytes, record) ? ERROR_SUCCESS : ERROR_REGISTRY_CORRUPT;
}

// Opens the key of an entry, with its record.  A link, a file and a folder without a record are no key and
// answer ERROR_FILE_NOT_FOUND; a damaged record, or that of another name, ERROR_REGISTRY_CORRUPT with the
// folder opened.
DWORD openEntry(int parent, const std::string& entry, Folder& key, Record& record) {
    DWORD code = openFolder(parent, entry.c_str(), key.descriptor);
    if (code == ERROR_REGISTRY_CORRUPT) return ERROR_FILE_NOT_FOUND;
    if (code == ERROR_SUCCESS) code = readRecord(key.number(), keyFile, RecordKind::key, record);
    if (code != ERROR_SUCCESS) return code;
    const bool isItsOwn = isKeyName(record.name) && keyEntry(record.name) == entry;
    return isItsOwn ? ERROR_SUCCESS : ERROR_REGISTRY_CORRUPT;
}

// Answers the entry of a key by its name, or by the one that it is listed under when it is damaged.
std::string findEntry(const Folder& parent, std::string_view name) {
    std::string entry = keyEntry(name);
    const std::string spelled = entrySpelling(name);
    if (spelled.empty() || exists(parent.number(), entry)) return entry;
    Folder key;
    Record record;
    const DWORD code = openEntry(parent.number(), spelled, key, record);
    return code == ERROR_REGISTRY_CORRUPT ? spelled : entry;
}

// Takes a key's lock and makes sure that it still is one.
DWORD lock(Replacement& replacement, const Folder& key) {
    const DWORD code = replacement.begin(key.number(), temporaryFile, filePermissions);
    if (checkAlive(key) != ERROR_SUCCESS) return ERROR_KEY_DELETED;
    return storeCode(code);
}

// Calls with the record of every key below.  One whose record can't be read comes with the name that its
// entry spells.
template <typename Use>
DWORD forEachKey(const Folder& key, Use use) {
    std::vector<std::string> entries;
    const DWORD listed = listEntries(key.number(), entries);
    if (listed != ERROR_SUCCESS) return notFoundIn(key, listed);
    for (const std::string& entry : entries) {
        if (!isKeyEntry(entry)) continue;
        Folder below;
        Record record;
        const DWORD code = openEntry(key.number(), entry, below, record);
        if (code == ERROR_FILE_NOT_FOUND) continue;  // no key, or deleted meanwhile
        if (code == ERROR_TOO_MANY_OPEN_FILES || code == ERROR_NOT_ENOUGH_MEMORY) return code;
        if (code != ERROR_SUCCESS) record = {0, nameSpelledBy(entry), {}};
        use(record);
    }
    return ERROR_SUCCESS;
}

// Makes a key's folder, with its record, under a name that is no key's yet.
DWORD makeFolder(const Folder& parent, std::string_view name, std::string_view classText, Folder& key) {
    if (::mkdirat(parent.number(), madeFolder, folderPermissions) != 0) {
        removeAll(parent.number(), madeFolder);  // of a dead process
        if (::mkdirat(parent.number(), madeFolder, folderPermissions) != 0) return storeError();
    }
    DWORD code = openFolder(parent.number(), madeFolder, key.descriptor);
    if (code != ERROR_SUCCESS) return code;
    Replacement record;
    code = record.begin(key.number(), temporaryFile, filePermissions);
    if (code != ERROR_SUCCESS) return storeCode(code);
    const Record content{0, std::string(name), std::string(classText)};
    return storeCode(record.commit(keyFile, encodeRecord(RecordKind::key, content), nullptr));
}

// Gives a folder that was made its name.  What had that name and is no key is removed, but not before this
// has succeeded.
DWORD placeFolder(const Folder& parent, const std::string& entry) {
    const int folder = parent.number();
    if (::renameat(folder, madeFolder, folder, entry.c_str()) == 0) return ERROR_SUCCESS;
    if (!exists(folder, entry)) return storeError();
    std::string former;
    DWORD code = moveAside(folder, entry, folder, 0, former);
    if (code != ERROR_SUCCESS) return code;
    if (::renameat(folder, madeFolder, folder, entry.c_str()) != 0) {
        code = storeError();
        ::renameat(folder, former.c_str(), folder, entry.c_str());
        return code;
    }
    removeAll(folder, former);
    return ERROR_SUCCESS;
}

// Ends a key by removing its record.  ERROR_ACCESS_DENIED if it has keys below it; nobody can open those of a
// damaged one, so that they don't count.
DWORD endKey(const Folder& key, bool isDamaged) {
    Replacement keyLock;
    DWORD code = lock(keyLock, key);
    Measures keys;
    if (code == ERROR_SUCCESS && !isDamaged) code = measureKeys(key, keys);
    if (code != ERROR_SUCCESS) return code;
    if (keys.count != 0) return ERROR_ACCESS_DENIED;
    return ::unlinkat(key.number(), keyFile, 0) == 0 || errno == EISDIR ? ERROR_SUCCESS : storeError();
}

// Removes a folder in the place of a value, whose name no file could take.
DWORD removeFolder(int folder, const std::string& entry) {
    Descriptor opened;
    const DWORD code = openFolder(folder, entry.c_str(), opened);
    if (code == ERROR_SUCCESS) removeAll(folder, entry);
    return code == ERROR_FILE_NOT_FOUND || code == ERROR_REGISTRY_CORRUPT ? ERROR_SUCCESS : code;
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

// Makes a folder with those above it that are missing, and writes each through to the disk, since a flush of
// a key only reaches up to the data folder.
void makeFolders(const std::string& path) {
    for (std::size_t end = 0; end != std::string::npos;) {
        end = path.find('/', end + 1);
        const std::string folder = path.substr(0, end);
        if (::mkdir(folder.c_str(), folderPermissions) == 0) syncFolder(AT_FDCWD, folder + "/..");
    }
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
    Record record;
    return openEntry(parent.number(), findEntry(parent, name), key, record);
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
    code = makeFolder(parent, name, classText, key);
    if (code == ERROR_SUCCESS) code = placeFolder(parent, keyEntry(name));
    if (code != ERROR_SUCCESS) removeAll(parent.number(), madeFolder);
    created = code == ERROR_SUCCESS;
    return code;
}

DWORD deleteKey(const Folder& parent, std::string_view name) {
    Replacement parentLock;
    DWORD code = lock(parentLock, parent);
    if (code != ERROR_SUCCESS) return code;
    const std::string entry = findEntry(parent, name);
    Folder key;
    Record record;
    code = openEntry(parent.number(), entry, key, record);
    const bool isDamaged = code == ERROR_REGISTRY_CORRUPT;
    if (code == ERROR_SUCCESS || isDamaged) code = endKey(key, isDamaged);
    if (code == ERROR_SUCCESS) removeAll(parent.number(), entry);  // what stays is no key anyhow
    return code;
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

bool isEntryOf(const Folder& parent, std::string_view name, const Folder& key) {
    struct stat named {};
    struct stat opened {};
    return ::fstatat(parent.number(), keyEntry(name).c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
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
    DWORD code = lock(replacement, key);
    const std::string entry = valueEntry(value.name);
    if (code == ERROR_SUCCESS) code = removeFolder(key.number(), entry);
    if (code != ERROR_SUCCESS) return code;
    return storeCode(replacement.commit(entry, encodeRecord(RecordKind::value, value), nullptr));
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
    DWORD code = ERROR_SUCCESS;
    std::string folder = ".";
    for (std::size_t i = 0; i <= foldersAbove && code == ERROR_SUCCESS; ++i, folder += "/..")
        code = syncFolder(key.number(), folder);
    return storeCode(code);
}

}  // namespace tarn::registry
