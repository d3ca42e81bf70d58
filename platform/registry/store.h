#pragma once

// The layer's own registry on disk: a folder per key, a file per value.  Programs use the operations of
// platform/win32.h; docs/registry-folder.md describes the layout.
//
// A folder is a key as long as it holds its key record: writing that file makes the key, removing it deletes
// the key, and what a dead process leaves of either is no key and is removed when the name is used again.
// An open folder stays the same key whatever happens to its name.
//
// Each function answers a Win32 code: ERROR_FILE_NOT_FOUND for what isn't there, ERROR_KEY_DELETED where the
// folder itself is no key any more, ERROR_REGISTRY_CORRUPT for what isn't ours or is damaged.
//
// Threads: any; changes of one key wait for each other, in this and in other processes.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/registry/record.h"
#include "platform/win32.h"

namespace tarn::registry {

constexpr std::size_t deepestKey = 512;
constexpr std::size_t rootCount = 4;

struct Folder {
    Descriptor descriptor;
    bool isRoot = false;  // a root is there with its folder and has no record

    [[nodiscard]] int number() const { return descriptor.number(); }
};

// How many records there are of a kind, and the longest of their names and data.
struct Measures {
    std::size_t count = 0, longestName = 0, longestData = 0;

    void add(const Record& record) {
        ++count;
        longestName = std::max(longestName, record.name.size());
        longestData = std::max(longestData, record.data.size());
    }
};

DWORD openRoot(std::size_t root, bool create, Folder& folder);
DWORD openKey(const Folder& parent, std::string_view name, Folder& key);
// Opens a key, which it makes if need be.
DWORD createKey(const Folder& parent, std::string_view name, std::string_view classText, Folder& key,
                bool& created);
// Deletes a key without keys below it, with everything in its folder, or a damaged one with all that is below
// it.  ERROR_ACCESS_DENIED if there are keys below.
DWORD deleteKey(const Folder& parent, std::string_view name);

DWORD checkAlive(const Folder& key);
// Open the folder once more, and the folder that contains it.
DWORD reopen(const Folder& key, Folder& copy);
DWORD openParent(const Folder& key, bool isRoot, Folder& parent);
// Answers whether the parent's key of that name is still this one.
bool isEntryOf(const Folder& parent, std::string_view name, const Folder& key);

DWORD readKeyRecord(const Folder& key, Record& record);
// Names as they are spelled, in the order of their folded names.  A key whose record can't be read is listed,
// and deleted, by the name that its folder's name spells.
DWORD listKeys(const Folder& key, std::vector<std::string>& names);
DWORD measureKeys(const Folder& key, Measures& measures);

DWORD readValue(const Folder& key, std::string_view name, Record& value);
DWORD writeValue(const Folder& key, const Record& value);
DWORD deleteValue(const Folder& key, std::string_view name);
DWORD measureValues(const Folder& key, Measures& measures);

// Writes the folder and this many of those above it through to the disk.
DWORD flush(const Folder& key, std::size_t foldersAbove);

}  // namespace tarn::registry
