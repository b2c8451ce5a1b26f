// Hensel-Spittel by least squares: the bounded optimum of the measured series,
// the law recovered from its own curves, the guards held, the objective of ln σ,
// stops and switches.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "base/fileio.h"
#include "hot/hotleastsquares.h"
#include "hot/hotmodels.h"
#include "hot/stresstable.h"
#include "hotcurves.h"

namespace zelko {
namespace {

// Within 0.1 % of the optimum's sum of squares.
constexpr double kOptimumShare = 1e-3;
// Exact curves give back their law to the solver's convergence in ln σ.
constexpr double kRecovered = 1e-6;

const HenselSpittelParameters kLaw = {1500.0, -0.0025, 0.12, 0.1, -0.004, 0.05, 0.0, -0.3, 0.00008, 0.05};

PLASTIC_HOT lawDataSet()
{
    return test::lawDataSet([](double e, double r, double T) { return henselSpittelStress(kLaw, e, r, T); },
                            {900, 1000, 1100}, {0.01, 0.1, 1, 10}, {0.1, 0.2, 0.3, 0.4, 0.5});
}

HotFit fitWith(const PLASTIC_HOT& dataSet, FitMethod method, HotObjective objective = HotObjective::Absolute,
               const RunControl& control = {})
{
    HotFitOptions options;
    options.method = method;
    options.objective = objective;
    return fitHotModel(dataSet, HotModelId::Type17, options, control);
}

struct Sums {
    double stress = 0.0, logarithm = 0.0;
};
Sums sumsOf(const PLASTIC_HOT& model)
{
    const HotStressTable table(model);
    Sums sums;
    for (std::size_t t = 0; t < table.temperatureCount(); ++t)
        for (std::size_t r = 0; r < table.rateCount(); ++r)
            for (std::size_t k = 0; k < table.strainCount(); ++k)
                if (table.usable(t, r, k)) {
                    const double value = model.evaluate(model.strains[k], model.strainRates[r], model.temperatures[t]);
                    const double measured = table.at(t, r, k);
                    sums.stress += (value - measured) * (value - measured);
                    sums.logarithm += std::log(value / measured) * std::log(value / measured);
                }
    return sums;
}

TEST(HenselSpittelLeastSquares, ReachesScipysBoundedOptimumOnTheMeasuredSeries)
{
    // The references come from bench/scipy/hotoptimum.py on the same entries and guards.
    std::string error;
    const auto bytes = readFileBytes(ZELKO_TEST_DATA "/hot-fits/hensel-spittel-measured/optimum.txt", error);
    ASSERT_TRUE(bytes) << error;
    std::istringstream in(*bytes);
    Sums optimum;
    std::string word;
    while (in >> word) {
        if (word == "absolute")
            in >> optimum.stress;
        else if (word == "relative")
            in >> optimum.logarithm;
        else
            in.ignore(1000, '\n');
    }
    ASSERT_GT(optimum.stress, 0.0);
    ASSERT_GT(optimum.logarithm, 0.0);

    const PLASTIC_HOT measured = test::measuredDataSet();
    const HotFit stress = fitWith(measured, FitMethod::LeastSquares);
    EXPECT_LE(sumsOf(*stress.model).stress, optimum.stress * (1.0 + kOptimumShare));
    const HotFit logarithm = fitWith(measured, FitMethod::LeastSquares, HotObjective::Relative);
    EXPECT_LE(sumsOf(*logarithm.model).logarithm, optimum.logarithm * (1.0 + kOptimumShare));
    // Each is the better fit by its own measure, and AARE judges by relative errors.
    EXPECT_LT(logarithm.result.aare, stress.result.aare);
    EXPECT_LT(stress.result.rmse, logarithm.result.rmse);
    // After the descent the same optimum, far below where the descent stops.
    const HotFit descent = fitWith(measured, FitMethod::Descent);
    const HotFit polished = fitWith(measured, FitMethod::DescentThenLeastSquares);
    EXPECT_LE(sumsOf(*polished.model).stress, optimum.stress * (1.0 + kOptimumShare));
    EXPECT_GT(sumsOf(*descent.model).stress, 1.5 * optimum.stress);
}

TEST(HenselSpittelLeastSquares, RecoversTheLawFromItsOwnCurves)
{
    const PLASTIC_HOT dataSet = lawDataSet();
    for (const HotObjective objective : {HotObjective::Absolute, HotObjective::Relative}) {
        const HotFit fit = fitWith(dataSet, FitMethod::LeastSquares, objective);
        ASSERT_TRUE(fit.result.fitted);
        EXPECT_EQ(fit.result.stop, FitStop::Converged);
        EXPECT_FALSE(fit.result.bounds.any());
        EXPECT_LT(fit.result.aare, kRecovered);
        const auto& p = std::static_pointer_cast<PLASTIC_17>(fit.model)->parameters;
        EXPECT_NEAR(std::log(p[A]), std::log(kLaw[A]), 1e-4);
        EXPECT_NEAR(p[M2], kLaw[M2], 1e-6);
        EXPECT_NEAR(p[M4], kLaw[M4], 1e-6);
        EXPECT_EQ(p[M6], 0.0);
    }
}

TEST(HenselSpittelLeastSquares, StaysWithinTheGuardsAndSaysWhichItReached)
{
    const PLASTIC_HOT measured = test::measuredDataSet();
    const HotFit fit = fitWith(measured, FitMethod::LeastSquares);
    const auto& p = std::static_pointer_cast<PLASTIC_17>(fit.model)->parameters;
    const HotStressTable table(measured);
    HenselSpittelObjective objective(measured, table, {}, 0);
    const HenselSpittelParameters start = henselSpittelStart(measured, table, 0, objective);
    EXPECT_TRUE(objective.m5InRange(p[M5]));
    EXPECT_TRUE(objective.m8InRange(p[M8]));
    EXPECT_GE(std::fabs(p[M1]), 0.8 * std::fabs(start[M1]) * (1.0 - 1e-12));
    // The measured series presses against a guard; the result and the report say which.
    EXPECT_EQ(fit.result.stop, FitStop::AtBound);
    ASSERT_TRUE(fit.result.bounds.any());
    EXPECT_NE(fit.result.report.find(" stop: converged at a bound\n"), std::string::npos);
    for (int i = A; i <= M9; ++i)
        if (fit.result.bounds.at(static_cast<std::size_t>(i)))
            EXPECT_TRUE(i == M1 || i == M5 || i == M8) << i;  // only the guarded ones have limits
    EXPECT_NE(fit.result.report.find(" at a bound: "), std::string::npos);
    // The described report has no such lines.
    EXPECT_EQ(fitWith(measured, FitMethod::Descent).result.report.find(" stop: "), std::string::npos);
}

TEST(HenselSpittelLeastSquares, KeepsSwitchedOffParametersAtZero)
{
    HotFitOptions options;
    options.method = FitMethod::LeastSquares;
    options.parameterSwitches = (1u << M4) | (1u << M9);
    const HotFit fit = fitHotModel(lawDataSet(), HotModelId::Type17, options);
    const auto& p = std::static_pointer_cast<PLASTIC_17>(fit.model)->parameters;
    EXPECT_EQ(p[M4], 0.0);
    EXPECT_EQ(p[M9], 0.0);
    EXPECT_NE(p[M2], 0.0);

    // With A held at 0 there is no law to fit by least squares: said, and nothing breaks.
    options.parameterSwitches = 1u << A;
    const HotFit none = fitHotModel(lawDataSet(), HotModelId::Type17, options);
    EXPECT_TRUE(none.result.fitted);
    EXPECT_FALSE(none.result.notes.empty());
}

TEST(HenselSpittelLeastSquares, AStopEndsItCancelledAndProgressEndsAtHundred)
{
    const PLASTIC_HOT measured = test::measuredDataSet();
    int last = -1;
    RunControl control;
    control.progress = [&](int percent) { last = percent; };
    EXPECT_FALSE(fitWith(measured, FitMethod::LeastSquares, HotObjective::Absolute, control).cancelled);
    EXPECT_EQ(last, 100);

    std::stop_source stop;
    RunControl stopping;
    stopping.stop = stop.get_token();
    const HotStressTable table(measured);
    const HenselSpittelObjective objective(measured, table, {}, 0);
    const HenselSpittelParameters start = henselSpittelStart(measured, table, 0, objective);
    stop.request_stop();
    const HenselSpittelLeastSquares stopped
        = fitHenselSpittelLeastSquares(objective, HotObjective::Absolute, 0, {start}, stopping);
    EXPECT_TRUE(stopped.cancelled);
    EXPECT_FALSE(stopped.usable);
    EXPECT_TRUE(fitWith(measured, FitMethod::LeastSquares, HotObjective::Absolute, stopping).cancelled);
}

}  // namespace
}  // namespace zelko
