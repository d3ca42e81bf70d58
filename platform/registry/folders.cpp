// A tree of folders is removed without recursion and with few descriptors, however deep it is: a folder in a
// folder is lifted to the top under a name of its own, where it waits for its turn.
//
// Tests: tests/platform/registry_test.cpp, tests/faults/system_calls_test.cpp.

#define _FILE_OFFSET_BITS 64  // file numbers beyond 32 bits also in 32-bit code

#include "platform/registry/folders.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/error_codes.h"

namespace tarn::registry {

namespace {

std::string nameAside(std::size_t number) {
    return ".old" + std::to_string(number);
}

bool removeFileOrEmptyFolder(int folder, const std::string& entry) {
    return ::unlinkat(folder, entry.c_str(), 0) == 0 || ::unlinkat(folder, entry.c_str(), AT_REMOVEDIR) == 0;
}

// Removes what a folder of `parent` holds, and lifts the folders in it, by the names that are added to
// `lifted`.
void emptyFolder(int parent, const std::string& entry, std::vector<std::string>& lifted) {
    Descriptor folder;
    std::vector<std::string> entries;
    if (openFolder(parent, entry.c_str(), folder) != ERROR_SUCCESS) return;
    if (listEntries(folder.number(), entries) != ERROR_SUCCESS) return;
    for (const std::string& each : entries) {
        if (removeFileOrEmptyFolder(folder.number(), each)) continue;
        std::string name;
        const DWORD code = moveAside(folder.number(), each, parent, lifted.size(), name);
        if (code == ERROR_SUCCESS) lifted.push_back(name);
    }
}

}  // namespace

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

bool exists(int folder, const std::string& entry) {
    struct stat status {};
    return ::fstatat(folder, entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

DWORD moveAside(int from, const std::string& entry, int to, std::size_t first, std::string& name) {
    for (std::size_t number = first;; ++number) {
        name = nameAside(number);
        if (exists(to, name)) continue;
        return ::renameat(from, entry.c_str(), to, name.c_str()) == 0 ? ERROR_SUCCESS : storeError();
    }
}

void removeAll(int folder, const std::string& entry) {
    std::vector<std::string> waiting;
    for (std::size_t number = 0; exists(folder, nameAside(number)); ++number)
        waiting.push_back(nameAside(number));
    waiting.push_back(entry);
    while (!waiting.empty()) {
        const std::string current = std::exchange(waiting.back(), {});
        waiting.pop_back();
        if (removeFileOrEmptyFolder(folder, current)) continue;
        emptyFolder(folder, current, waiting);
        ::unlinkat(folder, current.c_str(), AT_REMOVEDIR);
    }
}

}  // namespace tarn::registry
