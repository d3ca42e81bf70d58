#pragma once

// Inside the library only; users include options/option_value.h.
//
// The valuation of one option from the caller's own terms.  Unusable terms give zeros.

#include "options/option_terms.h"

namespace tarn {

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

Value optionValue(const OptionTerms& terms, bool isPut);
Sensitivities optionSensitivities(const OptionTerms& terms, bool isPut);

// Both at once: where they repair the terms to the same prices, the formula runs once.
Valuation valuation(const OptionTerms& terms, bool isPut);

}  // namespace tarn
