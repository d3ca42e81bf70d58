#pragma once

// Inside the library only; users include options/option_value.h.
//
// What the caller says of an option, and how it is repaired before anything is computed: a tiny stock price
// is scaled up, the strike is adjusted for a split, dividends are taken off the stock price, and the strike
// is moved by powers of ten into the range of the stock price.  The value and the sensitivities repair the
// same terms differently.

#include <cstdint>

namespace tarn {

struct OptionTerms {
    double interestRate;  // per year, compounded once a year
    double volatility;    // per year and square root of time
    double marketPrice;   // 0 or less when there is none
    double strikePrice;
    double stockPrice;
    std::int32_t daysToExpiration;
    std::int32_t exDividendDays1, exDividendDays2, exDividendDays3;
    double dividendAmount;             // paid on each of the three ex-dividend days
    double splitFactor;                // new shares for an old one
    const std::int32_t* dividendDays;  // 12, or NULL
    const double* dividendAmounts;     // 12, or NULL
    std::int32_t dividendMode;
};

struct RepairedPrices {
    double stock;                 // dividends taken off
    double stockBeforeDividends;  // where the walk through the ex-dividend days starts
    double strike;
};

// Says whether there is anything to value: strike, stock price and volatility above 0, a rate of 0 or above,
// all four finite.
bool isUsable(const OptionTerms& terms);

// For value, delta and implied volatility: the split counts; dividendMode 2 takes off the schedule of 12, any
// other mode the three ex-dividend days.
RepairedPrices pricesForValue(const OptionTerms& terms);

// For gamma, theta and vega: no split; dividendMode 2 takes off the three ex-dividend days and then the
// schedule, any other mode nothing.
RepairedPrices pricesForSensitivities(const OptionTerms& terms);

}  // namespace tarn
