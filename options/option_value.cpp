// The stages of a valuation: guard, repair of the prices, the European value, the implied volatility, early
// exercise, and the sensitivities.  The value and the sensitivities each start from the caller's terms and
// repair them differently; where both come to the same prices, as they do without dividends and splits, the
// formula runs once for both.  Tests: tests/options/option_value_test.cpp.

#include "options/option_value.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "options/european_option.h"
#include "options/implied_volatility.h"

namespace tarn {

namespace {

constexpr std::int32_t earlyExerciseMode = 0;
constexpr std::int32_t scheduleMode = 2;
constexpr int scheduleEntries = 12;
constexpr int mostPowersOfTen = 6;

// Two limits are single-precision numbers; prices are compared with the widened values.
constexpr double tinyPriceLimit = 0.02F;  // 0.019999999552965164
constexpr double lowStrikeRatio = 0.3F;   // 0.30000001192092896
constexpr double highStrikeRatio = 3.0;

// The caller's arguments.
struct OptionTerms {
    bool isPut;
    double interestRate;
    double volatility;
    double marketPrice;
    double strikePrice;
    double stockPrice;
    std::int32_t daysToExpiration;
    std::int32_t exDividendDays1 = 0, exDividendDays2 = 0, exDividendDays3 = 0;
    double dividendAmount = 0;  // finite
    double splitFactor = 0;
    const std::int32_t* dividendDays = nullptr;
    const double* dividendAmounts = nullptr;
    std::int32_t dividendMode = earlyExerciseMode;
};

struct Value {
    double value, delta, impliedVolatility;
};

struct Sensitivities {
    double gamma, theta, vega;
};

struct Valuation {
    Value value;
    Sensitivities sensitivities;
};

// ------------------------------------------------------------------------------------------------- guard

// Refuses NaN and infinities too.
bool isUsable(const OptionTerms& terms) {
    const double largest = std::max(std::max(terms.strikePrice, terms.stockPrice),
                                    std::max(terms.volatility, terms.interestRate));
    return terms.strikePrice > 0 && terms.stockPrice > 0 && terms.volatility > 0 && terms.interestRate >= 0 &&
           largest <= std::numeric_limits<double>::max();
}

// ------------------------------------------------------------------------------------- repair of the prices

// Whether dividends or a split may change a price; most options have neither.
bool needsRepair(double dividendAmount, double splitFactor, std::int32_t dividendMode) {
    return dividendAmount > 0 || splitFactor > 0 || dividendMode == scheduleMode;
}

// A dividend that isn't finite counts for nothing.
double finiteAmount(double amount) {
    return std::isfinite(amount) ? amount : 0;
}

struct RepairedPrices {
    double stock;  // dividends taken off
    double strike;

