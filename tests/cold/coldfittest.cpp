#include <gtest/gtest.h>

#include <cmath>

#include "base/fileio.h"
#include "cold/coldfit.h"
#include "coldrecords.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

using namespace test;  // the records of coldrecords.h

TEST(ColdFit, ReturnsTheLawAndTheTrueCurveAndChangesNothing)
{
    const RoomOri record = engineeringRecord();
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Swift, {});
    ASSERT_TRUE(result.law) << result.message;
    EXPECT_FALSE(result.cancelled);
    EXPECT_TRUE(record.curves[TrueCurve].empty());
    EXPECT_FALSE(record.heldModel);
    ASSERT_TRUE(result.trueCurve);
    EXPECT_EQ(result.trueCurve->size(), 29u);  // rebuilt from start to necking
    EXPECT_EQ((*result.trueCurve)[0].x, 0.0);
    EXPECT_EQ(result.text, result.law->resultText());

    // A curve entered as true is fitted as it is: nothing to give back.
    const ColdFitResult entered = fitColdLaw(trueRecord(swiftCurve, 20), ColdLawId::Ludwik, {});
    ASSERT_TRUE(entered.law);
    EXPECT_FALSE(entered.trueCurve);
}

TEST(ColdFit, TheLawHoldsTheTrueCurveAlone)
{
    // A law is fitted to the true curve; a copy of the measured forms in every
    // law (and in its held copy) made a long test take gigabytes.
    RoomOri record = engineeringRecord();
    record.curves[LoadDisplacement] = record.curves[EngineeringCurve];
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Hollomon, {});
    ASSERT_TRUE(result.law) << result.message;
    EXPECT_TRUE(result.law->curves[LoadDisplacement].empty());
    EXPECT_TRUE(result.law->curves[EngineeringCurve].empty());
    EXPECT_EQ(result.law->curves[TrueCurve], *result.trueCurve);
    EXPECT_EQ(result.law->curves[LoadDisplacement].capacity(), 0u);
}

TEST(ColdFit, SwiftComparisonTableGoesIntoTheFolderItIsGiven)
{
    const ColdFitResult result = fitColdLaw(engineeringRecord(), ColdLawId::Swift, {});
    ASSERT_TRUE(result.law);
    const test::TemporaryFolder folder;
    const std::filesystem::path exchange = folder.path() / "exchange" / "made";  // made when missing
    std::string error;
    ASSERT_TRUE(writeSwiftComparisonTable(*result.law, exchange, error)) << error;
    const auto bytes = readFileBytes(exchange / "ZELKO_MAT_PL1.dat", error);
    ASSERT_TRUE(bytes) << error;
    EXPECT_TRUE(test::sameBytes(*bytes, test::utf16File(swiftComparisonTable(*result.law))));
    TextReader table(*bytes, ReadMode::SniffBom);
    std::u16string line;
    table.readLine(line);
    EXPECT_EQ(line, u"          strain,      experiment,       predicted,        Error[%]\n");
    int rows = 0;
    while (table.readLine(line))
        ++rows;
    EXPECT_EQ(rows, 29);  // one line per fitted point

    // A folder that can't be made: a reason, and the table isn't written anywhere.
    ASSERT_TRUE(saveFileAtomically(folder.path() / "file", "x", error)) << error;
    error.clear();
    EXPECT_FALSE(writeSwiftComparisonTable(*result.law, folder.path() / "file" / "sub", error));
    EXPECT_FALSE(error.empty());
}

TEST(ColdFit, HollomonNeckingConstraintUsesTheRecordsOwnIndex)
{
    RoomOri record = trueRecord(swiftCurve, 20);
    record.startIndex = 5;
    record.neckingIndex = 12;
    record.neckingConstraint = true;
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Hollomon, {});
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
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Swift, {});
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
    const ColdFitResult weighted = fitColdLaw(record, ColdLawId::VoceGeneral, {});
    const ColdFitResult unweighted = fitColdLaw(plain, ColdLawId::VoceGeneral, {});
    ASSERT_TRUE(weighted.law && unweighted.law);
    const double e = record.curves[TrueCurve][20].x;
    EXPECT_LT(std::fabs(weighted.law->stressAt(e, weighted.law->parameters.data()) - swiftCurve(e)),
              std::fabs(unweighted.law->stressAt(e, unweighted.law->parameters.data()) - swiftCurve(e)));
}

