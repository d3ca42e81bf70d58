// The search for the implied volatility.  What it answers is the end of a bisection of at most 15 steps, not
// the root itself, so the root can't simply be handed over.  But the root foretells most steps: the price
// rises with the volatility, so a trial clearly beside the root misses the market price on that side, and no
// price is needed to know it.  Two or three prices find the root; the bisection then works out a price only
// where the forecast and the search tolerance are too close to tell, and takes the same steps as it would
// without.

#include "options/implied_volatility.h"

#include <limits>

namespace tarn {

namespace {

constexpr double searchTolerance = 0.0002F;  // single precision, widened: 0.00019999999494757503
constexpr int mostSteps = 15;

// p(g) - marketPrice is slope * (g - root), give or take `margin` where that decides anything: up to the
// search tolerance and the margin itself.  Farther off it is at least as far off as there.
struct Forecast {
    double root = 0;
    double slope = 0;
    double margin = std::numeric_limits<double>::infinity();
};

constexpr Forecast noForecast;

// Says whether the line with slope vega through the model point at volatility g is a forecast with that
// margin. Vega changes by d1 d2 / g for 1.00 of volatility, relatively, and |d1 d2| is at most (d1^2 + d2^2)
// / 2. Over a reach in which that makes less than 0.05, the line is off by less than 0.031 of vega * reach
// [at most 0.07 of the tolerance]; the rest of the margin is for the approximation of N.
bool isStraight(const ModelPoint& point, double g, double reach) {
    const double curvature = 1 + 0.5 * (point.d1 * point.d1 + point.d2 * point.d2);
    return reach * curvature < 0.05 * g;
}

// Halley's method from the model point at volatility g; it needs the first two derivatives of the price,
// which cost nothing beside the price.
Forecast forecast(const EuropeanOption& option, double marketPrice, double g, ModelPoint point) {
    constexpr int mostPrices = 6;
    const double approximation =
        2e-7 * (option.stock + option.discountedStrike);  // N is good to 7.5e-8, twice
    const double margin = 0.1 * searchTolerance + approximation;
    for (int i = 0; i < mostPrices; ++i) {
        const double slope = modelVega(option, point);
        const double miss = marketPrice - modelPrice(option, point);
        const double newtonStep = miss / slope;
        if (std::fabs(miss) < searchTolerance) {
            const double reach = (std::fabs(miss) + searchTolerance + margin) / slope;
            return isStraight(point, g, reach) ? Forecast{g + newtonStep, slope, margin} : noForecast;
        }
        g += newtonStep / (1 + 0.5 * newtonStep * point.d1 * point.d2 / g);
        if (!(g > 0)) break;
        point = modelPoint(option, g);
    }
    return noForecast;
}

}  // namespace

double impliedVolatility(const EuropeanOption& option, double volatility, const ModelPoint& point,
                         double value, double marketPrice) {
    if (std::fabs(value - marketPrice) < searchTolerance) return volatility;
    if (!(marketPrice > 0)) return 0;

    const bool upward = marketPrice > value;
    double g = upward ? (1 - volatility) * 0.5 + volatility : 0.5 * volatility;
    double step = upward ? (g - volatility) * 0.5 : 0.25 * volatility;
    const Forecast line = forecast(option, marketPrice, volatility, point);
    for (int i = 0; i < mostSteps; ++i) {
        double difference = line.slope * (g - line.root);
        const double clearance = std::fabs(std::fabs(difference) - searchTolerance);
        if (!(clearance > line.margin)) {
            difference = modelPrice(option, modelPoint(option, g)) - marketPrice;
        }
        if (std::fabs(difference) < searchTolerance) break;
        g += difference < 0 ? step : -step;
        step *= 0.5;
    }
    return g;
}

}  // namespace tarn
