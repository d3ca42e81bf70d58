#pragma once

// Inside the library only; users include options/option_value.h.

#include "options/european_option.h"

namespace tarn {

// The volatility that `marketPrice` implies: what a bisection of at most 15 steps ends at.
//   option      as it was valued
//   volatility  the one it was valued at, where the search starts
//   point       the option at that volatility
//   value       the value reported for it, never below 0
// Answers `volatility` where value and market price are within 0.0002, else 0 without a market price (0, less
// or NaN), else a volatility between 0 and `volatility` or between `volatility` and 1.00.
double impliedVolatility(const EuropeanOption& option, double volatility, const ModelPoint& point,
                         double value, double marketPrice);

}  // namespace tarn
