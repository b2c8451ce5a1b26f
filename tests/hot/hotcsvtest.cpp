#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "hot/hotcsv.h"
#include "hotcurves.h"
#include "testutil.h"

namespace zelko {
namespace {

std::optional<PLASTIC_HOT> read(std::string_view text, std::string& error, HotCsvOptions options = {})
{
    return readHotCurvesCsv(text, options, error);
}

TEST(HotCsv, LongFormIntoTheGrid)
{
    std::string error;
    // Header, comment, blank line, mixed separators, rows in any order.
    const auto dataSet = read("temperature,strain_rate,strain,stress\n"
                              "# 1 mm/s\n"
                              "\n"
                              "1100;1;0.1;95\n"
                              "1000 0.1 0.1 100\r\n"
                              "1000\t0.1\t0.2\t110\n"
                              "1000,1,0.1,130\n"
                              "1100,0.1,+0.1,80\n",
                              error);
    ASSERT_TRUE(dataSet) << error;
    EXPECT_EQ(dataSet->temperatures, (std::vector<double>{1000, 1100}));
    EXPECT_EQ(dataSet->strainRates, (std::vector<double>{0.1, 1}));
    EXPECT_TRUE(dataSet->strains.empty());
    EXPECT_EQ(dataSet->curves[0][0], (HotCurve{{0, 0.1, 100}, {0, 0.2, 110}}));
    EXPECT_EQ(dataSet->curves[1][1], (HotCurve{{0, 0.1, 95}}));
    EXPECT_EQ(dataSet->maxStress, 130.0);

    // A UTF-16 export of the same reads the same.
    const auto wide = readHotCurvesCsv(test::utf16File("1000,0.1,0.1,100\n1000,1,0.1,130\n"), {}, error);
    ASSERT_TRUE(wide) << error;
    EXPECT_EQ(wide->curves[0][1], (HotCurve{{0, 0.1, 130}}));

    // The offset as the data screen applies it.
    const auto offset = read("1000,0.1,0.001,50\n1000,0.1,0.202,100\n1000,1,0.202,100\n", error, {0.002});
    ASSERT_TRUE(offset) << error;
    EXPECT_EQ(offset->curves[0][0], (HotCurve{{0, 0.2, 100}}));
}

TEST(HotCsv, ManyRatesInAnyOrderLandInTheirCells)
{
    // A rate sweep of 20,000 rates over four decades at two temperatures, the
    // lines shuffled; each point's stress names its cell.
    constexpr int kRates = 20000;
    const auto rate = [](int r) { return 0.001 * std::pow(1.0005, r); };
    std::vector<std::string> lines;
    for (int t = 0; t < 2; ++t)
        for (int r = 0; r < kRates; ++r)
            lines.push_back(formatText("%d,%g,0.1,%d\n", 1000 + 100 * t, rate(r), t * kRates + r + 1));
    std::shuffle(lines.begin(), lines.end(), std::mt19937(3));
    std::string csv = "temperature,strain_rate,strain,stress\n";
    for (const std::string& line : lines)
        csv += line;

    std::string error;
    const auto dataSet = read(csv, error);
    ASSERT_TRUE(dataSet) << error;
    EXPECT_EQ(dataSet->temperatures, (std::vector<double>{1000, 1100}));
    ASSERT_EQ(dataSet->strainRates.size(), static_cast<std::size_t>(kRates));
    for (int t = 0; t < 2; ++t)
        for (int r = 0; r < kRates; ++r) {
            const auto cell = static_cast<std::size_t>(r);
            // Stops at the first cell astray rather than listing thousands.
            ASSERT_EQ(formatText("%g", dataSet->strainRates[cell]), formatText("%g", rate(r)));
            ASSERT_EQ(dataSet->curves[static_cast<std::size_t>(t)][cell].size(), 1u);
            ASSERT_EQ(dataSet->curves[static_cast<std::size_t>(t)][cell][0].stress, t * kRates + r + 1);
        }
    EXPECT_EQ(dataSet->maxStress, 2 * kRates);
}

TEST(HotCsv, EveryRefusalNamesItsLine)
{
    std::string error;
    const auto refuses = [&](std::string_view text, std::string_view mention) {
        EXPECT_FALSE(read(text, error)) << text;
        EXPECT_NE(error.find(mention), std::string::npos) << error;
    };
    refuses("1000,0.1,0.1,100\n1000,0.1,0.2\n", "line 2: expected 4 numbers");
    refuses("t,r,e,s\n1000,0.1,0.1,abc\n", "line 2: the stress 'abc' is not a number");
    refuses("1000,0.1,0.1,nan\n", "line 1: the stress 'nan' is not a finite number");
    refuses("1000,0.1,1e999,100\n", "line 1: the strain '1e999' is not a finite number");
    refuses("1000,0,0.1,100\n", "line 1: the strain rate must be greater than 0");
    refuses("1000,0.1,0.1,100\n1000,0.1,0.2,110\n", "The strain-rate group need at least two number of items");
    refuses("# nothing\n", "no data lines");
    refuses("1000,0.1,0.1,100\nx,y,z,w\n", "line 2");  // a header only before the data
    refuses(std::string(5000, '1') + "\n", "line 1: longer than");
    std::string many;
    for (int t = 0; t < 31; ++t)
        many += formatText("%d,0.1,0.1,100\n%d,1,0.1,100\n", 900 + t, 900 + t);
    refuses(many, "line 61: The maximum number of temperature is 30.");
    // Zero and negative stresses are data, not errors: the fits leave them out.
    EXPECT_TRUE(read("1000,0.1,0.1,-5\n1000,1,0.1,0\n", error));
}

TEST(HotCsv, MeasuredSeriesAndDefaultSampleStrains)
{
    const PLASTIC_HOT dataSet = test::measuredDataSet();
    EXPECT_EQ(dataSet.temperatures, (std::vector<double>{1050, 1100, 1150, 1200, 1250}));
    EXPECT_EQ(dataSet.strainRates, (std::vector<double>{0.001, 0.01, 0.1, 1, 2, 5}));
    for (const auto& row : dataSet.curves)
        for (const HotCurve& curve : row)
            EXPECT_EQ(curve.size(), 71u);
    // Every curve reaches 0.7: a step of 0.05 gives 14 strains, 0.02 would give 35.
    ASSERT_EQ(dataSet.strains.size(), 14u);
    EXPECT_EQ(dataSet.strains.front(), 0.05);
    EXPECT_EQ(dataSet.strains[2], 0.15);  // as the list prints it, not 3 x 0.05
    EXPECT_EQ(dataSet.strains.back(), 0.7);

    PLASTIC_HOT shorter = dataSet;
    shorter.curves[2][3].resize(34);  // one curve ends at 0.33
    const std::vector<double> strains = defaultSampleStrains(shorter);
    EXPECT_EQ(strains, (std::vector<double>{0.05, 0.1, 0.15, 0.2, 0.25, 0.3}));
    shorter.curves.assign(1, std::vector<HotCurve>(2));
    EXPECT_TRUE(defaultSampleStrains(shorter).empty());
}

}  // namespace
}  // namespace zelko
