// The main job of the library, as a client does it: a saved price history becomes an option sheet.
//
//   option_sheet [FILE]     FILE is a record file with dates in column 737 and prices in column 336
//
// The clock is set to the history's last date, so that the same file gives the same sheet every day.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "calendar/market_calendar.h"
#include "core/string.h"
#include "engine/engine_data.h"
#include "fintext/financial_text.h"
#include "options/option_symbol.h"
#include "options/option_value.h"
#include "platform/host.h"

namespace {

constexpr std::int32_t dateColumn = 737;
constexpr std::int32_t priceColumn = 336;
constexpr std::int32_t volatilityField = 1001;
constexpr double interestRate = 0.015;

bool load(tarnEngineData& record, const char* file) {
    return record.loadData(file, loadReplace) == 1;
}

// The text of a cell, empty if there is none.  The record keeps it.
const char* cellText(tarnEngineData& record, std::int32_t column, std::int32_t row) {
    MOLTVARIANT cell;
    record.getMultiData(column, row, &cell);
    return cell.tag == tagText && cell.payload.text != nullptr ? cell.payload.text : "";
}

// The last date of the history as a client shows it, with four digits for the year.  From then on the
// clock shows four in the afternoon of that day.
std::string holdClockAtLastDate(tarnEngineData& record) {
    int month = 0;
    int day = 0;
    int year = 0;
    const char* const last = cellText(record, dateColumn, record.getNumMulti() - 1);
    if (std::sscanf(last, "%d/%d/%d", &month, &day, &year) != 3) return "";
    if (year < 1900) year += 1900;
    const auto word = [](int number) { return static_cast<WORD>(number); };
    const SYSTEMTIME moment{word(year), word(month), 0, word(day), 16, 0, 0, 0};
    tarn::setClock(&moment, &moment);
    char text[11];
    return getCurrentDate(text, 1);
}

void printTrade(const std::string& date) {
    const char* const parts[] = {"", "during the market", "before the market", "after the market",
                                 "on a weekend"};
    std::string moment = date + " 16:00:00";
    std::printf("A trade at %s falls %s and settles on ", moment.c_str(),
                parts[getUpdateTime(moment.data())]);
    std::fflush(stdout);
    delete[] getSettlementDate(date.c_str(), 2, 1);  // prints the date and a line end itself
}

void printLastChange(tarnEngineData& record) {
    const std::int32_t last = record.getNumMulti() - 1;
    const double change = strToDouble(cellText(record, priceColumn, last)) -
                          strToDouble(cellText(record, priceColumn, last - 1));
    char netChange[32];
    std::snprintf(netChange, sizeof netChange, "%.2f", change);
    char percent[32];
    asPercentChange(percent, "%.2f%%", cellText(record, priceColumn, last), netChange);
    signPriceChange(netChange);
    std::printf("Last close %s, change %s (%s)\n", cellText(record, priceColumn, last), netChange, percent);
}

struct Values {
    double gamma, theta, vega, delta, value, implied;
};

Values valueOf(int isPut, double strike, double volatility, double quote, double stock, std::int32_t days) {
    Values v{};
    doCalculateBSValue(isPut, strike, interestRate, 0, volatility, nullptr, nullptr, 0, 0, 0, 0, 0, 1, quote,
                       stock, days, &v.gamma, &v.theta, &v.vega, &v.delta, &v.value, &v.implied);
    return v;
}

void printLine(const char* symbolText, double stock, double volatility, std::int32_t days) {
    const tarnOptionSymbol symbol(symbolText);
    const int isPut = symbol.sideType == 3 ? 1 : 0;
    const double strike = strToDouble(symbol.strikeText);
    // Somebody offers five percent more than the value, on the grid of sixteenths.
    const double quote = std::ceil(1.05 * valueOf(isPut, strike, volatility, 0, stock, days).value * 16) / 16;
    const Values v = valueOf(isPut, strike, volatility, quote, stock, days);
    char value[32];
    char fixed[32];
    char quoted[32];
    std::snprintf(value, sizeof value, "%.8f", v.value);
    formatStringToFloatWithRounding(value, fixed, 2);
    asFraction(quoted, quote);
    std::printf("%-4s %s %5s  %9s  %6.3f  %.5f  %8.2f  %7.2f   %10s  %.4f\n", symbol.sideText,
                symbol.expirationMonth, symbol.strikeText, fixed, v.delta, v.gamma, v.theta, v.vega, quoted,
                v.implied);
}

void printSheet(double stock, double volatility) {
    constexpr struct {
        const char* month;
        std::int32_t days;
    } expirations[] = {{"MAY", 28}, {"JUN", 63}, {"SEP", 154}};
    constexpr double grid = 50;
    std::printf("\nside exp strike      value   delta    gamma     theta     vega        quote  implied\n");
    for (const auto& [month, days] : expirations) {
        for (int step = -1; step <= 1; ++step) {
            const double strike = (std::floor(stock / grid + 0.5) + step) * grid;
            for (const char* side : {"CALL", "PUT"}) {
                char symbol[64];
                std::snprintf(symbol, sizeof symbol, "IDX %s %.0f %s", month, strike, side);
                printLine(symbol, stock, volatility, days);
            }
        }
    }
}

bool sameValue(const MOLTVARIANT& a, const MOLTVARIANT& b) {
    return isVarEqual(a, b) == 1 || (a.tag == tagEmpty && b.tag == tagEmpty);
}

bool sameRows(tarnEngineData& a, tarnEngineData& b, std::int32_t column) {
    for (std::int32_t row = 0; row < a.getNumMulti(); ++row) {
        MOLTVARIANT first;
        MOLTVARIANT second;
        const bool inFirst = a.getMultiData(column, row, &first) >= 0;
        const bool inSecond = b.getMultiData(column, row, &second) >= 0;
        if (inFirst != inSecond || !sameValue(first, second)) return false;
    }
    return true;
}

// Compares two records field by field and row by row.  A loaded record has its single fields in front.
bool areEqual(tarnEngineData& a, tarnEngineData& b) {
    if (a.fields->count != b.fields->count || a.getNumMulti() != b.getNumMulti()) return false;
    for (std::int32_t index = 0; index < a.fields->count; ++index) {
        const std::int32_t id = a.getId(index);
        MOLTVARIANT first;
        MOLTVARIANT second;
        const bool same = a.isMulti(index) == 1 ? sameRows(a, b, id)
                                                : a.getData(id, &first) >= 0 && b.getData(id, &second) >= 0 &&
                                                      sameValue(first, second);
        if (!same) return false;
    }
    return true;
}

bool saveAndReload(tarnEngineData& record) {
    const std::string file = (std::filesystem::temp_directory_path() / "option_sheet.dat").string();
    tarnEngineData reloaded;
    const bool done = record.saveData(file.c_str()) == 1 && load(reloaded, file.c_str());
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    return done && areEqual(record, reloaded);
}

}  // namespace

