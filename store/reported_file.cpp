// A file is read in one piece, and in pieces of 64 KiB for a caller that wants to follow.
// Tests: tests/present/menu_tree_test.cpp.

#include "store/reported_file.h"

#include <algorithm>
#include <string>

#include "store/file_handle.h"
#include "store/whole_file.h"

namespace tarn {

namespace {

constexpr std::size_t progressStep = 65536;

void fail(LoadReport& report, LoadError error) {
    report.error = error;
    report.system = GetLastError();
}

bool isCancelled(const ProgressFunction& progress, const LoadProgress& state) {
    try {
        return progress && progress(state) == Next::cancel;
    } catch (...) {
        return true;
    }
}

bool measure(HANDLE file, std::size_t longest, LoadReport& report) {
    DWORD high = 0;
    SetLastError(ERROR_SUCCESS);
    const DWORD low = GetFileSize(file, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) {
        fail(report, LoadError::cantRead);
        return false;
    }
    report.fileSize = std::uint64_t{high} << 32 | low;
    if (report.fileSize > std::min(longest, longestReadable)) report.error = LoadError::tooLarge;
    return report.error == LoadError::none;
}

// Fills the buffer as far as the file reaches, and counts the bytes in the report's offset.
void readPieces(HANDLE file, char* buffer, std::size_t size, const ProgressFunction& progress,
                LoadReport& report) {
    const std::size_t step = progress ? progressStep : size;
    for (std::size_t done = 0; done < size;) {
        DWORD moved = 0;
        const auto wanted = static_cast<DWORD>(std::min(step, size - done));
        if (ReadFile(file, buffer + done, wanted, &moved, nullptr) == FALSE)
            return fail(report, LoadError::cantRead);
        if (moved == 0) return;
        report.offset = done += moved;
        if (isCancelled(progress, {done, size})) {
            report.error = LoadError::cancelled;
            return;
        }
    }
}

}  // namespace

ReportedFile readReported(std::string_view name, std::size_t room, DWORD longest,
                          const ProgressFunction& progress, LoadReport& report) {
    ReportedFile read;
    if (name.empty() || name.find('\0') != std::string_view::npos) {
        report.error = LoadError::badName;
        return read;
    }
    const FileHandle file(std::string(name).c_str(), GENERIC_READ, 0, OPEN_EXISTING,
                          FILE_FLAG_SEQUENTIAL_SCAN);
    if (!file.isOpen()) {
        fail(report, LoadError::cantOpen);
        return read;
    }
    if (!measure(file.get(), longest, report)) return read;
    const auto size = static_cast<std::size_t>(report.fileSize);
    read.data = std::make_unique_for_overwrite<char[]>(size + room);
    readPieces(file.get(), read.data.get(), size, progress, report);
    if (report.error != LoadError::none) {
        read.data.reset();
        return read;
    }
    read.size = static_cast<std::size_t>(report.offset);
    std::fill(read.data.get() + read.size, read.data.get() + size + room, '\0');
    return read;
}

}  // namespace tarn
