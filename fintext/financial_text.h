#pragma once

/// @file
/// The text that financial screens show and read: numbers and prices, fractions, changes, money and amounts
/// through a pattern, tax and telephone numbers, dates and the clock, small text tools, industry symbols.
/// Screens use it; it knows no record but the one of a fund's amount, and draws nothing.
///
///     char shown[32];
///     formatStringToFloatWithRounding("1.005", shown, 2);    // "1.01"
///     asFraction(shown, 12.375);                             // "12 3/8"
///     fmtToDouble("1.5mm");                                  // 1500000
///
/// - Buffers: a text result is written to a buffer of the caller's, who sizes it for the longest result; no
///   length is passed.  Source and target may be the same text, or overlap.
/// - Bad input: a reader counts as 0 what it can't read.  With a NULL text or buffer nothing happens and the
///   answer is 0 or NULL, unless a function says otherwise.
/// - Locale: numbers and characters are those of the "C" locale, whatever the program has set; only a format
///   that the caller gives is handed to the C library as it is.
/// - Threads: no state at all; a text belongs to one thread at a time.

#include <cstdint>

#include "core/export.h"

class tarnEngineData;
class tarnString;

/// @name Numeric text
/// @{

/// Reads a price: a decimal, a fraction, or a whole number and a fraction, with a sign in front: 12.375, 3/8,
/// -12 3/8.  White space in front is skipped.
///
/// If there is a `.` in what is read, the answer is what atof answers for all of it.  Otherwise up to three
/// whole numbers are read, with any run of other characters between them, and what follows the third is
/// ignored: the answer is a, a / b or a + b / c.  A number that is still 0 stays open for further digits, so
/// that 0 1/2 is 0.5, and 1 2/0 too.  The numbers have 32 bits and wrap: one that has wrapped below 0 stays
/// open as well, and as the last of two or three makes the answer 0.
/// - Bad input: NULL and a text without digits answer 0.
TARN_EXPORT double strToDouble(const char* text);

/// Reads an amount: digits with commas anywhere, then an optional scale in letters of either case, k or m for
/// thousands and mm for millions: 1,234,567, 5k, 5MM.  A sign ends the number, so that -5 is 0.  It has no
/// decimals, and wraps at 32 bits.
TARN_EXPORT std::int32_t fmtToLong(const char* text);
/// Reads an amount as fmtToLong does, but with decimals, and the scale behind them.
TARN_EXPORT double fmtToDouble(const char* text);

/// Counts an amount's characters, whatever they are, a sign included: those in front of the first point
/// without leading zeros and blanks, those behind it as stripTrailZeros leaves them.  Without a point leading
/// zeros count.  Parts of any length are counted.
/// - `mostWholeDigits`, `mostDecimals`: below 0 there is no limit
/// - Answers 1 if both counts are within their limits or the text is empty, else 0.
TARN_EXPORT int validateFloatFormat(const char* text, std::int32_t mostWholeDigits,
                                    std::int32_t mostDecimals);

/// Cuts surplus decimals, without rounding.
/// - `decimals`: how many are kept; with 0 the `.` stays, so that 12.34 becomes `12.`
TARN_EXPORT void stripTrailDecimal(char* text, std::uint32_t decimals);

/// Makes a number ready for display: drops leading blanks, and in a text with a point the zeros at the end
/// and then a point at the end: 12.500 becomes 12.5, 12.000 becomes 12.  A blank at the end keeps the zeros.
/// - `unused`: has no effect
TARN_EXPORT void stripTrailDecimalZeros(char* text, std::uint32_t unused);

/// Drops every zero and blank in front: 0.5 becomes `.5`, and 000 becomes empty.
TARN_EXPORT void stripLeadZeros(char* text);

/// Gives a number text, as convertToDouble (core/variant.h) reads it, a fixed number of decimals, rounded as
/// printf rounds.  A text without a `.` is copied as it is; an empty source leaves the target untouched.
/// - `decimals`: above 1074, which show every double in full, count as 1074
/// - Bad input: a text that is no price, such as n/a or 1.5/2, is copied as it is.
/// - Example: ("1.005", 2) -> "1.00", since the double of 1.005 is below it.
TARN_EXPORT void formatStringToFloat(const char* source, char* target, std::uint32_t decimals);
/// The same, but a text without a point gets its decimals too, an empty source makes the target empty, and a
/// half in the first dropped place is rounded up, towards plus infinity, unless what is shown and half a unit
/// of its last place add up, as doubles, to more than the number.
/// - Example: ("1.005", 2) -> "1.01", but ("0.15", 1) -> "0.1", for 0.1 + 0.05 is a little above 0.15.
TARN_EXPORT void formatStringToFloatWithRounding(const char* source, char* target, std::uint32_t decimals);

