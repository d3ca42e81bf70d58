#pragma once

// Inside the library only; users include options/option_value.h.
//
// The Black-Scholes formula of a European option with annual compounding, split where its cost lies: what
// doesn't depend on the volatility is worked out once in EuropeanOption, what does in ModelPoint.  With
//
//   K' = (1 + r)^-T K,   L = ln(S / K'),   v = sigma sqrt(T),   d1 = L / v + v / 2,   d2 = d1 - v
//
// the call is worth S N(d1) - K' N(d2) and the put, by put-call parity, K' - S more.  Everything is in the
// header because the search for the implied volatility runs through it many times.
//
// Source: Black and Scholes (1973), equation 13, with ln(1 + r) for their rate.  The cumulative normal is
// M. Abramowitz and I. Stegun, Handbook of Mathematical Functions (1964), 26.2.17, coefficients to 8
// decimals.

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tarn {

// ------------------------------------------------------------------------------------- normal distribution

inline double normalDensity(double x) {
    return 0.39894228 * std::exp(-0.5 * (x * x));
}

// N(x), good to 7.5e-8, from n(x), which the callers have at hand.  N(0) is 0.4999999994.
inline double cumulativeNormal(double x, double density) {
    const double t = 1 / (1 + 0.2316419 * std::fabs(x));
    const double q =
        t * (0.31938153 + t * (-0.35656378 + t * (1.78147794 + t * (-1.82125598 + t * 1.33027443))));
    const double cumulative = 1 - density * q;
    return x < 0 ? 1 - cumulative : cumulative;
}

// --------------------------------------------------------------------------------------------- the formula

struct EuropeanOption {
    bool isPut;
    double stock;             // S
    double discountedStrike;  // K'
    double moneyness;         // S / K'
    double logMoneyness;      // L
    double rootOfTime;        // sqrt(T), T in years
    double logGrowth;         // ln(1 + r), what a continuous model calls the rate
};

// The option at one volatility.
struct ModelPoint {
    double price;  // not floored: far out of the money it can fall a little below 0
    double d1, d2;
    double density;                   // n(d1)
    double cumulative1, cumulative2;  // N(d1), N(d2)
};

inline EuropeanOption europeanOption(bool isPut, double stock, double strike, double logGrowth,
                                     std::int32_t days) {
    constexpr double dayFraction = 0.0027397260273972603;  // 1/365
    // A strike that discounting has made less than this part of the stock price is nothing beside it; the cap
    // keeps infinity out of modelPoint.
    constexpr double mostMoneyness = 1e30;
    const double years = days * dayFraction;
    const double growth = years * logGrowth;
    const double discountedStrike = std::exp(-growth) * strike;  // (1 + r)^-T K
    return {.isPut = isPut,
            .stock = stock,
            .discountedStrike = discountedStrike,
            .moneyness = std::min(stock / discountedStrike, mostMoneyness),
            .logMoneyness = std::log(stock / strike) + growth,
            .rootOfTime = std::sqrt(years),
            .logGrowth = logGrowth};
}

inline ModelPoint modelPoint(const EuropeanOption& option, double volatility) {
    const double v = volatility * option.rootOfTime;
    const double d1 = option.logMoneyness / v + v / 2;
    const double d2 = d1 - v;
    const double density1 = normalDensity(d1);
    const double density2 = density1 * option.moneyness;  // S n(d1) = K' n(d2)
    const double cumulative1 = cumulativeNormal(d1, density1);
    const double cumulative2 = cumulativeNormal(d2, density2);
    const double call = option.stock * cumulative1 - option.discountedStrike * cumulative2;
    const double price = option.isPut ? call + option.discountedStrike - option.stock : call;
    return {price, d1, d2, density1, cumulative1, cumulative2};
}

inline double modelDelta(const EuropeanOption& option, const ModelPoint& point) {
    return option.isPut ? -(1 - point.cumulative1) : point.cumulative1;
}

// Per 1.00 of volatility.
inline double modelVega(const EuropeanOption& option, const ModelPoint& point) {
    return point.density * option.rootOfTime * option.stock;
}

}  // namespace tarn
