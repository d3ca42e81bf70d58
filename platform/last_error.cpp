// The last error and the count of open handles: two process-wide words, so that nothing here is thread-local.
//
// Tests: tests/platform/files_test.cpp.

#include <atomic>
#include <cstdint>

#include "platform/handle_count.h"
#include "platform/host.h"
#include "platform/win32.h"

namespace {

std::atomic<DWORD> lastError{0};
std::atomic<std::int32_t> handles{0};

}  // namespace

DWORD GetLastError() {
    return lastError.load(std::memory_order_relaxed);
}
void SetLastError(DWORD code) {
    lastError.store(code, std::memory_order_relaxed);
}

namespace tarn {

void handleOpened() {
    handles.fetch_add(1, std::memory_order_relaxed);
}
void handleClosed() {
    handles.fetch_sub(1, std::memory_order_relaxed);
}
std::int32_t openHandles() {
    return handles.load(std::memory_order_relaxed);
}

}  // namespace tarn
