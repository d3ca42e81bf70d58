#pragma once

// Inside the library only; users include options/option_value.h.

#include "options/european_option.h"

namespace tarn {

constexpr double searchTolerance = 0.0002F;  // single precision, widened: 0.00019999999494757503

// The end of a bisection of at most 15 steps for the volatility at which the model price of `option` is
// `marketPrice`, which is above 0 and not within the search tolerance of `value`.
double searchImpliedVolatility(const EuropeanOption& option, double volatility, const ModelPoint& point,
                               double value, double marketPrice);

// The volatility that `marketPrice` implies.
//   volatility  the one that the option was valued at
//   point       the option at that volatility
//   value       the value reported for it, never below 0
// Answers `volatility` where value and market price are within the search tolerance, else 0 without a market
// price (0, less or NaN), else the end of the search.
inline double impliedVolatility(const EuropeanOption& option, double volatility, const ModelPoint& point,
                                double value, double marketPrice) {
    if (std::fabs(value - marketPrice) < searchTolerance) return volatility;
    if (marketPrice > 0) [[unlikely]] {
        // On copies, so that option and point can stay in registers where there is nothing to search for.
        return searchImpliedVolatility(EuropeanOption(option), volatility, ModelPoint(point), value,
                                       marketPrice);
    }
    return 0;
}

}  // namespace tarn
