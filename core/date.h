#pragma once

/// @file
/// Dates of the C++ headers: std::chrono's own type, read from and written to the forms of this library's
/// texts and files.  No date is ever repaired: 02/30 is none.
///
///     const auto day = tarn::parseDate("11/30/99");           // 1999-11-30
///     tarn::toText(*day);                                     // "11/30/1999"
///     std::chrono::sys_days(*day) + std::chrono::days(3);     // three days later
///     tarn::parseDate("02/29/1999");                          // nothing
///
/// Threads: no shared state.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/export.h"

namespace tarn {

/// A day of the Gregorian calendar.  std::chrono::sys_days converts to it and from it.
using Date = std::chrono::year_month_day;

/// How a date is written; each number has two digits where nothing else is said.
enum class DateForm : std::int32_t {
    slashed,       ///< 11/30/1999
    slashedShort,  ///< 11/30/99; a year up to 90 is read as one of 20xx, from 91 on as one of 19xx
    compact,       ///< 11301999
    compactShort,  ///< 113099, read as slashedShort is
    iso,           ///< 1999-11-30
    history,       ///< 11/30/99 or 01/02/118: the year counted from 1900, two to four digits
};

/// Reads a date in just this form, with nothing around it.
/// - Bad input: a text of another form, a day that the calendar hasn't, and years outside 1 to 9999 answer
///   nothing.
[[nodiscard]] TARN_EXPORT std::optional<Date> parseDate(std::string_view text, DateForm form);

/// Reads a date in any form but `history`; no text is one of two forms.
[[nodiscard]] TARN_EXPORT std::optional<Date> parseDate(std::string_view text);

/// Writes a date.  The short forms show the last two digits of any year, so that only those from 1991 to
/// 2090 read back.
/// - Bad input: a date that isn't ok(), a year outside 1 to 9999, and for `history` one before 1900, answer
///   an empty text.
[[nodiscard]] TARN_EXPORT std::string toText(Date date, DateForm form = DateForm::slashed);

/// Answers today's date in Coordinated Universal Time, by the clock that GetSystemTime reads.
[[nodiscard]] TARN_EXPORT Date today();

}  // namespace tarn
