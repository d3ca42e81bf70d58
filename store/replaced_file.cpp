// Two programs that save the same file at once write two temporary files, and the last move wins.  So the name
// has the moment and a place in memory in it, which no two programs share.
// Tests: tests/store/keyed_file_test.cpp.

#include "store/replaced_file.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace tarn {

namespace {

std::string temporaryName(const std::string& target, const void* own) {
    constexpr std::size_t longestKept = 200;                   // of the 255 that file systems have room for
    const std::size_t name = target.find_last_of("/\\:") + 1;  // 0 for a path without a folder
    const auto moment = std::chrono::steady_clock::now().time_since_epoch().count();
    const auto place = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(own));
    return target.substr(0, name) + '.' + target.substr(name, longestKept) + '.' +
           std::to_string(moment ^ place) + ".new";
}

}  // namespace

ReplacedFile::ReplacedFile(std::string target)
    : target_(std::move(target)), temporary_(temporaryName(target_, this)) {}

ReplacedFile::~ReplacedFile() {
    if (!isMoved_) DeleteFileA(temporary_.c_str());
}

DWORD ReplacedFile::replace(Durability durability) {
    DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;
    if (durability == Durability::durable) flags |= MOVEFILE_WRITE_THROUGH;
    isMoved_ = MoveFileExA(temporary_.c_str(), target_.c_str(), flags) != FALSE;
    return isMoved_ ? ERROR_SUCCESS : GetLastError();
}

}  // namespace tarn
