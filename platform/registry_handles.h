#pragma once

// The layer's own table of open registry keys; programs hold them as the HKEYs of platform/win32.h.
//
// Threads: any.  What a handle leads to belongs to the thread that uses the handle.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/registry_store.h"
#include "platform/win32.h"

namespace tarn::registry {

// The names below a key as they were, for the calls that walk through them by index.
struct Listing {
    bool valid = false;
    std::int64_t folderChanged = 0;  // ns, by the system's clock
    std::vector<std::string> names;
};

struct OpenKey {
    std::size_t root = 0;
    std::size_t depth = 0;  // 0 is the root itself, whose folder is opened for each call
    Folder folder;
    std::string entry;  // the name of the folder
    Listing listing;
};

// Hands out a handle, NULL when there are too many.
HKEY publish(std::unique_ptr<OpenKey> key);
// Answers the key of a handle, NULL for a closed one or one that was never handed out.
OpenKey* find(HKEY handle);
// Takes a handle back.
std::unique_ptr<OpenKey> withdraw(HKEY handle);

}  // namespace tarn::registry
