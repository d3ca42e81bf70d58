// The clock: the system's time in whole milliseconds, or the moments at which setClock holds it.
// Tests: tests/platform/clock_test.cpp.

#include <ctime>

#include "platform/host.h"
#include "platform/win32.h"

namespace {

struct FixedMoment {
    bool set;
    SYSTEMTIME time;
};

FixedMoment fixedUtc;
FixedMoment fixedLocal;

SYSTEMTIME fromBrokenDown(const std::tm& time, long milliseconds) {
    return {static_cast<WORD>(time.tm_year + 1900), static_cast<WORD>(time.tm_mon + 1),
            static_cast<WORD>(time.tm_wday),        static_cast<WORD>(time.tm_mday),
            static_cast<WORD>(time.tm_hour),        static_cast<WORD>(time.tm_min),
            static_cast<WORD>(time.tm_sec),         static_cast<WORD>(milliseconds)};
}

// localtime_r alone need not notice that the program has changed TZ.
std::tm* toLocal(const std::time_t* moment, std::tm* time) {
    ::tzset();
    return ::localtime_r(moment, time);
}

// `breakDown` is gmtime_r or toLocal.
void readClock(const FixedMoment& fixed, std::tm* (*breakDown)(const std::time_t*, std::tm*),
               SYSTEMTIME* out) {
    if (out == nullptr) return;
    if (fixed.set) {
        *out = fixed.time;
        return;
    }
    std::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::tm time{};
    breakDown(&now.tv_sec, &time);
    *out = fromBrokenDown(time, now.tv_nsec / 1'000'000);
}

void hold(FixedMoment& fixed, const SYSTEMTIME* time) {
    fixed.set = time != nullptr;
    if (time != nullptr) fixed.time = *time;
}

}  // namespace

void GetSystemTime(SYSTEMTIME* time) {
    readClock(fixedUtc, ::gmtime_r, time);
}
void GetLocalTime(SYSTEMTIME* time) {
    readClock(fixedLocal, toLocal, time);
}

void tarn::setClock(const SYSTEMTIME* utc, const SYSTEMTIME* local) {
    hold(fixedUtc, utc);
    hold(fixedLocal, local);
}
