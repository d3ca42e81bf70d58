#pragma once

/// @file
/// The market's calendar: date text and its century rules, packed dates, trading days, settlement dates and
/// the part of the market's week that a moment is in.  Screens and engines use it for every date that they
/// show, read or compare; it has no time zones of its own and no prices.
///
///     isValidTradeDate("112699")                 -> 1, the Friday after a holiday
///     getSettlementDate("11/24/99", 3, 1)        -> "11/30/1999", for the 25th is a holiday
///     datecmp(a, b)                              -> seconds from text b to text a
///
/// The calendar is built in, for the years 1997 to 2000.  From 2001 on, as before 1997, only Saturdays and
/// Sundays are closed days.  In those years every holiday counts as a trading day, and a settlement date that
/// crosses one is too early: a caller who needs the market's real calendar has to check it elsewhere.
///
/// Date text is compact, 113099 or 11301999, or slashed, 11/30/99 or 11/30/1999, the slashed forms optionally
/// with a time: 11/30/1999 16:05:00.  Numbers in a date text are read as the C library's sscanf reads an int
/// (blanks and a sign in front, an end at the first other character, 0 if there is none) in every locale;
/// what exceeds 32 bits counts as the nearest number of 32 bits.  Days are those of the Gregorian calendar,
/// also before its introduction and before the year 1.
///
/// A NULL text or buffer is no date: the functions answer 0, NULL or the same as for an unusable text, and
/// write nothing.
///
/// Threads: no shared state.  gettmstruct, datecmp and the text form of getUpdateTime may rewrite their text.
/// These three use mktime, which takes the time zone from the environment.

#include <cstdint>
#include <ctime>

#include "core/export.h"

/// A date in 16 bits, from 1970 to 2097: 30 November 1999 is 0x3B7E.  The month counts from 1, the year from
/// 1970.
union PKDATE {
    std::uint16_t value;
    struct {
        // `day` has the lowest bits of `value`, whichever end the machine lays fields out from.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
        std::uint16_t year : 7, month : 4, day : 5;
#else
        std::uint16_t day : 5, month : 4, year : 7;
#endif
    } parts;
};

/// Where a moment is in the market's week.  Only whole hours decide: 16:59 is still during the market.
enum eUpdateTime : std::int32_t {
    eUpdateDuringMarket = 1,  ///< Monday to Friday, from 09:00 up to but not including 17:00
    eUpdateBeforeMarket = 2,  ///< Monday to Friday, before 09:00
    eUpdateAfterMarket = 3,   ///< Monday to Friday, from 17:00 on
    eUpdateWeekend = 4        ///< Saturday or Sunday, whatever the hour
};

/// @name Date text
/// @{

/// Answers 1 for a compact date of the years 1900 to 9999 that the Gregorian calendar has, otherwise 0.  In
/// the short form a year up to 90 is 20xx, from 91 on 19xx.
/// - Example: "022900" -> 1, "02291900" -> 0, "11/30/99" -> 0.
TARN_EXPORT int isValidDate(const char* text);

/// Answers 1 if a compact date is after today, in Coordinated Universal Time, and 0 for today, an earlier
/// day or a text of another length.  The years are read as in isValidDate.
/// - Bad input: no day or month is too high: "13452099" is after every day of 2098.
TARN_EXPORT int isFutureDate(const char* text);

/// Breaks a slashed date, with or without time, down into local time, normalised by mktime, which also gives
/// the day of the week and of the year: 02/30/1999 is the 2nd of March.  A moment before 1970 or after
/// 2038-01-19 03:14:07 UTC isn't normalised: the fields are as read, tm_wday and tm_yday 0 and tm_isdst -1.
/// In the hour that comes twice when daylight saving ends, mktime chooses the moment.
/// - `text`: must be writable: the system's no-date, 12/31/69 or 12/31/1969 at its front, is overwritten with
///   00/00/00 or 00/00/1900
/// - `out`: a year above 1900 is counted from 1900; any other number is taken for such a count, so that 99 is
///   1999, 00 is 1900 and 1900 itself is the year 3800
/// - Bad input: with a length other than 8, 10, 17 and 19, and with blanks alone, all of `out` is 0.  What
///   isn't found in the text counts as 0.  A NULL text leaves `out` untouched.
TARN_EXPORT void gettmstruct(char* text, std::tm& out);

/// Answers the seconds from `second` to `first`: above 0 if `first` is later.  Both are read by gettmstruct,
/// which rewrites a no-date.
/// - Bad input: NULL, what gettmstruct can't read and a moment outside 1970 to 2038 count as one second
///   before the start of 1970.  For a difference of 2^31, which doesn't fit, the answer is 2^31 - 1.
TARN_EXPORT std::int32_t datecmp(char* first, char* second);

