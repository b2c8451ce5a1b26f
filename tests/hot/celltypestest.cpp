#include <gtest/gtest.h>

#include <cmath>

#include "hot/celltypes.h"
#include "hot/hotmodels.h"
#include "hot/stresstable.h"
#include "hotcurves.h"
#include "testutil.h"

namespace zelko {
namespace {

// Laws that are linear in logarithms come back to rounding.
constexpr double kExactTolerance = 1e-8;
// The searched laws: the stresses, not the coefficients, are what must agree.
constexpr double kSearchedStressTolerance = 2e-3;  // relative

std::vector<std::string> blockLines(const PLASTIC_HOT& model)
{
    TextWriter out(TextEncoding::EightBit);
    EXPECT_TRUE(model.writeLibraryBlock(out, 6));
    return split(std::string_view(test::textOf(out)), "\n");
}

TEST(Type16, PowerLawPerCellAndItsBlock)
{
    // K = 100·(1 + t) + 10·r, n = 0.1 + 0.05·r for cell (t, r).
    const HotFit fit = fitHotModel(test::lawDataSet(
                                       [](double e, double rate, double T) {
                                           const double r = std::log10(rate), t = (T - 1000) / 100;
                                           return (100 * (1 + t) + 10 * r) * std::pow(e, 0.1 + 0.05 * r);
                                       },
                                       {1000, 1100}, {1, 10}, {0.1, 0.4}),
                                   HotModelId::Type16, {});
    const HotFitResult& result = fit.result;
    const auto& model = fit.model;
    ASSERT_TRUE(result.fitted);
    EXPECT_LT(result.aare, 1e-12);
    const auto& cells = static_cast<const PLASTIC_16&>(*model).cellCoefficients;
    EXPECT_NEAR(cells[1][1][0], 210.0, 210 * kExactTolerance);
    EXPECT_NEAR(cells[1][1][1], 0.15, kExactTolerance);
    EXPECT_EQ(blockLines(*model),
              (std::vector<std::string>{"      16",
                                        // smallest: 1000 C, 10/s at 0.1; largest (x3): 1100 C, 10/s at 0.4
                                        formatText("%30.4E %17.4E %17.4E %17.4E %17.4E %17.4E", 110 * std::pow(0.1, 0.15),
                                                   3 * 210 * std::pow(0.4, 0.15), 1.0, 10.0, 1000.0, 1100.0),
                                        "                    1.0000E-04       -9.0000E+02        1.0000E+03        1.1000E+03",
                                        "       4        2        2",
                                        "                    1.0000E+00        1.0000E+03        1.0000E+02        1.0000E-01",
                                        "                    1.0000E+01        1.0000E+03        1.1000E+02        1.5000E-01",
                                        "                    1.0000E+00        1.1000E+03        2.0000E+02        1.0000E-01",
                                        "                    1.0000E+01        1.1000E+03        2.1000E+02        1.5000E-01"}));
}

TEST(Type16, EmptyDataSetWritesTheStartingRange)
{
    PLASTIC_16 empty;
    EXPECT_EQ(blockLines(empty), (std::vector<std::string>{
                                     "      16",
                                     "                    1.0000E+08       -3.0000E+00        0.0000E+00        0.0000E+00        0.0000E+00        0.0000E+00",
                                     "                    1.0000E-04       -9.0000E+02        0.0000E+00        0.0000E+00",
                                     "       0        0        0"}));
}

TEST(CellLaws, EachLawComesBackFromItsOwnCurve)
{
    struct Case {
        CellLaw law;
        CellCoefficients c;
        bool exact;
    };
    const Case cases[] = {
        {CellLaw::HenselSpittelStrain, {120, 0.15, -0.004, -0.6}, true},
        {CellLaw::SwiftSoftening, {150, 0.2, -0.8, 0.3}, true},
        {CellLaw::VoceLinear, {40, 110, 12, -15}, false},
        {CellLaw::HockettSherby, {130, 45, 6, 0.9}, false},
        {CellLaw::PowerExponential, {20, 160, 0.3, 1.8}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.law));
        std::vector<double> x, y;
        for (int i = 1; i <= 70; ++i) {
            x.push_back(0.01 * i);
            y.push_back(cellLawStress(c.law, c.c, 0.01 * i));
        }
        const auto fit = fitCellLaw(c.law, x, y);
        ASSERT_TRUE(fit);
        for (std::size_t i = 0; i < x.size(); ++i)
            EXPECT_NEAR(cellLawStress(c.law, *fit, x[i]) / y[i], 1.0, c.exact ? kExactTolerance : kSearchedStressTolerance);
        if (c.exact) {
            for (int k = 0; k < 4; ++k)
                EXPECT_NEAR((*fit)[k], c.c[k], kExactTolerance * std::max(1.0, std::fabs(c.c[k])));
        }
        // Three points, or points that are not numbers, determine nothing.
        EXPECT_FALSE(fitCellLaw(c.law, {0.1, 0.2, 0.3}, {1, 2, 3}));
        EXPECT_FALSE(fitCellLaw(c.law, {0.1, 0.2, 0.3, NAN, 0.5}, {1, 2, 3, 4, NAN}));
    }
}

PLASTIC_HOT softeningDataSet()
{
    return test::lawDataSet(
        [](double e, double rate, double T) {
            return (300 - 0.2 * T) * std::pow(rate, 0.12) * std::pow(e + 0.02, 0.2) * std::exp(-0.5 * e);
        },
        {1000, 1100}, {0.1, 1}, {0.1, 0.2, 0.3, 0.4});
}

std::shared_ptr<PLASTIC_HOT> fittedType(int id)
{
    const HotFit fit = fitHotModel(softeningDataSet(), *hotModelIdOf(id), {});
    EXPECT_TRUE(fit.result.fitted);
    return fit.model;
}

TEST(FourCoefficientTypes, ConstantsLineAndSharedCells)
{
    const auto constants = [](int id) { return blockLines(*fittedType(id)).at(3); };
    const std::string zeros = formatText("%30.4E %17.4E %17.4E %17.4E %17.4E", 0.0, 0.0, 0.0, 0.0, 0.0);
    for (const int id : {161, 164, 169, 1600})
        EXPECT_EQ(constants(id), zeros) << id;
    // The cap is the largest sample strain, the offset its default.
    EXPECT_EQ(constants(163), formatText("%30.4E %17.4E %17.4E %17.4E %17.4E", 0.01, 0.4, 0.0, 0.0, 0.0));
    for (const int id : {165, 167})
        EXPECT_EQ(constants(id), formatText("%30.4E %17.4E %17.4E %17.4E %17.4E", 0.01, 0.0, 0.0, 0.0, 0.0)) << id;
    for (const int id : {166, 168})
        EXPECT_EQ(constants(id), formatText("%30.4E %17.4E %17.4E %17.4E %17.4E", 0.0, 0.4, 0.0, 0.0, 0.0)) << id;

    // 163 and 165 fill the same cells, and so do 164 and 166.
    for (const auto& [a, b] : {std::pair{163, 165}, std::pair{164, 166}}) {
        const auto la = blockLines(*fittedType(a)), lb = blockLines(*fittedType(b));
        ASSERT_EQ(la.size(), 9u);
        EXPECT_EQ(std::vector<std::string>(la.begin() + 4, la.end()), std::vector<std::string>(lb.begin() + 4, lb.end()));
        EXPECT_EQ(la[4], "       4        2        2");
        EXPECT_EQ(la[5].size(), 30u + 5 * 18u);  // rate, temperature and four coefficients
    }
}

TEST(FourCoefficientTypes, CapHoldsTheStressAndOffsetKeepsZeroStrainFinite)
{
    const auto capped = fittedType(166), free = fittedType(164);
    EXPECT_EQ(capped->evaluate(0.9, 0.5, 1050), capped->evaluate(0.4, 0.5, 1050));
    EXPECT_NE(free->evaluate(0.9, 0.5, 1050), free->evaluate(0.4, 0.5, 1050));
    EXPECT_EQ(free->evaluate(0.3, 0.5, 1050), capped->evaluate(0.3, 0.5, 1050));
    EXPECT_GT(fittedType(167)->evaluate(0.0, 1, 1000), 0.0);
    EXPECT_EQ(fittedType(161)->evaluate(0.0, 1, 1000), 0.0);
}

TEST(CellInterpolation, SplineAlongRatesLinearInTemperature)
{
    // ln σ linear in ln ε̇ (σ ∝ ε̇^0.15): the spline through four rates is that line.
    const auto law = [](double e, double rate, double T) { return (2000 - T) * std::pow(rate, 0.15) * (0.5 + e); };
    const PLASTIC_HOT measured = test::lawDataSet(law, {1000, 1200}, {0.01, 0.1, 1, 10}, {0.2, 0.4});
    EXPECT_NEAR(measured.evaluate(0.2, 0.3, 1000), law(0.2, 0.3, 1000), 1e-9);
    EXPECT_NEAR(measured.evaluate(0.2, 0.01, 1100), (law(0.2, 0.01, 1000) + law(0.2, 0.01, 1200)) / 2, 1e-9);
    // Outside the test rates and temperatures the nearest values hold.
    EXPECT_NEAR(measured.evaluate(0.4, 100, 1300), law(0.4, 10, 1200), 1e-9);
    EXPECT_NEAR(measured.evaluate(0.4, 1e-4, 900), law(0.4, 0.01, 1000), 1e-9);

    // A curved ln σ: the spline passes through every test rate and bends between them.
    const std::vector<double> rates = {0.01, 0.1, 1, 10};
    const std::vector<double> stresses = {50, 90, 120, 130};
    for (std::size_t r = 0; r < rates.size(); ++r)
        EXPECT_NEAR(interpolateRates(rates, stresses, rates[r]), stresses[r], 1e-9);
    const double between = interpolateRates(rates, stresses, std::sqrt(0.01 * 0.1));
    EXPECT_GT(between, std::sqrt(50.0 * 90.0));  // above the straight line in logs: the curve is concave
    EXPECT_LT(between, 90.0);
    // A stress of 0 in the row: σ linear in ln ε̇ between the two rates around.
    EXPECT_NEAR(interpolateRates(rates, {0, 100, 120, 130}, 0.055), 100 * std::log(5.5) / std::log(10.0), 1e-9);
}

TEST(HotFamily, ModelsByIdAndTheTypeChoice)
{
    for (const int id : {16, 17, 50, 70, 161, 162, 163, 164, 165, 166, 167, 168, 169, 1600}) {
        ASSERT_TRUE(hotModelIdOf(id)) << id;
        const auto model = createHotModel(*hotModelIdOf(id));
        ASSERT_TRUE(model) << id;
        EXPECT_EQ(model->modelNumber, id);
        EXPECT_EQ(model->modelKind, HotModel);
    }
    EXPECT_FALSE(hotModelIdOf(1));
    EXPECT_FALSE(hotModelIdOf(160));
    TextWriter out;
    EXPECT_FALSE(createHotModel(HotModelId::Type162)->writeLibraryBlock(out, 6));

    ASSERT_EQ(hotTypeItems().size(), 13u);
    EXPECT_EQ(hotTypeItems()[3].text, "Type: 162 (Not supported)");
    EXPECT_EQ(hotTypeItems()[12].text, "Zener-Hollomon model");
    EXPECT_EQ(modelIdOfTypeIndex(11), HotModelId::Type1600);
    EXPECT_FALSE(modelIdOfTypeIndex(13));
    EXPECT_FALSE(modelIdOfTypeIndex(3));

    const PLASTIC_HOT dataSet = test::measuredDataSet();
    EXPECT_EQ(runTypeFit(dataSet, 3, hotFlagOfColumnMode(0), {}).message, std::string_view("162 model is not supported"));
    int progress = -1;
    const TypeFit none = runTypeFit(dataSet, 13, hotFlagOfColumnMode(0), {}, {[&](int v) { progress = v; }, {}});
    EXPECT_FALSE(none.model);
    EXPECT_EQ(progress, 0);
    // The flag of the three-column mode goes to the new model; the screen sets
    // it on its own data set, which the fit only reads.
    const TypeFit zener = runTypeFit(dataSet, 12, hotFlagOfColumnMode(1), {});
    EXPECT_EQ(zener.model->modelNumber, 50);
    EXPECT_FALSE(zener.result.fitted);  // chosen, not fitted
    EXPECT_TRUE(zener.model->hotFlag);
    EXPECT_FALSE(dataSet.hotFlag);
    const TypeFit power = runTypeFit(dataSet, 0, hotFlagOfColumnMode(0), {});
    EXPECT_TRUE(power.result.fitted);
    EXPECT_FALSE(power.model->hotFlag);

    // Types without a law to fit come back as they were made, with a message.
    for (const HotModelId id : {HotModelId::Model70, HotModelId::Type162}) {
        const HotFit fit = fitHotModel(dataSet, id, {});
        ASSERT_TRUE(fit.model);
        EXPECT_FALSE(fit.result.fitted);
        EXPECT_EQ(fit.result.message, formatText("model %d has no law to fit", static_cast<int>(id)));
    }
}

TEST(HotFamily, AStopEndsACellFitWithinOneCell)
{
    const PLASTIC_HOT dataSet = softeningDataSet();
    std::stop_source stop;
    std::vector<int> progress;
    const RunControl control{[&](int percent) {
                                 progress.push_back(percent);
                                 if (progress.size() == 2)  // 5, then the first cell
                                     stop.request_stop();
                             },
                             stop.get_token()};
    const HotFit fit = fitHotModel(dataSet, HotModelId::Type169, {}, control);
    EXPECT_TRUE(fit.cancelled);
    EXPECT_FALSE(fit.model);
    EXPECT_EQ(progress, (std::vector<int>{5, 27}));  // 5 + 90 / 4 cells

    progress.clear();
    const HotFit whole = fitHotModel(dataSet, HotModelId::Type169, {}, {[&](int v) { progress.push_back(v); }, {}});
    ASSERT_TRUE(whole.model);
    EXPECT_EQ(progress, (std::vector<int>{5, 27, 50, 72, 95, 100}));
}

}  // namespace
}  // namespace zelko
