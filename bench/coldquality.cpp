// How far the described steepest descent stops from the least-squares optimum:
// every law on the measured tensile tests from four start rows and on the clean
// and noisy synthetic curves, the descent's error next to the least-squares
// method's. With --points DIR it also writes each case's fitted points and every
// law's automatic start there, for bench/scipy/coldoptimum.py.
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "bench/coldcurves.h"
#include "cold/coldfit.h"
#include "cold/coldlaws.h"

namespace {

struct Case {
    std::string name;
    zelko::RoomOri record;
};

std::vector<Case> cases()
{
    std::vector<Case> all;
    for (const char* steel : {"1045", "4130"})
        for (const int start : {150, 206, 220, 260})
            all.push_back({std::string("steel-") + steel + "-" + std::to_string(start),
                           zelko::bench::measuredTensileRecord(
                               std::string(ZELKO_MEASURED_DATA) + "/tensile-steel-" + steel + ".csv", start)});
    all.push_back({"synthetic-clean", zelko::bench::trueCurveRecord(false)});
    all.push_back({"synthetic-noisy", zelko::bench::trueCurveRecord(true)});
    return all;
}

void writePoints(const std::string& folder, const Case& c)
{
    std::ofstream out(folder + "/" + c.name + ".txt");
    bool pointsWritten = false;
    for (const zelko::ColdLawId id : zelko::kColdLaws) {
        zelko::RoomOri record = c.record;
        record.maxIterations = 0;  // the rebuilt true curve and the start alone
        const zelko::ColdFitResult unfitted = zelko::fitColdLaw(record, id, {});
        const zelko::ColdLaw& law = *unfitted.law;
        if (!pointsWritten) {
            const zelko::FitPoints points = law.fittedPoints();
            out << "points " << points.size() << "\n";
            char line[128];
            for (std::size_t i = 0; i < points.size(); ++i) {
                std::snprintf(line, sizeof line, "%.17g %.17g %.17g\n", points.strain[i], points.stress[i],
                              points.weight[i]);
                out << line;
            }
            pointsWritten = true;
        }
        out << "start " << static_cast<int>(id);
        char value[32];
        for (const double p : law.startParameters()) {
            std::snprintf(value, sizeof value, " %.17g", p);
            out << value;
        }
        out << "\n";
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string folder = argc == 3 && std::string(argv[1]) == "--points" ? argv[2] : "";
    std::printf("| curve | law | descent (MPa) | least squares (MPa) | how it stopped |\n|---|---|---|---|---|\n");
    for (const Case& c : cases()) {
        if (!folder.empty())
            writePoints(folder, c);
        for (const zelko::ColdLawId id : zelko::kColdLaws) {
            const zelko::ColdFitResult descent = zelko::fitColdLaw(c.record, id, {});
            const zelko::ColdFitResult fitted = zelko::fitColdLaw(c.record, id, {}, zelko::FitMethod::LeastSquares);
            std::printf("| %s | %s | %.6g | %.6g | %s |\n", c.name.c_str(), zelko::coldLawTitle(id),
                        descent.law->fitError, fitted.law->fitError, zelko::fitEndText(*fitted.law).c_str());
        }
    }
    return 0;
}
