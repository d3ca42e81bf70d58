#pragma once

// The market's calendar: date text and its century rules, packed dates, trading days, settlement dates and
// the part of the market's day that a moment falls in.  Screens and engines use it for every date they show,
// read or compare; it has no time zones of its own and no prices.
//
//   isValidTradeDate("112699")                 -> 1, the Friday after a holiday
//   getSettlementDate("11/24/99", 3, 1)        -> "11/30/1999", for the 25th is a holiday
//   datecmp(a, b)                              -> seconds from text b to text a
//
// The calendar is built in, for the years 1997 to 2000.  From 2001 on, as before 1997, only Saturdays and
// Sundays are closed days: for a date of today every holiday counts as a trading day, a settlement date that
// crosses one comes out too early, and a caller who needs the market's real calendar has to check it
// elsewhere.
//
// Date text is compact, 113099 or 11301999, or slashed, 11/30/99 or 11/30/1999, the slashed forms optionally
// with a time: 11/30/1999 16:05:00.  Numbers in a date text are read as the C library's %d reads them
// (blanks and a sign in front, an end at the first other character, 0 if there is none) in every locale; what
// exceeds 32 bits counts as the nearest number of 32 bits.  Days are those of the Gregorian calendar, carried
// on before its introduction and before the year 1.
//
// A NULL text or buffer is no date: the functions answer 0, NULL or what they answer for an unusable text,
// and write nothing.
//
// Threads: no shared state.  gettmstruct, datecmp and the text form of getUpdateTime may rewrite their text.
// Those three, which stand on mktime, take the time zone from the environment.

#include <cstdint>
#include <ctime>

#include "core/export.h"

// A date in 16 bits, from 1970 to 2097: 30 November 1999 is 0x3B7E.
union PKDATE {
    std::uint16_t value;
    struct {
        // The month from 1, the year from 1970.  `day` has the lowest bits of `value`, wherever the machine
        // begins to lay fields out.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
        std::uint16_t year : 7, month : 4, day : 5;
#else
        std::uint16_t day : 5, month : 4, year : 7;
#endif
    } parts;
};

// Where a moment lies in the market's week.  Only whole hours decide: 16:59 is still during the market.
enum eUpdateTime : std::int32_t {
    eUpdateDuringMarket = 1,  // Monday to Friday, from 09:00 up to but not including 17:00
    eUpdateBeforeMarket = 2,  // Monday to Friday, before 09:00
    eUpdateAfterMarket = 3,   // Monday to Friday, from 17:00 on
    eUpdateWeekend = 4        // Saturday or Sunday, whatever the hour
};

// ------------------------------------------------------------------------------------------------ date text

// Answers 1 for a compact date of the years 1900 to 9999 that the Gregorian calendar has, otherwise 0.
// In the short form a year up to 90 is 20xx, from 91 on 19xx.
// Example: "022900" -> 1, "02291900" -> 0, "11/30/99" -> 0.
TARN_EXPORT int isValidDate(const char* text);

// Answers 1 if a compact date lies after today, in Coordinated Universal Time, and 0 for today, an earlier
// day or a text of another length.  The years are read as in isValidDate.
// Bad input: no day is too high and no month: "13452099" lies after every day of 2098.
TARN_EXPORT int isFutureDate(const char* text);

// Breaks a slashed date, with or without time, down into `out`, in local time and normalised by mktime, which
// also gives the day of the week and of the year: 02/30/1999 is the 2nd of March.
//   text  must be writable: the system's no-date, 12/31/69 or 12/31/1969 at its front, is overwritten with
//         00/00/00 or 00/00/1900
//   out   a year above 1900 is counted from 1900; any other number is taken for such a count, so that 99 is
//         1999, 00 is 1900 and 1900 itself is the year 3800
// A moment before 1970 or after 2038-01-19 03:14:07 UTC isn't normalised: the fields are as read, tm_wday and
// tm_yday 0 and tm_isdst -1.
// In the hour that comes twice when daylight saving ends, either moment may be meant, as mktime has it.
// Bad input: with a length other than 8, 10, 17 and 19, and with blanks alone, all of `out` is 0.  What isn't
// found in the text counts as 0.  A NULL text leaves `out` untouched.
TARN_EXPORT void gettmstruct(char* text, std::tm& out);

