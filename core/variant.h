#pragma once

/// @file
/// The one value type of the library: a tag, and a payload that is either the thing itself or a pointer to
/// memory that the value owns.  A field, a row of a table, a whole record is a MOLTVARIANT or a tree of them.
///
///     MOLTVARIANT price;                       // empty: tag 0
///     price.tag = tagText;
///     price.payload.text = newstr("12 1/2");   // the value owns the text now
///     double number;
///     convertToDouble(price.payload.text, number);   // 1, number is 12.5
///     price.destroyContent();                  // releases the text; a value's destructor doesn't
///
/// A value releases nothing by itself.  Whoever owns it calls destroyContent before the value's memory is
/// released or its content replaced.  Copying a value, by construction or by `=`, copies its bytes and makes
/// a view that owns nothing; copyContent makes a deep copy.
///
/// What a value owns comes from: `text` new char[], `wideText` new char16_t[], `vector` new MOLTVARIANT*[],
/// `blob.data` and `block` new unsigned char[]; everything else, elements too, a plain new.  The values of a
/// column's cells lie in the column's list, but for those that a client put there, which come from a plain
/// new.
///
/// Copying, measuring and releasing a value recurse into what it holds, with up to 200 bytes of stack a level
/// in optimised code.  A file nests values 64 deep at most; a client that nests them by calls keeps to 1,000.
///
/// Threads: no shared state; a value and the tree below it belong to one thread at a time.

#include <cstdint>
#include <cstring>

#include "core/containers.h"
#include "core/export.h"

class tarnString;
struct MOLTVARIANT;

/// What a value holds.  On disk: these numbers are written to files.
enum tarnTag : std::int32_t {
    tagEmpty = 0,
    tagByte = 1,
    tagShort = 2,
    tagLong = 3,
    tagFloat = 4,
    tagDouble = 5,
    tagChar = 6,
    tagUShort = 7,
    tagWord = 8,
    tagPlain9 = 9,
    tagText = 10,
    tagWideText = 11,
    tagPlain12 = 12,
    tagVector = 13,
    tagNumber = 14,
    tagBlob = 15,
    tagBlock = 16,
    tagString = 17,
    tagPlain18 = 18,
    tagPlain19 = 19,
    tagList = 20,
    tagMulti = 21,
    tagRecord = 22,
};

/// One value.  The tag says which member of the payload is in use.
struct TARN_EXPORT MOLTVARIANT {
    std::int32_t tag;
    union {
        std::uint8_t byteValue;     ///< tag 1
        std::int16_t shortValue;    ///< tag 2
        std::int32_t longValue;     ///< tags 3, 8, 14
        float floatValue;           ///< tag 4
        double doubleValue;         ///< tag 5
        signed char charValue;      ///< tag 6
        std::uint16_t ushortValue;  ///< tag 7
        unsigned char plain[8];     ///< tags 9, 12, 18, 19
        char* text;                 ///< tag 10, may be NULL
        char16_t* wideText;         ///< tag 11, ended by a 0, may be NULL
        MOLTVARIANT** vector;       ///< tag 13, ended by a NULL entry, may be NULL
        struct {
            unsigned char* data;
            std::int32_t length;        ///< in bytes
        } blob;                         ///< tag 15
        unsigned char* block;           ///< tag 16, 16 bytes
        tarnString* string;             ///< tag 17, may be NULL
        tarnTList<MOLTVARIANT*>* list;  ///< tag 20
        multiColumn* multi;             ///< tag 21
        tarnFieldList* record;          ///< tag 22
    } payload;

    /// An empty value.
    MOLTVARIANT() { std::memset(static_cast<void*>(this), 0, sizeof *this); }
    /// A deep copy; of NULL an empty value.
    explicit MOLTVARIANT(const MOLTVARIANT* source) { initContent(source); }

    /// Makes raw memory into a value: empty for NULL, otherwise a deep copy.
    void initContent(const MOLTVARIANT* source);