TEST(ColdFit, BadCurvesAreRefusedWithAMessage)
{
    RoomOri nan = trueRecord(swiftCurve, 10);
    nan.curves[TrueCurve][3].y = std::nan("");
    EXPECT_FALSE(fitColdLaw(nan, ColdLawId::Swift, {}).law);
    EXPECT_FALSE(fitColdLaw(nan, ColdLawId::Swift, {}).message.empty());

    RoomOri engineering;
    engineering.inputKind = EngineeringCurve;
    engineering.curves[EngineeringCurve] = {{0, 100}, {0.01, 200}};
    engineering.neckingIndex = 0;  // fewer than two points to fit
    EXPECT_FALSE(fitColdLaw(engineering, ColdLawId::Swift, {}).law);
    engineering.neckingIndex = 7;  // beyond the curve
    const ColdFitResult beyond = fitColdLaw(engineering, ColdLawId::Swift, {});
    EXPECT_FALSE(beyond.law);
    EXPECT_FALSE(beyond.trueCurve);
    RoomOri empty;
    empty.inputKind = TrueCurve;
    EXPECT_FALSE(fitColdLaw(empty, ColdLawId::Ludwik, {}).law);
    const ColdFitResult noLaw = fitColdLaw(empty, static_cast<ColdLawId>(8), {});  // the simulation's number
    EXPECT_FALSE(noLaw.law);
    EXPECT_EQ(noLaw.message, "There is no hardening law with that number.");
}

TEST(ColdFit, LeastSquaresPolishNeverWorsensAndStaysInBounds)
{
    const RoomOri record = trueRecord(convexCurve);
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        const ColdFitResult polished = fitColdLaw(record, id, {}, FitMethod::DescentThenLeastSquares);
        const ColdFitResult described = fitColdLaw(record, id, {});
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

TEST(ColdFit, PolishLeavesConstrainedAndWeightedFitsAsTheyAre)
{
    // The polish minimises the plain error: run after these it would undo what
    // the necking condition or the weights asked for.
    RoomOri record = trueRecord(swiftCurve, 60);
    record.maxIterations = 300;
    for (CurvePoint& p : record.curves[TrueCurve]) {
        p.weight = p.x < 0.1 ? 1.0 : 0.2;
        p.hasWeight = true;
    }
    for (const ColdLawId id : {ColdLawId::Swift, ColdLawId::KimTuan, ColdLawId::VoceGeneral}) {
        SCOPED_TRACE(coldLawTitle(id));
        for (const bool necking : {true, false}) {
            RoomOri constrained = record;
            constrained.neckingConstraint = necking;
            constrained.weighted = !necking;
            const ColdFitResult alone = fitColdLaw(constrained, id, {});
            // Least squares alone leaves them to the descent as well.
            for (const FitMethod method : {FitMethod::DescentThenLeastSquares, FitMethod::LeastSquares}) {
                const ColdFitResult asked = fitColdLaw(constrained, id, {}, method);
                ASSERT_TRUE(alone.law && asked.law);
                EXPECT_EQ(asked.law->parameters, alone.law->parameters) << (necking ? "necking" : "weighted");
                EXPECT_EQ(asked.text, alone.text);
            }
        }
        // Unconstrained, the same polish does move the fit: the cases above mean something.
        EXPECT_NE(fitColdLaw(record, id, {}, FitMethod::DescentThenLeastSquares).law->parameters,
                  fitColdLaw(record, id, {}).law->parameters);
    }
}

}  // namespace
}  // namespace zelko
