// The hot fits and the processing map: Hensel-Spittel on 6 temperatures x 4 rates
// x 15 strains with 10,000 iterations, the map on 30 x 9 x 15, and the other types
// on the measured Gleeble series; the reading of a long CSV of many rates.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "bench/hotcurves.h"
#include "hot/hotcsv.h"
#include "hot/hotmodels.h"
#include "hot/processingmap.h"

namespace {

using namespace zelko;

void reportFit(benchmark::State& state, const HotFitResult& result)
{
    state.counters["iterations"] = result.iterations;
    state.counters["evaluations"] = static_cast<double>(result.evaluations);
    state.counters["AARE%"] = result.aare * 100.0;
    state.counters["RMSE"] = result.rmse;
}

void BM_HenselSpittelSynthetic(benchmark::State& state)
{
    const PLASTIC_HOT dataSet = bench::syntheticDataSet(6, {0.01, 0.1, 1.0, 10.0});
    HotFitResult result;
    for (auto _ : state) {
        const HotFit fit = fitHotModel(dataSet, HotModelId::Type17, {});
        result = fit.result;
        benchmark::DoNotOptimize(fit.model->parameters.data());
    }
    reportFit(state, result);
}
BENCHMARK(BM_HenselSpittelSynthetic)->Unit(benchmark::kMillisecond);

// The measured series: 5 temperatures x 6 rates x 14 strains.
void BM_MeasuredFit(benchmark::State& state)
{
    const int modelId = static_cast<int>(state.range(0));
    const PLASTIC_HOT dataSet = bench::measuredDataSet();
    HotFitResult result;
    for (auto _ : state) {
        const HotFit fit = fitHotModel(dataSet, *hotModelIdOf(modelId), {});
        result = fit.result;
        benchmark::DoNotOptimize(fit.model.get());
    }
    state.SetLabel("type " + std::to_string(modelId));
    reportFit(state, result);
}
BENCHMARK(BM_MeasuredFit)->Arg(17)->Arg(50)->Arg(16)->Arg(161)->Arg(164)->Arg(169)->Arg(1600)->Unit(benchmark::kMillisecond);

// Hensel-Spittel by least squares on the measured series: of the stress error
// (0), of the error of ln σ (1), and after the descent (2).
void BM_HenselSpittelLeastSquares(benchmark::State& state)
{
    const PLASTIC_HOT dataSet = bench::measuredDataSet();
    HotFitOptions options;
    options.method = state.range(0) == 2 ? FitMethod::DescentThenLeastSquares : FitMethod::LeastSquares;
    options.objective = state.range(0) == 1 ? HotObjective::Relative : HotObjective::Absolute;
    HotFitResult result;
    for (auto _ : state) {
        const HotFit fit = fitHotModel(dataSet, HotModelId::Type17, options);
        result = fit.result;
        benchmark::DoNotOptimize(fit.model->parameters.data());
    }
    const char* const labels[] = {"stress error", "error of ln stress", "after the descent"};
    state.SetLabel(labels[state.range(0)]);
    reportFit(state, result);
}
BENCHMARK(BM_HenselSpittelLeastSquares)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

std::shared_ptr<PLASTIC_HOT> fittedMapModel()
{
    return fitHotModel(bench::syntheticDataSet(30, {0.001, 0.003, 0.01, 0.03, 0.1, 0.3, 1, 3, 10}), HotModelId::Type17,
                       {})
        .model;
}

void BM_ProcessingMap(benchmark::State& state)
{
    const auto model = fittedMapModel();
    std::string error;
    for (auto _ : state) {
        auto map = computeProcessingMap(*model, std::nullopt, error);
        benchmark::DoNotOptimize(map->efficiency(0, 0, 0));
    }
    state.SetLabel("30 x 9 x 15, all strains");
}
BENCHMARK(BM_ProcessingMap)->Unit(benchmark::kMillisecond);

// What the map command does for one strain: the map and its data file's bytes.
void BM_ProcessingMapWithDataFile(benchmark::State& state)
{
    const auto model = fittedMapModel();
    std::string error;
    for (auto _ : state) {
        auto map = computeProcessingMap(*model, 7, error);
        benchmark::DoNotOptimize(processingMapData(*map, 0).bytes());
    }
    state.SetLabel("30 x 9, one strain, with the data file");
}
BENCHMARK(BM_ProcessingMapWithDataFile)->Unit(benchmark::kMillisecond);

// One strain's data file alone (580,000 lines, 26 MB).
void BM_ProcessingMapDataFile(benchmark::State& state)
{
    const auto model = fittedMapModel();
    std::string error;
    const auto map = computeProcessingMap(*model, 7, error);
    for (auto _ : state)
        benchmark::DoNotOptimize(processingMapData(*map, 0).bytes());
    state.SetLabel("30 x 9, one strain's data file");
}
BENCHMARK(BM_ProcessingMapDataFile)->Unit(benchmark::kMillisecond);

// A rate sweep read from its CSV: two temperatures, five strains a curve, the
// lines shuffled, as a logger exporting many short tests writes them.
void BM_ReadManyRatesCsv(benchmark::State& state)
{
    const auto rates = static_cast<int>(state.range(0));
    std::vector<std::string> lines;
    for (int t = 0; t < 2; ++t)
        for (int r = 0; r < rates; ++r)
            for (int k = 1; k <= 5; ++k)
                lines.push_back(formatText("%d,%g,%g,%g\n", 1000 + 100 * t, 0.001 * std::pow(1.0005, r), 0.05 * k,
                                           200.0 + r * 0.01 + k));
    std::shuffle(lines.begin(), lines.end(), std::mt19937(5));
    std::string csv = "temperature,strain_rate,strain,stress\n";
    for (const std::string& line : lines)
        csv += line;
    std::string error;
    for (auto _ : state) {
        auto dataSet = readHotCurvesCsv(csv, {}, error);
        benchmark::DoNotOptimize(dataSet->curves.data());
    }
    state.SetLabel(std::to_string(rates) + " rates, " + std::to_string(lines.size()) + " lines");
}
BENCHMARK(BM_ReadManyRatesCsv)->Arg(1000)->Arg(4000)->Arg(16000)->Unit(benchmark::kMillisecond);

}  // namespace