/// Answers 1 if all characters are letters A to Z of either case or digits, also for an empty text; else, and
/// for NULL, 0.
TARN_EXPORT int isAlphaNum(const char* text);
/// @}

/// @name Fractions and changes
/// @{

/// Writes a price to the nearest 1/256, a half away from zero, as -1 1/8, 3/4, 3 or 0; the denominator is the
/// lowest power of two.  The sign is written before the rounding, so that -0.001 is -0.
/// - `value`: below 8388608 in magnitude; beyond, it is shown as the highest number of 256ths in 32 bits
/// - Answers the buffer.
TARN_EXPORT char* asFraction(char* buffer, double value);

/// Halves the fraction of a text while numerator and denominator are both even: 5 4/8 becomes 5 1/2.  What is
/// behind the denominator is cut off.  A text without a `/`, or with an odd or no numerator, is copied as it
/// is.  If a numerator has no denominator behind its `/`, a 0 is written there: 4/ grows to 4/0.
/// - Answers the buffer.
TARN_EXPORT char* asReducedFraction(char* buffer, const char* source);

/// Puts a price on one denominator, to the nearest numerator, a half up: with 8, 12.5 becomes 12 4/8 and 1/3
/// becomes 3/8.  A decimal's whole part stays: 12.9999 becomes 12 8/8.  A text with neither `.` nor `/`, or
/// with a numerator or denominator of 0 or less, is copied as it is.
/// - `denominator`: 2 to 512; with any other the text is copied as it is
/// - Answers the buffer.
TARN_EXPORT char* asUniformFraction(char* buffer, const char* source, std::int32_t denominator);

/// Writes the change in percent of the previous price, which is current - change; both are read by
/// strToDouble.  If the previous price is within a millionth of 0, a single blank is written.
/// - `decimals`: 1 to 9; any other number counts as 1
/// - Answers the buffer.
/// - Example: 2, "110", "10" -> "10.00".
TARN_EXPORT char* percentChange(char* buffer, std::int32_t decimals, const char* currentPrice,
                                const char* netChange);
/// Writes the change in percent of the previous price as percentChange does, with a + in front of a rise.
/// The text is empty if the previous price is 0, and "unch" if there is no change.
/// - `format`: for printf, of one double
/// - Answers the buffer.
/// - Example: `%.2f`, "110", "10" -> "+10.00".
TARN_EXPORT char* asPercentChange(char* buffer, const char* format, const char* currentPrice,
                                  const char* netChange);

/// What signPriceChange reads in a text.
enum ePriceChange : std::int32_t {
    ePriceChangeNone = 0,  ///< no text at all
    ePriceUnchanged = 1,   ///< the text is empty, or just 0
    ePriceUp = 2,
    ePriceDown = 3,  ///< the text begins with a minus sign
};

/// Judges a change text by its first character, without reading a number: 0.00 is up.  Puts a + in front of
/// one that is up, even if it has one already, and cuts the text to its first 14 characters, that + not
/// counted.
TARN_EXPORT ePriceChange signPriceChange(char* text);

/// Takes the minus sign in front of a number text away, or puts one there, by which the text grows by a
/// character.  A text whose whole number is 0 stays as it is: 0.50, -0.75, abc.
TARN_EXPORT void flipSign(char* text);
/// @}

/// @name Patterned text
/// @{

/// How formatStringWithPattern shows a negative amount; any other value counts as eNegLeading.
enum eNegType : std::int32_t {
    eNegParens = 1,    ///< (1.00)
    eNegLeading = 2,   ///< -1.00
    eNegTrailing = 3,  ///< 1.00-
};

