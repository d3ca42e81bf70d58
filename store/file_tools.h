#pragma once

/// @file
/// Whole files to and from memory, and the scrambled form that keeps a file from being read with an editor.
/// Client modules call these; the library itself reads scrambled menu files with `unscramble`.  Scrambling
/// hides a text from a curious eye; it is no encryption.
///
///     std::int32_t size = 0;
///     std::unique_ptr<char[]> text(readFile("menu.def", size));    // "POPUP ...", NUL behind it
///     scramble(text.get(), size);                                  // same length, unreadable
///     writeFile("menu.bin", text.get(), size);                     // nonzero
///
/// Files are opened without sharing: a file that is open elsewhere can't be read or written here.  Files are
/// read and written in one piece and have at most 2147483647 bytes.
///
/// Threads: no shared state; a buffer belongs to one thread at a time.

#include <cstdint>

#include "core/export.h"

/// Reads a whole file.
/// - `size`: out, the number of bytes without the NUL; 0 for a failure
/// - Answers a new buffer with the file's bytes and a NUL behind them.  If the file can be opened but not be
///   read, the buffer is zero throughout.
/// - Owner: the caller, delete[].
/// - Bad input: a file that can't be opened (a folder, a file that is open elsewhere, NULL) or that is longer
///   than 2147483647 bytes answers NULL.
TARN_EXPORT char* readFile(const char* fileName, std::int32_t& size);

/// Creates a file, or empties an existing one, and writes `size` bytes from `data`.
/// - Answers nonzero if all of them were written, and 0 if not; what was written before a failure stays in
///   the file.
/// - Bad input: a negative size, or NULL for bytes that are to be written, answers 0 and leaves the file
///   alone.
TARN_EXPORT int writeFile(const char* fileName, const char* data, std::int32_t size);

/// Scrambles the whole 16-byte blocks of a buffer in place; up to 15 bytes behind them stay as they are.
/// - Bad input: NULL, or a size below 16, changes nothing.
TARN_EXPORT void scramble(char* data, std::int32_t size);

/// Undoes `scramble` in place, given the same size.
/// - Bad input: as for `scramble`.
TARN_EXPORT void unscramble(char* data, std::int32_t size);

/// Scrambles or unscrambles a file.  Scrambling first fills the text up with blanks to a multiple of 16
/// bytes, and unscrambling leaves these blanks.
/// - `direction`: 1 unscrambles, any other number scrambles
/// - `target`: may be the same file as `source`
/// - Bad input: a source that can't be read whole leaves `target` untouched.  A target that can't be written
///   isn't reported.
TARN_EXPORT void translateFile(int direction, const char* source, const char* target);
