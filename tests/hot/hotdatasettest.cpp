#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>

#include "hot/hotdataset.h"
#include "hot/stresstable.h"
#include "base/fileio.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

// Printed values carry six decimals.
constexpr double kPrintedTolerance = 1e-6;

std::string rawFile(std::string_view text) { return test::utf16File(text); }

HotCurve single(std::string_view text, RawCurveLayout layout = {}, double offset = 0.0)
{
    double maxStress = 0.0;
    return readSingleCurve(rawFile(text), layout, offset, maxStress);
}

TEST(HotGroups, LimitsAndMessages)
{
    GroupItems rates;
    EXPECT_EQ(addGroupValue(rates, HotGroup::StrainRate, 0.0), std::string_view("Please enter a number greater than '0'."));
    EXPECT_EQ(addGroupValue(rates, HotGroup::StrainRate, -1.0), std::string_view("Please enter a number greater than '0'."));
    EXPECT_TRUE(rates.empty());

    GroupItems temperatures;
    EXPECT_EQ(addGroupValue(temperatures, HotGroup::Temperature, -20.0), "");  // no sign check
    for (int i = 1; i < 30; ++i)
        EXPECT_EQ(addGroupValue(temperatures, HotGroup::Temperature, 800.0 + i), "");
    EXPECT_EQ(addGroupValue(temperatures, HotGroup::Temperature, 1200.0), std::string_view("The maximum number of temperature is 30."));
    EXPECT_EQ(temperatures.size(), 30u);

    GroupItems strains;
    for (int i = 1; i <= 15; ++i)
        EXPECT_EQ(addGroupValue(strains, HotGroup::Strain, 0.05 * i), "");
    EXPECT_EQ(addGroupValue(strains, HotGroup::Strain, 0.9), std::string_view("The maximum number of strain is 15."));
}

TEST(HotGroups, DuplicatesByTheirPrintedTextAndAscendingInsertion)
{
    GroupItems rates;
    for (const double v : {0.1, 0.01, 1.0})
        addGroupValue(rates, HotGroup::StrainRate, v);
    EXPECT_EQ(rates, (GroupItems{"0.01", "0.1", "1"}));
    // 0.1000001 prints as "0.1": the same item to the screen.
    addGroupValue(rates, HotGroup::StrainRate, 0.1000001);
    EXPECT_EQ(rates.size(), 3u);
    addGroupValue(rates, HotGroup::StrainRate, 0.5);
    EXPECT_EQ(rates, (GroupItems{"0.01", "0.1", "0.5", "1"}));
    EXPECT_EQ(groupValues(rates), (std::vector<double>{0.01, 0.1, 0.5, 1.0}));
}

TEST(HotGroups, ManyRatesAtOnceListAsOneByOne)
{
    // Rates as a long CSV brings them: out of order, repeated, some printing alike
    // (0.1 and 0.1000001), some not above 0.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> exponent(-4.0, 3.0);
    std::vector<double> rates;
    for (int i = 0; i < 3000; ++i) {
        const double rate = std::pow(10.0, exponent(random));
        rates.push_back(rate);
        if (i % 7 == 0)
            rates.push_back(rate * (1.0 + 1e-8));
        if (i % 11 == 0)
            rates.push_back(rates[static_cast<std::size_t>(i) / 2]);
        if (i % 13 == 0)
            rates.push_back(i % 2 ? 0.0 : -rate);
    }
    GroupItems oneByOne;
    for (const double rate : rates)
        addGroupValue(oneByOne, HotGroup::StrainRate, rate);
    const GroupItems atOnce = strainRateItems(rates);
    EXPECT_EQ(atOnce, oneByOne);
    EXPECT_GT(atOnce.size(), 2900u);
    EXPECT_EQ(strainRateItems(std::vector<double>{1.0, 0.1000001, 0.1, 0.01}), (GroupItems{"0.01", "0.1", "1"}));
    EXPECT_TRUE(strainRateItems({}).empty());
}

