#include "material/hotview.h"

#include <gtest/gtest.h>

#include <cmath>

#include "hot/hotcurves.h"
#include "hot/plastic_17.h"

namespace zelko {
namespace {

// σ = 1000·e^(−0.002 T)·ε^0.2·ε̇^0.1, as Hensel-Spittel parameters.
double law(double strain, double rate, double temperature)
{
    return 1000.0 * std::exp(-0.002 * temperature) * std::pow(strain, 0.2) * std::pow(rate, 0.1);
}

std::shared_ptr<PLASTIC_17> lawModel(double scale = 1.0)
{
    const PLASTIC_HOT dataSet = test::lawDataSet(law, {900, 1000, 1100}, {0.01, 0.1, 1}, {0.1, 0.3, 0.5});
    auto model = newHotModel<PLASTIC_17>(dataSet);
    model->parameters = {1000.0 * scale, -0.002, 0.2, 0.1, 0, 0, 0, 0, 0, 0};
    return model;
}

TEST(HotChart, StressAgainstStrainPairsEachMeasuredCurveWithTheModelInListOrder)
{
    const auto model = lawModel();
    const auto series = hotChartSeries(*model, {HotChartAxis::Strain, {2, 0}, {1}, true, true});
    ASSERT_EQ(series.size(), 4u);
    EXPECT_EQ(series[0].name, "T:1100, R:0.1");
    EXPECT_EQ(series[2].name, "T:900, R:0.1");
    EXPECT_FALSE(series[0].model);
    EXPECT_TRUE(series[1].model);
    EXPECT_EQ(series[1].name, series[0].name);
    // The model is taken at the measured strains, and lies on the curve it was drawn from.
    EXPECT_EQ(series[1].points.x, series[0].points.x);
    for (std::size_t i = 0; i < series[0].points.size(); ++i)
        EXPECT_NEAR(series[1].points.y[i], series[0].points.y[i], 1e-9);
    EXPECT_EQ(series[0].points.size(), model->curve(2, 1).size());

    EXPECT_EQ(hotChartSeries(*model, {HotChartAxis::Strain, {0}, {0, 1}, false, true}).size(), 2u);
    EXPECT_TRUE(hotChartSeries(*model, {HotChartAxis::Strain, {}, {0, 1}, true, true}).empty());
    EXPECT_TRUE(hotChartSeries(*model, {HotChartAxis::Strain, {0}, {7}, true, true}).empty());
}

TEST(HotChart, StressAgainstRateTakesEachCurveAtTheSampleStrain)
{
    auto model = lawModel();
    model->curves[0][2].clear();  // the fastest test at 900 was lost
    const auto series = hotChartSeries(*model, {HotChartAxis::StrainRate, {0}, {1}, true, true});
    ASSERT_EQ(series.size(), 2u);
    EXPECT_EQ(series[0].name, "T:900, E:0.3");
    EXPECT_EQ(series[0].points.x, (std::vector<double>{0.01, 0.1}));
    EXPECT_NEAR(series[0].points.y[1], law(0.3, 0.1, 900), 1e-9);
    EXPECT_EQ(series[1].points.x, series[0].points.x);
}

TEST(HotChart, DrawsNoModelWithoutALawAndLeavesOutNegativeStresses)
{
    const PLASTIC_HOT dataSet = *lawModel();
    const PLASTIC_HOT& rawData = dataSet;
    const auto measuredOnly = hotChartSeries(rawData, {HotChartAxis::Strain, {0, 1}, {0}, true, true});
    ASSERT_EQ(measuredOnly.size(), 2u);
    EXPECT_FALSE(measuredOnly[1].model);

    const auto negative = lawModel(-1.0);
    const auto series = hotChartSeries(*negative, {HotChartAxis::Strain, {0}, {0}, true, true});
    ASSERT_EQ(series.size(), 2u);
    EXPECT_FALSE(series[0].points.x.empty());
    EXPECT_TRUE(series[1].points.x.empty());
}

TEST(FitErrorTable, OneRowPerStrainAndTemperatureWithSummaryAndChecks)
{
    const FitErrorTable exact = fitErrorTable(*lawModel());
    ASSERT_EQ(exact.dataRows, 9u);
    ASSERT_EQ(exact.rows.size(), 11u);
    EXPECT_EQ(exact.headers[1], "Strain");
    EXPECT_EQ(exact.headers[2], "Temperature");
    EXPECT_EQ(exact.rows[0][1], "0.1");
    EXPECT_EQ(exact.rows[1][2], "1000");
    EXPECT_EQ(exact.rows[3][1], "0.3");
    EXPECT_EQ(exact.rows[9][0], "Mean");
    EXPECT_EQ(exact.rows[10][0], "Standard deviation");
    EXPECT_NEAR(std::stod(exact.rows[9][3]), 0.0, 1e-9);
    EXPECT_NEAR(std::stod(exact.rows[9][exact.checkColumn]), 100.0, 1e-9);

    // 10 % low everywhere: every row is checked, nothing stands out.
    const FitErrorTable low = fitErrorTable(*lawModel(0.9));
    EXPECT_EQ(low.rows[0][3], "10");
    EXPECT_EQ(low.rows[0][low.checkColumn], "90");
    ASSERT_EQ(low.marks.size(), 9u);
    for (std::size_t r = 0; r < 9; ++r)
        EXPECT_EQ(low.marks[r], (CellMark{255, 0, 0, r, low.checkColumn}));

    // A model that is no law still gets its table (its measured curves through themselves).
    const PLASTIC_HOT rawData = *lawModel();
    EXPECT_EQ(fitErrorTable(rawData).dataRows, 9u);
}

FitErrorTable numericTable(const std::vector<double>& column)
{
    FitErrorTable table;
    table.headers = {"No.", "Strain", "Temperature", "AARE (%)"};
    for (const double value : column)
        table.rows.push_back({"", "", "", std::to_string(value)});
    return table;
}

TEST(FitErrorTable, DeviationOverTheRowCountAndThreeSigmaOutliers)
{
    FitErrorTable four = numericTable({1, 2, 3, 4});
    summariseFitErrors(four);
    EXPECT_EQ(four.rows[4][3], "2.5");
    EXPECT_EQ(four.rows[5][3], "1.11803");  // √(5/4), not √(5/3)
    EXPECT_TRUE(four.marks.empty());

    FitErrorTable single = numericTable({7});
    summariseFitErrors(single);
    EXPECT_EQ(single.rows[2][3], "0");
    EXPECT_TRUE(single.marks.empty());

    std::vector<double> column(20, 1.0);
    column.push_back(100.0);
    FitErrorTable outlier = numericTable(column);
    summariseFitErrors(outlier);
    ASSERT_EQ(outlier.marks.size(), 1u);
    EXPECT_EQ(outlier.marks[0], (CellMark{255, 100, 100, 20, 3}));

    FitErrorTable empty = numericTable({});
    summariseFitErrors(empty);
    EXPECT_EQ(empty.rows.size(), 2u);
}

}  // namespace
}  // namespace zelko
