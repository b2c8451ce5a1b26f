#include <gtest/gtest.h>

#include <cmath>

#include "cold/yieldpoint.h"

namespace zelko {
namespace {

constexpr double kModulus = 200000.0;  // MPa, a steel
constexpr double kYield = 400.0;
constexpr double kHardening = 1000.0;
// The slope read back by least squares from exact points of a straight line.
constexpr double kSlopeTolerance = 1e-6;

// Bilinear curve from strain 0 to 0.05 every 1e-4, shifted by a seating toe.
Curve bilinear(double toe = 0.0)
{
    Curve curve;
    for (int i = 0; i <= 500; ++i) {
        const double e = 1e-4 * i;
        const double elastic = kModulus * e;
        const double stress = elastic < kYield ? elastic : kYield + kHardening * (e - kYield / kModulus);
        curve.push_back({e + toe, stress});
    }
    return curve;
}

TEST(YieldPoint, OffsetLineOfTheCurvesOwnSlope)
{
    // 200000 (e - 0.002) = 400 + 1000 (e - 0.002) at e = 0.0040101: the first row beyond is 41.
    std::string error;
    const std::optional<YieldPoint> yield = offsetYieldPoint(bilinear(), error);
    ASSERT_TRUE(yield) << error;
    EXPECT_NEAR(yield->elastic.slope, kModulus, kModulus * kSlopeTolerance);
    EXPECT_EQ(yield->index, 41);

    // A seating toe moves the line, not the proof strain measured from it.
    const std::optional<YieldPoint> seated = offsetYieldPoint(bilinear(0.001), error);
    ASSERT_TRUE(seated) << error;
    EXPECT_NEAR(seated->elastic.strainAtZero, 0.001, 1e-9);
    EXPECT_EQ(seated->index, 41);
}

TEST(YieldPoint, ACurveThatNeverLeavesItsLineHasNone)
{
    Curve straight;
    for (int i = 0; i <= 100; ++i)
        straight.push_back({1e-4 * i, kModulus * 1e-4 * i});
    std::string error;
    EXPECT_FALSE(offsetYieldPoint(straight, error));
    EXPECT_NE(error.find("0.2 % offset"), std::string::npos);
    EXPECT_FALSE(offsetYieldPoint(Curve{{0, 0}, {1, 1}}, error));
    EXPECT_FALSE(offsetYieldPoint(Curve{}, error));
}

TEST(YieldPoint, FirstRowAtAStrain)
{
    const Curve curve = bilinear();
    EXPECT_EQ(firstRowAtStrain(curve, 0.0), 0);
    EXPECT_EQ(firstRowAtStrain(curve, 0.00405), 41);
    EXPECT_EQ(firstRowAtStrain(curve, 0.05), 500);
    EXPECT_FALSE(firstRowAtStrain(curve, 0.06));
}

}  // namespace
}  // namespace zelko
