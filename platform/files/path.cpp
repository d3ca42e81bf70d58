// Win32 file names in the system's spelling.  Tests: tests/platform/files_test.cpp.

#include "platform/files/path.h"

#include <algorithm>

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

}  // namespace tarn
