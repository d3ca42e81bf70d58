// Dates in their written forms.  A form is a pattern that is walked beside the text: m, d and y are digits of
// month, day and year, H a year counted from 1900, and any other character is itself.
// Tests: tests/core/date_test.cpp.

#include "core/date.h"

#include <charconv>

#include "base/ascii.h"
#include "core/century.h"
#include "platform/win32.h"

namespace tarn {

namespace {

constexpr std::int32_t firstYear = 1;
constexpr std::int32_t lastYear = 9999;
constexpr std::int32_t firstHistoryYear = 1900;
constexpr std::size_t longestHistoryYear = 4;

std::string_view patternOf(DateForm form) {
    switch (form) {
        case DateForm::slashed: return "mm/dd/yyyy";
        case DateForm::slashedShort: return "mm/dd/yy";
        case DateForm::compact: return "mmddyyyy";
        case DateForm::compactShort: return "mmddyy";
        case DateForm::iso: return "yyyy-mm-dd";
        case DateForm::history: return "mm/dd/H";
    }
    return {};
}

bool hasShortYear(DateForm form) {
    return form == DateForm::slashedShort || form == DateForm::compactShort;
}

struct Numbers {
    std::int32_t year = 0, month = 0, day = 0;

    // The number that a letter of a pattern belongs to, NULL for other characters.
    std::int32_t* of(char letter) {
        switch (letter) {
            case 'm': return &month;
            case 'd': return &day;
            case 'y': return &year;
            default: return nullptr;
        }
    }
};

// A year counted from 1900, which has two digits at least and no further zeros in front.
bool readHistoryYear(std::string_view text, std::int32_t& year) {
    if (text.size() < 2 || text.size() > longestHistoryYear) return false;
    if (text.size() > 2 && text.front() == '0') return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), year);
    year += firstHistoryYear;
    return error == std::errc() && end == text.data() + text.size();
}

bool readNumbers(std::string_view text, std::string_view pattern, Numbers& numbers) {
    for (const char letter : pattern) {
        if (letter == 'H') return readHistoryYear(text, numbers.year);
        if (text.empty()) return false;
        std::int32_t* const number = numbers.of(letter);
        if (number == nullptr ? text.front() != letter : !isDigit(text.front())) return false;
        if (number != nullptr) *number = *number * 10 + (text.front() - '0');
        text.remove_prefix(1);
    }
    return text.empty();
}

bool isWritable(const Date& date, DateForm form) {
    const auto year = static_cast<std::int32_t>(date.year());
    const std::int32_t first = form == DateForm::history ? firstHistoryYear : firstYear;
    return date.ok() && year >= first && year <= lastYear;
}

}  // namespace

std::optional<Date> parseDate(std::string_view text, DateForm form) {
    Numbers numbers;
    const std::string_view pattern = patternOf(form);
    if (pattern.empty() || !readNumbers(text, pattern, numbers)) return std::nullopt;
    if (hasShortYear(form)) numbers.year += centuryOf(numbers.year);
    const Date date(std::chrono::year(numbers.year), std::chrono::month(static_cast<unsigned>(numbers.month)),
                    std::chrono::day(static_cast<unsigned>(numbers.day)));
    return isWritable(date, form) ? std::optional(date) : std::nullopt;
}

std::optional<Date> parseDate(std::string_view text) {
    for (const DateForm form : {DateForm::slashed, DateForm::slashedShort, DateForm::compact,
                                DateForm::compactShort, DateForm::iso}) {
        if (const auto date = parseDate(text, form)) return date;
    }
    return std::nullopt;
}

std::string toText(Date date, DateForm form) {
    if (!isWritable(date, form)) return {};
    Numbers rest{static_cast<std::int32_t>(date.year()),
                 static_cast<std::int32_t>(static_cast<unsigned>(date.month())),
                 static_cast<std::int32_t>(static_cast<unsigned>(date.day()))};
    std::string text(patternOf(form));
    if (form == DateForm::history) {
        rest.year -= firstHistoryYear;
        const std::string year = std::to_string(rest.year);
        text.replace(text.size() - 1, 1, year.size() < 2 ? 2 : year.size(), 'y');
    }
    for (auto letter = text.rbegin(); letter != text.rend(); ++letter) {
        std::int32_t* const number = rest.of(*letter);
        if (number == nullptr) continue;
        *letter = static_cast<char>('0' + *number % 10);
        *number /= 10;
    }
    return text;
}

Date today() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    return {std::chrono::year(now.wYear), std::chrono::month(now.wMonth), std::chrono::day(now.wDay)};
}

}  // namespace tarn
