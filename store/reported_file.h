#pragma once

// Internal: reads a whole file for a loader that answers a report; users want the loaders themselves.
//
// Threads: no shared state.

#include <cstddef>
#include <memory>
#include <string_view>

#include "platform/win32.h"
#include "store/load_report.h"

namespace tarn {

struct ReportedFile {
    std::unique_ptr<char[]> data;  // NULL after a failure; `room` zero bytes stand behind the content
    std::size_t size = 0;
};

// Reads an existing file, opened without sharing.  A failure is in the report, and so are the file's size and,
// as the offset, the bytes that were read; a file that shrinks meanwhile has as many as were there.
//   room     zero bytes behind the content
//   longest  of a file that isn't tooLarge
ReportedFile readReported(std::string_view name, std::size_t room, DWORD longest,
                          const ProgressFunction& progress, LoadReport& report);

}  // namespace tarn