/// Widens the two-digit year of a date text to four digits, if the text has 6 characters, 8 with a `/` among
/// them, or 17.
/// - `in`: 113099, 11/30/99 or 11/30/99 16:05:00
/// - `out`: room for 20 bytes, and for all of `in` if that is longer; may be `in` itself
/// - `yearFirst`: not 0 if the year is in front
/// - `lowPivot`: with 0 years up to 89 are 20xx, from 90 on 19xx; otherwise only 00 to 09 are 20xx
/// - Answers 1 if the year was widened, and 0 if `out` is a plain copy.
/// - Example: ("11/30/19", out, 0, 1) -> "11/30/1919".
TARN_EXPORT int convert2DigitYrTo4(const char* in, char* out, int yearFirst, int lowPivot);
/// @}

/// @name Packed dates
/// @{

/// Answers the Julian Day Number: 2440588 for 1 January 1970.  A day beyond the end of its month counts on.
/// - Bad input: a month outside 1 to 12 has no day number and answers 0.
TARN_EXPORT std::int32_t DateToJulian(PKDATE date);

/// Answers the days from today's local date to a packed date, below 0 if it has passed.
/// - `swappedDate`: a PKDATE's value with its two bytes exchanged: 0x353C for 21 January 2000
/// - Bad input: a month outside 1 to 12 counts as day number 0, more than two million days ago.
TARN_EXPORT std::int32_t calculateDaystoExpiration(std::uint16_t swappedDate);
/// @}

/// @name Trading days
/// @{

/// Answers 1 if the market trades on a compact date, else 0: no weekend, no holiday, and a date that exists,
/// up to the year 9999 and without a lower limit.  The years are read as in isValidDate.
/// - Example: "112599" -> 0, a holiday; "101199" -> 1, though it is no day of settlement.
TARN_EXPORT int isValidTradeDate(const char* text);

/// Writes today, in Coordinated Universal Time, as 11/30/1999, or as 11/30/99 if `fourDigitYear` is 0.
/// - `buffer`: 11 bytes whatever the form; byte 10 becomes 0
/// - Answers the buffer.  A year of five digits is cut at byte 10.
TARN_EXPORT char* getCurrentDate(char* buffer, int fourDigitYear);

/// Writes today as getCurrentDate does, or the next trading day if the market doesn't trade today.  With a
/// clock beyond the year 9999, when the market never trades, it writes the day itself.
/// - Answers the buffer.
TARN_EXPORT char* getCurrentTradingDate(char* buffer, int fourDigitYear);

/// Counts business days from a slashed date and answers the date that they lead to.  A business day is a
/// trading day that isn't a holiday of settlement; the starting date itself never counts.  The date is also
/// written to standard output, with a blank and a line end behind it.  The time that a call takes doesn't
/// depend on `businessDays`.
/// - `date`: the month is read at characters 0 and 1, the day at 3 and 4, the year from character 6 on.  A
///   year text of up to 3 characters gets two more in front: "19" if its number is above 90, otherwise "20",
///   which makes 209 of a lone 9.
/// - `businessDays`: forward above 0, backward below 0; 0 answers the date itself, in the form that is asked
///   for
/// - `fourDigitYear`: 0 leaves the first two characters of the year out
/// - Answers a new text of 10 or 8 characters in 11 bytes.
/// - Owner: the caller, delete[].
/// - Bad input: NULL answers NULL and writes nothing.  A text below 6 characters, a month outside 1 to 12 if
///   there are days to count, and a count that leads beyond the year 9999 answer a copy of the text, cut
///   after 10 characters.  A day outside its month is between its neighbours: the day after 02/30 is 03/01,
///   the one before it the last of February.  A date of more than 10 characters, such as one with a negative
///   year, is cut after the tenth.
/// - Example: ("10/08/99", 1, 0) -> "10/12/99", for the 11th is a holiday of settlement.
TARN_EXPORT char* getSettlementDate(const char* date, std::int32_t businessDays, int fourDigitYear);

/// Answers the part of the market's week by `tm_wday` and `tm_hour`; for NULL the weekend.
TARN_EXPORT eUpdateTime getUpdateTime(const std::tm* moment);

/// Answers the part of the market's week of a slashed date, which is read, and rewritten, by gettmstruct.  A
/// date without time counts as midnight.
/// - Bad input: what gettmstruct can't use, and a date before 1970 or after 2038, is the weekend.
TARN_EXPORT eUpdateTime getUpdateTime(char* text);
/// @}
