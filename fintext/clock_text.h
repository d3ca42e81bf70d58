#pragma once

// Internal: the clock's text with the date.  Users want getLocalTimeStr in fintext/financial_text.h.

namespace tarn {

// Writes the local date and time, behind a blank: 11/30/1999 and, behind two more, 13:05:00, or with the flag
// behind one more 01:05:00 PM.
//   target  23 characters and the terminator
void getLocalDateTimeStr(char* target, int twelveHour);

}  // namespace tarn
