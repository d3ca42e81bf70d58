#pragma once

// The library's text class, its byte buffer, and heap copies of NUL-terminated texts.  Most texts that cross
// the library's boundary come from the newstr family.
//
//   tarnString price("12 1/2");
//   price.isValidPrice();          // 1
//   price.find("/");               // 4
//   price.assign(2.5, 3);          // price.text is "2.500"
//
// A NULL text is accepted everywhere: it empties a string that is assigned, and changes nothing otherwise.
// Threads: no shared state, and one object belongs to one thread at a time.

#include <cstdint>

#include "core/containers.h"
#include "core/export.h"

// An owned text.  At `text` always stands a valid C string.
class TARN_EXPORT tarnString : public tarnObject {
  public:
    char* text;           // new char[]; read it freely, it changes with the string
    std::int32_t length;  // characters before the terminator

    // Each makes a text of its own: an empty one, or a copy.
    tarnString();
    explicit tarnString(const char* source);
    tarnString(const tarnString& other);
    tarnString& operator=(const tarnString& other);
    ~tarnString() override;

    // Empties the string; the buffer stays.
    void clear();

    // Checks a typed price such as 12, 12.50, 12 1/2 or 1/8: digits and blanks with at most one `.` or one
    // `/`, never both and no sign, and behind a slash a denominator of 1, 2, 4, 8, 16, 32, 64, 128 or 256, or
    // none. Answers 1 for a valid price, an empty text included, else 0.
    [[nodiscard]] int isValidPrice() const;

    // Answers 1 if the texts are equal, 0 if not; with `exact` 0 the letters' case doesn't count.  NULL
    // equals nothing.
    int isequal(const char* other, int exact) const;

    // Each takes a new text; a part of the string itself may be passed.
    void assign(const char* source);
    void assign(std::int32_t number);
    // With 1 to 5 decimals the number shows just as many.  Any other count shows six without their trailing
    // zeros, but with one behind the point: 2.5, 12.0.
    void assign(double number, std::int16_t decimals);
    // Numbers of tags 2, 3, 4, 5 and 14, the character of tag 6, texts of tags 10 and 17.  Any other value,
    // and NULL, empties the string.
    void assign(const MOLTVARIANT* value);

    // Each puts a text at the end; a part of the string itself may be passed.
    void append(const char* source);
    void append(std::int32_t number);
    // Six decimals, trailing zeros included.
    void appendDouble(double number);
    // Tags 3, 4 and 5 (as appendDouble), 10 and 17; other tags add nothing.  NULL empties the string.
    void append(const MOLTVARIANT* value);

    // Cuts a character from both ends.
    void trim(char character);

    // Deletes every blank, tabs not.
    void removeSpace();

    // Answer the position of the first match, from 0, or -1.
    std::int32_t find(const char* part) const;
    [[nodiscard]] std::int32_t findChar(char character) const;

  private:
    std::int32_t allocated_;  // bytes at `text`
};

// A growable block of bytes.  `capacity` grows in steps of 4096 and never shrinks; bytes behind `length` in a
// block that has just grown are 0.  The block itself grows by more, so that many small appends cost their
// bytes.
class TARN_EXPORT tarnBuffer {
  public:
    std::int32_t length;    // bytes in use
    std::int32_t capacity;  // bytes that count
    unsigned char* data;    // new unsigned char[]

    tarnBuffer();
    // A capacity below 0 counts as 0.
    explicit tarnBuffer(std::int32_t bytes);
    // A copy of `count` bytes, in a capacity of at least 4096.
    // Bad input: NULL or a count below 1 makes an empty buffer.
    tarnBuffer(const void* bytes, std::int32_t count);
    tarnBuffer(const tarnBuffer&) = delete;
    tarnBuffer& operator=(const tarnBuffer&) = delete;
    ~tarnBuffer();

    // --- Changes.  In all of these the bytes may lie in the buffer itself.
    // Bad input: NULL or a count below 0 changes nothing, and so does what would pass 2^31 - 1 bytes.

    // Overwrites bytes from `offset` on, if they all lie within `length`; otherwise changes nothing.
    void replace(const void* bytes, std::int32_t offset, std::int32_t count);
    // Puts the bytes at the end.
    void append(const void* bytes, std::int32_t count);
    void append(const tarnBuffer& other);
    // Replaces the content.  Old bytes behind `count` stay in the block unless it had to grow.
    void assign(const void* bytes, std::int32_t count);
    void assign(const tarnBuffer& other);
    // Puts the bytes in front, in a new block.
    void prepend(const void* bytes, std::int32_t count);
    void prepend(const tarnBuffer& other);
    // Takes bytes out; what lies behind moves down.  A range that reaches past the end is cut there.
    void removeRange(std::int32_t offset, std::int32_t count);

  private:
    std::int32_t allocated_;  // bytes in the block, at or above `capacity`
};

// A new copy of at most `length` characters, in a block of `length` + 1 zeroed bytes.  With length 0, and for
// NULL, the source isn't touched.
// Owner: the caller, delete[].
TARN_EXPORT char* newstr(const char* text, std::uint32_t length);
// A new copy, of NULL a new empty text.
// Owner: the caller, delete[].
TARN_EXPORT char* newstr(const char* text);
TARN_EXPORT char* newstr(const tarnString* string);

// Cuts a character from both ends of a text, in place: steps over the leading ones and terminates the text
// behind the last other character.
//   length   out: of the trimmed text
// Answers where the trimmed text starts, inside the same buffer.
// Bad input: NULL answers NULL with length 0.
TARN_EXPORT char* trim(char* text, std::uint32_t& length, char character);

// Drops zeros and blanks from the end of a text; a point that then stands last gets one zero.  It knows
// nothing of the point's place: 12.500 becomes 12.5, 12. and 12.000 become 12.0, and 1200 becomes 12. The
// buffer has to hold one character more where the text ends in a point.
TARN_EXPORT void stripTrailZeros(char* text);
