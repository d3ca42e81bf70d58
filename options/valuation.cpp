// The stages of a valuation, from the caller's terms to the six results.  A Pricing is the one idea: an
// option on repaired prices, the formula run at its volatility, and what that gives.  The value, each
// candidate for early exercise and the sensitivities are read off a Pricing each; where two of them stand on
// the same prices they share one.

#include "options/valuation.h"

#include <cmath>
#include <initializer_list>

#include "options/european_option.h"
#include "options/implied_volatility.h"

namespace tarn {

namespace {

constexpr std::int32_t earlyExerciseMode = 0;

struct Pricing {
    EuropeanOption option;
    ModelPoint point;
    double price;  // not floored
};

Pricing priceOf(const EuropeanOption& option, double volatility) {
    const ModelPoint point = modelPoint(option, volatility);
    return {option, point, modelPrice(option, point)};
}

Pricing priceOf(const OptionTerms& terms, const RepairedPrices& prices, double logGrowth, bool isPut) {
    return priceOf(europeanOption(prices.stock, prices.strike, logGrowth, terms.daysToExpiration, isPut),
                   terms.volatility);
}

Value valueAtExpiration(const OptionTerms& terms, bool isPut) {
    const double inTheMoney =
        isPut ? terms.strikePrice - terms.stockPrice : terms.stockPrice - terms.strikePrice;
    return {inTheMoney > 0 ? inTheMoney : 0, 0, 0};
}

// Black's approximation: the option is worth at least what it would be if it expired around an ex-dividend
// day, a call on the day before, a put on the day itself with the amount added.  The walk ends at the first
// day count outside the option's life.
void considerEarlyExercise(const OptionTerms& terms, const RepairedPrices& prices,
                           const EuropeanOption& option, Value& held) {
    const double amount = terms.dividendAmount;
    if (terms.dividendMode != earlyExerciseMode || !(amount > 0)) return;
    const bool isPut = option.isPut;
    double stock = prices.stockBeforeDividends;
    for (const std::int32_t day : {terms.exDividendDays1, terms.exDividendDays2, terms.exDividendDays3}) {
        if (day < 1 || day >= terms.daysToExpiration) return;
        const double stockAfter = stock > amount ? stock - amount : stock;
        const std::int32_t horizon = terms.daysToExpiration - day - (isPut ? 0 : 1);
        if (horizon > 0) {
            const Pricing candidate = priceOf(
                europeanOption(isPut ? stockAfter : stock, prices.strike, option.logGrowth, horizon, isPut),
                terms.volatility);
            const double value = isPut ? candidate.price + amount : candidate.price;
            if (value > held.value) {
                held.value = value;
                held.delta = modelDelta(candidate.option, candidate.point);
            }
        }
        stock = stockAfter;
    }
}

Value valueFrom(const OptionTerms& terms, const RepairedPrices& prices, const Pricing& pricing) {
    Value result{};
    if (pricing.price >= 0) {  // not for NaN
        result.value = pricing.price;
        result.delta = modelDelta(pricing.option, pricing.point);
    }
    result.impliedVolatility =
        impliedVolatility(pricing.option, terms.volatility, pricing.point, result.value, terms.marketPrice);
    considerEarlyExercise(terms, prices, pricing.option, result);
    return result;
}

// The derivatives of the formula.  Annual compounding puts ln(1 + r) where the textbook has r.
Sensitivities sensitivitiesFrom(const Pricing& pricing, double volatility) {
    if (!(pricing.price >= 0)) return {};
    const EuropeanOption& option = pricing.option;
    const ModelPoint& point = pricing.point;
    const double decay = option.stock * volatility * point.density / (2 * option.rootOfTime);
    const double exercise = option.isPut ? point.cumulative2 - 1 : point.cumulative2;
    return {.gamma = point.density / (option.stock * volatility * option.rootOfTime),
            .theta = -(decay + option.logGrowth * option.discountedStrike * exercise),
            .vega = modelVega(option, point)};
}

double logGrowth(const OptionTerms& terms) {
    return std::log(1 + terms.interestRate);
}

}  // namespace

Value optionValue(const OptionTerms& terms, bool isPut) {
    if (terms.daysToExpiration < 1) return valueAtExpiration(terms, isPut);
    if (!isUsable(terms)) return {};
    const RepairedPrices prices = pricesForValue(terms);
    return valueFrom(terms, prices, priceOf(terms, prices, logGrowth(terms), isPut));
}

Sensitivities optionSensitivities(const OptionTerms& terms, bool isPut) {
    if (terms.daysToExpiration < 1 || !isUsable(terms)) return {};
    return sensitivitiesFrom(priceOf(terms, pricesForSensitivities(terms), logGrowth(terms), isPut),
                             terms.volatility);
}

Valuation valuation(const OptionTerms& terms, bool isPut) {
    if (terms.daysToExpiration < 1) return {valueAtExpiration(terms, isPut), {}};
    if (!isUsable(terms)) return {};
    const RepairedPrices prices = pricesForValue(terms);
    const RepairedPrices plainPrices = pricesForSensitivities(terms);
    const Pricing pricing = priceOf(terms, prices, logGrowth(terms), isPut);
    const bool shared = plainPrices.stock == prices.stock && plainPrices.strike == prices.strike;
    return {valueFrom(terms, prices, pricing),
            shared ? sensitivitiesFrom(pricing, terms.volatility) : optionSensitivities(terms, isPut)};
}

}  // namespace tarn
