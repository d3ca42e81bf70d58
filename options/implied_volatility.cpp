// The search for the implied volatility.  It answers the end of a bisection of at most 15 steps, not the root
// itself.  But the root predicts most steps: the price rises with the volatility, so a trial clearly beside
// the root misses the market price on that side, and no price is needed to know it.  Two or three prices find
// the root; the bisection then works out a price only where the forecast is too close to the search tolerance
// to decide, and takes the same steps as it would without.
//
// Example: a call on 105 at 100, 120 days, 6 percent, valued at 0.30, quoted at 10: the bisection ends at
// 0.255322 after eleven trials, and two prices decide them all.  Tests: tests/options/option_value_test.cpp.

#include "options/implied_volatility.h"

#include <limits>

namespace tarn {

namespace {

constexpr int mostSteps = 15;

// What the price does around the root: p(g) - marketPrice is slope * (g - root), give or take `margin`, as
// far as that is below the search tolerance and margin together; farther off it is at least as much as there.
struct Forecast {
    double root = 0;
    double slope = 0;
    double margin = std::numeric_limits<double>::infinity();
};

constexpr Forecast noForecast;
// Decides every trial: the market price is above all that the model can answer.
constexpr Forecast beyondReach{std::numeric_limits<double>::infinity(), 1, 0};

// Says whether the price at volatilities up to `reach` away from g may be taken from the line with slope
// vega.  Vega grows by d1 d2 / g per 1.00 of volatility, relatively, and |d1 d2| is at most
// (d1^2 + d2^2) / 2.  Where that is less than 0.05 over the reach, the line is off by less than 0.031 of
// vega * reach.
bool isStraight(const ModelPoint& point, double g, double reach) {
    const double bend = 1 + (point.d1 * point.d1 + point.d2 * point.d2) / 2;
    return reach * bend < 0.05 * g;
}

// Finds the root by Halley's method from the model point at volatility g: the second derivative that it takes
// beside Newton's costs nothing here.  No forecast where the method doesn't get there, or the price is bent.
Forecast forecast(const EuropeanOption& option, double marketPrice, double g, ModelPoint point) {
    constexpr int mostPrices = 6;
    // The line is off by less than 0.07 of the tolerance, for it is used over less than two of them and the
    // margin; N is off by less than 7.5e-8 here and there.
    const double margin = 0.1 * searchTolerance + 2e-7 * (option.stock + option.discountedStrike);
    // No volatility makes a call worth more than the stock, or a put more than its discounted strike.
    const double highestPrice = option.isPut ? option.discountedStrike : option.stock;
    if (marketPrice - highestPrice > searchTolerance + margin && std::isfinite(point.price))
        return beyondReach;
    for (int i = 0; i < mostPrices; ++i) {
        const double slope = modelVega(option, point);
        const double miss = marketPrice - point.price;
        const double newtonStep = miss / slope;
        if (std::fabs(miss) < searchTolerance) {
            const double reach = (std::fabs(miss) + searchTolerance + margin) / slope;
            return isStraight(point, g, reach) ? Forecast{g + newtonStep, slope, margin} : noForecast;
        }
        g += newtonStep / (1 + newtonStep * point.d1 * point.d2 / (2 * g));
        if (!(g > 0)) break;
        point = modelPoint(option, g);
    }
    return noForecast;
}

}  // namespace

double searchImpliedVolatility(const EuropeanOption& option, double volatility, const ModelPoint& point,
                               double value, double marketPrice) {
    const bool upward = marketPrice > value;
    double g = upward ? (1 - volatility) * 0.5 + volatility : 0.5 * volatility;
    double step = upward ? (g - volatility) * 0.5 : 0.25 * volatility;
    const Forecast line = forecast(option, marketPrice, volatility, point);
    for (int i = 0; i < mostSteps; ++i) {
        double difference = line.slope * (g - line.root);
        const double clearance = std::fabs(std::fabs(difference) - searchTolerance);
        if (!(clearance > line.margin)) difference = modelPoint(option, g).price - marketPrice;
        if (std::fabs(difference) < searchTolerance) break;
        g += difference < 0 ? step : -step;
        step *= 0.5;
    }
    return g;
}

}  // namespace tarn
