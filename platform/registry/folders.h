#pragma once

// The layer's own handling of the registry's folders; programs use the operations of platform/win32.h.
//
// Every function takes the number of an open folder and a name in it, never a path, and follows no symbolic
// link.  Those that answer a DWORD answer a Win32 code.
//
// Threads: any; what is removed belongs to a key that the caller has locked.

#include <string>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/win32.h"

namespace tarn::registry {

// The code for the store: something else in the place of a folder or file of ours is no missing path but
// ERROR_REGISTRY_CORRUPT.
DWORD storeCode(DWORD code);
// The same for the last failed system call.
DWORD storeError();

// ERROR_REGISTRY_CORRUPT for a link or a file.
DWORD openFolder(int parent, const char* entry, Descriptor& folder);
// All names in a folder but `.` and `..`.
DWORD listEntries(int folder, std::vector<std::string>& entries);
bool exists(int folder, const std::string& entry);

// Gives an entry a free name in the folder `to`: `.old` and a number, `first` or above.  The entry stays
// where it is on failure.
DWORD moveAside(int from, const std::string& entry, int to, std::size_t first, std::string& name);

// Removes whatever has this name, a folder with everything in it, and what a dead process left of such a
// removal.  What can't be removed stays.
void removeAll(int folder, const std::string& entry);

}  // namespace tarn::registry
