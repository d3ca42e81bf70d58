#pragma once

/// @file
/// Bytes to printable text and back: the Base64 of RFC 4648 on one unbroken line, with a pad character of the
/// caller's and with either the standard alphabet (`+` and `/` at its end) or a variant that has `?` and `_`
/// there.  Client modules call this; the library itself doesn't.
///
///     char text[4 * ((5 + 2) / 3) + 1];
///     UUencode(bytes, 5, text, '=', 1);          // 8, "aGVsbG8=" for the bytes of "hello"
///     UUdecode("aGVsbG8=", bytes, 0, 1);         // 5
///
/// Neither function allocates.
///
/// Threads: no state; the tables are constants.

#include <cstdint>

#include "core/export.h"

/// Encodes `length` bytes into a text with a NUL behind it.
/// - `target`: room for 4 * ((length + 2) / 3) + 1 bytes
/// - `padChar`: fills the last group up to four characters: twice for one byte, once for two
/// - `standardAlphabet`: 0 selects the variant
/// - Answers the length of the text, pad characters included and the NUL not.
/// - Bad input: NULL in place of bytes, or more than 1610612733 bytes (their text has no length of 32 bits),
///   gives an empty text and 0.  Without a target nothing is done.
TARN_EXPORT int UUencode(const unsigned char* source, std::uint32_t length, char* target, char padChar,
                         int standardAlphabet);

/// Decodes a NUL-terminated text.  A text of less than 64 characters is one piece, a longer one is taken in
/// pieces of 64.  Each piece skips its own leading blanks and tabs and ends at its first character outside
/// the alphabet (a pad, a line break); the rest of the piece is lost, and the next piece begins 64 characters
/// on.
/// - `target`: room for 3 bytes for each 4 characters, counted up to a whole group; no more is ever written
/// - `size`: isn't looked at
/// - `standardAlphabet`: as the text was encoded
/// - Answers the number of bytes decoded.
/// - Bad input: NULL answers 0 and writes nothing.  Of a text longer than 2863300608 characters only so many
///   are decoded.
TARN_EXPORT int UUdecode(const char* source, unsigned char* target, int size, int standardAlphabet);
