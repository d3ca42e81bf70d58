// Each routine is a part of what doCalculateBSValue works out; the other out arguments are NULL.
// Tests: tests/options/option_value_test.cpp.

#include "options/black_scholes.h"

#include "options/european_option.h"
#include "options/option_value.h"

namespace tarn {

void normalDistribution(double x, double* cumulative, double* density) {
    const double densityOfX = normalDensity(x);
    if (cumulative != nullptr) *cumulative = cumulativeNormal(x, densityOfX);
    if (density != nullptr) *density = densityOfX;
}

void calculateCallValue(double interestRate, double volatility, double marketPrice, double strikePrice,
                        double stockPrice, std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                        std::int32_t exDividendDays2, std::int32_t exDividendDays3, double dividendAmount,
                        double splitFactor, const std::int32_t* dividendDays, const double* dividendAmounts,
                        std::int32_t dividendMode, double* optionValue, double* delta,
                        double* impliedVolatility) {
    doCalculateBSValue(0, strikePrice, interestRate, 0, volatility, dividendDays, dividendAmounts,
                       dividendAmount, splitFactor, exDividendDays1, exDividendDays2, exDividendDays3,
                       dividendMode, marketPrice, stockPrice, daysToExpiration, nullptr, nullptr, nullptr,
                       delta, optionValue, impliedVolatility);
}

void calculatePutValue(double interestRate, double volatility, double marketPrice, double strikePrice,
                       double stockPrice, std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                       std::int32_t exDividendDays2, std::int32_t exDividendDays3, double dividendAmount,
                       double splitFactor, const std::int32_t* dividendDays, const double* dividendAmounts,
                       std::int32_t dividendMode, double* optionValue, double* delta,
                       double* impliedVolatility) {
    doCalculateBSValue(1, strikePrice, interestRate, 0, volatility, dividendDays, dividendAmounts,
                       dividendAmount, splitFactor, exDividendDays1, exDividendDays2, exDividendDays3,
                       dividendMode, marketPrice, stockPrice, daysToExpiration, nullptr, nullptr, nullptr,
                       delta, optionValue, impliedVolatility);
}

void calculateCallSensitivities(double interestRate, double volatility, double strikePrice, double stockPrice,
                                std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                                std::int32_t exDividendDays2, std::int32_t exDividendDays3,
                                double dividendAmount, double splitFactor, const std::int32_t* dividendDays,
                                const double* dividendAmounts, std::int32_t dividendMode, double* gamma,
                                double* theta, double* vega) {
    doCalculateBSValue(0, strikePrice, interestRate, 0, volatility, dividendDays, dividendAmounts,
                       dividendAmount, splitFactor, exDividendDays1, exDividendDays2, exDividendDays3,
                       dividendMode, 0, stockPrice, daysToExpiration, gamma, theta, vega, nullptr, nullptr,
                       nullptr);
}

void calculatePutSensitivities(double interestRate, double volatility, double strikePrice, double stockPrice,
                               std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                               std::int32_t exDividendDays2, std::int32_t exDividendDays3,
                               double dividendAmount, double splitFactor, const std::int32_t* dividendDays,
                               const double* dividendAmounts, std::int32_t dividendMode, double* gamma,
                               double* theta, double* vega) {
    doCalculateBSValue(1, strikePrice, interestRate, 0, volatility, dividendDays, dividendAmounts,
                       dividendAmount, splitFactor, exDividendDays1, exDividendDays2, exDividendDays3,
                       dividendMode, 0, stockPrice, daysToExpiration, gamma, theta, vega, nullptr, nullptr,
                       nullptr);
}

}  // namespace tarn
