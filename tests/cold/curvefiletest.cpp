#include <gtest/gtest.h>

#include "cold/curvefile.h"
#include "cold/tensilereduction.h"

namespace zelko {
namespace {

CurveText readOk(std::string_view text)
{
    std::string error;
    std::optional<CurveText> read = readCurveFile(text, error);
    EXPECT_TRUE(read) << error;
    return read.value_or(CurveText{});
}

std::string refusal(std::string_view text)
{
    std::string error;
    EXPECT_FALSE(readCurveFile(text, error)) << text;
    return error;
}

TEST(CurveHeader, ColumnsAreTakenByTheirNames)
{
    // A machine export with force first: the points still hold displacement, force.
    const CurveText swapped = readOk("force_kN;displacement_mm\n1.5;0.01\n2.5;0.02\n");
    ASSERT_EQ(swapped.curve.size(), 2u);
    EXPECT_EQ(swapped.curve[1], (CurvePoint{0.02, 2.5}));
    ASSERT_TRUE(swapped.header);
    EXPECT_TRUE(swapped.header->loadDisplacement);
    EXPECT_EQ(swapped.header->forceUnit, Kilonewton);
    EXPECT_EQ(swapped.header->lengthUnit, Millimetre);

    // Stress, weight, strain in percent; units in brackets set apart by a blank.
    const CurveText weighted = readOk("Stress [MPa]\tweight\tStrain [%]\n500\t2\t1.5\n600\t1\t3\n");
    ASSERT_TRUE(weighted.header);
    EXPECT_FALSE(weighted.header->loadDisplacement);
    EXPECT_EQ(weighted.header->lengthUnit, Inch);
    EXPECT_FALSE(weighted.header->forceUnit);
    EXPECT_EQ(weighted.curve[0], (CurvePoint{1.5, 500, 2, true}));

    // Names that carry the quantity after an underscore are names, not units.
    const CurveText trueCurve = readOk("true_strain,true_stress\n0.01,400\n0.02,450\n");
    ASSERT_TRUE(trueCurve.header);
    EXPECT_FALSE(trueCurve.header->lengthUnit);
    EXPECT_EQ(trueCurve.curve[1], (CurvePoint{0.02, 450}));
}

TEST(CurveHeader, WordsThatNameNoColumnAreSkippedAsBefore)
{
    const CurveText plain = readOk("x y\n# comment\n1 2\n3 4 0.5\n");
    EXPECT_FALSE(plain.header);
    EXPECT_EQ(plain.curve[1], (CurvePoint{3, 4, 0.5, true}));
}

TEST(CurveHeader, AHeaderThatCannotBeReadIsRefusedWithItsLine)
{
    EXPECT_EQ(refusal("# test 7\ntime_s,force_N\n0,1\n1,2\n"),
              "line 2: header column 'time_s' is none of displacement, force, strain, stress, weight");
    EXPECT_NE(refusal("force_N,load_kN\n1,2\n3,4\n").find("twice"), std::string::npos);
    EXPECT_NE(refusal("displacement_mm,stress_MPa\n1,2\n3,4\n").find("mixes"), std::string::npos);
    EXPECT_NE(refusal("force_N,weight\n1,2\n3,4\n").find("names no displacement and force"), std::string::npos);
    EXPECT_NE(refusal("displacement_m,force_N\n1,2\n3,4\n").find("unit 'm'"), std::string::npos);
    EXPECT_NE(refusal("stress_psi,strain\n1,2\n3,4\n").find("unit 'psi'"), std::string::npos);
    // A line of three numbers under two names: which two were meant is unknown.
    EXPECT_EQ(refusal("displacement_mm,force_N\n1,2\n3,4,5\n"), "line 3: 3 numbers under a header of 2 columns");
}

}  // namespace
}  // namespace zelko
