// Saving and opening a material with a full hot data set: 30 temperatures x 9
// strain rates, 700 points a curve (the size of a thinned Gleeble series).
#include <benchmark/benchmark.h>

#include <utility>

#include "hot/plastic_hot.h"
#include "material/project.h"

namespace {

zelko::Project largeHotMaterial()
{
    auto hot = std::make_shared<zelko::PLASTIC_HOT>();
    hot->modelNumber = 17;
    for (int r = 0; r < 9; ++r)
        hot->strainRates.push_back(0.001 * (r + 1));
    for (int t = 0; t < 30; ++t)
        hot->temperatures.push_back(900 + 10 * t);
    hot->strains = {0.1, 0.2, 0.3, 0.4, 0.5};
    hot->curves.assign(30, std::vector<zelko::HotCurve>(9));
    for (auto& row : hot->curves)
        for (auto& curve : row)
            for (int i = 0; i < 700; ++i)
                curve.push_back({0, i * 0.001, 100 + i * 0.05});
    zelko::Project project;
    project.title = u"Gleeble series";
    project.setModel(hot);
    return project;
}

void BM_WriteMaterialFile(benchmark::State& state)
{
    const zelko::Project project = largeHotMaterial();
    for (auto _ : state) {
        zelko::TextWriter out;
        project.WriteMaterialFile(out);
        benchmark::DoNotOptimize(std::move(out).bytes());  // as a save takes them
    }
}
BENCHMARK(BM_WriteMaterialFile)->Unit(benchmark::kMillisecond);

void BM_ReadMaterialFile(benchmark::State& state)
{
    zelko::TextWriter out;
    largeHotMaterial().WriteMaterialFile(out);
    const std::string bytes = out.bytes();
    state.SetBytesProcessed(0);
    for (auto _ : state) {
        zelko::Project project;
        zelko::TextReader in(bytes, zelko::ReadMode::SniffBom);
        benchmark::DoNotOptimize(project.ReadMaterialFile(in));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(BM_ReadMaterialFile)->Unit(benchmark::kMillisecond);

// A screen starts from a copy of the material: the whole data set is copied.
void BM_CopyMaterial(benchmark::State& state)
{
    const zelko::Project project = largeHotMaterial();
    for (auto _ : state) {
        zelko::Project copy = project;
        benchmark::DoNotOptimize(copy.activeModel.get());
    }
}
BENCHMARK(BM_CopyMaterial)->Unit(benchmark::kMillisecond);

}  // namespace
