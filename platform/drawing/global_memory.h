#pragma once

// Internal: fixed blocks of global memory for the layer's own sources; programs call GlobalAlloc of
// platform/win32.h.

#include <cstddef>

namespace tarn {

// A block as GlobalAlloc and LocalAlloc make it when they are asked for a fixed one: the address is the
// handle.  NULL, with the last error set, where there is no memory.
// Owner: the caller, GlobalFree or LocalFree.
void* allocateFixed(std::size_t bytes);

}  // namespace tarn
