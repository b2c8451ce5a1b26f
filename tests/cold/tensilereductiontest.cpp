#include <gtest/gtest.h>

#include <cmath>

#include "cold/tensilereduction.h"

namespace zelko {
namespace {

RoomOri recordWith(InputKind kind, Curve curve)
{
    RoomOri record;
    record.inputKind = kind;
    record.curves[static_cast<std::size_t>(kind)] = std::move(curve);
    record.diameter = 10;
    record.gaugeLength = 50;
    return record;
}

TEST(TensileUnits, ConvertTheEnteredCurveToMillimetresAndNewtons)
{
    // The simulation models half the gauge length: a displacement is stored halved.
    RoomOri millimetre = recordWith(LoadDisplacement, {{3.0, 2.0}});
    ASSERT_FALSE(convertEnteredUnits(millimetre));
    EXPECT_EQ(millimetre.curves[LoadDisplacement][0], (CurvePoint{1.5, 2.0}));

    RoomOri inch = recordWith(LoadDisplacement, {{1.0, 1.0}});
    inch.lengthUnit = Inch;
    inch.forceUnit = PoundForce;
    ASSERT_FALSE(convertEnteredUnits(inch));
    EXPECT_DOUBLE_EQ(inch.curves[LoadDisplacement][0].x, 12.7);  // half of an inch: the half model
    EXPECT_NEAR(inch.curves[LoadDisplacement][0].y, 4.4482216152605, 1e-12);

    RoomOri percent = recordWith(EngineeringCurve, {{5.0, 2.0, 3.0, true}});
    percent.lengthUnit = Inch;
    percent.forceUnit = Kilonewton;  // the force unit scales stresses too
    ASSERT_FALSE(convertEnteredUnits(percent));
    EXPECT_EQ(percent.curves[EngineeringCurve][0], (CurvePoint{0.05, 2000.0, 3.0, true}));

    const double factors[] = {1.0, 1000.0, 9.80665, 9806.65};
    for (int unit = Newton; unit <= MetricTon; ++unit) {
        RoomOri r = recordWith(TrueCurve, {{0.1, 1.0}});
        r.forceUnit = unit;
        ASSERT_FALSE(convertEnteredUnits(r));
        EXPECT_DOUBLE_EQ(r.curves[TrueCurve][0].y, factors[unit]);
    }
}

TEST(TensileUnits, AWrongUnitLeavesTheCurveAlone)
{
    RoomOri length = recordWith(LoadDisplacement, {{1.0, 1.0}});
    length.lengthUnit = 2;
    length.forceUnit = 9;
    EXPECT_EQ(convertEnteredUnits(length), "Incorrect length unit was selected.");
    RoomOri force = recordWith(EngineeringCurve, {{1.0, 1.0}});
    force.forceUnit = 5;
    EXPECT_EQ(convertEnteredUnits(force), "Incorrect force unit was selected");
    EXPECT_EQ(length.curves[LoadDisplacement][0], (CurvePoint{1.0, 1.0}));
    EXPECT_EQ(force.curves[EngineeringCurve][0], (CurvePoint{1.0, 1.0}));
}

TEST(TensileForms, TheSpecimenAreaIsRoundedToFourDecimals)
{
    EXPECT_DOUBLE_EQ(specimenArea(10), 78.5398);
    // pi 8^2 / 4 = 50.26548...: rounding and truncating to four decimals differ here.
    EXPECT_DOUBLE_EQ(specimenArea(8), 50.2655);
    EXPECT_DOUBLE_EQ(specimenArea(0.5), 0.1963);  // 0.19634...: rounded down
}

TEST(TensileForms, DeriveTheOtherTwoFromTheEnteredOne)
{

    // Load-displacement: e = 2 d / L0 (d is the stored half elongation), s = F / (pi D^2 / 4).
    RoomOri load = recordWith(LoadDisplacement, {{0.25, 7853.981633974483}});
    double area = 0;
    ASSERT_FALSE(deriveCurveForms(load, area));
    EXPECT_DOUBLE_EQ(load.curves[EngineeringCurve][0].x, 0.01);
    EXPECT_NEAR(load.curves[EngineeringCurve][0].y, 100.0, 1e-9);

    // Engineering: the load uses the rounded area, computed once and kept.
    RoomOri engineering = recordWith(EngineeringCurve, {{0.02, 100.0}});
    area = 0;
    ASSERT_FALSE(deriveCurveForms(engineering, area));
    EXPECT_DOUBLE_EQ(area, 78.5398);
    EXPECT_DOUBLE_EQ(engineering.curves[LoadDisplacement][0].x, 0.5);
    EXPECT_DOUBLE_EQ(engineering.curves[LoadDisplacement][0].y, 7853.98);
    area = 50;
    ASSERT_FALSE(deriveCurveForms(engineering, area));
    EXPECT_DOUBLE_EQ(engineering.curves[LoadDisplacement][0].y, 5000);

    // True: e = exp(eps - 1) and s = sigma / (e + 1), so eps = 1 gives e = 1 and s = sigma / 2.
    RoomOri truth = recordWith(TrueCurve, {{1.0, 300.0}, {0.0, 300.0}});
    area = 0;
    ASSERT_FALSE(deriveCurveForms(truth, area));
    EXPECT_DOUBLE_EQ(truth.curves[EngineeringCurve][0].x, 1.0);
    EXPECT_DOUBLE_EQ(truth.curves[EngineeringCurve][0].y, 150.0);
    EXPECT_DOUBLE_EQ(truth.curves[EngineeringCurve][1].x, std::exp(-1.0));
}

TEST(TensileForms, RefuseWhatWouldDivideByZeroOrCarryNaN)
{
    double area = 0;
    RoomOri thin = recordWith(LoadDisplacement, {{1, 1}});
    thin.diameter = 0;
    EXPECT_TRUE(deriveCurveForms(thin, area));
    RoomOri shortGauge = recordWith(LoadDisplacement, {{1, 1}});
    shortGauge.gaugeLength = -1;
    EXPECT_TRUE(deriveCurveForms(shortGauge, area));
    RoomOri nan = recordWith(EngineeringCurve, {{std::nan(""), 1}});
    EXPECT_TRUE(deriveCurveForms(nan, area));
    EXPECT_TRUE(nan.curves[LoadDisplacement].empty());
}

TEST(TensileForms, SaySoWhenTheSpecimenSizeGivesNoCurve)
{
    const std::string noArea = "the specimen's cross-section at a diameter of %g mm is zero (or beyond any number): "
                               "the curve gives no stresses";
    // A diameter typed in metres with an exponent gone wrong: its square is below any number.
    for (const double diameter : {1e-300, 1e200}) {
        RoomOri load = recordWith(LoadDisplacement, {{0.1, 1000}, {0.2, 2000}});
        load.diameter = diameter;
        double area = 0;
        EXPECT_EQ(deriveCurveForms(load, area), formatText(noArea.c_str(), diameter));
    }
    // The rounded area of a stress-strain input is zero below 0.008 mm.
    for (const InputKind kind : {EngineeringCurve, TrueCurve}) {
        RoomOri stress = recordWith(kind, {{0.01, 100}, {0.02, 200}});
        stress.diameter = 0.005;
        double area = 0;
        EXPECT_EQ(deriveCurveForms(stress, area), formatText(noArea.c_str(), 0.005));
        stress.diameter = 1e200;  // and beyond any number above
        area = 0;
        EXPECT_EQ(deriveCurveForms(stress, area), formatText(noArea.c_str(), 1e200));
    }
    // A real area, but loads too large for it.
    RoomOri heavy = recordWith(LoadDisplacement, {{0.1, 1e300}, {0.2, 2e300}});
    heavy.diameter = 1e-5;
    double area = 0;
    EXPECT_EQ(deriveCurveForms(heavy, area),
              "the specimen size (diameter 1e-05 mm, gauge length 50 mm) gives no usable curve: a strain or stress is "
              "not a finite number");
    // A gauge length too long for the strains of the load.
    RoomOri longGauge = recordWith(EngineeringCurve, {{5, 100}, {10, 200}});
    longGauge.gaugeLength = 1e308;
    area = 0;
    EXPECT_TRUE(deriveCurveForms(longGauge, area));
}

TEST(TrueCurve, StartsAtZeroStrainAndStopsAtNecking)
{
    RoomOri record = recordWith(EngineeringCurve, {{0.0, 100}, {0.01, 200}, {0.05, 300}, {0.1, 350}, {0.2, 340}});
    record.startIndex = 1;
    record.neckingIndex = 3;
    const std::optional<Curve> curve = trueCurveFromEngineering(record);
    ASSERT_TRUE(curve);
    ASSERT_EQ(curve->size(), 3u);
    EXPECT_EQ((*curve)[0].x, 0.0);
    EXPECT_DOUBLE_EQ((*curve)[0].y, 1.01 * 200);
    EXPECT_DOUBLE_EQ((*curve)[2].x, std::log(1.1) - std::log(1.01));
    EXPECT_DOUBLE_EQ((*curve)[2].y, 1.1 * 350);

    record.neckingIndex = 1;  // one point is not a curve
    EXPECT_FALSE(trueCurveFromEngineering(record));
    record.neckingIndex = 9;  // beyond the curve
    EXPECT_FALSE(trueCurveFromEngineering(record));
    record.neckingIndex = 3;
    record.curves[EngineeringCurve][2].x = -1.5;  // 1 + e <= 0 has no logarithm
    EXPECT_FALSE(trueCurveFromEngineering(record));
}

}  // namespace
}  // namespace zelko
