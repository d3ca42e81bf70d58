#pragma once

// The reader and editor of ini text, for the layer itself; programs use the profile operations of
// platform/win32.h.
//
// Names compare without the case of A to Z and without blanks at their ends.  Of equal sections only the
// first counts, of equal keys the first; lines before the first section are ignored.  A line that begins with
// `;` is a comment, one with `[` a section's head, whose name ends at the line's last `]` or with the line;
// every other is an entry, and a key if it holds a `=`.  A line ends with LF, CR LF or CR.
//
// Threads: all functions only read their arguments.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarn::profile {

// Answers the key's value without the blanks at its ends, quotes still on.
std::optional<std::string_view> findValue(std::string_view text, std::string_view section,
                                          std::string_view key);

// Takes off one pair of equal quotes around the whole value, " or '.
std::string_view withoutQuotes(std::string_view value);

// Answer names, each with its NUL, in the file's order, equal ones included.  Empty names, which would end
// the list for its reader, are left out.
std::string listSections(std::string_view text);
std::string listKeys(std::string_view text, std::string_view section);

// Answer the changed text, or nothing where there is nothing to change.  Every other line stays as it is.
//
// A value replaces the old one, and a line that is just the key's name gets `=` and the value.  A new key
// comes behind the last line of its section that isn't blank, a new section at the end; new lines end as the
// text's first line does, with CR LF where there is none.
std::optional<std::string> withValue(std::string_view text, std::string_view section, std::string_view key,
                                     std::string_view value);
std::optional<std::string> withoutKey(std::string_view text, std::string_view section, std::string_view key);
// The section's comments and blank lines stay.
std::optional<std::string> withoutSection(std::string_view text, std::string_view section);

// Answers the number that a value begins with, modulo 2^32: blanks, a sign, and decimal digits, or 0x, 0o or
// 0b with digits of that radix.  Without digits 0.
std::uint32_t toInteger(std::string_view value);

// A block of bytes as upper-case hexadecimal with one byte behind it, their sum modulo 256.
std::string toHexadecimal(std::span<const unsigned char> bytes);
// Fills `bytes` and answers true if the value is hexadecimal of either case, of just that many bytes and with
// the right sum.  On failure the bytes stay as they were.
bool fromHexadecimal(std::string_view value, std::span<unsigned char> bytes);

}  // namespace tarn::profile
