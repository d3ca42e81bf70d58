// doCalculateBSValue against a hand-written closed form, QuantLib's BlackCalculator and QuantLib's analytic
// engine, without a quoted price (value and sensitivities) and with one (the implied volatility too).
// Every peer's answers are compared before anything is timed.  One iteration values a whole book of options.

#include <algorithm>
#include <cmath>
#include <ql/exercise.hpp>
#include <ql/instruments/vanillaoption.hpp>
#include <ql/pricingengines/blackcalculator.hpp>
#include <ql/pricingengines/vanilla/analyticeuropeanengine.hpp>
#include <ql/processes/blackscholesprocess.hpp>
#include <ql/quotes/simplequote.hpp>
#include <ql/settings.hpp>
#include <ql/termstructures/volatility/equityfx/blackconstantvol.hpp>
#include <ql/termstructures/yield/flatforward.hpp>
#include <ql/time/calendars/nullcalendar.hpp>
#include <ql/time/daycounters/actual365fixed.hpp>
#include <ql/version.hpp>
#include <random>
#include <string>
#include <vector>

#include "options/option_value.h"
#include "support.h"

namespace {

using bench::require;

struct Option {
    int isPut;
    double strike, rate, volatility, stock, quote;
    std::int32_t days;
};

struct Result {
    double value, delta, gamma, theta, vega, implied;
};

constexpr double dayFraction = 0.0027397260273972603;
constexpr double tolerance = 0.0002F;

Result ours(const Option& option) {
    Result r{};
    doCalculateBSValue(option.isPut, option.strike, option.rate, 0, option.volatility, nullptr, nullptr, 0, 0,
                       0, 0, 0, 1, option.quote, option.stock, option.days, &r.gamma, &r.theta, &r.vega,
                       &r.delta, &r.value, &r.implied);
    return r;
}

// ----------------------------------------------------------------------------- hand-written closed form

inline double cumulative(double x, double density) {
    const double t = 1 / (1 + 0.2316419 * std::fabs(x));
    const double tail =
        density * t *
        (0.31938153 + t * (-0.35656378 + t * (1.78147794 + t * (-1.82125598 + t * 1.33027443))));
    return x < 0 ? tail : 1 - tail;
}

// Two logarithms and two exponentials in all, no repair of the terms, no dividends.
//
// The implied volatility has to be the one that the bisection ends at.  Newton's method finds the volatility
// that has the quote for its price; a line through that point then predicts the price at each step of the
// bisection.  Where Newton's method fails, each step computes its price.
inline Result handWritten(const Option& option) {
    const double years = option.days * dayFraction, root = std::sqrt(years);
    const double logGrowth = std::log(1 + option.rate), sigma = option.volatility, stock = option.stock;
    const double strike = option.strike * std::exp(-years * logGrowth), moneyness = stock / strike;
    const double logMoneyness = std::log(stock / option.strike) + years * logGrowth;
    const double parity = option.isPut ? strike - stock : 0;
    double density = 0, n1 = 0, n2 = 0;
    const auto priceAt = [&](double g) {
        const double v = g * root, d1 = logMoneyness / v + v / 2;
        density = 0.39894228 * std::exp(-0.5 * d1 * d1);
        n1 = cumulative(d1, density);
        n2 = cumulative(d1 - v, density * moneyness);
        return stock * n1 - strike * n2 + parity;
    };
    const double price = priceAt(sigma);
    Result result{price,
                  option.isPut ? n1 - 1 : n1,
                  density / (stock * sigma * root),
                  -(stock * sigma * density / (2 * root) + logGrowth * strike * (option.isPut ? n2 - 1 : n2)),
                  density * root * stock,
                  0};
    if (!(option.quote > 0)) return result;
    result.implied = sigma;
    if (std::fabs(price - option.quote) < tolerance) return result;

    double slope = result.vega, rootOfPrice = sigma + (option.quote - price) / slope, miss = 1;
    for (int i = 0; i < 6 && std::fabs(miss) > 1e-5 && rootOfPrice > 0; ++i) {
        miss = option.quote - priceAt(rootOfPrice);
        slope = density * root * stock;
        rootOfPrice += miss / slope;
    }
    const bool predicted = std::fabs(miss) <= 1e-5 && rootOfPrice > 0;
    const bool upward = option.quote > price;
    double g = upward ? (1 - sigma) * 0.5 + sigma : 0.5 * sigma;
    double step = upward ? (g - sigma) * 0.5 : 0.25 * sigma;
    for (int i = 0; i < 15; ++i) {
        const double difference = predicted ? slope * (g - rootOfPrice) : priceAt(g) - option.quote;
        if (std::fabs(difference) < tolerance) break;
        g += difference < 0 ? step : -step;
        step *= 0.5;
    }
    result.implied = g;
    return result;
}

// ----------------------------------------------------------------------------------------------- QuantLib

Result quantLib(const Option& option) {
    const double years = option.days * dayFraction, root = std::sqrt(years);
    const double discount = std::pow(1 + option.rate, -years), forward = option.stock / discount;
    const auto type = option.isPut ? QuantLib::Option::Put : QuantLib::Option::Call;
    const QuantLib::BlackCalculator calculator(type, option.strike, forward, option.volatility * root,
                                               discount);
    Result result{calculator.value(),
                  calculator.delta(option.stock),
                  calculator.gamma(option.stock),
                  calculator.theta(option.stock, years),
                  calculator.vega(years),
                  0};
    if (!(option.quote > 0)) return result;
    const double sigma = option.volatility;
    result.implied = sigma;
    if (std::fabs(result.value - option.quote) < tolerance) return result;
    const bool upward = option.quote > result.value;
    double g = upward ? (1 - sigma) * 0.5 + sigma : 0.5 * sigma,
           step = upward ? (g - sigma) * 0.5 : 0.25 * sigma;
    for (int i = 0; i < 15; ++i) {
        const double difference =
            QuantLib::BlackCalculator(type, option.strike, forward, g * root, discount).value() -
            option.quote;
        if (std::fabs(difference) < tolerance) break;
        g += difference < 0 ? step : -step;
        step *= 0.5;
    }
    result.implied = g;
    return result;
}

// QuantLib's way for programs: one process, whose quotes are set for each option, and an instrument with the
// analytic engine.  The implied volatility comes from its own solver.
class Engine {
  public:
    Result value(const Option& option) {
        stock_->setValue(option.stock);
        rate_->setValue(option.rate);
        volatility_->setValue(option.volatility);
        const auto type = option.isPut ? QuantLib::Option::Put : QuantLib::Option::Call;
        QuantLib::VanillaOption vanilla(
            QuantLib::ext::make_shared<QuantLib::PlainVanillaPayoff>(type, option.strike),
            QuantLib::ext::make_shared<QuantLib::EuropeanExercise>(today_ + option.days));
        vanilla.setPricingEngine(engine_);
        Result result{vanilla.NPV(), vanilla.delta(), vanilla.gamma(), vanilla.theta(), vanilla.vega(), 0};
        if (!(option.quote > 0)) return result;
        result.implied = option.volatility;
        if (std::fabs(result.value - option.quote) < tolerance) return result;
        result.implied = vanilla.impliedVolatility(option.quote, process_, 1e-5, 100, 1e-4, 4.0);
        return result;
    }

