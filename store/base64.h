#pragma once

/// @file
/// Strict Base64, RFC 4648 without line breaks: every character counts, and a reader says which is the first
/// bad one.  store/uu_codec.h has the same codec for texts that are taken as they come.
///
///     const std::string text = tarn::toBase64(bytes);                  // "aGVsbG8=" for the bytes of "hello"
///     std::vector<std::byte> back;
///     const tarn::Base64Read read = tarn::fromBase64("aGV*bG8=", back);
///     // read.error is Base64Error::badCharacter, read.offset 3
///
/// Threads: no state.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/export.h"

namespace tarn {

/// How bytes are written and read.
struct Base64 {
    bool standardAlphabet = true;  ///< `+` and `/` at its end; false: `?` and `_`
    char pad = '=';                ///< outside the alphabet; '\0': the text has no padding
};

/// What is wrong with a text.  Of several faults a reader names the first of this order.
enum class Base64Error : std::int32_t {
    none = 0,
    badCharacter,  ///< one outside the alphabet; a NUL is one, also without padding
    badLength,     ///< a single character is left over for the last group
    badPadding,    ///< it is missing, surplus, or not at the end
    strayBits,     ///< the last character has bits that belong to no byte
    noRoom,        ///< the text is right, but the bytes don't fit
};

/// Answers what is wrong as half a sentence: "a character outside the alphabet".
/// - Owner: the library.  A number that is none of the errors answers "unknown".
[[nodiscard]] TARN_EXPORT const char* toText(Base64Error error);

/// What reading a text came to; true if it is right as a whole.
struct [[nodiscard]] Base64Read {
    std::size_t size = 0;    ///< bytes decoded: all, or those of the clean groups in front of what is wrong,
                             ///< none if there isn't room for all; after noRoom the bytes needed
    std::size_t offset = 0;  ///< of the first bad character; where padding is missing, after badLength and
                             ///< noRoom, and if all is well the size of the text
    Base64Error error = Base64Error::none;

    explicit operator bool() const { return error == Base64Error::none; }
};

/// Answers the length of so many bytes' text with padding.
[[nodiscard]] constexpr std::size_t base64Size(std::size_t bytes) {
    return (bytes + 2) / 3 * 4;
}

/// Answers the bytes as text.
[[nodiscard]] TARN_EXPORT std::string toBase64(std::span<const std::byte> bytes, Base64 form = {});

/// Decodes a text.
/// - `out`: three bytes for each four characters of the text are always enough
/// - Bad input: nothing behind the first `size` bytes of `out` has a meaning.
TARN_EXPORT Base64Read fromBase64(std::string_view text, std::span<std::byte> out, Base64 form = {});
/// The same; `out` gets as many bytes as were decoded.
TARN_EXPORT Base64Read fromBase64(std::string_view text, std::vector<std::byte>& out, Base64 form = {});

}  // namespace tarn
