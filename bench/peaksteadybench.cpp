// Peak and steady state: every cell of the measured Gleeble series (5 x 6 curves
// of 71 points), of the synthetic 30 x 9 set, and one long logged curve.
#include <benchmark/benchmark.h>

#include "bench/hotcurves.h"
#include "hot/peaksteady.h"

namespace {

using namespace zelko;

void BM_PeakSteadyMeasured(benchmark::State& state)
{
    const PLASTIC_HOT dataSet = bench::measuredDataSet();
    for (auto _ : state) {
        const auto cells = peakSteadyCells(dataSet);
        benchmark::DoNotOptimize(cells.data());
    }
}
BENCHMARK(BM_PeakSteadyMeasured)->Unit(benchmark::kMicrosecond);

void BM_PeakSteadySynthetic(benchmark::State& state)
{
    const PLASTIC_HOT dataSet = bench::syntheticDataSet(30, {0.001, 0.003, 0.01, 0.03, 0.1, 0.3, 1, 3, 10});
    for (auto _ : state) {
        const auto cells = peakSteadyCells(dataSet);
        benchmark::DoNotOptimize(cells.data());
    }
}
BENCHMARK(BM_PeakSteadySynthetic)->Unit(benchmark::kMicrosecond);

// A test logged at its machine's rate: the smoothing window grows with the points.
void BM_PeakSteadyLongCurve(benchmark::State& state)
{
    const HotCurve measured = bench::measuredDataSet().curve(0, 0);
    HotCurve curve;
    const auto points = static_cast<std::size_t>(state.range(0));
    for (std::size_t i = 0; i < points; ++i) {
        const double at = static_cast<double>(i) * static_cast<double>(measured.size() - 1) / static_cast<double>(points - 1);
        const std::size_t k = std::min(static_cast<std::size_t>(at), measured.size() - 2);
        const double f = at - static_cast<double>(k);
        curve.push_back({0.0, measured[k].strain + f * (measured[k + 1].strain - measured[k].strain),
                         measured[k].stress + f * (measured[k + 1].stress - measured[k].stress)});
    }
    for (auto _ : state) {
        const MicrosCell cell = peakSteadyCell(curve);
        benchmark::DoNotOptimize(cell);
    }
}
BENCHMARK(BM_PeakSteadyLongCurve)->Arg(2000)->Arg(20000)->Unit(benchmark::kMicrosecond);

}  // namespace