// Answers the seconds from `second` to `first`: above 0 if `first` is later.  Both are read, and where they
// are the no-date rewritten, as by gettmstruct.
// Bad input: NULL, what gettmstruct can't read and a moment outside 1970 to 2038 count as one second before
// the start of 1970.  A difference of 2^31, which doesn't fit, is answered as 2^31 - 1.
TARN_EXPORT std::int32_t datecmp(char* first, char* second);

// Widens the two-digit year of a date text to four digits.  It is widened if it has 6 characters, 8 with a
// '/' among them, or 17.
//   in         113099, 11/30/99, 11/30/99 16:05:00; or with the year in front if `yearFirst` isn't 0
//   out        room for 20 bytes, and for all of `in` if that is longer; may be `in` itself
//   lowPivot   0: years up to 89 are 20xx, from 90 on 19xx; otherwise only 00 to 09 are 20xx
// Answers 1 if the year was widened, and 0 if `out` is a plain copy.
// Example: ("11/30/19", out, 0, 1) -> "11/30/1919".
TARN_EXPORT int convert2DigitYrTo4(const char* in, char* out, int yearFirst, int lowPivot);

// --------------------------------------------------------------------------------------------- packed dates

// Answers the Julian Day Number: 2440588 for 1 January 1970.  A day beyond the end of its month counts on.
// Bad input: a month outside 1 to 12 has no day number and answers 0.
TARN_EXPORT std::int32_t DateToJulian(PKDATE date);

// Answers the days from today's local date to a packed date, below 0 if it has passed.
//   swappedDate  a PKDATE's value with its two bytes exchanged: 0x353C for 21 January 2000
// Bad input: a month outside 1 to 12 counts as day number 0, more than two million days ago.
TARN_EXPORT std::int32_t calculateDaystoExpiration(std::uint16_t swappedDate);

// --------------------------------------------------------------------------------------------- trading days

// Answers 1 if the market trades on a compact date: no weekend, no holiday and a date that the calendar has,
// up to the year 9999 and without a lower limit.  The years are read as in isValidDate.
// Example: "112599" -> 0, a holiday; "101199" -> 1, though no day of settlement.
TARN_EXPORT int isValidTradeDate(const char* text);

// Writes today, in Coordinated Universal Time, as 11/30/1999, or as 11/30/99 if `fourDigitYear` is 0.
//   buffer  11 bytes whatever the form; byte 10 becomes 0
// Answers the buffer.  A year of five digits is cut at byte 10.
TARN_EXPORT char* getCurrentDate(char* buffer, int fourDigitYear);

// As getCurrentDate, but on a day without trading it writes the next day with it.
// A clock beyond the year 9999, after which the market never trades, gives the day itself.
TARN_EXPORT char* getCurrentTradingDate(char* buffer, int fourDigitYear);

// Counts business days from a slashed date and answers the date that they lead to.  A business day is a
// trading day that isn't a holiday of settlement; the starting date itself never counts.
//   date           the month is read at characters 0 and 1, the day at 3 and 4, the year from character 6 on.
//                  A year text of up to 3 characters is widened in front: with "19" if its number lies above
//                  90, with "20" if not, which makes 209 of a lone 9
//   businessDays   forward above 0, backward below 0; 0 answers the date as it is, though in the form asked
//   fourDigitYear  0 leaves the first two characters of the year out
// The result also goes to standard output, with a blank and a line end behind it.  The time that a call takes
// doesn't depend on `businessDays`.
// Answers a new text of 10 or 8 characters in 11 bytes.
// Owner: the caller, delete[].
// Bad input: NULL answers NULL and prints nothing.  A copy of the text, cut after 10 characters, answers a
// text below 6 characters, a month outside 1 to 12 if there is something to count, and a count that leads
// beyond the year 9999.  A day outside its month lies between its neighbours: the day after 02/30 is 03/01,
// the one before it the last of February.  A date too long for its 10 characters, as one with a negative year
// is, is cut after the tenth.
// Example: ("10/08/99", 1, 0) -> "10/12/99", for the 11th is a holiday of settlement.
TARN_EXPORT char* getSettlementDate(const char* date, std::int32_t businessDays, int fourDigitYear);

// Answers the part of the market's week by `tm_wday` and `tm_hour`, and the weekend for NULL.
TARN_EXPORT eUpdateTime getUpdateTime(const std::tm* moment);

// The same for a slashed date with or without time, which is read, and rewritten, as by gettmstruct.  A date
// without time counts as midnight.
// Bad input: what gettmstruct can't use, dates before 1970 and after 2038 included, is the weekend.
TARN_EXPORT eUpdateTime getUpdateTime(char* text);
