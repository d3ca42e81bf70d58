// Win32 file names in the system's spelling.  Tests: tests/platform/files_test.cpp.

#include "platform/files/path.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <string_view>

namespace tarn {

std::string systemPath(const char* name) {
    std::string path = name == nullptr ? "" : name;
    std::replace(path.begin(), path.end(), '\\', '/');
    const std::size_t lastPart = path.rfind('/') + 1;  // 0 for a path without a folder
    const std::string part = path.substr(lastPart);
    if (part == "." || part == "..") return path;
    const std::size_t kept = part.find_last_not_of(". ") + 1;  // 0 for a part of dots and blanks alone
    path.resize(lastPart + kept);
    return path;
}

std::string folderOf(const std::string& path) {
    if (path.empty()) return path;
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool isReservedName(const std::string& path) {
    return path.find_first_of("*?\"<>|") != std::string::npos;
}

std::string linkedFile(std::string path) {
    constexpr int mostLinks = 40;  // the system's own limit; a longer chain then fails to open
    for (int i = 0; i < mostLinks; ++i) {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length <= 0) break;
        const std::string_view name(target, static_cast<std::size_t>(length));
        path = name.front() == '/' ? std::string(name) : folderOf(path).append("/").append(name);
    }
    return path;
}

std::string temporaryName(const std::string& path) {
    constexpr std::size_t longestKept = 200;  // of the 255 that file systems have room for
    const std::size_t slash = path.rfind('/');
    const std::string name = path.substr(slash == std::string::npos ? 0 : slash + 1, longestKept);
    return folderOf(path).append("/.").append(name).append(".new");
}

}  // namespace tarn
