// Prints reference figures for tests/options/option_value_test.cpp: value, delta, 0 for no implied
// volatility, gamma, theta and vega of QuantLib's BlackCalculator, with the forward and the discount factor
// of annual compounding over days / 365.

#include <cmath>
#include <cstdio>
#include <ql/pricingengines/blackcalculator.hpp>

int main() {
    const struct {
        int isPut;
        double stock, strike, rate, volatility;
        int days;
    } options[] = {{0, 100, 100, 0.05, 0.25, 91},
                   {1, 100, 100, 0.05, 0.25, 91},
                   {0, 42, 40, 0.10, 0.20, 182},
                   {1, 50, 60, 0.03, 0.45, 365},
                   {0, 105, 100, 0.06, 0.30, 120}};
    for (const auto& o : options) {
        const double years = o.days / 365.0;
        const double discount = std::pow(1 + o.rate, -years);
        const QuantLib::BlackCalculator black(o.isPut != 0 ? QuantLib::Option::Put : QuantLib::Option::Call,
                                              o.strike, o.stock / discount, o.volatility * std::sqrt(years),
                                              discount);
        std::printf("{{%d, %g, %g, %g, %g, %d}, {%.9g, %.9g, 0, %.9g, %.9g, %.9g}},\n", o.isPut, o.stock,
                    o.strike, o.rate, o.volatility, o.days, black.value(), black.delta(o.stock),
                    black.gamma(o.stock), black.theta(o.stock, years), black.vega(years));
    }
    return 0;
}
