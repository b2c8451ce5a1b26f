#include <gtest/gtest.h>

#include <cmath>

#include "hot/hotmodels.h"
#include "hot/plastic_17.h"
#include "hot/stresstable.h"
#include "hotcurves.h"
#include "testutil.h"

namespace zelko {
namespace {

// Central differences of an objective of order 1e4 with steps of 1e-6 relative
// agree with the analytic gradient to about six digits.
constexpr double kGradientTolerance = 1e-5;
// The law evaluated two ways differs in the last bits of its exponentials.
constexpr double kLawTolerance = 1e-12;

// A steel-like parameter set; m6 is carried but takes no part.
const HenselSpittelParameters kSteel = {1500.0, -0.0025, 0.12, 0.1, -0.004, 0.05, 7.0, -0.3, 0.00008, 0.05};

double spelledOutLaw(const HenselSpittelParameters& p, double e, double rate, double T)
{
    return p[A] * std::exp(p[M1] * T) * std::pow(e, p[M2]) * std::pow(rate, p[M3]) * std::exp(p[M4] / e)
           * std::pow(1 + e, p[M5]) * std::exp(p[M7] * e) * std::pow(rate, p[M8] * T) * std::pow(T, p[M9]);
}

PLASTIC_HOT steelDataSet(const HenselSpittelParameters& p = kSteel, std::vector<double> strains = {0.1, 0.2, 0.3, 0.4, 0.5})
{
    return test::lawDataSet([&](double e, double r, double T) { return spelledOutLaw(p, e, r, T); },
                            {900, 1000, 1100}, {0.01, 0.1, 1, 10}, std::move(strains));
}

std::shared_ptr<PLASTIC_17> fitted(const PLASTIC_HOT& dataSet, HotFitOptions options, HotFitResult* result = nullptr,
                                   const RunControl& control = {})
{
    const HotFit fit = fitHotModel(dataSet, HotModelId::Type17, options, control);
    if (result)
        *result = fit.result;
    return std::static_pointer_cast<PLASTIC_17>(fit.model);
}

RunControl recording(std::vector<int>& progress)
{
    return {[&progress](int percent) { progress.push_back(percent); }, {}};
}

TEST(HenselSpittelLaw, EveryFactorAsWritten)
{
    for (const double e : {0.05, 0.3, 0.9})
        for (const double rate : {0.001, 1.0, 30.0})
            for (const double T : {850.0, 1200.0})
                EXPECT_NEAR(henselSpittelStress(kSteel, e, rate, T) / spelledOutLaw(kSteel, e, rate, T), 1.0, kLawTolerance);
    // m6 takes no part.
    HenselSpittelParameters withM6 = kSteel;
    withM6[M6] = 1000.0;
    EXPECT_EQ(henselSpittelStress(withM6, 0.3, 1, 1000), henselSpittelStress(kSteel, 0.3, 1, 1000));
    // Where the law has no value it gives 0, never NaN.
    EXPECT_EQ(henselSpittelStress(kSteel, 0.0, 1, 1000), 0.0);
    EXPECT_EQ(henselSpittelStress(kSteel, 0.3, 0.0, 1000), 0.0);
    EXPECT_EQ(henselSpittelStress(kSteel, 0.3, 1, 0.0), 0.0);
    EXPECT_EQ(henselSpittelStress({1e300, 0, 0, 0, 0, 0, 0, 1000, 0, 0}, 0.9, 1, 1000), 0.0);  // overflow
}

TEST(HenselSpittelObjective, VanishesAtTheLawAndHasItsAnalyticGradient)
{
    const PLASTIC_HOT dataSet = steelDataSet();
    const HotStressTable table(dataSet);
    const std::vector<double> weights = {1.0, 0.5, 2.0, 1.0};
    const HenselSpittelObjective objective(dataSet, table, weights, 0);
    ASSERT_EQ(objective.entryCount(), 3u * 4u * 5u);
    EXPECT_LT(objective.objective(kSteel), 1e-18);

    HenselSpittelParameters p = kSteel;
    p[A] *= 1.1;
    p[M3] += 0.01;
    p[M7] -= 0.05;
    HenselSpittelParameters g;
    objective.gradient(p, g);
    for (int i = A; i <= M9; ++i) {
        const double h = 1e-6 * std::max(std::fabs(p[i]), 1e-3);
        HenselSpittelParameters up = p, down = p;
        up[i] += h;
        down[i] -= h;
        const double numeric = (objective.objective(up) - objective.objective(down)) / (2 * h);
        EXPECT_NEAR(g[i], numeric, kGradientTolerance * std::max(1.0, std::fabs(numeric))) << "parameter " << i;
    }
    EXPECT_EQ(g[M6], 0.0);
}

TEST(HenselSpittelObjective, EntriesAtZeroStrainTakeNoPart)
{
    const PLASTIC_HOT withZero = steelDataSet(kSteel, {0.0, 0.2, 0.4});
    const PLASTIC_HOT without = steelDataSet(kSteel, {0.2, 0.4});
    const HotStressTable a(withZero), b(without);
    const HenselSpittelObjective withObjective(withZero, a, {}, 0), withoutObjective(without, b, {}, 0);
    HenselSpittelParameters p = kSteel;
    p[M2] = 0.3;
    HenselSpittelParameters ga, gb;
    withObjective.gradient(p, ga);
    withoutObjective.gradient(p, gb);
    EXPECT_EQ(ga, gb);
    EXPECT_EQ(withObjective.objective(p), withoutObjective.objective(p));
}

TEST(HenselSpittelStart, PassesThroughTheLargestStressAndMovesLargeDecadesIntoM9)
{
    PLASTIC_HOT dataSet = steelDataSet();
    // A tie at the largest stress: the first entry met (lowest temperature) is the reference.
    const double largest = 10 * spelledOutLaw(kSteel, 0.5, 10, 900);
    dataSet.curves[0][3].back().stress = largest;
    dataSet.curves[0][3][8].stress = largest;  // strain 0.5 of 900 C, 10/s
    dataSet.curves[2][3][8].stress = largest;  // the same at 1100 C, met later
    const HotStressTable table(dataSet);
    const HenselSpittelObjective objective(dataSet, table, {}, 0);
    const HenselSpittelParameters start = henselSpittelStart(dataSet, table, 0, objective);
    EXPECT_NEAR(henselSpittelStress(start, 0.5, 10, 900) / largest, 1.0, kLawTolerance);
    EXPECT_LT(std::floor(std::log10(start[A])), 4.0);
    EXPECT_EQ(start[M6], 0.0);
    EXPECT_TRUE(objective.m5InRange(start[M5]));

    // Stresses of 1e7 MPa would need A of that order: three decades stay in A,
    // the rest go to m9 (and the law still passes through the reference).
    PLASTIC_HOT huge = steelDataSet();
    for (auto& row : huge.curves)
        for (HotCurve& curve : row)
            for (HotCurvePoint& point : curve)
                point.stress *= 1e5;
    const HotStressTable hugeTable(huge);
    const HenselSpittelParameters shifted
        = henselSpittelStart(huge, hugeTable, 0, HenselSpittelObjective(huge, hugeTable, {}, 0));
    EXPECT_EQ(std::floor(std::log10(shifted[A])), 3.0);
    EXPECT_GT(shifted[M9], start[M9]);
    double reference = 0;
    std::array<double, 3> at{};
    for (std::size_t t = 0; t < 3; ++t)
        for (std::size_t r = 0; r < 4; ++r)
            for (std::size_t k = 0; k < 5; ++k)
                if (hugeTable.at(t, r, k) > reference) {
                    reference = hugeTable.at(t, r, k);
                    at = {huge.strains[k], huge.strainRates[r], huge.temperatures[t]};
                }
    EXPECT_NEAR(henselSpittelStress(shifted, at[0], at[1], at[2]) / reference, 1.0, kLawTolerance);

    // Switched-off exponents start, and stay, at 0.
    const unsigned allButA = ((1u << kHenselSpittelParameterCount) - 1) & ~1u;
    const HenselSpittelParameters off = henselSpittelStart(dataSet, table, allButA, objective);
    for (int i = M1; i <= M9; ++i)
        EXPECT_EQ(off[i], 0.0);
}

TEST(HenselSpittelFit, WithEverySwitchButAOnlyAMoves)
{
    const unsigned allButA = ((1u << kHenselSpittelParameterCount) - 1) & ~1u;
    HotFitOptions options;
    options.parameterSwitches = allButA;
    HotFitResult result;
    const auto model = fitted(steelDataSet(), options, &result);
    for (int i = M1; i <= M9; ++i)
        EXPECT_EQ(model->parameters[i], 0.0) << i;
    // A constant law ends at the weighted mean stress, below the largest it started from.
    const HotStressTable table(*model);
    double sum = 0;
    for (std::size_t t = 0; t < 3; ++t)
        for (std::size_t r = 0; r < 4; ++r)
            for (std::size_t k = 0; k < 5; ++k)
                sum += table.at(t, r, k);
    EXPECT_NEAR(model->parameters[A], sum / 60.0, 1e-3 * sum / 60.0);
}

TEST(HenselSpittelFit, GuardsHoldWhereTheDataPullOutOfRange)
{
    // A strong (1 + ε) term and rate-temperature coupling in the data.
    HenselSpittelParameters pulling = kSteel;
    pulling[M5] = 3.0;
    pulling[M8] = 0.002;
    const PLASTIC_HOT dataSet = steelDataSet(pulling);
    HotFitResult result;
    const auto model = fitted(dataSet, {}, &result);
    const HotStressTable table(*model);
    const HenselSpittelObjective objective(*model, table, {}, 0);
    const HenselSpittelParameters start = henselSpittelStart(*model, table, 0, objective);
    // m5 starts in its range (the sanity rule) and stays there; m8 has no such
    // rule, so a start outside its range is where the guard holds it.
    for (const double strain : {0.1, 0.5}) {
        const double v = std::pow(1 + strain, model->parameters[M5]);
        EXPECT_TRUE(v >= 0.9 && v <= 1.1) << strain;
    }
    EXPECT_NE(model->parameters[M5], 0.0);
    ASSERT_FALSE(objective.m8InRange(start[M8]));
    EXPECT_EQ(model->parameters[M8], start[M8]);
    EXPECT_GE(std::fabs(model->parameters[M1]), 0.8 * std::fabs(start[M1]));
    // The descent improved on its start.
    EXPECT_LT(objective.objective(model->parameters), objective.objective(start));
}

TEST(HenselSpittelObjective, GuardsPutBackWhatLeavesItsRange)
{
    // Sample strains 0.1 to 0.5, rates 0.01 to 10, temperatures 900 to 1100.
    const PLASTIC_HOT dataSet = steelDataSet();
    const HotStressTable table(dataSet);
    HenselSpittelObjective objective(dataSet, table, {}, 0);
    objective.setStartM1(-0.002);
    const HenselSpittelParameters previous = {1000, -0.003, 0.1, 0.1, 0, 0.01, 0, 0, 1e-5, 0};
    const auto guarded = [&](int parameter, double value) {
        HenselSpittelParameters trial = previous;
        trial[parameter] = value;
        objective.guard(trial, previous);
        return trial[parameter];
    };
    // (1 + ε)^m5 within [0.9, 1.1] at ε = 0.5 (the binding end) ...
    EXPECT_EQ(guarded(M5, std::log(1.099) / std::log(1.5)), std::log(1.099) / std::log(1.5));
    EXPECT_EQ(guarded(M5, std::log(1.101) / std::log(1.5)), previous[M5]);
    EXPECT_EQ(guarded(M5, std::log(0.899) / std::log(1.5)), previous[M5]);
    // ... and ε̇^(m8·T) within [0.1, 10] at 0.01/s and 1100 C (the binding ends).
    const double m8Edge = std::log(10.0) / (1100 * std::log(100.0));  // 0.01^(m8·1100) = 0.1
    EXPECT_EQ(guarded(M8, 0.99 * m8Edge), 0.99 * m8Edge);
    EXPECT_EQ(guarded(M8, 1.01 * m8Edge), previous[M8]);
    EXPECT_EQ(guarded(M8, -0.99 * m8Edge), -0.99 * m8Edge);
    EXPECT_EQ(guarded(M8, -1.01 * m8Edge), previous[M8]);
    // |m1| not below 0.8 of its start.
    EXPECT_EQ(guarded(M1, -0.0016 * 1.01), -0.0016 * 1.01);
    EXPECT_EQ(guarded(M1, -0.0016 * 0.99), previous[M1]);
    EXPECT_EQ(guarded(M1, 0.0), previous[M1]);

    // A parameter switched off is not guarded.
    const HenselSpittelObjective off(dataSet, table, {}, (1u << M5) | (1u << M8) | (1u << M1));
    HenselSpittelParameters trial = previous;
    trial[M5] = 5, trial[M8] = 1, trial[M1] = 0;
    off.guard(trial, previous);
    EXPECT_EQ(trial[M5], 5);
    EXPECT_EQ(trial[M8], 1);
    EXPECT_EQ(trial[M1], 0);
}

TEST(HenselSpittelFit, MeasuredSeriesReportAndProgress)
{
    std::vector<int> progress;
    HotFitResult result;
    const auto model = fitted(test::measuredDataSet(), {}, &result, recording(progress));
    ASSERT_TRUE(result.fitted);
    EXPECT_EQ(result.compared, 5u * 6u * 14u);
    // Measured for the defaults on this series: AARE 9.8 %, RMSE 4.8 MPa; a bounded
    // least-squares optimum of the same law reaches 7.7 % and 3.9 MPa.
    EXPECT_LT(result.aare, 0.11);
    EXPECT_LT(result.rmse, 5.5);
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.back(), 100);

