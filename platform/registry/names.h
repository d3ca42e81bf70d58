#pragma once

// The layer's own translation of registry names into file names; programs give names to the operations of
// platform/win32.h.  docs/registry-folder.md describes the form.
//
// Threads: all functions only read their arguments.

#include <string>
#include <string_view>

namespace tarn::registry {

// Answers the name with A to Z as small letters: equal names are equal then, and in order.
std::string foldedName(std::string_view name);

// Answer the name of a key's folder and of a value's file.  They hold small letters, digits and `-._%~`
// alone, and never more than 203 of them; names that differ in more than case get different ones.
std::string keyEntry(std::string_view name);
std::string valueEntry(std::string_view name);

bool isKeyEntry(std::string_view entry);
bool isValueEntry(std::string_view entry);

}  // namespace tarn::registry
