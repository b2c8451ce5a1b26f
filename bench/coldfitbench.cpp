// Every hardening law fitted to a 2,000-point true curve with the default settings
// (automatic start, target error 1 MPa, at most 10,000 iterations).
#include <benchmark/benchmark.h>

#include "bench/coldcurves.h"
#include "cold/coldfit.h"
#include "cold/coldlaws.h"

namespace {

void BM_ColdFit(benchmark::State& state)
{
    const int listIndex = static_cast<int>(state.range(0));
    const bool noisy = state.range(1) != 0;
    const zelko::RoomOri record = zelko::bench::trueCurveRecord(noisy);
    double error = 0.0;
    for (auto _ : state) {
        auto law = zelko::makeColdLaw(listIndex, record);
        law->fitPlain();
        error = law->fitError;
        benchmark::DoNotOptimize(law->parameters.data());
    }
    state.SetLabel(std::string(zelko::coldLawListEntry(listIndex)) + (noisy ? ", noisy" : ", clean"));
    state.counters["errorMPa"] = error;
}
BENCHMARK(BM_ColdFit)->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8}, {0, 1}})->Unit(benchmark::kMillisecond);

}  // namespace
