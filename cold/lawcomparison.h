#pragma once
// Every hardening law fitted to one tensile record and ranked by how closely it
// follows the measured true curve, with what an engineer needs to choose one:
// its parameters and their units, parameters held at a bound, where it takes the
// curve at large strains, and whether the simulator's library can hold it.

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/runcontrol.h"
#include "cold/coldlaws.h"

namespace zelko {

// Forming reaches true strains far beyond a tensile test's uniform elongation:
// the laws are compared where they extrapolate to.
inline constexpr std::array<double, 3> kComparisonStrains = {0.1, 0.5, 1.0};

struct LawComparison {
    ColdLawId law = ColdLawId::Swift;
    std::shared_ptr<const ColdLaw> fitted;  // empty when the law could not be fitted
    std::string message;                    // why not
    double rmse = 0.0;                      // MPa, sqrt(mean r^2) over the fitted points, one measure for every law
    std::vector<bool> atBound;              // a parameter the bound table held back
    std::array<double, kComparisonStrains.size()> extrapolated{};  // MPa
    bool hasLibraryBlock = false;
};

struct LawComparisonResult {
    std::vector<LawComparison> rows;  // the fitted laws by rising RMSE, then the ones that failed
    bool cancelled = false;
};

// "MPa" for a stress parameter, "-" for one without dimension.
const char* coldParameterUnit(ColdLawId law, std::size_t index);

// Why a fit's law must not be used although the fit ran; empty when it may.
// The Hollomon necking constraint reads the true curve at the necking row, which
// a curve rebuilt from a later start row does not have: it leaves K = n = 0.
std::string fittedLawRefusal(const ColdLaw& law);

// RMSE of the law's parameters over its fitted points.
double rootMeanSquareError(const ColdLaw& law);

// The comparison's row of a law fitted alone.
LawComparison describeFittedLaw(ColdLawId id, std::shared_ptr<const ColdLaw> law);

// Fits every law of kColdLaws to the record with the record's own fit settings.
// Progress runs from 0 to 100 over the laws; a stop request ends the comparison
// (cancelled, no rows).
LawComparisonResult compareColdLaws(const RoomOri& record, const RunControl& control = {},
                                    FitMethod method = FitMethod::Descent);

// The best fitted row whose law has a library block; nothing when none has.
const LawComparison* bestWithLibraryBlock(const std::vector<LawComparison>& rows);

}  // namespace zelko