    bool operator==(const RepairedPrices&) const = default;
};

double scaleTinyPrice(double stock) {
    return stock < tinyPriceLimit ? stock * 100 : stock;
}

double splitStrike(const OptionTerms& terms, double stock) {
    const bool split = terms.splitFactor > 0 && stock < 0.5 * terms.strikePrice;
    return split ? terms.strikePrice / (terms.splitFactor + 1) : terms.strikePrice;
}

double takeOffExDividends(const OptionTerms& terms, double stock) {
    if (terms.dividendAmount <= 0) return stock;
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
        const double amount = finiteAmount(terms.dividendAmounts[i]);
        if (terms.dividendDays[i] < terms.daysToExpiration && amount < stock) stock -= amount;
    }
    return stock;
}

RepairedPrices pricesForValue(const OptionTerms& terms, double stock) {
    const double strike = splitStrike(terms, stock);
    const bool bySchedule = terms.dividendMode == scheduleMode;
    return {bySchedule ? takeOffSchedule(terms, stock) : takeOffExDividends(terms, stock), strike};
}

// No split, and dividends in the schedule's mode alone: first those of the three days, then the schedule.
RepairedPrices pricesForSensitivities(const OptionTerms& terms, double stock) {
    const bool bySchedule = terms.dividendMode == scheduleMode;
    return {bySchedule ? takeOffSchedule(terms, takeOffExDividends(terms, stock)) : stock, terms.strikePrice};
}

// A strike quoted in another power of ten than the stock price is read in the stock's.
double scaleStrike(const RepairedPrices& prices) {
    double strike = prices.strike;
    for (int i = 0; i < mostPowersOfTen && strike <= lowStrikeRatio * prices.stock; ++i) strike *= 10;
    for (int i = 0; i < mostPowersOfTen && strike >= highStrikeRatio * prices.stock; ++i) strike *= 0.1;
    return strike;
}

// ------------------------------------------------------------------------------------------------- value

Value valueAtExpiration(const OptionTerms& terms) {
    const double inTheMoney =
        terms.isPut ? terms.strikePrice - terms.stockPrice : terms.stockPrice - terms.strikePrice;
    return {inTheMoney > 0 ? inTheMoney : 0, 0, 0};
}

// Black's approximation: the option is worth at least what it would be if it expired around an ex-dividend
// day, a call on the day before, a put on the day itself with the amount added.  The walk ends at the first
// day count outside the option's life, and takes the amount off the stock price from day to day.
Value withEarlyExercise(Value held, const OptionTerms& terms, double stock, double strike, double logGrowth) {
    const double amount = terms.dividendAmount;
    for (const std::int32_t day : {terms.exDividendDays1, terms.exDividendDays2, terms.exDividendDays3}) {
        if (day < 1 || day >= terms.daysToExpiration) break;
        const double stockAfter = stock > amount ? stock - amount : stock;
        const std::int32_t horizon = terms.daysToExpiration - day - (terms.isPut ? 0 : 1);
        if (horizon > 0) {
            const EuropeanOption candidate =
                europeanOption(terms.isPut, terms.isPut ? stockAfter : stock, strike, logGrowth, horizon);
            const ModelPoint point = modelPoint(candidate, terms.volatility);
            const double value = terms.isPut ? point.price + amount : point.price;
            if (value > held.value) {
                held.value = value;
                held.delta = modelDelta(candidate, point);
            }
        }
        stock = stockAfter;
    }
    return held;
}

[[gnu::always_inline]] inline Value valueFrom(const EuropeanOption& option, const ModelPoint& point,
                                              const OptionTerms& terms) {
    Value result{};
    if (point.price >= 0) {  // not for NaN
        result.value = point.price;
        result.delta = modelDelta(option, point);
    }
    result.impliedVolatility =
        impliedVolatility(option, terms.volatility, point, result.value, terms.marketPrice);
    return result;
}

// ------------------------------------------------------------------------------------------ sensitivities

// The derivatives of the formula.  Annual compounding puts ln(1 + r) where the textbook has r.
Sensitivities sensitivitiesFrom(const EuropeanOption& option, const ModelPoint& point, double volatility) {
    if (!(point.price >= 0)) return {};
    const double decay = option.stock * volatility * point.density / (2 * option.rootOfTime);
    const double exercise = option.isPut ? point.cumulative2 - 1 : point.cumulative2;
    return {.gamma = point.density / (option.stock * volatility * option.rootOfTime),
            .theta = -(decay + option.logGrowth * option.discountedStrike * exercise),
            .vega = modelVega(option, point)};
}

// Inlined twice: once for the terms that need no repair, whose constants leave the bare formula.
[[gnu::always_inline]] inline Valuation valuation(const OptionTerms& terms) {
    if (terms.daysToExpiration < 1) return {valueAtExpiration(terms), {}};
    if (!isUsable(terms)) return {};
    const double logGrowth = std::log(1 + terms.interestRate);
    const double stock = scaleTinyPrice(terms.stockPrice);
    const auto optionOn = [&](const RepairedPrices& prices) {
        return europeanOption(terms.isPut, prices.stock, scaleStrike(prices), logGrowth,
                              terms.daysToExpiration);
    };

    const RepairedPrices prices = pricesForValue(terms, stock);
    EuropeanOption option = optionOn(prices);
    ModelPoint point = modelPoint(option, terms.volatility);
    Value value = valueFrom(option, point, terms);
    if (terms.dividendMode == earlyExerciseMode && terms.dividendAmount > 0) {
        value = withEarlyExercise(value, terms, stock, scaleStrike(prices), logGrowth);
    }

    if (needsRepair(terms.dividendAmount, terms.splitFactor, terms.dividendMode)) {
        const RepairedPrices ownPrices = pricesForSensitivities(terms, stock);
        if (ownPrices != prices) {
            option = optionOn(ownPrices);
            point = modelPoint(option, terms.volatility);
        }
    }
    return {value, sensitivitiesFrom(option, point, terms.volatility)};
}

[[gnu::noinline]] Valuation valuationWithRepair(const OptionTerms& terms) {
    return valuation(terms);
}

void store(double result, double* out) {
    if (out != nullptr) *out = result;
}

}  // namespace

}  // namespace tarn

std::int32_t doCalculateBSValue(int isPut, double strikePrice, double interestRate, double /*ignoredValue*/,
                                double volatility, const std::int32_t* dividendDays,
                                const double* dividendAmounts, double dividendAmount, double splitFactor,
                                std::int32_t exDividendDays1, std::int32_t exDividendDays2,
                                std::int32_t exDividendDays3, std::int32_t dividendMode, double marketPrice,
                                double stockPrice, std::int32_t daysToExpiration, double* gamma,
                                double* theta, double* vega, double* delta, double* optionValue,
                                double* impliedVolatility) {
    const auto [value, sensitivities] =
        tarn::needsRepair(dividendAmount, splitFactor, dividendMode)
            ? tarn::valuationWithRepair({isPut != 0, interestRate, volatility, marketPrice, strikePrice,
                                         stockPrice, daysToExpiration, exDividendDays1, exDividendDays2,
                                         exDividendDays3, tarn::finiteAmount(dividendAmount), splitFactor,
                                         dividendDays, dividendAmounts, dividendMode})
            : tarn::valuation({.isPut = isPut != 0,
                               .interestRate = interestRate,
                               .volatility = volatility,
                               .marketPrice = marketPrice,
                               .strikePrice = strikePrice,
                               .stockPrice = stockPrice,
                               .daysToExpiration = daysToExpiration});
    tarn::store(value.value, optionValue);
    tarn::store(value.delta, delta);
    tarn::store(value.impliedVolatility, impliedVolatility);
    tarn::store(sensitivities.gamma, gamma);
    tarn::store(sensitivities.theta, theta);
    tarn::store(sensitivities.vega, vega);
    return 1;
}