TEST(HotGroups, ApplyKeepsEveryCurveOfAManyRateGrid)
{
    // 5,000 rates, each cell's curve telling its rate; then every other rate dropped
    // and new ones listed between.
    GroupItems rates;
    for (int r = 1; r <= 5000; ++r)
        rates.push_back(formatText("%g", r * 0.001));
    PLASTIC_HOT dataSet;
    ASSERT_EQ(applyGroups(dataSet, rates, {"900", "1000"}, {"0.1"}), "");
    for (std::size_t t = 0; t < 2; ++t)
        for (std::size_t r = 0; r < rates.size(); ++r)
            dataSet.curves[t][r] = {{0, 0.1, static_cast<double>(t * 100000 + r)}};
    GroupItems kept;
    for (std::size_t r = 0; r < rates.size(); r += 2) {
        kept.push_back(rates[r]);
        kept.push_back(formatText("%g", (static_cast<double>(r) + 1.5) * 0.001));
    }
    ASSERT_EQ(applyGroups(dataSet, kept, {"1000"}, {"0.1"}), "");
    ASSERT_EQ(dataSet.curves.size(), 1u);
    ASSERT_EQ(dataSet.curves[0].size(), kept.size());
    for (std::size_t k = 0; k < kept.size(); ++k) {
        if (k % 2 == 1) {
            ASSERT_TRUE(dataSet.curves[0][k].empty()) << kept[k];
            continue;
        }
        ASSERT_EQ(dataSet.curves[0][k].size(), 1u) << kept[k];
        ASSERT_EQ(dataSet.curves[0][k][0].stress, 100000.0 + static_cast<double>(k)) << kept[k];
    }

    // Two old rates printing alike: the first one's curve is taken.
    PLASTIC_HOT alike;
    ASSERT_EQ(applyGroups(alike, {"0.1", "1"}, {"900"}, {}), "");
    alike.strainRates = {0.1, 0.1000001};
    alike.curves[0] = {{{0, 0.1, 1}}, {{0, 0.1, 2}}};
    ASSERT_EQ(applyGroups(alike, {"0.1", "1"}, {"900"}, {}), "");
    EXPECT_EQ(alike.curves[0][0], (HotCurve{{0, 0.1, 1}}));
    EXPECT_TRUE(alike.curves[0][1].empty());
}

TEST(HotGroups, ApplyRefusesSmallGroupsAndKeepsSurvivingCurves)
{
    PLASTIC_HOT dataSet;
    EXPECT_EQ(applyGroups(dataSet, {"1"}, {}, {}), std::string_view("The strain-rate group need at least two number of items"));  // rates are checked first
    EXPECT_EQ(applyGroups(dataSet, {"0.1", "1"}, {}, {}), std::string_view("The temperature group need at least one number of items"));
    EXPECT_TRUE(dataSet.curves.empty());

    ASSERT_EQ(applyGroups(dataSet, {"0.1", "1"}, {"900", "1000"}, {"0.2"}), "");
    dataSet.curves[1][0] = {{0, 0.1, 80}};
    dataSet.curves[0][1] = {{0, 0.1, 120}};
    ASSERT_EQ(applyGroups(dataSet, {"0.1", "1", "10"}, {"1000", "1100"}, {"0.2", "0.4"}), "");
    EXPECT_EQ(dataSet.temperatures, (std::vector<double>{1000, 1100}));
    EXPECT_EQ(dataSet.strainRates, (std::vector<double>{0.1, 1, 10}));
    EXPECT_EQ(dataSet.strains, (std::vector<double>{0.2, 0.4}));
    ASSERT_EQ(dataSet.curves.size(), 2u);
    ASSERT_EQ(dataSet.curves[0].size(), 3u);
    EXPECT_EQ(dataSet.curves[0][0], (HotCurve{{0, 0.1, 80}}));  // 1000 C, 0.1/s moved to its new cell
    EXPECT_TRUE(dataSet.curves[0][1].empty());                  // 1000 C, 1/s was never entered
    EXPECT_TRUE(dataSet.curves[1][0].empty());                  // 900 C is gone
}

TEST(HotCurveText, FourLineFormats)
{
    const HotCurve curve = {{1.5, 0.1, 100.25}, {2.0, 0.2, 110.0}};
    EXPECT_EQ(curveText(curve, false, 0), u"    0.100000    100.250000 \r\n    0.200000    110.000000 \r\n");
    EXPECT_EQ(curveText(curve, false, 1), u"    1.500000    0.100000    100.250000 \r\n    2.000000    0.200000    110.000000 \r\n");
    EXPECT_EQ(curveText(curve, true, 0), u"  1    0.100000    100.250000 \r\n  2    0.200000    110.000000 \r\n");
    EXPECT_EQ(curveText(curve, true, 1),
              u"  1    1.500000    0.100000    100.250000 \r\n  2    2.000000    0.200000    110.000000 \r\n");
    EXPECT_EQ(curveText({}, true, 1), u"");
}

