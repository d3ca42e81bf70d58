// Dates in their written forms: core/date.h, core/date.cpp, core/century.h.

#include "core/date.h"

#include "calendar/market_calendar.h"
#include "tests/support.h"

namespace {

using namespace std::chrono_literals;
using tarn::Date;
using tarn::DateForm;
using tarn::parseDate;
using tarn::toText;

constexpr DateForm shortForms[] = {DateForm::slashedShort, DateForm::compactShort};
constexpr DateForm fullForms[] = {DateForm::slashed, DateForm::compact, DateForm::iso};

TEST(DateTest, EachFormIsReadAndWritten) {
    const struct {
        DateForm form;
        const char* text;
        Date date;
    } rows[] = {
        {DateForm::slashed, "11/30/1999", 1999y / 11 / 30},
        {DateForm::slashedShort, "11/30/91", 1991y / 11 / 30},
        {DateForm::compact, "02291904", 1904y / 2 / 29},
        {DateForm::compactShort, "010290", 2090y / 1 / 2},
        {DateForm::iso, "0001-01-01", 1y / 1 / 1},
        {DateForm::history, "12/31/100", 2000y / 12 / 31},
        {DateForm::history, "01/02/118", 2018y / 1 / 2},
        {DateForm::history, "12/31/8099", 9999y / 12 / 31},
    };
    for (const auto& each : rows) {
        EXPECT_EQ(parseDate(each.text, each.form), each.date) << each.text;
        EXPECT_EQ(toText(each.date, each.form), each.text);
        if (each.form == DateForm::history) continue;
        EXPECT_EQ(parseDate(each.text), each.date) << each.text;
    }
}

TEST(DateTest, WhatIsNoDateIsNeitherReadNorWritten) {
    for (const char* const text : {"", "02/30/1999", "01/01/0000", "1/02/1999", "01/02/19990", " 01/02/99",
                                   "01-02-1999", "-10299", "01/02/118"})
        EXPECT_EQ(parseDate(text), std::nullopt) << text;
    for (const char* const text : {"01/02/9", "01/02/018", "01/02/8100", "01/02/9x"})
        EXPECT_EQ(parseDate(text, DateForm::history), std::nullopt) << text;
    EXPECT_EQ(toText(1999y / 2 / 29), "");
    EXPECT_EQ(toText(1899y / 12 / 31, DateForm::history), "");
}

// Days of all years read back, and compact texts of digits are dates just where isValidDate says so.
TEST(DateTest, ADayDoesntReadBackOrAnswersOtherwiseThanTheCalendar) {
    const std::chrono::sys_days last(9999y / 12 / 31);
    for (std::chrono::sys_days day(1y / 1 / 1); day <= last; day += std::chrono::days(29)) {
        const Date date(day);
        for (const DateForm form : fullForms) ASSERT_EQ(parseDate(toText(date, form)), date);
        if (date.year() >= 1900y) {
            ASSERT_EQ(parseDate(toText(date, DateForm::history), DateForm::history), date);
        }
        if (date.year() < 1991y || date.year() > 2090y) continue;
        for (const DateForm form : shortForms) ASSERT_EQ(parseDate(toText(date, form)), date);
    }
    for (int number = 0; number < 14 * 33 * 100; ++number) {
        const std::string text = std::to_string(1'000'000 + number / 3300 * 10'000 + number % 3300).substr(1);
        ASSERT_EQ(isValidDate(text.c_str()) == 1, parseDate(text, DateForm::compactShort).has_value())
            << text;
    }
}

}  // namespace
