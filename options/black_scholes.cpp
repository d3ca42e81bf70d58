// The plain arguments of each routine become OptionTerms; options/valuation.cpp does the work.

#include "options/black_scholes.h"

#include "options/european_option.h"
#include "options/valuation.h"

namespace tarn {

namespace {

constexpr double noMarketPrice = 0;

void store(double value, double* out) {
    if (out != nullptr) *out = value;
}

void store(const Value& result, double* optionValue, double* delta, double* impliedVolatility) {
    store(result.value, optionValue);
    store(result.delta, delta);
    store(result.impliedVolatility, impliedVolatility);
}

void store(const Sensitivities& result, double* gamma, double* theta, double* vega) {
    store(result.gamma, gamma);
    store(result.theta, theta);
    store(result.vega, vega);
}

}  // namespace

void normalDistribution(double x, double* cumulative, double* density) {
    const double densityOfX = normalDensity(x);
    store(cumulativeNormal(x, densityOfX), cumulative);
    store(densityOfX, density);
}

void calculateCallValue(double interestRate, double volatility, double marketPrice, double strikePrice,
                        double stockPrice, std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                        std::int32_t exDividendDays2, std::int32_t exDividendDays3, double dividendAmount,
                        double splitFactor, const std::int32_t* dividendDays, const double* dividendAmounts,
                        std::int32_t dividendMode, double* optionValue, double* delta,
                        double* impliedVolatility) {
    const OptionTerms terms{interestRate,    volatility,       marketPrice,     strikePrice,
                            stockPrice,      daysToExpiration, exDividendDays1, exDividendDays2,
                            exDividendDays3, dividendAmount,   splitFactor,     dividendDays,
                            dividendAmounts, dividendMode};
    store(tarn::optionValue(terms, false), optionValue, delta, impliedVolatility);
}

void calculatePutValue(double interestRate, double volatility, double marketPrice, double strikePrice,
                       double stockPrice, std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                       std::int32_t exDividendDays2, std::int32_t exDividendDays3, double dividendAmount,
                       double splitFactor, const std::int32_t* dividendDays, const double* dividendAmounts,
                       std::int32_t dividendMode, double* optionValue, double* delta,
                       double* impliedVolatility) {
    const OptionTerms terms{interestRate,    volatility,       marketPrice,     strikePrice,
                            stockPrice,      daysToExpiration, exDividendDays1, exDividendDays2,
                            exDividendDays3, dividendAmount,   splitFactor,     dividendDays,
                            dividendAmounts, dividendMode};
    store(tarn::optionValue(terms, true), optionValue, delta, impliedVolatility);
}

void calculateCallSensitivities(double interestRate, double volatility, double strikePrice, double stockPrice,
                                std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                                std::int32_t exDividendDays2, std::int32_t exDividendDays3,
                                double dividendAmount, double splitFactor, const std::int32_t* dividendDays,
                                const double* dividendAmounts, std::int32_t dividendMode, double* gamma,
                                double* theta, double* vega) {
    const OptionTerms terms{interestRate,    volatility,       noMarketPrice,   strikePrice,
                            stockPrice,      daysToExpiration, exDividendDays1, exDividendDays2,
                            exDividendDays3, dividendAmount,   splitFactor,     dividendDays,
                            dividendAmounts, dividendMode};
    store(optionSensitivities(terms, false), gamma, theta, vega);
}

void calculatePutSensitivities(double interestRate, double volatility, double strikePrice, double stockPrice,
                               std::int32_t daysToExpiration, std::int32_t exDividendDays1,
                               std::int32_t exDividendDays2, std::int32_t exDividendDays3,
                               double dividendAmount, double splitFactor, const std::int32_t* dividendDays,
                               const double* dividendAmounts, std::int32_t dividendMode, double* gamma,
                               double* theta, double* vega) {
    const OptionTerms terms{interestRate,    volatility,       noMarketPrice,   strikePrice,
                            stockPrice,      daysToExpiration, exDividendDays1, exDividendDays2,
                            exDividendDays3, dividendAmount,   splitFactor,     dividendDays,
                            dividendAmounts, dividendMode};
    store(optionSensitivities(terms, true), gamma, theta, vega);
}

}  // namespace tarn
