#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include "hot/hotcurves.h"
#include "hot/peaksteady.h"
#include "testutil.h"

namespace zelko {
namespace {

// A rise to a known peak (Cingara and McQueen's form, flat at the peak) and a
// fall to a known steady stress, exp(-k u^2) of the strain u past the peak.
struct KnownCurve {
    double peakStrain = 0.2;
    double peakStress = 100.0;
    double steadyStress = 80.0;
    double softeningRate = 60.0;  // k
    double lastStrain = 0.8;
    double step = 0.005;

    double stress(double e) const
    {
        if (e <= peakStrain) {
            const double x = e / peakStrain;
            return peakStress * std::pow(x * std::exp(1.0 - x), 0.4);
        }
        const double u = e - peakStrain;
        return steadyStress + (peakStress - steadyStress) * std::exp(-softeningRate * u * u);
    }
    // The strain past the peak where exp(-k u^2) has fallen to a fraction.
    double strainAtFraction(double fraction) const { return peakStrain + std::sqrt(-std::log(fraction) / softeningRate); }
    HotCurve curve() const
    {
        HotCurve points;
        for (int i = 0; step * i <= lastStrain + 1e-12; ++i)
            points.push_back({0.0, step * i, stress(step * i)});
        return points;
    }
};

// The peak is the vertex of a parabola through smoothed points a step apart.
constexpr double kStrainTolerance = 0.005;
// A three-point smoothing flattens the round peak by a few hundredths of a percent.
constexpr double kPeakStressTolerance = 0.2;  // MPa
// The tail's mean still holds what is left of exp(-k u^2) where it starts.
constexpr double kSteadyStressTolerance = 0.5;  // MPa

TEST(PeakSteady, KnownCurveGivesItsPeakHalfAndSteadyState)
{
    const KnownCurve known;
    const MicrosCell cell = peakSteadyCell(known.curve());
    ASSERT_EQ(cell.status, MicrosStatus::Found);
    EXPECT_NEAR(cell.peakStrain, known.peakStrain, kStrainTolerance);
    EXPECT_NEAR(cell.peakStress, known.peakStress, kPeakStressTolerance);
    EXPECT_NEAR(cell.steadyStress, known.steadyStress, kSteadyStressTolerance);
    EXPECT_GE(cell.steadyStress, known.steadyStress);  // the tail's residue only raises it
    // Half softening where exp(-k u^2) = 1/2; the flat tail where it is down to the band.
    EXPECT_NEAR(cell.halfStrain, known.strainAtFraction(0.5), kStrainTolerance);
    EXPECT_NEAR(cell.steadyStrain, known.strainAtFraction(kMicrosSteadyBand), kStrainTolerance);
}

TEST(PeakSteady, PeakAndSteadyStressFollowTheCurve)
{
    // Other peaks and levels, as a lower temperature or a higher rate gives.
    for (const auto& [peakStrain, peakStress, steady] :
         {std::tuple{0.1, 40.0, 30.0}, std::tuple{0.3, 150.0, 135.0}, std::tuple{0.15, 20.0, 17.5}}) {
        KnownCurve known;
        known.peakStrain = peakStrain;
        known.peakStress = peakStress;
        known.steadyStress = steady;
        const MicrosCell cell = peakSteadyCell(known.curve());
        ASSERT_EQ(cell.status, MicrosStatus::Found) << peakStrain;
        EXPECT_NEAR(cell.peakStrain, peakStrain, kStrainTolerance);
        EXPECT_NEAR(cell.peakStress, peakStress, kPeakStressTolerance * peakStress / 100.0);
        EXPECT_NEAR(cell.steadyStress, steady, kSteadyStressTolerance * peakStress / 100.0);
        EXPECT_NEAR(cell.halfStrain, known.strainAtFraction(0.5), kStrainTolerance);
    }
}

TEST(PeakSteady, LoneSpikeIsNotThePeak)
{
    // A bad sample in the steady tail, twice the flow stress: the raw maximum.
    const KnownCurve known;
    HotCurve curve = known.curve();
    curve[100].stress = 2.0 * known.steadyStress;
    const MicrosCell cell = peakSteadyCell(curve);
    ASSERT_EQ(cell.status, MicrosStatus::Found);
    EXPECT_NEAR(cell.peakStrain, known.peakStrain, kStrainTolerance);
    EXPECT_NEAR(cell.peakStress, known.peakStress, kPeakStressTolerance);
    EXPECT_NEAR(cell.steadyStress, known.steadyStress, kSteadyStressTolerance + 80.0 / 120.0);
}

TEST(PeakSteady, ScatteredCurveKeepsItsPeakAndLevel)
{
    // 0.3 % scatter on a test logged every 0.002 strain.
    KnownCurve known;
    known.step = 0.002;
    HotCurve curve = known.curve();
    std::mt19937 generator(70);
    std::normal_distribution<double> scatter(0.0, 0.003);
    for (HotCurvePoint& point : curve)
        point.stress *= 1.0 + scatter(generator);
    EXPECT_NEAR(curveScatter(curve), 0.003 * 90.0, 0.003 * 90.0 * 0.3);
    const MicrosCell cell = peakSteadyCell(curve);
    ASSERT_EQ(cell.status, MicrosStatus::Found);
    // The top of the curve is flat: a few tenths of a percent of scatter move
    // the highest smoothed point by a few hundredths of strain.
    EXPECT_NEAR(cell.peakStrain, known.peakStrain, 0.04);
    EXPECT_NEAR(cell.peakStress, known.peakStress, 1.0);
    EXPECT_NEAR(cell.steadyStress, known.steadyStress, 1.0);
    EXPECT_NEAR(cell.halfStrain, known.strainAtFraction(0.5), 0.02);
}

TEST(PeakSteady, CurvesWithoutSteadyStateOrPeakSayWhy)
{
    // Dynamic recovery alone: a Voce rise to saturation.
    HotCurve voce;
    for (int i = 0; i <= 70; ++i)
        voce.push_back({0.0, 0.01 * i, 50.0 + 50.0 * (1.0 - std::exp(-10.0 * 0.01 * i))});
    MicrosCell cell = peakSteadyCell(voce);
    EXPECT_EQ(cell.status, MicrosStatus::HardeningOnly);
    EXPECT_TRUE(std::isnan(cell.peakStress));
    EXPECT_TRUE(std::isnan(cell.steadyStress));

    // Hardening to the end, the last points a few MPa lower as the stroke stops: no peak either.
    HotCurve wobble = voce;
    for (std::size_t i = wobble.size() - 3; i < wobble.size(); ++i)
        wobble[i].stress -= 3.0;
    EXPECT_EQ(peakSteadyCell(wobble).status, MicrosStatus::HardeningOnly);

    // A peak, then a straight fall to the end of the test: the peak alone.
    KnownCurve known;
    HotCurve falling;
    for (int i = 0; i <= 140; ++i) {
        const double e = 0.005 * i;
        falling.push_back({0.0, e, e <= known.peakStrain ? known.stress(e) : 100.0 - 40.0 * (e - known.peakStrain)});
    }
    cell = peakSteadyCell(falling);
    EXPECT_EQ(cell.status, MicrosStatus::StillSoftening);
    EXPECT_NEAR(cell.peakStrain, known.peakStrain, 0.01);
    EXPECT_NEAR(cell.peakStress, known.peakStress, 0.5);
    EXPECT_TRUE(std::isnan(cell.halfStrain));
    EXPECT_TRUE(std::isnan(cell.steadyStrain));
    EXPECT_TRUE(std::isnan(cell.steadyStress));
}

TEST(PeakSteady, DegenerateCurvesGiveTheirStatus)
{
    const HotCurve good = KnownCurve().curve();
    EXPECT_EQ(peakSteadyCell({}).status, MicrosStatus::NoCurve);
    // A cell imported from one line of a file.
    EXPECT_EQ(peakSteadyCell({{0.0, 0.1, 50.0}}).status, MicrosStatus::TooFewPoints);
    EXPECT_EQ(peakSteadyCell(HotCurve(good.begin(), good.begin() + kMicrosMinPoints - 1)).status,
              MicrosStatus::TooFewPoints);
    // Two tests pasted one after the other: the strain starts again.
    HotCurve twice = good;
    twice.insert(twice.end(), good.begin(), good.end());
    EXPECT_EQ(peakSteadyCell(twice).status, MicrosStatus::StrainNotIncreasing);
    // A load cell logged while the crosshead stood still.
    EXPECT_EQ(peakSteadyCell(HotCurve(10, {0.0, 0.0, 40.0})).status, MicrosStatus::StrainNotIncreasing);
    HotCurve gap = good;
    gap[40].stress = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(peakSteadyCell(gap).status, MicrosStatus::NotFinite);
    gap[40].stress = good[40].stress;
    gap[41].strain = std::numeric_limits<double>::infinity();
    EXPECT_EQ(peakSteadyCell(gap).status, MicrosStatus::NotFinite);
    // Equal strains next to each other are a logging resolution, not a fault.
    HotCurve repeated = good;
    repeated.insert(repeated.begin() + 60, repeated[60]);
    EXPECT_EQ(peakSteadyCell(repeated).status, MicrosStatus::Found);

    for (const MicrosStatus status : {MicrosStatus::NoCurve, MicrosStatus::TooFewPoints,
                                      MicrosStatus::StrainNotIncreasing, MicrosStatus::NotFinite}) {
        EXPECT_FALSE(microsStatusText(status).empty());
        EXPECT_NE(microsStatusText(status), microsStatusText(MicrosStatus::Found));
    }
}

TEST(PeakSteady, CellsFollowTheGrid)
{
    PLASTIC_HOT dataSet;
    dataSet.temperatures = {1000, 1100};
    dataSet.strainRates = {0.1, 1, 10};
    // Only the first temperature's first two rates hold curves.
    dataSet.curves = {{KnownCurve().curve(), {{0.0, 0.1, 10.0}}}};
    const auto model = peakSteadyModel(dataSet);
    ASSERT_EQ(model->cells.size(), 2u);
    ASSERT_EQ(model->cells[1].size(), 3u);
    EXPECT_EQ(model->cells[0][0].status, MicrosStatus::Found);
    EXPECT_EQ(model->cells[0][1].status, MicrosStatus::TooFewPoints);
    EXPECT_EQ(model->cells[0][2].status, MicrosStatus::NoCurve);
    EXPECT_EQ(model->cells[1][0].status, MicrosStatus::NoCurve);
    EXPECT_EQ(model->curves, dataSet.curves);
}

// The measured Gleeble series: 5 temperatures x 6 rates, 0.7 strain.
TEST(PeakSteady, MeasuredPeaksRiseWithRateAndFallWithTemperature)
{
    const PLASTIC_HOT dataSet = test::measuredDataSet();
    ASSERT_EQ(dataSet.temperatures.size(), 5u);
    ASSERT_EQ(dataSet.strainRates.size(), 6u);
    const auto cells = peakSteadyCells(dataSet);
    const auto hasPeak = [](const MicrosCell& c) {
        return c.status == MicrosStatus::Found || c.status == MicrosStatus::StillSoftening;
    };
    for (std::size_t t = 0; t < 5; ++t)
        for (std::size_t r = 0; r < 6; ++r) {
            const MicrosCell& cell = cells[t][r];
            SCOPED_TRACE(testing::Message() << dataSet.temperatures[t] << " C, " << dataSet.strainRates[r] << " /s");
            // The slow tests recrystallise; at 1 /s and above the curves harden to the end.
            if (dataSet.strainRates[r] <= 0.01) {
                EXPECT_EQ(cell.status, MicrosStatus::Found);
            } else if (dataSet.strainRates[r] >= 1.0) {
                EXPECT_EQ(cell.status, MicrosStatus::HardeningOnly);
            }
            if (cell.status == MicrosStatus::Found) {
                EXPECT_LT(cell.steadyStress, cell.peakStress);
                EXPECT_LT(cell.peakStrain, cell.halfStrain);
                EXPECT_LT(cell.halfStrain, cell.steadyStrain);
                EXPECT_LE(cell.steadyStrain, 0.7);
            }
        }
    int pairs = 0;
    for (std::size_t t = 0; t < 5; ++t)
        for (std::size_t r = 0; r < 6; ++r) {
            if (!hasPeak(cells[t][r]))
                continue;
            if (r + 1 < 6 && hasPeak(cells[t][r + 1])) {
                EXPECT_LT(cells[t][r].peakStress, cells[t][r + 1].peakStress) << t << ' ' << r;
                EXPECT_LT(cells[t][r].peakStrain, cells[t][r + 1].peakStrain) << t << ' ' << r;
                ++pairs;
            }
            if (t + 1 < 5 && hasPeak(cells[t + 1][r])) {
                EXPECT_GT(cells[t][r].peakStress, cells[t + 1][r].peakStress) << t << ' ' << r;
                ++pairs;
            }
        }
    EXPECT_GE(pairs, 15);  // both rates of every temperature, and the temperatures of both
}

// The export as the chart screens write theirs: every cell followed by ", ".
TEST(PeakSteady, CsvHasHeaderAndOneLinePerCell)
{
    PLASTIC_HOT dataSet;
    dataSet.temperatures = {1000};
    dataSet.strainRates = {0.5, 10};
    dataSet.curves = {{KnownCurve().curve(), {}}};
    const auto model = peakSteadyModel(dataSet);
    const MicrosCell& cell = model->cells[0][0];
    char values[200];
    std::snprintf(values, sizeof values, "%.3f, %.2f, %.2f, %.3f, %.3f", cell.peakStrain, cell.peakStress,
                  cell.steadyStress, cell.halfStrain, cell.steadyStrain);
    const std::string expected = "Temperature, Strain rate, Peak strain, Peak stress (MPa), Steady stress (MPa), "
                                 "Half-softening strain, Steady strain, Status, \n"
                                 "1000, 0.5, " + std::string(values) + ", ok, \n"
                                 "1000, 10, , , , , , no curve, \n";
    EXPECT_TRUE(test::sameBytes(peakSteadyCsv(*model), test::utf16File(expected)));
    EXPECT_EQ(peakSteadyRows(*model).size(), 2u);
}

}  // namespace
}  // namespace zelko
