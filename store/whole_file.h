#pragma once

// The library's one way to read or write a file in one piece; users want store/file_tools.h.
//
// Threads: no shared state.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/win32.h"

namespace tarn {

// How far an operation on a whole file came.
enum class FileResult {
    done,         // all of it
    cantOpen,     // the file can't be opened or created
    cantMeasure,  // its length can't be asked, or is above the caller's limit
    cantMove,     // reading or writing failed
};

struct WholeFile {
    FileResult result = FileResult::cantOpen;
    std::unique_ptr<char[]> data;  // NULL after cantOpen and cantMeasure
    std::size_t length = 0;        // bytes that the file has; `data` holds `room` zero bytes more
    std::size_t size = 0;          // bytes that were read, fewer than `length` if the file shrank meanwhile

    [[nodiscard]] bool isRead() const { return result == FileResult::done; }
};

constexpr DWORD longestSigned = 0x7FFFFFFF;    // what the callers with 32-bit signed sizes can take
constexpr DWORD longestUnsigned = 0xFFFFFFF0;  // what one read can take

// The longest file that readWholeFile can ever take.
constexpr std::size_t longestReadable = std::min<std::size_t>(longestUnsigned, SIZE_MAX / 2);

// Reads an existing file, opened for reading with these sharing modes and flags.
//   room     zero bytes behind the content, for terminators; bytes that weren't read are zero as well
//   longest  a longer file counts as one that can't be measured
WholeFile readWholeFile(const char* name, DWORD share, DWORD flags, std::size_t room = 2,
                        DWORD longest = longestSigned);

// Creates the file, or cuts an existing one to nothing, and writes `size` bytes (below 4 GiB), without
// sharing. After cantMove the file holds what was written until then.
FileResult writeWholeFile(const char* name, const char* data, std::size_t size, DWORD flags);

}  // namespace tarn