TEST(HotCurveStress, LinearBetweenTheNeighboursThatEncloseTheStrain)
{
    const HotCurve curve = {{0, 0.0, 10}, {0, 0.1, 100}, {0, 0.3, 140}, {0, NAN, 1}, {0, 0.5, 100}};
    EXPECT_EQ(*curveStressAt(curve, 0.2), 120.0);
    EXPECT_EQ(*curveStressAt(curve, 0.1), 100.0);
    EXPECT_FALSE(curveStressAt(curve, 0.4));  // its neighbour is not a number
    EXPECT_FALSE(curveStressAt(curve, 0.6));  // beyond the curve
    EXPECT_FALSE(curveStressAt({}, 0.1));
    // A curve entered from its end: the strains still enclose.
    EXPECT_EQ(*curveStressAt({{0, 0.3, 140}, {0, 0.1, 100}}, 0.25), 130.0);
}

TEST(RawCurveFile, Utf16WithByteOrderMarkAndOneCarriageReturnPerLine)
{
    EXPECT_TRUE(test::sameBytes(rawCurveFileBytes(u"1 2\r\n"), std::string("\xFF\xFE" "1\0 \0" "2\0\r\0\n\0", 12)));
    // What the edit shows comes back from the file as it was shown.
    const std::u16string shown = curveText({{0, 0.1, 100}, {0, 0.2, 120}}, true, 0);
    double maxStress = 0.0;
    EXPECT_EQ(readSingleCurve(rawCurveFileBytes(shown), {true, 0}, 0.0, maxStress),
              (HotCurve{{0, 0.1, 100}, {0, 0.2, 120}}));
}

TEST(SingleCurveReader, ReadsAsManyRecordsAsCountedLines)
{
    EXPECT_EQ(single("0.1 100\n0.2 120\n"), (HotCurve{{0, 0.1, 100}, {0, 0.2, 120}}));
    // A last line without a line break is not counted, so its point is lost.
    EXPECT_EQ(single("0.1 100\n0.2 120"), (HotCurve{{0, 0.1, 100}}));
    // Two points on one line: one line, one record.
    EXPECT_EQ(single("0.1 100 0.2 120\n"), (HotCurve{{0, 0.1, 100}}));
    // Text that is not a number reads as 0; a file with no record gives an empty curve.
    EXPECT_EQ(single("abc 100\n"), (HotCurve{{0, 0.0, 100}}));
    EXPECT_TRUE(single("").empty());
    EXPECT_TRUE(single("\n\n").empty());  // counted lines, but no tokens to read
}

TEST(SingleCurveReader, NumberedLinesAndColumnModes)
{
    EXPECT_EQ(single("1 0.1 100\n2 0.2 120\n", {true, 0}), (HotCurve{{0, 0.1, 100}, {0, 0.2, 120}}));
    EXPECT_EQ(single("7 0.1 100\n", {false, 1}), (HotCurve{{7, 0.1, 100}}));
    EXPECT_EQ(single("1 7 0.1 100\n", {true, 1}), (HotCurve{{7, 0.1, 100}}));
}

TEST(SingleCurveReader, OffsetNegationsMaximumAndEngineeringConversion)
{
    // A point below the offset is dropped; the others lose the offset.
    const HotCurve offset = single("0.001 50\n0.012 100\n", {}, 0.002);
    ASSERT_EQ(offset.size(), 1u);
    EXPECT_NEAR(offset[0].strain, 0.010, 1e-15);

    // A compression test logged with negative signs: the offset is applied to the
    // value as read, then the signs are turned.
    RawCurveLayout negated;
    negated.negateStrain = negated.negateStress = true;
    double maxStress = 90.0;
    const HotCurve turned = readSingleCurve(rawFile("-0.1 -100\n-0.2 -130\n"), negated, 0.0, maxStress);
    EXPECT_EQ(turned, (HotCurve{{0, 0.1, 100}, {0, 0.2, 130}}));
    EXPECT_EQ(maxStress, 130.0);

    RawCurveLayout engineering;
    engineering.measure = StrainMeasure::Engineering;
    maxStress = 0.0;
    const HotCurve converted = readSingleCurve(rawFile("0.2 100\n"), engineering, 0.0, maxStress);
    ASSERT_EQ(converted.size(), 1u);
    EXPECT_NEAR(converted[0].strain, 0.22314355, 1e-8);
    EXPECT_NEAR(converted[0].stress, 77.685645, kPrintedTolerance);
    EXPECT_EQ(maxStress, 100.0);  // raised before the conversion
    // ln(1 - e) has no value from e = 1 on; such a point and a "nan" are dropped.
    EXPECT_TRUE(readSingleCurve(rawFile("1.0 100\n1.5 100\nnan 3\n"), engineering, 0.0, maxStress).empty());
}