/// Writes a text through a pattern, from right to left.  A character of the pattern means:
/// - `#` or `.`: the next character of the text, whatever it is
/// - `*` and `*`: between them is a group that repeats while there is text.  What is left of the group is a
///   prefix, written whole as soon as the right-hand `*` is passed.
/// - any other: itself, while there is text
///
/// The text has to have the pattern's decimals, for places are only counted.  It loses the third and further
/// decimals and the blanks at its end; both changes stay in it.  A minus sign in front makes the amount
/// negative, and the signs of the negative type are put to the right of everything and between prefix and
/// digits.  A comma written last is taken back; text left over is dropped.
///
/// A group without `#` or `.` can't use text up: it is written once.  Of more than two `*` the right-hand two
/// make the group, and those in the prefix are written as they are.
/// - Bad input: a NULL text writes "$0.0".
/// - Example: "1234.56" through `$*,###*.##` -> "$1,234.56", and "-1234.56" with eNegParens -> "$(1,234.56)".
TARN_EXPORT void formatStringWithPattern(char* text, const char* pattern, char* target, eNegType negative);

/// Writes an amount as money: sign, "$" with style 1, the whole part in groups of three, the decimals as they
/// are, with a 0 behind a single digit.  A text with a comma, or without a whole part, is copied as it is;
/// NULL and an empty text give "$0.00".
/// - `text`: may be the target's own
/// - `style`: 1 writes the "$"; any style but 0 adds .00 if there are no decimals
/// - Example: ("-1234.5", 1) -> "-$1,234.50", and "-1,234.50" with style 2.
TARN_EXPORT void formatToMoneyFormat(const char* text, tarnString& target, int style);

/// Writes nine characters as 123-45-6789, whatever they are.
/// - Answers 1; 0 for any other length, which leaves the target untouched.
TARN_EXPORT int fmtToTaxId(const char* digits, char* target);
/// Writes seven characters as 555-1234, or ten as (212) 555-1234, whatever they are.
/// - Answers 1; 0 for any other length, which leaves the target untouched.
TARN_EXPORT int fmtToPhoneNumber(const char* digits, char* target);

/// Writes mmddyyyy as mm/dd/yyyy: at most 8 characters of the source, with the slashes as far as they
/// reach.  An empty source gives a single blank.
TARN_EXPORT void formatStringToDate(const char* source, char* target);

/// Writes mm/dd/yyyy as mmddyyyy: at most 10 characters of the source, without the slashes.
TARN_EXPORT void formatDateToString(const char* source, char* target);

/// Writes the local time as 13:05:00.
/// - `target`: room for 12 characters and the terminator
/// - `twelveHour`: not 0 writes a blank and then 01:05:00 PM; the hour of midnight is 00
TARN_EXPORT void getLocalTimeStr(char* target, int twelveHour);

/// Which of a fund's fields gave its amount.
enum eFundUnits : std::int32_t {
    eFundUnitsNone = 0,
    eFundUnitsOther = 1,    ///< field 595 or 1750
    eFundUnitsPrimary = 2,  ///< field 1664
};

/// Copies the amount of a fund: the text of the first of the fields 1664, 595 and 1750 that begins with a
/// number above 0.  If there is none, the target stays untouched.
TARN_EXPORT eFundUnits getDollarsOrShares(tarnEngineData* record, char* target);
/// @}

/// @name Text tools
/// @{

/// Answers a new text: the first with the second behind it.
/// - Owner: the caller, delete[].
/// - Bad input: NULL for either answers NULL.
TARN_EXPORT char* concatstr(const char* first, const char* second);

/// Shrinks each run of blanks to one blank, at the ends too.  Other white space stays.
TARN_EXPORT void removeDoubleSpaces(char* text);

/// Removes every blank.  Other white space stays.
TARN_EXPORT void removeSpace(char* text);

/// Replaces each line feed and each carriage return by a blank.  Answers 1 if there were any, else 0.
TARN_EXPORT int removeNewline(char* text);

/// Puts a carriage return in front of each line feed, even if there is one already.
/// - Answers a new text; NULL if there is no line feed: the text is good as it is.
/// - Owner: the caller, delete[].
TARN_EXPORT char* convertNewline(const char* text);
/// @}

/// @name Industry symbols
/// @{

/// Answers an industry's symbol by its id; for -1, the id of all symbols without one, the first of
/// these.  An id that isn't listed answers NULL.
/// - Owner: the library; the text is constant and must not be changed.
TARN_EXPORT char* getInduSymFromID(std::int32_t id);
/// @}