int main(int argc, char** argv) {
    const char* const file = argc > 1 ? argv[1] : "examples/data/sp500.txt";
    tarnEngineData record;
    if (!load(record, file)) {
        std::fprintf(stderr, "option_sheet: %s can't be read as a record file\n", file);
        return 1;
    }
    const std::string date = holdClockAtLastDate(record);
    const double stock = strToDouble(cellText(record, priceColumn, record.getNumMulti() - 1));
    const double volatility = doCalculateHistoricalVolatility(&record);
    if (date.empty() || volatility <= 0 || stock <= 0) {
        std::fprintf(stderr, "option_sheet: %s holds no price history (dates in column 737, prices in 336)\n",
                     file);
        return 1;
    }
    std::printf("%d prices up to %s, historical volatility %.2f %%\n", record.getNumMulti(), date.c_str(),
                100 * volatility);
    printLastChange(record);
    printTrade(date);
    printSheet(stock, volatility);

    MOLTVARIANT figure;
    figure.tag = tagDouble;
    figure.payload.doubleValue = volatility;
    record.storeData(volatilityField, &figure);
    if (!saveAndReload(record)) {
        std::fprintf(stderr, "option_sheet: the record didn't survive saving and loading\n");
        return 1;
    }
    std::printf("\nSaved and loaded again: %d fields and %d rows, all equal\n", record.fields->count,
                record.getNumMulti());
    return 0;
}
