#pragma once

/// @file
/// What a stock option is worth: its value, delta, gamma, theta and vega, the volatility that a market price
/// implies, and the historical volatility of a price series.  Screens and engines call these two functions;
/// they keep nothing, print nothing and have no failure code.  The model is Black-Scholes with annual
/// compounding, discrete dividends taken off the stock price, and Black's approximation for early exercise.
/// No rho, no binomial tree, no volatility surface.
///
///     double gamma, theta, vega, delta, value, implied;
///     doCalculateBSValue(0, 100, 0.06, 0, 0.30, nullptr, nullptr, 0, 0, 0, 0, 0, 1, 10, 105, 120,
///                        &gamma, &theta, &vega, &delta, &value, &implied);
///     // value 10.94348, delta 0.684747, implied 0.255322: at a price of 10 the market expects less movement
///
/// Threads: doCalculateBSValue works on its arguments alone, so any number of calls may run at once.  A
/// history record belongs to one thread at a time, for reading it sorts it.

#include <cstdint>

#include "core/export.h"

class tarnEngineData;

/// Values one option and answers 1, whatever it is given.
///
/// Gamma, theta and vega are those of the stock price without dividends.  In dividendMode 2 they are not:
/// both dividendAmount at the three days and the schedule are taken off there.  With less than one day to
/// expiration the value is the amount in the money and all else is 0.
/// - `isPut`: 0 a call, any other value a put
/// - `strikePrice`: K; one that is in another power of ten than the stock price is read in the stock's: 1.0
///   for a stock at 100 is the strike 100
/// - `interestRate`: fraction per year, compounded once a year; 0.05 is five percent, 0 is valid
/// - `ignoredValue`: not read
/// - `volatility`: fraction per year and square root of time; 0.25 is twenty-five percent
/// - `dividendDays`: 12 day counts, or NULL; read in dividendMode 2 alone
/// - `dividendAmounts`: the 12 amounts of these days, or NULL
/// - `dividendAmount`: what the stock pays on each of the three ex-dividend days
/// - `splitFactor`: new shares for an old one.  If it is above 0 and the stock price is below half the
///   strike, the strike is divided by 1 + splitFactor, for the value and delta alone.
/// - `exDividendDays1`, `exDividendDays2`, `exDividendDays3`: days from today; those from 1 to the day before
///   expiration count
/// - `dividendMode`: 0 takes dividendAmount off at the three days and considers early exercise, 2 takes the
///   schedule of 12 off, any other value is like 0 without early exercise
/// - `marketPrice`: of the option; 0 or less when there is none
/// - `stockPrice`: S; below 0.02 it is read as a hundred times as much
/// - `daysToExpiration`: calendar days; a year has 365
///
/// The six out arguments may each be NULL:
/// - `gamma`: change of delta per 1.00 of stock price
/// - `theta`: change of value per year (not per day); for an option held it is mostly below 0
/// - `vega`: change of value per 1.00 of volatility (not per point)
/// - `delta`: change of value per 1.00 of stock price: a call's from 0 to 1, a put's from -1 to 0
/// - `optionValue`: value in the currency of the prices, never below 0
/// - `impliedVolatility`: where a bisection of at most 15 steps from `volatility` ends; it stops at a model
///   price within 0.0002 of marketPrice.  It is `volatility` itself if the value is that close already (to a
///   marketPrice of 0 too), and 0 without a market price.  The search stays between 0 and `volatility` or
///   between `volatility` and 1.00; for a volatility beyond, it ends near that bound.
/// - Bad input: a strike, stock price or volatility that is 0 or less, a rate below 0, and any of the four
///   that is infinite or not a number make every output 0.  A marketPrice that is not a number is none; a
///   dividend that is not finite and a splitFactor that is not a number count for nothing.  Prices so large
///   or volatilities so small that the arithmetic overflows give infinities or NaN.  The day counts may be
///   any number.
/// - Source: F. Black and M. Scholes, The Pricing of Options and Corporate Liabilities, Journal of Political
///   Economy 81 (1973); F. Black, Fact and Fantasy in the Use of Options, Financial Analysts Journal 31
///   (1975).  The cumulative normal is good to 7.5e-8, so the value is to 7.5e-8 of stock price and strike
///   together.
TARN_EXPORT std::int32_t doCalculateBSValue(
    int isPut, double strikePrice, double interestRate, double ignoredValue, double volatility,
    const std::int32_t* dividendDays, const double* dividendAmounts, double dividendAmount,
    double splitFactor, std::int32_t exDividendDays1, std::int32_t exDividendDays2,
    std::int32_t exDividendDays3, std::int32_t dividendMode, double marketPrice, double stockPrice,
    std::int32_t daysToExpiration, double* gamma, double* theta, double* vega, double* delta,
    double* optionValue, double* impliedVolatility);

/// Answers the historical volatility of a price series, a fraction per year: the sample standard deviation of
/// the logarithmic price changes, divided by the square root of the mean time between two rows.
///
/// The time is the span from the first row's date to today's local date, in years of 365 days and months of
/// 30, divided by the number of rows.  A price that is missing, or no text, counts as 0.  A change to or from
/// a price of 0, or between prices of unlike signs, counts as none.
/// - `history`: rows from the oldest to the newest.  Column 336 (text) has a price in each row; column 737
///   (text) has in row 0 the date of the oldest: month, day and year with slashes, the year counted from 1900
///   (from 1900 on it is taken for the full year).  The record isn't changed, but its columns are sorted.
/// - Answers -1.0 for fewer than two rows or a price that isn't a number, and 0.114 if the span is 0 days.
/// - Bad input: NULL answers -1.0, and so does a first date that is missing, isn't three numbers or is after
///   today, as this routine counts.
TARN_EXPORT double doCalculateHistoricalVolatility(tarnEngineData* history);
