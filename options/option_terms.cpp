// The repair of an option's terms.  Each step is one function from price to price; the two lists at the end
// say which steps the value takes and which the sensitivities.  The comparisons are the ones that screens
// have always relied on: some take the equal case in, some leave it out.

#include "options/option_terms.h"

#include <initializer_list>
#include <limits>

namespace tarn {

namespace {

constexpr std::int32_t scheduleMode = 2;
constexpr int scheduleEntries = 12;
constexpr int mostPowersOfTen = 6;

// Two limits are single-precision numbers; the widened value is what prices are compared with.
constexpr double tinyPriceLimit = 0.02F;  // 0.019999999552965164
constexpr double lowStrikeRatio = 0.3F;   // 0.30000001192092896
constexpr double highStrikeRatio = 3.0;

bool isFinite(double number) {
    return number <= std::numeric_limits<double>::max();  // of numbers above or equal to 0
}

double scaleTinyPrice(double stock) {
    return stock < tinyPriceLimit ? stock * 100 : stock;
}

double splitStrike(const OptionTerms& terms, double stock) {
    const bool split = terms.splitFactor > 0 && stock < 0.5 * terms.strikePrice;
    return split ? terms.strikePrice / (terms.splitFactor + 1) : terms.strikePrice;
}

double takeOffExDividends(const OptionTerms& terms, double stock) {
    if (!(terms.dividendAmount > 0)) return stock;
    for (const std::int32_t day : {terms.exDividendDays1, terms.exDividendDays2, terms.exDividendDays3}) {
        const bool counts = day > 0 && day < terms.daysToExpiration && terms.dividendAmount < stock;
        if (counts) stock -= terms.dividendAmount;
    }
    return stock;
}

// A day count of 0 or below counts here, and an amount below 0 raises the price.
double takeOffSchedule(const OptionTerms& terms, double stock) {
    if (terms.dividendDays == nullptr || terms.dividendAmounts == nullptr) return stock;
    for (int i = 0; i < scheduleEntries; ++i) {
        const bool counts =
            terms.dividendDays[i] < terms.daysToExpiration && terms.dividendAmounts[i] < stock;
        if (counts) stock -= terms.dividendAmounts[i];
    }
    return stock;
}

double scaleStrike(double strike, double stock) {
    for (int i = 0; i < mostPowersOfTen && strike <= lowStrikeRatio * stock; ++i) strike *= 10;
    for (int i = 0; i < mostPowersOfTen && strike >= highStrikeRatio * stock; ++i) strike *= 0.1;
    return strike;
}

}  // namespace

bool isUsable(const OptionTerms& terms) {
    return terms.strikePrice > 0 && isFinite(terms.strikePrice) &&  //
           terms.stockPrice > 0 && isFinite(terms.stockPrice) &&    //
           terms.volatility > 0 && isFinite(terms.volatility) &&    //
           terms.interestRate >= 0 && isFinite(terms.interestRate);
}

RepairedPrices pricesForValue(const OptionTerms& terms) {
    const double before = scaleTinyPrice(terms.stockPrice);
    const double strike = splitStrike(terms, before);
    const double stock = terms.dividendMode == scheduleMode ? takeOffSchedule(terms, before)
                                                            : takeOffExDividends(terms, before);
    return {stock, before, scaleStrike(strike, stock)};
}

RepairedPrices pricesForSensitivities(const OptionTerms& terms) {
    const double before = scaleTinyPrice(terms.stockPrice);
    const double stock = terms.dividendMode == scheduleMode
                             ? takeOffSchedule(terms, takeOffExDividends(terms, before))
                             : before;
    return {stock, before, scaleStrike(terms.strikePrice, stock)};
}

}  // namespace tarn
