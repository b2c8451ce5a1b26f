#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "cold/coldfit.h"
#include "cold/coldlaws.h"
#include "cold/lawpolish.h"
#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "testutil.h"

namespace zelko {
namespace {

RoomOri trueRecord(double (*law)(double), std::size_t count = 80, double maxStrain = 0.2)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    for (std::size_t i = 0; i < count; ++i) {
        const double e = maxStrain * static_cast<double>(i) / static_cast<double>(count - 1);
        record.curves[TrueCurve].push_back({e, law(e)});
    }
    record.neckingIndex = static_cast<int>(count) - 1;
    return record;
}

double swiftCurve(double e) { return 500.0 * std::pow(1.0 + e / 0.02, 0.22); }
double convexCurve(double e) { return 300.0 + 4000.0 * e * e; }  // wants a Swift exponent above 1

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
    for (int index = 1; index < kColdLawCount; ++index) {
        SCOPED_TRACE(coldLawListEntry(index));
        const auto law = makeColdLaw(index, record);
        const double startError = law->objective(law->startParameters(), 1000);
        law->fitPlain();
        EXPECT_LT(law->fitError, startError);
        EXPECT_DOUBLE_EQ(law->fitError, law->objective(law->parameters, 1000));
        EXPECT_TRUE(law->admissible(law->parameters.data()));
    }
}

TEST(ColdFit, SelectingALawFitsItAndHoldsItInTheRecord)
{
    RoomOri record;
    record.inputKind = EngineeringCurve;
    for (int i = 0; i <= 40; ++i) {
        const double e = 0.004 * i;
        record.curves[EngineeringCurve].push_back({e, swiftCurve(std::log(1 + e)) / (1 + e)});
    }
    record.startIndex = 2;
    record.neckingIndex = 30;
    record.blockLeadValue = 2;
    const ColdFitResult result = fitColdLaw(record, 1);
    ASSERT_TRUE(result.law) << result.message;
    EXPECT_EQ(record.curves[TrueCurve].size(), 29u);  // rebuilt from start to necking
    EXPECT_EQ(record.curves[TrueCurve][0].x, 0.0);
    EXPECT_EQ(result.text, result.law->resultText());
    ASSERT_TRUE(record.heldModel);
    EXPECT_NE(record.heldModel.get(), result.law.get());  // a copy, with the parameters
    TextWriter direct, forwarded;
    result.law->writeLibraryBlock(direct, 6);
    EXPECT_TRUE(record.forwardWriteLibraryBlock(forwarded, 6));
    EXPECT_EQ(direct.text(), forwarded.text());
    EXPECT_EQ(record.heldModel->modelNumber, 1);

    // The comparison table of the Swift fit, one line per fitted point.
    std::string error;
    TextReader table(*readFileBytes(exchangeFolder() / "ZELKO_MAT_PL1.dat", error), ReadMode::SniffBom);
    std::u16string line;
    table.readLine(line);
    EXPECT_EQ(line, u"          strain,      experiment,       predicted,        Error[%]\n");
    int rows = 0;
    while (table.readLine(line))
        ++rows;
    EXPECT_EQ(rows, 29);
}

TEST(ColdFit, HollomonNeckingConstraintUsesTheRecordsOwnIndex)
{
    RoomOri record = trueRecord(swiftCurve, 20);
    record.startIndex = 5;
    record.neckingIndex = 12;
    record.neckingConstraint = true;
    const ColdFitResult result = fitColdLaw(record, 2);
    ASSERT_TRUE(result.law);
    const CurvePoint neck = record.curves[TrueCurve][12];  // not 12 - 5
    EXPECT_DOUBLE_EQ(result.law->parameters[1], neck.x);
    EXPECT_DOUBLE_EQ(result.law->parameters[0], neck.y / std::pow(neck.x, neck.x));
}

TEST(ColdFit, SwiftNeckingConstraintTakesS0FromItsGrid)
{
    RoomOri record = trueRecord(swiftCurve, 40);
    record.neckingConstraint = true;
    record.maxIterations = 50;
    const ColdFitResult result = fitColdLaw(record, 1);
    ASSERT_TRUE(result.law);
    const double s0 = result.law->parameters[1];
    EXPECT_NEAR(s0 * 10000, std::round(s0 * 10000), 1e-6);
    EXPECT_GE(s0, 0.0001);
    EXPECT_LE(s0, 1.0);
}

TEST(ColdFit, WeightedFitIgnoresAPointOfWeightZero)
{
    RoomOri record = trueRecord(swiftCurve, 30);
    for (CurvePoint& p : record.curves[TrueCurve]) {
        p.weight = 1;
        p.hasWeight = true;
    }
    record.curves[TrueCurve][15].y += 200;  // a spike from a slipping extensometer
    record.curves[TrueCurve][15].weight = 0;
    RoomOri plain = record;
    plain.curves[TrueCurve][15].weight = 1;
    record.weighted = true;
    const ColdFitResult weighted = fitColdLaw(record, 6);
    const ColdFitResult unweighted = fitColdLaw(plain, 6);
    ASSERT_TRUE(weighted.law && unweighted.law);
    const double e = record.curves[TrueCurve][20].x;
    EXPECT_LT(std::fabs(weighted.law->stressAt(e, weighted.law->parameters.data()) - swiftCurve(e)),
              std::fabs(unweighted.law->stressAt(e, unweighted.law->parameters.data()) - swiftCurve(e)));
}

TEST(ColdFit, BadCurvesAreRefusedWithAMessage)
{
    RoomOri nan = trueRecord(swiftCurve, 10);
    nan.curves[TrueCurve][3].y = std::nan("");
    EXPECT_FALSE(fitColdLaw(nan, 1).law);
    EXPECT_FALSE(fitColdLaw(nan, 1).message.empty());

    RoomOri engineering;
    engineering.inputKind = EngineeringCurve;
    engineering.curves[EngineeringCurve] = {{0, 100}, {0.01, 200}};
    engineering.neckingIndex = 0;  // fewer than two points to fit
    EXPECT_FALSE(fitColdLaw(engineering, 1).law);
    EXPECT_FALSE(engineering.heldModel);
    engineering.neckingIndex = 7;  // beyond the curve
    EXPECT_FALSE(fitColdLaw(engineering, 1).law);
    RoomOri empty;
    empty.inputKind = TrueCurve;
    EXPECT_FALSE(fitColdLaw(empty, 3).law);
    EXPECT_FALSE(fitColdLaw(empty, 0).law);  // the simulation is not a law
}

TEST(ColdFit, LeastSquaresPolishNeverWorsensAndStaysInBounds)
{
    RoomOri record = trueRecord(convexCurve);
    record.polishWithLeastSquares = true;
    RoomOri plain = record;
    plain.polishWithLeastSquares = false;
    for (int index = 1; index < kColdLawCount; ++index) {
        SCOPED_TRACE(coldLawListEntry(index));
        const ColdFitResult polished = fitColdLaw(record, index);
        const ColdFitResult described = fitColdLaw(plain, index);
        ASSERT_TRUE(polished.law && described.law);
        EXPECT_LE(polished.law->fitError, described.law->fitError);
        EXPECT_TRUE(polished.law->admissible(polished.law->parameters.data()));
        const auto bounds = polished.law->bounds();
        for (std::size_t k = 0; k < bounds.size(); ++k) {
            EXPECT_GE(polished.law->parameters[k], bounds[k].minimum);
            EXPECT_LE(polished.law->parameters[k], bounds[k].maximum);
        }
    }
}

}  // namespace
}  // namespace zelko
