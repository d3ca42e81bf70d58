// The export: its plain arguments become OptionTerms, and options/valuation.cpp does the work.

#include "options/option_value.h"

#include "options/valuation.h"

std::int32_t doCalculateBSValue(int isPut, double strikePrice, double interestRate, double /*ignoredValue*/,
                                double volatility, const std::int32_t* dividendDays,
                                const double* dividendAmounts, double dividendAmount, double splitFactor,
                                std::int32_t exDividendDays1, std::int32_t exDividendDays2,
                                std::int32_t exDividendDays3, std::int32_t dividendMode, double marketPrice,
                                double stockPrice, std::int32_t daysToExpiration, double* gamma,
                                double* theta, double* vega, double* delta, double* optionValue,
                                double* impliedVolatility) {
    const tarn::OptionTerms terms{interestRate,    volatility,       marketPrice,     strikePrice,
                                  stockPrice,      daysToExpiration, exDividendDays1, exDividendDays2,
                                  exDividendDays3, dividendAmount,   splitFactor,     dividendDays,
                                  dividendAmounts, dividendMode};
    const auto [value, sensitivities] = tarn::valuation(terms, isPut != 0);
    const struct {
        double* out;
        double result;
    } results[] = {{optionValue, value.value},
                   {delta, value.delta},
                   {impliedVolatility, value.impliedVolatility},
                   {gamma, sensitivities.gamma},
                   {theta, sensitivities.theta},
                   {vega, sensitivities.vega}};
    for (const auto& [out, result] : results) {
        if (out != nullptr) *out = result;
    }
    return 1;
}