    /// Makes this value a view: it takes the source's bytes as they are and owns nothing.
    /// - Bad input: NULL empties it.
    void assignContent(const MOLTVARIANT* source);

    /// Makes this value a deep copy, without releasing what it held.  NULL leaves it empty.  A source of a
    /// tag without a form of its own is copied byte for byte.  The value itself may be the source.
    void copyContent(const MOLTVARIANT* source);

    /// Releases what the value owns, down to the last element, and makes it empty.
    void destroyContent();

    /// Answers the number of payload bytes in the indexed data file (store/index_data_file.h).
    [[nodiscard]] std::int32_t sizeOfData() const;
};

/// Answers the value as a new text.  Texts of tags 10 and 17 are copied (NULL gives an empty text), tag 2 and
/// the numbers of tags 3, 8 and 14 are decimal, tags 4 and 5 show up to 16 digits, tag 6 its one character;
/// any other tag shows the first 32 bits of its payload as a decimal number, 0 for an empty value.
/// - Owner: the caller, delete[].
/// - Bad input: NULL answers NULL.
TARN_EXPORT char* convertToString(const MOLTVARIANT* value);

/// Answers the value through the C library's sprintf, as the one argument behind the format: an int for tags
/// 2 and 6, a double for 4 and 5, a text for 10 and 17, for any other tag the first 32 bits of the payload as
/// an int.  The format has to fit the tag.  The `l` of an integer conversion is left out where a long has 64
/// bits, so that it shows 32 bits everywhere.  The text may have any length.
/// - Owner: the caller, delete[].
/// - Bad input: NULL answers NULL.
TARN_EXPORT char* convertToString(const MOLTVARIANT* value, const char* format);

/// Turns a value whose payload is a text from new char[], whatever its tag, into a value of another tag, and
/// releases the text.
/// - `tag`: 2, 3 or 14 for a whole number (cut to 16 bits for 2), 4 or 5 for a number, 6 for the first byte,
///   10, which keeps the text.  Any other tag changes nothing.
/// - Bad input: a NULL text reads as an empty one.
TARN_EXPORT void convertFromString(MOLTVARIANT* value, std::int32_t tag);

/// Sets the tag of a value whose payload came from 32 bits.
/// - `type`: a tarn::FieldType (core/exception.h).  1 makes tag 2; 4, 5, 8 and 9 make tag 6 for size 1 and
///   tag 10 for any other size (the payload was a pointer to a text); 6 and 7 turn the 32-bit integer into a
///   float or a double.  Any other code changes nothing.
/// - `size`: of the field, in characters
TARN_EXPORT void convertFromLong(MOLTVARIANT* value, std::int32_t type, std::int32_t size);

/// Reads a price as a screen shows it: a decimal, a fraction, or a whole number and a fraction, with commas
/// and a sign anywhere: 1,234.50, 12 1/2, -1/8, `5-`.
/// - `number`: out, 0 for NULL and an empty text
/// - Answers 1 if the text is a price, NULL or empty.
/// - Bad input: anything else, a zero numerator or denominator included, answers 0 and leaves the number
///   untouched.
TARN_EXPORT int convertToDouble(const char* text, double& number);

/// Answers 1 if both values have the same tag, from 1 to 17, and the same number or text; the case of
/// letters doesn't count.  Values of the container tags, and empty ones, equal nothing.
TARN_EXPORT int isVarEqual(const MOLTVARIANT& a, const MOLTVARIANT& b);

/// Answers 1 if both are of tag 10, or both of tag 17, and a's text begins with b's, without regard to case.
TARN_EXPORT int isVarLike(const MOLTVARIANT& a, const MOLTVARIANT& b);

/// Orders two values by a's tag, to which b is converted first: below 0, 0, above 0.  Numbers of up to 32
/// bits answer their difference (which wraps), floating ones and texts a sign.  Containers and empty values
/// are equal to everything.  If a is a text and b has no text form, a is behind b.  NULL texts are in front
/// of all others.
TARN_EXPORT std::int32_t varcmp(const MOLTVARIANT& a, const MOLTVARIANT& b);
