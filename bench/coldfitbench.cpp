// Every hardening law fitted to a 2,000-point true curve with the default settings
// (automatic start, target error 1 MPa, at most 10,000 iterations), and the
// least-squares method on the same curves and on the measured tensile tests.
#include <benchmark/benchmark.h>

#include "bench/coldcurves.h"
#include "cold/coldfit.h"
#include "cold/coldlaws.h"

namespace {

void BM_ColdFit(benchmark::State& state)
{
    const auto law = static_cast<zelko::ColdLawId>(state.range(0));
    const bool noisy = state.range(1) != 0;
    const zelko::RoomOri record = zelko::bench::trueCurveRecord(noisy);
    double error = 0.0;
    for (auto _ : state) {
        auto fitted = zelko::makeColdLaw(law, record);
        fitted->fitPlain();
        error = fitted->fitError;
        benchmark::DoNotOptimize(fitted->parameters.data());
    }
    state.SetLabel(std::string(zelko::coldLawTitle(law)) + (noisy ? ", noisy" : ", clean"));
    state.counters["errorMPa"] = error;
}
// The laws by model number, in the screen's order.
BENCHMARK(BM_ColdFit)->ArgsProduct({{1, 3, 4, 35, 32, 31, 33, 34}, {0, 1}})->Unit(benchmark::kMillisecond);

// The whole fit as fit-cold runs it with --method least-squares: the true curve
// rebuilt, every start tried, the result text.
void leastSquares(benchmark::State& state, const zelko::RoomOri& record, const std::string& curve)
{
    const auto law = static_cast<zelko::ColdLawId>(state.range(0));
    double error = 0.0;
    for (auto _ : state) {
        const zelko::ColdFitResult fit = zelko::fitColdLaw(record, law, {}, zelko::FitMethod::LeastSquares);
        error = fit.law->fitError;
        benchmark::DoNotOptimize(fit.text.data());
    }
    state.SetLabel(std::string(zelko::coldLawTitle(law)) + ", " + curve);
    state.counters["errorMPa"] = error;
}

void BM_ColdLeastSquaresMeasured(benchmark::State& state)
{
    const char* steel = state.range(1) == 0 ? "1045" : "4130";
    const auto start = static_cast<int>(state.range(2));
    const zelko::RoomOri record = zelko::bench::measuredTensileRecord(
        std::string(ZELKO_MEASURED_DATA) + "/tensile-steel-" + steel + ".csv", start);
    leastSquares(state, record, std::string(steel) + " from row " + std::to_string(start));
}
BENCHMARK(BM_ColdLeastSquaresMeasured)
    ->ArgsProduct({{1, 3, 4, 35, 32, 31, 33, 34}, {0, 1}, {220}})
    ->Unit(benchmark::kMillisecond);

void BM_ColdLeastSquaresSynthetic(benchmark::State& state)
{
    const bool noisy = state.range(1) != 0;
    leastSquares(state, zelko::bench::trueCurveRecord(noisy), noisy ? "noisy" : "clean");
}
BENCHMARK(BM_ColdLeastSquaresSynthetic)->ArgsProduct({{1, 3, 4, 35, 32, 31, 33, 34}, {0, 1}})->Unit(benchmark::kMillisecond);

}  // namespace
