// Option value, sensitivities and implied volatility: options/option_value.cpp,
// options/implied_volatility.cpp, options/black_scholes.cpp.

#include "options/option_value.h"

#include "options/black_scholes.h"
#include "tests/support.h"

namespace {

struct Terms {
    int isPut = 0;
    double stock = 100, strike = 100, rate = 0.05, volatility = 0.25;
    std::int32_t days = 91;
    double market = 0, amount = 0, split = 0;
    std::int32_t mode = 1, exDays[3] = {0, 0, 0};
    const std::int32_t* scheduleDays = nullptr;
    const double* schedule = nullptr;
};

enum { value, delta, implied, gamma, theta, vega };
using Results = std::array<double, 6>;

// By the two routines of the call or the put, which ask doCalculateBSValue for their part alone.
Results ours(const Terms& t) {
    const auto values = t.isPut != 0 ? tarn::calculatePutValue : tarn::calculateCallValue;
    const auto sensitivities =
        t.isPut != 0 ? tarn::calculatePutSensitivities : tarn::calculateCallSensitivities;
    Results r{NAN, NAN, NAN, NAN, NAN, NAN};
    values(t.rate, t.volatility, t.market, t.strike, t.stock, t.days, t.exDays[0], t.exDays[1], t.exDays[2],
           t.amount, t.split, t.scheduleDays, t.schedule, t.mode, &r[value], &r[delta], &r[implied]);
    sensitivities(t.rate, t.volatility, t.strike, t.stock, t.days, t.exDays[0], t.exDays[1], t.exDays[2],
                  t.amount, t.split, t.scheduleDays, t.schedule, t.mode, &r[gamma], &r[theta], &r[vega]);
    return r;
}

// The formula as it is defined: a power for the discount, an exponential for each density, nothing floored.
Results formula(const Terms& t, double S, double K, std::int32_t days, double sigma) {
    const double T = days * 0.0027397260273972603;
    const double s = std::sqrt(T);
    const double kept = K * std::pow(1 + t.rate, -T);
    const double put = t.isPut;
    const double d1 = std::log(S / kept) / (sigma * s) + sigma * s / 2;
    double N1 = 0;
    double n1 = 0;
    double N2 = 0;
    tarn::normalDistribution(d1, &N1, &n1);
    tarn::normalDistribution(d1 - sigma * s, &N2, nullptr);
    const double decay = S * sigma * n1 / (2 * s) + std::log(1 + t.rate) * kept * (N2 - put);
    return {S * N1 - kept * N2 + put * (kept - S), N1 - put, 0, n1 / (S * sigma * s), -decay, n1 * s * S};
}

// The prices of the formula, repaired for the value or for gamma, theta and vega.
std::pair<double, double> repaired(const Terms& t, double S, bool forValue) {
    double K = forValue && t.split > 0 && S < t.strike / 2 ? t.strike / (t.split + 1) : t.strike;
    for (const std::int32_t day : t.exDays) {
        const bool counts = forValue != (t.mode == 2) && t.amount > 0 && 0 < day && day < t.days;
        if (counts && t.amount < S) S -= t.amount;
    }
    for (int i = 0; i < 12 && t.mode == 2 && t.schedule != nullptr; ++i)
        if (t.scheduleDays[i] < t.days && t.schedule[i] < S) S -= t.schedule[i];
    for (int i = 0; i < 6 && K <= 0.30000001192092896 * S; ++i) K *= 10;
    for (int i = 0; i < 6 && K >= 3.0 * S; ++i) K *= 0.1;
    return {S, K};
}

// The valuation step by step: every price of the search is worked out, nothing is shared.
Results stepByStep(const Terms& t) {
    if (t.days < 1) return {std::max(0.0, t.isPut != 0 ? t.strike - t.stock : t.stock - t.strike)};
    const double sigma = t.volatility;
    double X = t.stock < 0.019999999552965164 ? t.stock * 100 : t.stock;
    const auto [S, K] = repaired(t, X, true);
    const auto [ownS, ownK] = repaired(t, X, false);
    Results r = formula(t, ownS, ownK, t.days, sigma);
    if (r[value] < 0) r = {};
    const Results first = formula(t, S, K, t.days, sigma);
    r[value] = std::max(first[value], 0.0);
    r[delta] = first[value] < 0 ? 0 : first[delta];

    constexpr double tolerance = 0.00019999999494757503;
    const bool up = t.market > r[value];
    double g = up ? (1 - sigma) * 0.5 + sigma : 0.5 * sigma;
    double step = up ? (g - sigma) * 0.5 : 0.25 * sigma;
    for (int i = 0; i < 15 && t.market > 0; ++i, step /= 2) {
        const double p = formula(t, S, K, t.days, g)[value];
        if (std::fabs(p - t.market) < tolerance) break;
        g = t.market > p ? g + step : g - step;
    }
    if (t.market > 0) r[implied] = g;
    if (std::fabs(r[value] - t.market) < tolerance) r[implied] = sigma;

    for (const std::int32_t day : t.exDays) {
        if (day < 1 || day >= t.days || t.mode != 0 || t.amount <= 0) break;
        const double after = X > t.amount ? X - t.amount : X;
        const std::int32_t horizon = t.days - day - 1 + t.isPut;
        const Results early = formula(t, t.isPut != 0 ? after : X, K, horizon, sigma);
        if (horizon > 0 && early[value] + t.isPut * t.amount > r[value]) {
            r[value] = early[value] + t.isPut * t.amount;
            r[delta] = early[delta];
        }
        X = after;
    }
    return r;
}

TEST(OptionValue, SharedWorkAndForecastChangeNoResult) {
    std::mt19937 random(1973);
    const auto number = [&](double a, double b) { return a + (b - a) * std::ldexp(random(), -32); };
    const auto day = [&](double a, double b) { return static_cast<std::int32_t>(number(a, b)); };
    const auto oneOf = [&](std::initializer_list<double> of) { return of.begin()[random() % of.size()]; };
    for (int n = 0; n < 200000 && !testing::Test::HasFailure(); ++n) {
        std::int32_t days[12];
        double amounts[12];
        const double price = std::exp(number(-5, 9));
        Terms t{day(0, 2), oneOf({price, price, price, price, price, 0.02, 0.0199999997})};
        t.strike = t.stock * std::exp(number(-1, 1) * oneOf({0.01, 0.3, 1})) * oneOf({1, 1, 1, 0.001, 1e7});
        t.rate = oneOf({0, number(0, 0.15)});
        t.volatility = oneOf({number(0.1, 0.6), number(0.1, 0.6), number(0.02, 3), 1});
        t.days = day(-1, oneOf({40, 400, 4000}));
        t.mode = day(0, 4);
        t.split = oneOf({0, 0, 0, 1});
        t.amount = t.stock * oneOf({0, 0, -0.1, 0.01, 0.1, 1});
        if (n % 8 == 0) t.strike = t.stock * oneOf({3, 2, 1, 0.30000001192092896});
        for (auto& each : t.exDays) each = day(-0.1 * t.days, 1.1 * t.days);
        for (auto& each : days) each = random() % 8 == 0 ? t.days : day(-0.3 * t.days, 1.5 * t.days);
        for (auto& each : amounts) each = t.stock * oneOf({0, 0.01, 0.01, -0.01, 3});
        t.scheduleDays = days;
        if (n % 4 != 0) t.schedule = amounts;
        // A quote at another volatility, one close to a price that the search will try, one beyond reach.
        Terms asked = t;
        asked.volatility *= oneOf({1, 0.5, 0.75, number(0.3, 1), number(1, 2)});
        const double quote = ours(asked)[value];
        t.market = oneOf({0, -1, quote, quote + number(-0.0004, 0.0004), 1.2 * t.stock});

        const Results actual = ours(t);
        const Results expected = stepByStep(t);
        ASSERT_EQ(actual[implied], expected[implied]) << n;
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_NEAR(actual[i], expected[i], 1e-10 * (1 + t.stock + std::fabs(expected[i]))) << n;
    }
}

// Rows of tools/option_reference.cpp, the last one with a search worked by hand.
TEST(OptionValue, AgreesWithReferenceFigures) {
    const std::pair<Terms, Results> rows[] = {
        {{0, 100, 100, 0.05, 0.25, 91}, {5.57458467, 0.563504671, 0, 0.0315534235, -12.3378085, 19.6668598}},
        {{1, 50, 60, 0.03, 0.45, 365}, {14.3012138, -0.545568492, 0, 0.0176149756, -3.22974639, 19.8168476}},
        {{0, 105, 100, 0.06, 0.3, 120, 10},
         {10.9434717, 0.684746993, 0.255322, 0.0196749137, -13.3129957, 21.3944473}},
    };
    for (const auto& [t, expected] : rows) {
        Results r{};
        doCalculateBSValue(t.isPut, t.strike, t.rate, NAN, t.volatility, nullptr, nullptr, 0, 0, 0, 0, 0, 1,
                           t.market, t.stock, t.days, &r[gamma], &r[theta], &r[vega], &r[delta], &r[value],
                           &r[implied]);
        for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(r[i], expected[i], 2e-5) << t.days;
    }
}

TEST(OptionValue, ExpiredAndUnusableTermsGiveTheirFixedAnswers) {
    for (const double bad : {0.0F, -1.0F, NAN, INFINITY}) {
        EXPECT_EQ(ours({0, bad, 100, 0.05, 0.25, 91, 5}), Results{}) << bad;
        EXPECT_EQ(ours({0, 100, bad, 0.05, 0.25, 91, 5}), Results{}) << bad;
        EXPECT_EQ(ours({0, 100, 100, 0.05, bad, 91, 5}), Results{}) << bad;
    }
    EXPECT_EQ(ours({1, 80, 1000, NAN, 0, INT32_MIN, 5}), Results{920});
    EXPECT_EQ(ours({.days = INT32_MAX, .amount = 8, .mode = 0, .exDays = {INT32_MAX - 1, -INT32_MAX}})[value],
              92);
    const std::int32_t days[12] = {};
    const double amounts[12] = {1, INFINITY, NAN, -INFINITY};
    EXPECT_EQ(ours({.amount = NAN, .split = NAN, .mode = 2, .schedule = amounts}), ours({}));
    EXPECT_EQ(ours({.mode = 2, .scheduleDays = days, .schedule = amounts}), ours({.stock = 99}));
    EXPECT_EQ(ours({.isPut = 1, .amount = INFINITY, .mode = 0, .exDays = {30}}), ours({.isPut = 1}));
    // A search above 1.0 moves down towards 1.0; a price near the value, be it 0, is no reason to search.
    EXPECT_NEAR(ours({.volatility = 1.5, .market = INFINITY})[implied], 1, 1e-4);
    EXPECT_EQ(ours({.stock = 50, .volatility = 0.1})[implied], 0.1);
}

}  // namespace
