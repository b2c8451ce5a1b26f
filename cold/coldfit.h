#pragma once
// Choosing a hardening law for a tensile record: the fit the screen and the
// command-line tool both run. The fit changes nothing and writes nothing: its
// caller applies the result to its own copy of the record.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "base/runcontrol.h"
#include "cold/coldlaws.h"

namespace zelko {

struct ColdFitResult {
    std::shared_ptr<ColdLaw> law;    // the fitted law; empty when nothing ran or the fit was stopped
    std::optional<Curve> trueCurve;  // the true curve rebuilt from the engineering one, for the record
    std::string text;                // the result text, as the screen shows it
    std::string message;             // why nothing ran
    bool cancelled = false;          // a stop request ended the fit; nothing to apply
};

// Fits the law to the record: rebuilds the true curve from the engineering one
// unless the curve was entered as true, then fits from the law's start. Progress
// runs from 0 to 100 through the descents (or the least-squares starts); a stop
// request ends the fit early. Least squares fits the plain error: with the
// necking constraint or weights the descent runs alone, whatever the method.
ColdFitResult fitColdLaw(const RoomOri& record, ColdLawId law, const RunControl& control,
                         FitMethod method = FitMethod::Descent);

// How the law's fit ended, a line for the result: the stop and the parameters at
// a bound ("Stop: converged at a bound; at a bound: n (upper)").
std::string fitEndText(const ColdLaw& law);

// The Swift comparison table: strain, measured and predicted stress, error in %.
std::string swiftComparisonTable(const ColdLaw& swift);
// The table as ZELKO_MAT_PL1.dat in the exchange folder (made when missing), for
// the external plot; false with a reason when it can't be written.
bool writeSwiftComparisonTable(const ColdLaw& swift, const std::filesystem::path& exchangeFolder, std::string& error);

}  // namespace zelko