  private:
    template <typename T>
    using Shared = QuantLib::ext::shared_ptr<T>;
    using QuoteHandle = QuantLib::Handle<QuantLib::Quote>;
    using CurveHandle = QuantLib::Handle<QuantLib::YieldTermStructure>;

    CurveHandle curve(const QuoteHandle& rate) const {
        return CurveHandle(QuantLib::ext::make_shared<QuantLib::FlatForward>(
            today_, rate, QuantLib::Actual365Fixed(), QuantLib::Compounded, QuantLib::Annual));
    }

    QuantLib::Date today_{15, QuantLib::January, 2024};
    Shared<QuantLib::SimpleQuote> stock_ = QuantLib::ext::make_shared<QuantLib::SimpleQuote>(1.0);
    Shared<QuantLib::SimpleQuote> rate_ = QuantLib::ext::make_shared<QuantLib::SimpleQuote>(0.0);
    Shared<QuantLib::SimpleQuote> volatility_ = QuantLib::ext::make_shared<QuantLib::SimpleQuote>(0.2);
    Shared<QuantLib::BlackScholesMertonProcess> process_ =
        QuantLib::ext::make_shared<QuantLib::BlackScholesMertonProcess>(
            QuoteHandle(stock_), curve(QuoteHandle(QuantLib::ext::make_shared<QuantLib::SimpleQuote>(0.0))),
            curve(QuoteHandle(rate_)),
            QuantLib::Handle<QuantLib::BlackVolTermStructure>(
                QuantLib::ext::make_shared<QuantLib::BlackConstantVol>(
                    today_, QuantLib::NullCalendar(), QuoteHandle(volatility_), QuantLib::Actual365Fixed())));
    Shared<QuantLib::PricingEngine> engine_ =
        QuantLib::ext::make_shared<QuantLib::AnalyticEuropeanEngine>(process_);
};

Result quantLibEngine(const Option& option) {
    static Engine engine;
    return engine.value(option);
}

// ------------------------------------------------------------------------------------------------ the books

enum class Quotes { none, near, unreachable };

std::vector<Option> book(Quotes quotes, std::int64_t size) {
    std::mt19937 random(20);
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    std::vector<Option> options(static_cast<std::size_t>(size));
    for (Option& option : options) {
        const double stock = between(20, 200);
        option = {static_cast<int>(random() % 2),
                  stock * between(0.8, 1.25),
                  between(0, 0.1),
                  between(0.1, 0.6),
                  stock,
                  0,
                  static_cast<std::int32_t>(between(20, 400))};
        Option other = option;
        other.volatility *= between(0.7, 1.4);
        if (quotes == Quotes::near) option.quote = ours(other).value;
        if (quotes == Quotes::unreachable) option.quote = 1.1 * std::max(option.stock, option.strike);
    }
    return options;
}

bool agree(const Result& a, const Result& b, double slack) {
    return std::fabs(a.value - b.value) <= slack && std::fabs(a.delta - b.delta) <= slack &&
           std::fabs(a.gamma - b.gamma) <= slack && std::fabs(a.theta - b.theta) <= slack &&
           std::fabs(a.vega - b.vega) <= slack;
}

// Two results of the search are equally good if both prices are within the tolerance of the quote.
bool samePrice(Option option, double g1, double g2) {
    option.quote = 0;
    option.volatility = g1;
    const double price = ours(option).value;
    option.volatility = g2;
    return std::fabs(g1 - g2) < 1e-4 || std::fabs(price - ours(option).value) < 3 * tolerance;
}

void checkAnswers() {
    for (const Quotes quotes : {Quotes::none, Quotes::near, Quotes::unreachable}) {
        for (const Option& option : book(quotes, 1024)) {
            const Result result = ours(option);
            const auto check = [&](const Result& other, double slack) {
                require(agree(result, other, slack), "another value or sensitivity");
                require(samePrice(option, result.implied, other.implied), "another implied volatility");
            };
            check(handWritten(option), 1e-9);
            check(quantLib(option), 1e-4);
            if (quotes != Quotes::unreachable) check(quantLibEngine(option), 1e-4);
        }
    }
}

template <Result (*value)(const Option&)>
void run(benchmark::State& state, Quotes quotes) {
    const std::vector<Option> options = book(quotes, state.range(0));
    for (auto _ : state) {
        for (const Option& option : options) benchmark::DoNotOptimize(value(option));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void add(const std::string& job, Quotes quotes) {
    const auto addOne = [&](const char* who, void (*timed)(benchmark::State&, Quotes)) {
        benchmark::RegisterBenchmark((job + who).c_str(), timed, quotes)->Arg(32)->Arg(1024)->Arg(32'768);
    };
    addOne("/ours", run<ours>);
    addOne("/hand_written", run<handWritten>);
    addOne("/quantlib", run<quantLib>);
    if (quotes != Quotes::unreachable) addOne("/quantlib_engine", run<quantLibEngine>);
}

}  // namespace

int main(int argc, char** argv) {
    QuantLib::Settings::instance().evaluationDate() = QuantLib::Date(15, QuantLib::January, 2024);
    checkAnswers();
    add("value", Quotes::none);
    add("value_implied", Quotes::near);
    add("value_unreachable_quote", Quotes::unreachable);
    return bench::run(argc, argv, {{"QuantLib", QL_VERSION}});
}
