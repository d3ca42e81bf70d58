#pragma once

// Inside the library only; users include options/option_value.h.
//
// The routines of a valuation one by one: the value with its delta and implied volatility, and the other
// sensitivities.  doCalculateBSValue answers what the two of a call or the two of a put answer on the same
// arguments.  Units, bad input and sources are those of options/option_value.h; out arguments that are NULL
// are skipped.

#include <cstdint>

namespace tarn {

// The cumulative normal and the normal density at x.
// Source: Abramowitz and Stegun (1964), 26.2.17; the cumulative is good to 7.5e-8.
void normalDistribution(double x, double* cumulative, double* density);

void calculateCallValue(double interestRate, double volatility, double marketPrice, double strikePrice,
                        double stockPrice, std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                        std::int32_t exDividendDays2, std::int32_t exDividendDays3, double dividendAmount,
                        double splitFactor, const std::int32_t* dividendDays, const double* dividendAmounts,
                        std::int32_t dividendMode, double* optionValue, double* delta,
                        double* impliedVolatility);

void calculatePutValue(double interestRate, double volatility, double marketPrice, double strikePrice,
                       double stockPrice, std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                       std::int32_t exDividendDays2, std::int32_t exDividendDays3, double dividendAmount,
                       double splitFactor, const std::int32_t* dividendDays, const double* dividendAmounts,
                       std::int32_t dividendMode, double* optionValue, double* delta,
                       double* impliedVolatility);

// `splitFactor` is not read.
void calculateCallSensitivities(double interestRate, double volatility, double strikePrice, double stockPrice,
                                std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                                std::int32_t exDividendDays2, std::int32_t exDividendDays3,
                                double dividendAmount, double splitFactor, const std::int32_t* dividendDays,
                                const double* dividendAmounts, std::int32_t dividendMode, double* gamma,
                                double* theta, double* vega);

void calculatePutSensitivities(double interestRate, double volatility, double strikePrice, double stockPrice,
                               std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                               std::int32_t exDividendDays2, std::int32_t exDividendDays3,
                               double dividendAmount, double splitFactor, const std::int32_t* dividendDays,
                               const double* dividendAmounts, std::int32_t dividendMode, double* gamma,
                               double* theta, double* vega);

}  // namespace tarn
