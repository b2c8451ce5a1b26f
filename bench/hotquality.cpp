// Fit quality of the hot types on the measured Gleeble series (and on synthetic
// curves), and the Hensel-Spittel descent beside the least-squares method within
// the descent's guards: of the stress error, of the error of ln σ, and after the
// descent. Prints Markdown tables.
#include <cstdio>
#include <fstream>
#include <string>

#include "bench/hotcurves.h"
#include "hot/hotmodels.h"
#include "hot/plastic_17.h"
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

// The measured series as the least-squares fit sees it, for bench/scipy/hotoptimum.py:
// a line "entry" per stress-table entry (the nine factors of ln σ, the stress, the
// weight), the guards' limits of A .. m9 and the descent's automatic start.
void writeEntries(const char* path, const PLASTIC_HOT& dataSet)
{
    const HotStressTable table(dataSet);
    HenselSpittelObjective objective(dataSet, table, {}, 0);
    const HenselSpittelParameters start = henselSpittelStart(dataSet, table, 0, objective);
    objective.setStartM1(start[M1]);
    HenselSpittelParameters lower{}, upper{};
    objective.guardLimits(lower, upper);
    std::ofstream out(path);
    char text[64];
    const auto put = [&](double v) {
        std::snprintf(text, sizeof text, " %.17g", v);
        out << text;
    };
    for (std::size_t e = 0; e < objective.entryCount(); ++e) {
        out << "entry";
        for (int i = 0; i < 9; ++i)
            put(objective.factors()(static_cast<Eigen::Index>(e), i));
        put(objective.stresses()(static_cast<Eigen::Index>(e)));
        put(objective.weights()(static_cast<Eigen::Index>(e)));
        out << "\n";
    }
    const std::pair<const char*, const HenselSpittelParameters*> rows[] = {
        {"lower", &lower}, {"upper", &upper}, {"start", &start}};
    for (const auto& [name, row] : rows) {
        out << name;
        for (const double v : *row)
            put(v);
        out << "\n";
    }
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string(argv[1]) == "--entries") {
        writeEntries(argv[2], bench::measuredDataSet());
        return 0;
    }
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
