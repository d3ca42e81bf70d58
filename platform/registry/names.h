#pragma once

// The layer's own translation of registry names into file names; programs give names to the operations of
// platform/win32.h.  docs/registry-folder.md describes the form.
//
// Threads: all functions only read their arguments.

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn::registry {

constexpr std::size_t longestKeyName = 255;

// Answers the name with A to Z as small letters: equal names are equal then, and in order.
std::string foldedName(std::string_view name);

// Answer the name of a key's folder and of a value's file.  They hold small letters, digits and `-._%~`
// alone, and never more than 203 of them; names that differ in more than case get different ones.
std::string keyEntry(std::string_view name);
std::string valueEntry(std::string_view name);

// Answer whether some name has this entry.
bool isKeyEntry(std::string_view entry);
bool isValueEntry(std::string_view entry);

// Answers whether a key can have the name: 1 to 255 bytes, none of them `\` or NUL.
bool isKeyName(std::string_view name);

// A key whose record can't be read is listed by what its entry spells: its name with small letters, but of a
// long name just what is behind the prefix.  `entrySpelling` answers the entry of the latter, an empty text
// for every name that doesn't have that form.
std::string nameSpelledBy(std::string_view keyEntry);
std::string entrySpelling(std::string_view name);

}  // namespace tarn::registry
