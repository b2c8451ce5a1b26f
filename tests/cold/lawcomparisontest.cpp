#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stop_token>

#include "cold/lawcomparison.h"
#include "coldrecords.h"

namespace zelko {
namespace {

using test::swiftCurve;
using test::trueRecord;

// The descent stops at 1 MPa by default; its RMSE on a curve drawn from Swift stays near that.
constexpr double kCleanSwiftRmse = 2.0;  // MPa

TEST(LawComparison, RanksEveryLawByOneErrorMeasure)
{
    RoomOri record = trueRecord(swiftCurve);
    const LawComparisonResult result = compareColdLaws(record, {}, FitMethod::DescentThenLeastSquares);
    ASSERT_FALSE(result.cancelled);
    ASSERT_EQ(result.rows.size(), kColdLaws.size());
    for (std::size_t i = 1; i < result.rows.size(); ++i)
        EXPECT_LE(result.rows[i - 1].rmse, result.rows[i].rmse) << "row " << i;
    for (const LawComparison& row : result.rows) {
        ASSERT_TRUE(row.fitted) << coldLawTitle(row.law) << ": " << row.message;
        const ColdLaw& law = *row.fitted;
        // The one measure, whatever error rule the law reports with.
        const FitPoints points = law.fittedPoints();
        double sum = 0.0;
        for (std::size_t i = 0; i < points.size(); ++i)
            sum += std::pow(law.stressAt(points.strain[i], law.parameters.data()) - points.stress[i], 2);
        EXPECT_NEAR(row.rmse, std::sqrt(sum / static_cast<double>(points.size())), 1e-9 * (1 + row.rmse));
        EXPECT_DOUBLE_EQ(row.extrapolated[2], law.stressAt(1.0, law.parameters.data()));
        EXPECT_EQ(row.atBound.size(), law.parameterCount());
        const bool block = row.law == ColdLawId::Swift || row.law == ColdLawId::Hollomon || row.law == ColdLawId::Ludwik;
        EXPECT_EQ(row.hasLibraryBlock, block) << coldLawTitle(row.law);
    }
    const LawComparison* best = bestWithLibraryBlock(result.rows);
    ASSERT_NE(best, nullptr);
    EXPECT_EQ(best->law, ColdLawId::Swift);  // the curve is Swift's own
    EXPECT_LT(best->rmse, kCleanSwiftRmse);
}

TEST(LawComparison, ALawThatCannotBeUsedRanksLastWithItsReason)
{
    // Hollomon's necking constraint reads row 60 of a curve cut at row 20 onwards: no law, not K = n = 0.
    RoomOri record = trueRecord(swiftCurve, 40);
    record.inputKind = EngineeringCurve;
    record.curves[EngineeringCurve] = record.curves[TrueCurve];
    record.startIndex = 20;
    record.neckingIndex = 39;
    record.neckingConstraint = true;
    const LawComparisonResult result = compareColdLaws(record);
    ASSERT_EQ(result.rows.size(), kColdLaws.size());
    const LawComparison& last = result.rows.back();
    EXPECT_EQ(last.law, ColdLawId::Hollomon);
    EXPECT_FALSE(last.fitted);
    EXPECT_NE(last.message.find("necking row 39"), std::string::npos) << last.message;
    EXPECT_TRUE(std::all_of(result.rows.begin(), result.rows.end() - 1,
                            [](const LawComparison& row) { return bool(row.fitted); }));
}

TEST(LawComparison, HeldAtABoundIsFlagged)
{
    // Swift's exponent kept at most 0.21 by its bound table, on a curve drawn with 0.22.
    RoomOri record = trueRecord(swiftCurve);
    std::vector<ParameterBound> bounds = makeColdLaw(ColdLawId::Swift, record)->defaultBounds();
    bounds[2].maximum = 0.21;
    record.parameterBounds = bounds;
    const LawComparisonResult result = compareColdLaws(record, {}, FitMethod::DescentThenLeastSquares);
    const auto row = std::find_if(result.rows.begin(), result.rows.end(),
                                  [](const LawComparison& r) { return r.law == ColdLawId::Swift; });
    ASSERT_NE(row, result.rows.end());
    ASSERT_TRUE(row->fitted) << row->message;
    EXPECT_NEAR(row->fitted->parameters[2], 0.21, 1e-9);
    EXPECT_EQ(row->atBound, (std::vector<bool>{false, false, true}));
}

TEST(LawComparison, AStopEndsItWithoutRows)
{
    std::stop_source stop;
    stop.request_stop();
    RunControl control;
    control.stop = stop.get_token();
    const LawComparisonResult result = compareColdLaws(trueRecord(swiftCurve), control);
    EXPECT_TRUE(result.cancelled);
    EXPECT_TRUE(result.rows.empty());
}

TEST(LawComparison, ParameterUnits)
{
    EXPECT_STREQ(coldParameterUnit(ColdLawId::Swift, 0), "MPa");
    EXPECT_STREQ(coldParameterUnit(ColdLawId::Swift, 2), "-");
    EXPECT_STREQ(coldParameterUnit(ColdLawId::KimTuan, 2), "MPa");  // T
    EXPECT_STREQ(coldParameterUnit(ColdLawId::ElMagd, 3), "MPa");   // C3, per unit strain
    EXPECT_STREQ(coldParameterUnit(ColdLawId::VoceGeneral, 3), "-");
}

}  // namespace
}  // namespace zelko
