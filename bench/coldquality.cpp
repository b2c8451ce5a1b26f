// How far the described steepest descent stops from the least-squares optimum:
// for every law, on a clean and on a noisy curve, the descent's final error next
// to what Levenberg-Marquardt reaches from the same start within the same bounds.
#include <cstdio>

#include "bench/coldcurves.h"
#include "cold/coldlaws.h"
#include "cold/lawpolish.h"

int main()
{
    std::printf("| law | curve | start error (MPa) | descent (MPa) | Levenberg-Marquardt (MPa) |\n");
    std::printf("|---|---|---|---|---|\n");
    for (const bool noisy : {false, true}) {
        const zelko::RoomOri record = zelko::bench::trueCurveRecord(noisy);
        for (const zelko::ColdLawId id : zelko::kColdLaws) {
            auto law = zelko::makeColdLaw(id, record);
            const std::vector<double> start = law->startParameters();
            const std::size_t n = law->fittedPoints().size();
            law->fitPlain();
            const std::vector<double> optimum = zelko::levenbergMarquardt(*law, start, 20000);
            std::printf("| %s | %s | %.4g | %.4g | %.4g |\n", zelko::coldLawTitle(id), noisy ? "noisy" : "clean",
                        law->objective(start, n), law->fitError, law->objective(optimum, n));
        }
    }
    return 0;
}