    const auto lines = split(std::string_view(result.report), "\n");
    ASSERT_EQ(lines.size(), 11u);
    EXPECT_EQ(lines[0], formatText(" AARE = %g %%", result.aare * 100));
    EXPECT_EQ(lines[1], formatText(" RMSE = %g MPa", result.rmse));
    const char* names[] = {"A", "m1", "m2", "m3", "m4", "m5", "m7", "m8", "m9"};
    const int index[] = {A, M1, M2, M3, M4, M5, M7, M8, M9};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(lines[2 + i], formatText(" %s = %g", names[i], model->parameters[index[i]]));
}

TEST(HenselSpittelFit, MeasuredSeriesGivesItsRecordedReportAndDescent)
{
    // The report, where the descent stopped and how long it took, byte for byte:
    // a change to the descent's rules shows here first.
    const HotFit fit = fitHotModel(test::measuredDataSet(), HotModelId::Type17, {});
    const HotFitResult& result = fit.result;
    const std::string actual = result.report + "stop: " + result.stopReason + "\n" +
                               formatText("iterations: %d\nevaluations: %ld\n", result.iterations, result.evaluations);
    std::string error;
    const auto expected
        = readFileBytes(ZELKO_TEST_DATA "/hot-fits/hensel-spittel-measured/expected.txt", error);
    ASSERT_TRUE(expected) << error;
    EXPECT_TRUE(test::sameBytes(actual, *expected));
}

TEST(HenselSpittelFit, BalancedWeightsEvenOutTheRatesStressLevels)
{
    // The fast tests flow at twice the slow ones' stress: they weigh a quarter as much.
    const PLASTIC_HOT dataSet = test::lawDataSet([](double e, double rate, double) { return (rate < 0.5 ? 100 : 200) * (1 + e); },
                                                 {900, 1000}, {0.1, 1}, {0.2, 0.4});
    const std::vector<double> weights = balancedRateWeights(HotStressTable(dataSet));
    ASSERT_EQ(weights.size(), 2u);
    EXPECT_NEAR(weights[1] / weights[0], 0.25, 1e-12);
    const double mean = (100 * (1.2 + 1.4) + 200 * (1.2 + 1.4)) / 4;
    EXPECT_NEAR(weights[0], std::pow(mean / (100 * 1.3), 2), 1e-12);

    // On the measured series the weighting moves the fit; weights given outright still rule.
    HotFitOptions balanced;
    balanced.weighting = HotWeighting::BalancedByStress;
    const PLASTIC_HOT measured = test::measuredDataSet();
    const HotFit equal = fitHotModel(measured, HotModelId::Type17, {});
    const HotFit weighted = fitHotModel(measured, HotModelId::Type17, balanced);
    EXPECT_NE(equal.model->parameters, weighted.model->parameters);
    balanced.rateWeights.assign(measured.strainRates.size(), 1.0);
    EXPECT_EQ(fitHotModel(measured, HotModelId::Type17, balanced).model->parameters, equal.model->parameters);
}

TEST(HenselSpittelFit, ATargetShareOfTheStartErrorEndsTheDescentEarly)
{
    const PLASTIC_HOT measured = test::measuredDataSet();
    const HotFit full = fitHotModel(measured, HotModelId::Type17, {});
    HotFitOptions options;
    options.targetFraction = 0.5;
    const HotFit early = fitHotModel(measured, HotModelId::Type17, options);
    EXPECT_EQ(early.result.stopReason, "error below the target share of the start's");
    EXPECT_LT(early.result.iterations, full.result.iterations);
    EXPECT_GT(early.result.rmse, full.result.rmse);
}

TEST(HenselSpittelFit, BadDataEndsQuietly)
{
    PLASTIC_HOT dataSet = steelDataSet();
    dataSet.curves[0][0][2].stress = std::nan("");
    dataSet.curves[1][1][4].stress = -50.0;
    dataSet.curves[2][2][6].stress = 0.0;
    dataSet.curves[2][3].clear();  // an empty cell
    HotFitResult result;
    auto model = fitted(dataSet, {}, &result);
    EXPECT_TRUE(result.fitted);
    EXPECT_EQ(result.missing, 3u + 5u);
    EXPECT_FALSE(result.notes.empty());
    for (const double p : model->parameters)
        EXPECT_TRUE(std::isfinite(p));

    // A temperature of 0 has no logarithm: m9 stays at 0.
    PLASTIC_HOT cold = steelDataSet();
    cold.temperatures[0] = 0.0;
    model = fitted(cold, {}, &result);
    EXPECT_EQ(model->parameters[M9], 0.0);
    EXPECT_NE(result.report.find(" m9 = 0\n"), std::string::npos);

    // Nothing usable: no fit, and the progress still ends at 100.
    PLASTIC_HOT empty = steelDataSet();
    for (auto& row : empty.curves)
        for (HotCurve& curve : row)
            curve.clear();
    std::vector<int> progress;
    const auto none = fitted(empty, {}, &result, recording(progress));
    EXPECT_FALSE(result.fitted);
    EXPECT_EQ(progress.back(), 100);
    TextWriter out(TextEncoding::EightBit);
    none->writeLibraryBlock(out, 6);
    for (const char* bad : {"nan", "NAN", "inf", "INF"})
        EXPECT_EQ(test::textOf(out).find(bad), std::string::npos);
}

TEST(HenselSpittelFit, AStopGivesNoModelAndLeavesTheDataSet)
{
    const PLASTIC_HOT dataSet = steelDataSet();
    std::stop_source stop;
    int reports = 0;
    HotFitOptions options;
    options.maxIterations = 100;  // a report every iteration
    const RunControl control{[&](int) {
                                 if (++reports == 2)
                                     stop.request_stop();
                             },
                             stop.get_token()};
    const HotFit fit = fitHotModel(dataSet, HotModelId::Type17, options, control);
    EXPECT_TRUE(fit.cancelled);
    EXPECT_FALSE(fit.model);
    EXPECT_FALSE(fit.result.fitted);
    EXPECT_EQ(fit.result.message, kRunCancelled);
    EXPECT_EQ(reports, 2);  // ended before a third iteration
    EXPECT_EQ(dataSet.parameters, HenselSpittelParameters{});
    EXPECT_EQ(dataSet.strainMax, 0.0);

    // Unstopped, the same call fits a new model and leaves its input alone.
    const HotFit whole = fitHotModel(dataSet, HotModelId::Type17, options);
    ASSERT_TRUE(whole.model);
    EXPECT_FALSE(whole.cancelled);
    EXPECT_EQ(whole.model->strainMax, 0.5);
    EXPECT_EQ(dataSet.strainMax, 0.0);
}

TEST(HenselSpittelBlock, NineParametersWithoutM6)
{
    PLASTIC_17 model;
    model.parameters = {1234.5, -0.0025, 0.125, 0.1, -0.004, 0.05, 99.0, -0.3, 8e-5, 0.5};
    model.maxStress = 250.0;
    model.strainMin = 0.05;
    model.strainMax = 0.7;
    model.auxiliaryMin = 1050;
    model.auxiliaryMax = 1250;
    TextWriter out(TextEncoding::EightBit);
    EXPECT_TRUE(model.writeLibraryBlock(out, 6));
    EXPECT_EQ(test::textOf(out),
              "      17\n"
              "              2.5000E+02      1.0000E+04      5.0000E-02      7.0000E-01      1.0500E+03      1.2500E+03\n"
              "              0.0000E+00      0.0000E+00      0.0000E+00      0.0000E+00\n"
              "              1.2345E+03     -2.5000E-03      1.2500E-01      1.0000E-01     -4.0000E-03      5.0000E-02"
              "     -3.0000E-01      8.0000E-05      5.0000E-01\n");
}

}  // namespace
}  // namespace zelko
