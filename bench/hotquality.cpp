// Fit quality of the hot types on the measured Gleeble series (and on synthetic
// curves), and the Hensel-Spittel descent beside the least-squares method within
// the descent's guards: of the stress error, of the error of ln σ, and after the
// descent. Prints Markdown tables.
#include <cstdio>
#include <string>

#include "bench/hotcurves.h"
#include "hot/hotmodels.h"
#include "hot/stresstable.h"

namespace {

using namespace zelko;

void compareMethods(const char* name, const PLASTIC_HOT& dataSet)
{
    struct Row {
        const char* text;
        FitMethod method;
        HotObjective objective;
    };
    const Row rows[] = {
        {"descent", FitMethod::Descent, HotObjective::Absolute},
        {"least squares, stress", FitMethod::LeastSquares, HotObjective::Absolute},
        {"least squares, ln stress", FitMethod::LeastSquares, HotObjective::Relative},
        {"descent + least squares, stress", FitMethod::DescentThenLeastSquares, HotObjective::Absolute},
    };
    for (const Row& row : rows) {
        HotFitOptions options;
        options.method = row.method;
        options.objective = row.objective;
        const HotFit fit = fitHotModel(dataSet, HotModelId::Type17, options);
        const HotStressTable table(*fit.model);
        const FitError e = fitErrorOf(*fit.model, table);
        const double sse = e.rmse * e.rmse * static_cast<double>(e.count);
        std::printf("| %s | %s | %d (%s) | %.4g | %.2f | %.2f |\n", name, row.text, fit.result.iterations,
                    fit.result.stopReason.c_str(), sse, e.aare * 100.0, e.rmse);
    }
}

}  // namespace

int main()
{
    const PLASTIC_HOT measured = bench::measuredDataSet();
    const PLASTIC_HOT synthetic = bench::syntheticDataSet(6, {0.01, 0.1, 1.0, 10.0});
    std::printf("Measured series: %zu temperatures x %zu rates x %zu sample strains\n\n", measured.temperatures.size(),
                measured.strainRates.size(), measured.strains.size());
    std::printf("| type | AARE %% | RMSE MPa | entries |\n|---|---|---|---|\n");
    for (const int id : {17, 50, 16, 161, 163, 164, 165, 166, 167, 168, 169, 1600}) {
        const HotFitResult r = fitHotModel(measured, *hotModelIdOf(id), {}).result;
        std::printf("| %d | %.2f | %.2f | %zu |\n", id, r.aare * 100.0, r.rmse, r.compared);
    }
    std::printf("\nHensel-Spittel by method, within the descent's guards\n\n");
    std::printf("| data | method | iterations (stop) | SSE | AARE %% | RMSE MPa |\n|---|---|---|---|---|---|\n");
    compareMethods("measured", measured);
    compareMethods("synthetic 6x4x15", synthetic);
    return 0;
}
