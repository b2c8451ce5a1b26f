// Every hardening law fitted to a 2,000-point true curve with the default settings
// (automatic start, target error 1 MPa, at most 10,000 iterations).
#include <benchmark/benchmark.h>

#include "bench/coldcurves.h"
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

}  // namespace
