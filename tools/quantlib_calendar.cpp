// Prints the closings of tests/plain/calendar.h: the weekdays of 1997 to 2000 on which
// QuantLib's calendar of the New York exchange has no trading.  Made once with QuantLib 1.29:
//
//   g++ -std=c++17 tools/quantlib_calendar.cpp -lQuantLib -o quantlib_calendar && ./quantlib_calendar

#include <cstdio>
#include <ql/time/calendars/unitedstates.hpp>

int main() {
    const QuantLib::UnitedStates market(QuantLib::UnitedStates::NYSE);
    for (int year = 1997; year <= 2000; ++year) {
        const QuantLib::Date last(31, QuantLib::December, year);
        for (QuantLib::Date date(1, QuantLib::January, year); date <= last; ++date) {
            if (market.isBusinessDay(date) || market.isWeekend(date.weekday())) continue;
            std::printf("%d%02d%02d, ", year, static_cast<int>(date.month()), date.dayOfMonth());
        }
        std::printf("\n");
    }
}
