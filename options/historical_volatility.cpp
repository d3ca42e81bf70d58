// Historical volatility: the deviation of the logarithmic price changes, over the root of the mean time
// between rows.  The calendar of this routine is its own: every year has 365 days, every month 30.
// Tests: tests/options/historical_volatility_test.cpp.

#include <cmath>
#include <optional>

#include "calendar/date_text.h"
#include "calendar/market_calendar.h"
#include "core/number_text.h"
#include "core/value_text.h"
#include "engine/engine_data.h"
#include "options/option_value.h"
#include "platform/win32.h"

namespace {

constexpr std::int32_t dateColumn = 737;
constexpr std::int32_t priceColumn = 336;
constexpr double unusable = -1.0;
constexpr double noTimePassed = 0.114;

// The text of a cell, NULL where there is none.  Owner: the record.
const char* cellText(tarnEngineData& record, std::int32_t column, std::int32_t row) {
    MOLTVARIANT cell;
    record.getMultiData(column, row, &cell);
    return tarn::textOf(cell);
}

// Days from a date, as month/day/year with the year counted from 1900, to today.
std::optional<double> elapsedDays(const char* text) {
    std::int32_t date[3] = {};
    if (text == nullptr || tarn::scanNumbers(text, "//", date) != 3) return std::nullopt;
    const double year = date[2] >= 1900 ? date[2] - 1900.0 : date[2];
    const PKDATE today = tarn::packedToday();
    return 365 * (today.parts.year - (year - 70)) + 30 * (today.parts.month - double{1} * date[0]) +
           (today.parts.day - double{1} * date[1]);
}

// ln(to / from), and 0 where that is no finite number.
double logChange(double from, double to) {
    const double change = std::log(to / from);
    return std::isfinite(change) ? change : 0.0;
}

}  // namespace

double doCalculateHistoricalVolatility(tarnEngineData* history) {
    const std::int32_t rows = history == nullptr ? 0 : history->getNumMulti();
    if (rows < 2) return unusable;
    const std::optional<double> elapsed = elapsedDays(cellText(*history, dateColumn, 0));
    double previous = 0.0;
    if (convertToDouble(cellText(*history, priceColumn, 0), previous) == 0) return unusable;
    double sum = 0.0;
    double squares = 0.0;
    for (std::int32_t row = 1; row < rows; ++row) {
        double price = 0.0;
        if (convertToDouble(cellText(*history, priceColumn, row), price) == 0) return unusable;
        const double change = logChange(previous, price);
        sum += change;
        squares += change * change;
        previous = price;
    }
    const double count = rows;
    const double variance = std::fmax(0.0, squares / (count - 1) - sum * sum / (count * (count - 1)));
    const double yearsPerRow = elapsed.value_or(-1.0) / (count * 365.0);
    if (yearsPerRow == 0.0) return noTimePassed;
    return yearsPerRow < 0 ? unusable : std::sqrt(variance) / std::sqrt(yearsPerRow);
}
