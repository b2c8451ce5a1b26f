#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <thread>

#include "hot/hotcurves.h"
#include "hot/celltypes.h"
#include "hot/plastic_17.h"
#include "material/document.h"
#include "material/hotchain.h"

namespace zelko {
namespace {

// A smooth flow stress with a rate and a temperature dependence, like a steel's.
double hotSteel(double strain, double rate, double temperature)
{
    return 900.0 * std::exp(-0.0025 * temperature) * std::pow(strain, 0.2) * std::pow(rate, 0.12);
}

PLASTIC_HOT steelDataSet()
{
    return test::lawDataSet(hotSteel, {900.0, 1000.0, 1100.0}, {0.01, 0.1, 1.0}, {0.1, 0.2, 0.3, 0.4});
}

Project materialWithTitle()
{
    Project material;
    material.title = u"hot series";
    return material;
}

TEST(HotChain, FitsIntoANewMaterialAndLeavesTheStartingOneAsItWas)
{
    const Project material = materialWithTitle();
    const std::string before = materialFileBytes(material);
    HotFitOptions options;
    options.maxIterations = 200;

    const HotCurvesFit fitted = fitHotCurves(material, steelDataSet(), HotModelId::Type17, options);
    ASSERT_TRUE(fitted.material) << fitted.error;
    EXPECT_EQ(materialFileBytes(material), before);
    const HotDataSet* stored = hotDataSetOf(*fitted.material);
    ASSERT_NE(stored, nullptr);
    EXPECT_NE(dynamic_cast<const PLASTIC_17*>(stored), nullptr);
    EXPECT_EQ(stored->temperatures, steelDataSet().temperatures);
    // The material owns its model; the fit's result is not shared with it.
    EXPECT_NE(fitted.material->activeModel, fitted.fit.model);
    EXPECT_EQ(fitted.material->title, u"hot series");
}

TEST(HotChain, CellErrorsMakeUpTheFitsError)
{
    HotFitOptions options;
    options.maxIterations = 200;
    const HotCurvesFit fitted = fitHotCurves(materialWithTitle(), steelDataSet(), HotModelId::Type17, options);
    ASSERT_TRUE(fitted.fit.model) << fitted.error;
    const std::vector<CellError> cells = cellErrorsOf(*fitted.fit.model);
    ASSERT_EQ(cells.size(), 9u);
    EXPECT_EQ(cells[5].temperature, 1000.0);  // temperatures outside, rates inside
    EXPECT_EQ(cells[5].strainRate, 1.0);
    // Weighted by their entries, the cells give the whole fit's AARE and RMSE.
    double relative = 0.0, squares = 0.0;
    std::size_t count = 0;
    bool differ = false;
    for (const CellError& cell : cells) {
        relative += cell.aare * static_cast<double>(cell.count);
        squares += cell.rmse * cell.rmse * static_cast<double>(cell.count);
        count += cell.count;
        differ = differ || cell.aare != cells.front().aare;
    }
    const HotFitResult& whole = fitted.fit.result;
    EXPECT_EQ(count, whole.compared);
    EXPECT_NEAR(relative / static_cast<double>(count), whole.aare, 1e-12);
    EXPECT_NEAR(std::sqrt(squares / static_cast<double>(count)), whole.rmse, 1e-9);
    EXPECT_TRUE(differ);  // one law does not fit every cell equally
}

TEST(HotChain, ACellWithoutCurveOrAStoppedFitGivesNoMaterial)
{
    const Project material = materialWithTitle();
    PLASTIC_HOT holed = steelDataSet();
    holed.curves[1][2].clear();
    const HotCurvesFit perCell = fitHotCurves(material, holed, HotModelId::Type161, {});
    EXPECT_FALSE(perCell.material);
    EXPECT_EQ(perCell.error, "no curve for temperature 1000 and strain rate 1; this type needs every cell");

    // Stopped from another thread while the descent runs: no material comes back.
    HotFitOptions options;
    options.maxIterations = 100'000'000;
    std::stop_source stop;
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        stop.request_stop();
    });
    const HotCurvesFit stopped = fitHotCurves(material, steelDataSet(), HotModelId::Type17, options, {{}, stop.get_token()});
    stopper.join();
    EXPECT_FALSE(stopped.material);
    EXPECT_TRUE(stopped.fit.cancelled);
}

TEST(HotChain, RefitsTheStoredTypeOrServesTheMeasuredCurves)
{
    PLASTIC_HOT dataSet = steelDataSet();
    dataSet.modelNumber = 16;
    const auto refitted = refitHotModel(dataSet);
    ASSERT_TRUE(refitted);
    EXPECT_EQ(typeid(*refitted), typeid(PLASTIC_16));
    // K eps^n fits a pure power of strain exactly, cell by cell.
    EXPECT_NEAR(refitted->evaluate(0.3, 0.1, 1000.0), hotSteel(0.3, 0.1, 1000.0), 1e-6 * hotSteel(0.3, 0.1, 1000.0));

    dataSet.modelNumber = 70;  // no law to fit: the data set itself
    const auto raw = refitHotModel(dataSet);
    ASSERT_TRUE(raw);
    EXPECT_EQ(typeid(*raw), typeid(PLASTIC_HOT));

    std::stop_source stop;
    stop.request_stop();
    dataSet.modelNumber = 17;
    EXPECT_FALSE(refitHotModel(dataSet, {{}, stop.get_token()}));
}

}  // namespace
}  // namespace zelko
