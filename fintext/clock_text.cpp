// The clock as text.  Tests: tests/fintext/patterned_text_test.cpp.

#include "fintext/clock_text.h"

#include <cstring>

#include "core/number_text.h"
#include "fintext/financial_text.h"
#include "platform/win32.h"

namespace {

// The midnight hour is 0 on either dial.
int hourShown(int hour, int twelveHour) {
    return twelveHour != 0 && hour > 12 ? hour - 12 : hour;
}

// Writes hh:mm:ss with AM or PM behind it on the dial of twelve.
void writeTime(char* target, const SYSTEMTIME& time, int twelveHour) {
    target = tarn::writePadded(target, hourShown(time.wHour, twelveHour), 2);
    *target++ = ':';
    target = tarn::writePadded(target, time.wMinute, 2);
    *target++ = ':';
    target = tarn::writePadded(target, time.wSecond, 2);
    if (twelveHour != 0) std::strcpy(target, time.wHour < 12 ? " AM" : " PM");
}

// Writes mm/dd/yyyy and answers its end.
char* writeDate(char* target, const SYSTEMTIME& time) {
    target = tarn::writePadded(target, time.wMonth, 2);
    *target++ = '/';
    target = tarn::writePadded(target, time.wDay, 2);
    *target++ = '/';
    return tarn::writePadded(target, time.wYear, 4);
}

}  // namespace

void getLocalTimeStr(char* target, int twelveHour) {
    if (target == nullptr) return;
    SYSTEMTIME now;
    GetLocalTime(&now);
    if (twelveHour != 0) *target++ = ' ';
    writeTime(target, now, twelveHour);
}

void tarn::getLocalDateTimeStr(char* target, int twelveHour) {
    if (target == nullptr) return;
    SYSTEMTIME now;
    GetLocalTime(&now);
    *target++ = ' ';
    target = writeDate(target, now);
    *target++ = ' ';
    if (twelveHour == 0) *target++ = ' ';
    writeTime(target, now, twelveHour);
}