TEST(MultiCurveReader, OneCurvePerColumnWithTheSameRules)
{
    RawCurveLayout layout;
    layout.numberedLines = true;
    layout.negateStress = true;
    double maxStress = 0.0;
    const auto curves = readMultiCurve(rawFile("1 0.001 -5 -6\n2 0.1 -100 -150\n3 0.2 -120 -170\n"), layout, 2, 0.002,
                                       maxStress);
    ASSERT_EQ(curves.size(), 2u);
    ASSERT_EQ(curves[0].size(), 2u);  // the 0.001 line is below the offset
    EXPECT_NEAR(curves[0][0].strain, 0.098, 1e-15);
    EXPECT_EQ(curves[0][1].stress, 120.0);
    EXPECT_EQ(curves[1][1].stress, 170.0);
    EXPECT_EQ(maxStress, 170.0);
}

TEST(RawImport, SelectionDecidesTheReader)
{
    PLASTIC_HOT dataSet;
    ASSERT_EQ(applyGroups(dataSet, {"0.1", "1", "10"}, {"900", "1000"}, {"0.1"}), "");
    const std::string oneCurve = rawFile("0.1 100\n0.2 110\n");
    const std::string twoCurves = rawFile("0.1 100 200\n0.2 110 210\n");

    EXPECT_FALSE(importRawCurves(dataSet, twoCurves, {{0, 1}, {0, 1}}, {}, 0.0));  // two by two: nothing
    EXPECT_FALSE(importRawCurves(dataSet, oneCurve, {{}, {0}}, {}, 0.0));
    EXPECT_FALSE(importRawCurves(dataSet, oneCurve, {{7}, {0}}, {}, 0.0));  // no such cell
    for (const auto& row : dataSet.curves)
        for (const HotCurve& c : row)
            EXPECT_TRUE(c.empty());

    ASSERT_TRUE(importRawCurves(dataSet, oneCurve, {{1}, {1}}, {}, 0.0));
    EXPECT_EQ(dataSet.curves[1][1].size(), 2u);
    // Rates picked as 10 then 0.1: the columns follow the order of selection.
    ASSERT_TRUE(importRawCurves(dataSet, twoCurves, {{2, 0}, {0}}, {}, 0.003));
    EXPECT_EQ(dataSet.curves[0][2][0].stress, 100.0);
    EXPECT_EQ(dataSet.curves[0][0][0].stress, 200.0);
    EXPECT_EQ(dataSet.strainOffset, 0.003);
    ASSERT_TRUE(importRawCurves(dataSet, twoCurves, {{2}, {1, 0}}, {}, 0.0));
    EXPECT_EQ(dataSet.curves[1][2][1].stress, 110.0);
    EXPECT_EQ(dataSet.curves[0][2][1].stress, 210.0);
}

using RawCurveFileTest = test::TemporaryFolderTest;

TEST_F(RawCurveFileTest, WrittenOnlyWhereTheScreenWritesItAndImportedFromMemory)
{
    PLASTIC_HOT dataSet;
    ASSERT_EQ(applyGroups(dataSet, {"0.1", "1"}, {"900"}, {"0.1"}), "");
    const std::u16string_view text = u"0.1 100\r\n0.2 110\r\n";
    EXPECT_TRUE(importRawText(dataSet, text, {{0}, {0}}, {}, 0.0));
    EXPECT_EQ(dataSet.curves[0][0], (HotCurve{{0, 0.1, 100}, {0, 0.2, 110}}));
    EXPECT_FALSE(std::filesystem::exists(folder_));  // the import needs no file

    // The exchange file the screen writes before its import: the folder is made.
    EXPECT_EQ(writeRawCurveFile(text, folder_), "");
    std::string error;
    EXPECT_TRUE(test::sameBytes(*readFileBytes(folder_ / "tmp.txt", error), rawCurveFileBytes(text)));
    // What the file holds reads as the text did.
    PLASTIC_HOT fromFile;
    ASSERT_EQ(applyGroups(fromFile, {"0.1", "1"}, {"900"}, {"0.1"}), "");
    EXPECT_TRUE(importRawCurves(fromFile, *readFileBytes(folder_ / "tmp.txt", error), {{0}, {0}}, {}, 0.0));
    EXPECT_EQ(fromFile.curves, dataSet.curves);

    // The exchange folder under a file can't be made; the earlier file stays.
    std::string ignored;
    ASSERT_TRUE(saveFileAtomically(folder_ / "file", "x", ignored));
    EXPECT_EQ(writeRawCurveFile(u"0.3 1\r\n", folder_ / "file" / "sub"), std::string_view(R"(It did not create Directory(c:\temp\ZELKO).)"));
    EXPECT_EQ(dataSet.curves[0][0].size(), 2u);
    EXPECT_TRUE(test::sameBytes(*readFileBytes(folder_ / "tmp.txt", error), rawCurveFileBytes(text)));
}

}  // namespace
}  // namespace zelko
