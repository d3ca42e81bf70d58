#pragma once

/// @file
/// The library's text class, its byte buffer, and heap copies of NUL-terminated texts.  Most texts that the
/// library hands to its caller come from the newstr family.
///
///     tarnString price("12 1/2");
///     price.isValidPrice();          // 1
///     price.find("/");               // 4
///     price.assign(2.5, 3);          // price.text is "2.500"
///
/// A NULL text is accepted everywhere: it empties a string that is assigned, and changes nothing otherwise.
///
/// Threads: no shared state, and one object belongs to one thread at a time.

#include <cstdint>

#include "core/containers.h"
#include "core/export.h"

/// An owned text.
class TARN_EXPORT tarnString : public tarnObject {
  public:
    char* text;           ///< always a valid C string, new char[]; read it freely, it changes with the string
    std::int32_t length;  ///< characters before the terminator

    /// An empty text.
    tarnString();
    /// A copy of the text.
    explicit tarnString(const char* source);
    tarnString(const tarnString& other);
    tarnString& operator=(const tarnString& other);
    ~tarnString() override;

    /// Empties the string; the buffer stays.
    void clear();

    /// Checks a typed price such as 12, 12.50, 12 1/2 or 1/8: digits and blanks with at most one point or
    /// one slash, never both and no sign.  The denominator is 1, 2, 4, 8, 16, 32, 64, 128 or 256, or missing.
    /// - Answers 1 for a valid price, an empty text included, else 0.
    [[nodiscard]] int isValidPrice() const;

    /// Compares two texts.
    /// - `exact`: with 0 the case of letters doesn't count
    /// - Answers 1 if the texts are equal, else 0.  NULL equals nothing.
    int isequal(const char* other, int exact) const;

    /// Takes a new text, which may be a part of the string itself.
    void assign(const char* source);
    /// Takes a whole number as text.
    void assign(std::int32_t number);
    /// Takes a number as text.
    /// - `decimals`: 1 to 5 show just as many.  Any other count shows six without their trailing zeros, but
    ///   at least one: 2.5, 12.0.
    void assign(double number, std::int16_t decimals);
    /// Takes the number of a value of tag 2, 3, 4, 5 or 14, the character of tag 6, or the text of tag 10 or
    /// 17.  Any other value, and NULL, empties the string.
    void assign(const MOLTVARIANT* value);

    /// Puts a text at the end; it may be a part of the string itself.
    void append(const char* source);
    /// Puts a whole number at the end.
    void append(std::int32_t number);
    /// Puts a number with six decimals at the end, trailing zeros included.
    void appendDouble(double number);
    /// Puts the number of a value of tag 3, 4 or 5 (as appendDouble does) or the text of tag 10 or 17 at the
    /// end.  Other tags add nothing.  NULL empties the string.
    void append(const MOLTVARIANT* value);

    /// Cuts a character from both ends.
    void trim(char character);

    /// Deletes every blank, but no tabs.
    void removeSpace();

    /// Answers the position of the first match, from 0, or -1.
    std::int32_t find(const char* part) const;
    /// Answers the position of the first such character, from 0, or -1.
    [[nodiscard]] std::int32_t findChar(char character) const;

  private:
    std::int32_t allocated_;  // bytes at `text`
};

/// A growable block of bytes.  `capacity` grows in steps of 4096 and never shrinks; the block behind it grows
/// by more, so that n small appends cost O(n).  Bytes behind `length` in a block that has just grown are 0.
///
/// In all operations the bytes may lie in the buffer itself.  NULL or a count below 0 changes nothing, and
/// neither does an operation that would need a capacity above 2^31 - 1.
class TARN_EXPORT tarnBuffer {
  public:
    std::int32_t length;    ///< bytes in use
    std::int32_t capacity;  ///< bytes that the buffer has room for
    unsigned char* data;    ///< new unsigned char[]

    /// An empty buffer of capacity 4096.
    tarnBuffer();
    /// An empty buffer of this capacity; below 0 it is 0.
    explicit tarnBuffer(std::int32_t bytes);
    /// A copy of `count` bytes, in a capacity of at least 4096.
    /// - Bad input: NULL or a count below 1 makes an empty buffer.
    tarnBuffer(const void* bytes, std::int32_t count);
    tarnBuffer(const tarnBuffer&) = delete;
    tarnBuffer& operator=(const tarnBuffer&) = delete;
    ~tarnBuffer();

    /// Overwrites bytes from `offset` on if they all lie within `length`; otherwise changes nothing.
    void replace(const void* bytes, std::int32_t offset, std::int32_t count);
    /// Puts bytes at the end.
    void append(const void* bytes, std::int32_t count);
    /// Puts another buffer's bytes at the end.
    void append(const tarnBuffer& other);
    /// Replaces the content.  Old bytes behind `count` stay in the block unless it had to grow.
    void assign(const void* bytes, std::int32_t count);
    /// Replaces the content by another buffer's.
    void assign(const tarnBuffer& other);
    /// Puts bytes in front, in a new block.
    void prepend(const void* bytes, std::int32_t count);
    /// Puts another buffer's bytes in front, in a new block.
    void prepend(const tarnBuffer& other);
    /// Takes bytes out; what lies behind them moves down.  A range that reaches past the end is cut there.
    void removeRange(std::int32_t offset, std::int32_t count);

  private:
    std::int32_t allocated_;  // bytes in the block, at or above `capacity`
};

/// Answers a new copy of at most `length` characters, in a block of `length` + 1 zeroed bytes.  With length
/// 0, and for NULL, the source isn't read.
/// - Owner: the caller, delete[].
TARN_EXPORT char* newstr(const char* text, std::uint32_t length);
/// Answers a new copy; of NULL a new empty text.
/// - Owner: the caller, delete[].
TARN_EXPORT char* newstr(const char* text);
/// Answers a new copy of a string's text; of NULL a new empty text.
/// - Owner: the caller, delete[].
TARN_EXPORT char* newstr(const tarnString* string);

/// Cuts a character from both ends of a text, in place: skips the leading ones and terminates the text behind
/// the last other character.
/// - `length`: out, of the trimmed text
/// - Answers where the trimmed text starts, inside the same buffer.
/// - Bad input: NULL answers NULL with length 0.
TARN_EXPORT char* trim(char* text, std::uint32_t& length, char character);

/// Drops zeros and blanks from the end of a text; if a point is last then, a zero is put behind it.  Whether
/// there is a point further in front doesn't matter: 12.500 becomes 12.5, `12.` and 12.000 become 12.0, and
/// 1200 becomes 12.  The buffer has to hold one character more if the text ends in a point.
TARN_EXPORT void stripTrailZeros(char* text);
