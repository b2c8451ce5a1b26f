#include <gtest/gtest.h>

#include <cmath>

#include "hot/hotmodels.h"
#include "hot/plastic_70.h"
#include "hot/zenerhollomon.h"
#include "hotcurves.h"
#include "testutil.h"

namespace zelko {
namespace {

// The search on ln α ends within about 1e-7 of the optimum; the other constants
// follow α.
constexpr double kRecoveredTolerance = 1e-4;  // relative
// Exact stresses at four temperatures pin Q far closer than that: Q is linear in
// the data once α is found.
constexpr double kKelvinTolerance = 1e-5;  // relative

// α grows with strain, so each order has its own constants.
ZenerHollomonOrder lawAt(double strain) { return {strain, 0.010 + 0.01 * strain, 5.0, 320000.0, 27.0, true}; }

PLASTIC_HOT sinhDataSet(std::vector<double> temperatures, std::vector<double> rates)
{
    return test::lawDataSet([](double e, double rate, double T) { return zenerHollomonStress(lawAt(e), rate, T); },
                            std::move(temperatures), std::move(rates), {0.1, 0.3, 0.5});
}

TEST(ZenerHollomonLaw, SinhOfTheZenerHollomonParameter)
{
    const ZenerHollomonOrder o = lawAt(0.0);
    const double z = 0.5 * std::exp(o.Q / (kGasConstant * (1000 + kKelvinOffset)));
    EXPECT_NEAR(zenerHollomonStress(o, 0.5, 1000), std::asinh(std::pow(z / std::exp(o.lnA), 1 / o.n)) / o.alpha, 1e-9);
    // Very large Z: no overflow on the way to a large but finite stress.
    EXPECT_TRUE(std::isfinite(zenerHollomonStress({0, 0.01, 0.5, 3e6, 0, true}, 1e3, 20)));
    EXPECT_GT(zenerHollomonStress({0, 0.01, 0.5, 3e6, 0, true}, 1e3, 20), 0.0);
    EXPECT_EQ(zenerHollomonStress(o, 0.5, -273.15), 0.0);  // absolute zero
    EXPECT_EQ(zenerHollomonStress(o, 0.0, 1000), 0.0);
}

TEST(ZenerHollomonFit, RecoversEveryOrderAndInterpolatesBetween)
{
    const HotFit fit = fitHotModel(sinhDataSet({950, 1050, 1150}, {0.01, 0.1, 1, 10}), HotModelId::ZenerHollomon, {});
    const HotFitResult& result = fit.result;
    const auto& model = fit.model;
    ASSERT_TRUE(result.fitted);
    EXPECT_LT(result.aare, 1e-6);
    const auto& zh = static_cast<const PLASTIC_Zener_Hollomon&>(*model);
    ASSERT_EQ(zh.orders.size(), 3u);
    for (const ZenerHollomonOrder& o : zh.orders) {
        const ZenerHollomonOrder expected = lawAt(o.strain);
        EXPECT_NEAR(o.alpha / expected.alpha, 1.0, kRecoveredTolerance);
        EXPECT_NEAR(o.n / expected.n, 1.0, kRecoveredTolerance);
        EXPECT_NEAR(o.Q / expected.Q, 1.0, kRecoveredTolerance);
        EXPECT_NEAR(o.lnA / expected.lnA, 1.0, kRecoveredTolerance);
    }
    // Between orders the constants are linear in strain; beyond them the last hold.
    ZenerHollomonOrder mid = lawAt(0.2);
    mid.alpha = (lawAt(0.1).alpha + lawAt(0.3).alpha) / 2;
    EXPECT_NEAR(model->evaluate(0.2, 0.5, 1000) / zenerHollomonStress(mid, 0.5, 1000), 1.0, kRecoveredTolerance);
    EXPECT_NEAR(model->evaluate(0.9, 0.5, 1000) / zenerHollomonStress(lawAt(0.5), 0.5, 1000), 1.0, kRecoveredTolerance);

    const auto lines = split(std::string_view(result.report), "\n");
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_TRUE(lines[0].starts_with(" AARE = "));
    EXPECT_EQ(lines[2], formatText(" Order 1: strain = 0.1 alpha = %g n = %g Q = %g lnA = %g", zh.orders[0].alpha,
                                   zh.orders[0].n, zh.orders[0].Q, zh.orders[0].lnA));
    TextWriter out;
    EXPECT_FALSE(model->writeLibraryBlock(out, 6));  // the library layout of 50 is not known
    EXPECT_EQ(std::string(kZenerHollomonColumns[0]) + kZenerHollomonColumns[4], "OrderlnA");
}

TEST(ZenerHollomonFit, DegenerateSeries)
{
    // One temperature: Q can't be told from A, and is left at 0.
    const auto zenerHollomon = [](const PLASTIC_HOT& dataSet, HotFitResult& result) {
        HotFit fit = fitHotModel(dataSet, HotModelId::ZenerHollomon, {});
        result = fit.result;
        return fit.model;
    };
    HotFitResult result;
    const auto single = zenerHollomon(sinhDataSet({1000}, {0.01, 0.1, 1}), result);
    ASSERT_TRUE(result.fitted);
    EXPECT_EQ(static_cast<const PLASTIC_Zener_Hollomon&>(*single).orders[0].Q, 0.0);
    EXPECT_LT(result.aare, 1e-6);

    // One strain rate: no order can be fitted.
    const auto oneRate = zenerHollomon(sinhDataSet({950, 1050}, {0.1}), result);
    EXPECT_FALSE(result.fitted);
    EXPECT_FALSE(result.message.empty());
    EXPECT_EQ(oneRate->evaluate(0.3, 0.1, 1000), 0.0);

    // A temperature below absolute zero is left out, with a note.
    PLASTIC_HOT cold = sinhDataSet({950, 1050, 1150}, {0.01, 0.1, 1});
    cold.temperatures[0] = -300;
    const auto model = zenerHollomon(cold, result);
    EXPECT_TRUE(result.fitted);
    EXPECT_EQ(model->evaluate(0.3, 0.1, -300), 0.0);
    EXPECT_EQ(result.report.find("nan"), std::string::npos);
}

TEST(ZenerHollomonFit, TemperaturesInCelsiusAreTakenInKelvin)
{
    // Stresses of a steel written out here: Z = ε̇·exp(Q/(R·(T + 273.15))) with T
    // in °C, σ = asinh((Z/A)^(1/n))/α.
    constexpr double alpha = 0.012, n = 4.5, Q = 350000.0, lnA = 30.0, R = 8.314462618;
    const auto stress = [&](double, double rate, double celsius) {
        const double z = rate * std::exp(Q / (R * (celsius + 273.15)));
        return std::asinh(std::pow(z / std::exp(lnA), 1.0 / n)) / alpha;
    };
    const HotFit fit = fitHotModel(test::lawDataSet(stress, {900, 1000, 1100, 1200}, {0.01, 0.1, 1, 10}, {0.2, 0.4}),
                                   HotModelId::ZenerHollomon, {});
    ASSERT_TRUE(fit.result.fitted);
    for (const ZenerHollomonOrder& o : static_cast<const PLASTIC_Zener_Hollomon&>(*fit.model).orders) {
        // 0.15 K off (273 for 273.15) moves Q by 2e-4 of itself.
        EXPECT_NEAR(o.Q / Q, 1.0, kKelvinTolerance) << o.strain;
        EXPECT_NEAR(o.n / n, 1.0, kKelvinTolerance) << o.strain;
    }
}

TEST(ZenerHollomonFit, AStopEndsItWithinOneSampleStrain)
{
    const PLASTIC_HOT dataSet = sinhDataSet({950, 1050, 1150}, {0.01, 0.1, 1, 10});
    std::stop_source stop;
    std::vector<int> progress;
    const RunControl control{[&](int percent) {
                                 progress.push_back(percent);
                                 stop.request_stop();
                             },
                             stop.get_token()};
    const HotFit fit = fitHotModel(dataSet, HotModelId::ZenerHollomon, {}, control);
    EXPECT_TRUE(fit.cancelled);
    EXPECT_FALSE(fit.model);
    EXPECT_EQ(progress, std::vector<int>{33});  // the first of three strains, no more
}

TEST(Model70, ItemsStoreThroughTheirTable)
{
    PLASTIC_70 model;
    for (int i = 0; i < kModel70ParameterCount; ++i)
        model.modelParameters[static_cast<std::size_t>(i)] = 100 + i;
    ASSERT_EQ(model70Items().size(), 28u);
    EXPECT_STREQ(model70Items()[7].label, "Beta11");

    model.setItemValue(7, 2.5);  // "Beta11" shows P7 but edits P4 ("g2")
    EXPECT_EQ(model.modelParameters[4], 2.5);
    EXPECT_EQ(model.modelParameters[7], 107);
    EXPECT_EQ(model.itemValue(4), 2.5);
    EXPECT_EQ(model.itemValue(7), 107);

    model.setItemValue(27, -1.0);  // "a2" edits P24; P27 can't be reached
    EXPECT_EQ(model.modelParameters[24], -1.0);
    EXPECT_EQ(model.modelParameters[27], 127);
    model.setItemValue(28, 9.0);  // 28 stands for P0
    EXPECT_EQ(model.modelParameters[0], 9.0);
    const auto before = model.modelParameters;
    model.setItemValue(29, 1.0);
    model.setItemValue(-1, 1.0);
    EXPECT_EQ(model.modelParameters, before);

    TextWriter out(TextEncoding::EightBit);
    EXPECT_TRUE(model.writeLibraryBlock(out, 6));
    const auto lines = split(std::string_view(test::textOf(out)), "\n");
    ASSERT_EQ(lines.size(), 29u);
    EXPECT_EQ(lines[0], "      70");
    EXPECT_EQ(lines[5], "                    2.5000E+00");  // P4 on the sixth line
    EXPECT_EQ(lines[28], "                    1.2700E+02");
}

}  // namespace
}  // namespace zelko
