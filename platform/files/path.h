#pragma once

// Win32 file names as the system spells them, for the layer itself; programs give such names to the
// operations of platform/win32.h.
//
// Threads: all functions only read their arguments, and linkedFile the links.

#include <string>

namespace tarn {

// Answers the system's spelling of a Win32 file name: `\` becomes `/`, and dots and blanks behind the last
// part of the name, which Win32 doesn't count, are taken off (`.` and `..` stay).  NULL answers an empty
// name.
std::string systemPath(const char* name);

// Answers the folder of a system path's last part, `.` for a path without a folder and an empty text for an
// empty path.
std::string folderOf(const std::string& path);

// Answers whether the name holds a character that no Win32 file name has: one of * ? " < > |
bool isReservedName(const std::string& path);

// Follows symbolic links to the file that is to be replaced, which need not exist yet.
std::string linkedFile(std::string path);

// Answers the name under which a file's replacement is written, in the same folder; very long names that begin
// alike share it.
std::string temporaryName(const std::string& path);

}  // namespace tarn
