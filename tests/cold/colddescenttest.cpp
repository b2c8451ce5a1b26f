#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "cold/coldlaws.h"
#include "coldrecords.h"

namespace zelko {
namespace {

using namespace test;  // the records of coldrecords.h

double distance(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return std::sqrt(sum);
}

bool isPowerOfTwoStep(double step)
{
    const double k = -std::log2(step);
    return std::fabs(k - std::round(k)) < 1e-9 && k >= -1e-9;
}

TEST(ColdDescent, NoIterationsKeepTheStartAndReportItsError)
{
    RoomOri record = trueRecord(swiftCurve);
    record.maxIterations = 0;
    PLASTIC_1 swift(record);
    swift.fitPlain();
    const std::vector<double> start = {swiftCurve(0), 0.01, 0.2};
    EXPECT_EQ(swift.parameters, start);
    EXPECT_DOUBLE_EQ(swift.fitError, swift.objective(start, 1000));
}

TEST(ColdDescent, StepsAlongTheUnitGradientGrowingByATenthAfterEachAcceptedStep)
{
    RoomOri record = trueRecord(swiftCurve);
    record.targetError = 0.0;
    record.maxIterations = 1;
    PLASTIC_1 one(record);
    one.fitPlain();
    const std::vector<double> start = {swiftCurve(0), 0.01, 0.2};
    const double first = distance(one.parameters, start);
    EXPECT_TRUE(isPowerOfTwoStep(first)) << first;  // 1, halved until accepted
    // The first step points down the gradient.
    const std::vector<double> g = one.sumOfSquaresGradient(start);
    const double along = std::inner_product(g.begin(), g.end(), one.parameters.begin(), 0.0)
                         - std::inner_product(g.begin(), g.end(), start.begin(), 0.0);
    EXPECT_LT(along, 0.0);

    record.maxIterations = 2;
    PLASTIC_1 two(record);
    two.fitPlain();
    const double second = distance(two.parameters, one.parameters);
    EXPECT_TRUE(isPowerOfTwoStep(second / (1.1 * first))) << second / first;
    EXPECT_LT(two.fitError, one.fitError);

    // An error below the target ends the fit after its first accepted step.
    record.targetError = 1e9;
    record.maxIterations = 10000;
    PLASTIC_1 early(record);
    early.fitPlain();
    EXPECT_EQ(early.parameters, one.parameters);
}

TEST(ColdDescent, FixedParametersHoldTheirInitialValues)
{
    RoomOri record = trueRecord(swiftCurve);
    record.parameterBounds = {{480, 0, 1e4}, {0.03, 1e-6, 10}, {0.3, 0, 1}};
    record.fixedParameters = 0b111;
    PLASTIC_1 all(record);
    all.fitPlain();
    EXPECT_EQ(all.parameters, (std::vector<double>{480, 0.03, 0.3}));  // zero gradient: stops at once

    // A fixed exponent holds s0 too: only Y0 moves.
    record.fixedParameters = 0b100;
    PLASTIC_1 exponent(record);
    exponent.fitPlain();
    EXPECT_EQ(exponent.parameters[1], 0.01);
    EXPECT_EQ(exponent.parameters[2], 0.3);
    EXPECT_NE(exponent.parameters[0], swiftCurve(0));
}

TEST(ColdDescent, BoundsAndTheLawsOwnLimitsAreNeverCrossed)
{
    RoomOri record = trueRecord(convexCurve);
    PLASTIC_1 swift(record);
    swift.fitPlain();
    EXPECT_LT(swift.parameters[2], 1.0);  // the exponent stays below 1
    EXPECT_GT(swift.parameters[1], 0.0);  // and s0 above 0

    record = trueRecord(swiftCurve);
    record.parameterBounds = {{0, 0, 505}, {0.01, 0.005, 0.015}, {0.2, 0.1, 0.21}};
    PLASTIC_1 bounded(record);
    bounded.fitPlain();
    EXPECT_LE(bounded.parameters[0], 505);
    EXPECT_GE(bounded.parameters[1], 0.005);
    EXPECT_LE(bounded.parameters[1], 0.015);
    EXPECT_LE(bounded.parameters[2], 0.21);
}

TEST(ColdDescent, EveryLawImprovesOnItsStart)
{
    const RoomOri record = trueRecord(swiftCurve);
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        const auto law = makeColdLaw(id, record);
        const double startError = law->objective(law->startParameters(), 1000);
        law->fitPlain();
        EXPECT_LT(law->fitError, startError);
        EXPECT_DOUBLE_EQ(law->fitError, law->objective(law->parameters, 1000));
        EXPECT_TRUE(law->admissible(law->parameters.data()));
    }
}

TEST(ColdLawList, NamesTheLawsByModelNumberInTheScreensOrder)
{
    EXPECT_STREQ(coldLawListEntry(0).text, "Simulation (8)");
    EXPECT_FALSE(coldLawListEntry(0).law);  // the simulation is not a law
    for (std::size_t i = 0; i < kColdLaws.size(); ++i) {
        const ColdLawListEntry entry = coldLawListEntry(static_cast<int>(i) + 1);
        ASSERT_TRUE(entry.law);
        EXPECT_EQ(*entry.law, kColdLaws[i]);
        EXPECT_STREQ(entry.text, coldLawTitle(kColdLaws[i]));
        // The title ends with the model number, which is the law's id and its model's number.
        const int number = static_cast<int>(kColdLaws[i]);
        EXPECT_NE(std::string(entry.text).find("(" + std::to_string(number) + ")"), std::string::npos);
        EXPECT_EQ(makeColdLaw(kColdLaws[i], RoomOri())->modelNumber, number);
    }
    EXPECT_STREQ(coldLawListEntry(9).text, "");
    EXPECT_FALSE(coldLawListEntry(-1).law);
    EXPECT_FALSE(makeColdLaw(static_cast<ColdLawId>(8), RoomOri()));
}

}  // namespace
}  // namespace zelko
