#pragma once
// The tensile chain as the tensile screen and fit-cold both run it: a measured
// curve entered into a copy of the material's tensile record, reduced, fitted,
// and handed back as a new material holding the record and its fitted law. The
// material it starts from is never changed, so a cancelled or failed fit leaves
// it as it was.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "base/environment.h"
#include "base/runcontrol.h"
#include "cold/coldlaws.h"
#include "cold/lawcomparison.h"
#include "cold/plastic_8.h"
#include "material/project.h"

namespace zelko {

// A measured tensile curve as the user enters it.
struct TensileTest {
    std::int32_t inputKind = LoadDisplacement;
    Curve curve;  // in the units below
    std::int32_t lengthUnit = 0;
    std::int32_t forceUnit = 0;
    double diameter = 0.0;
    double gaugeLength = 0.0;
};

// Why the material can't take a tensile test (it holds a hot model); empty when it can.
std::string tensileRecordRefusal(const Project& material);

// The material's tensile record (a new one when it has none) with the test
// entered, its units converted and the other forms derived; record is empty and
// error says why when the material holds a hot model or the test can't be reduced.
struct EnteredTest {
    std::shared_ptr<RoomOri> record;
    std::string error;
};
// The test is taken by value: a caller done with its curve moves it in.
EnteredTest enterTensileTest(const Project& material, TensileTest test);

// The point of maximum engineering stress, where necking starts by default.
int maximumStressIndex(const Curve& curve);

// What the fit takes from the screen; an empty value keeps the record's own.
struct TensileFitSettings {
    std::optional<int> startIndex;
    std::optional<int> neckingIndex;  // the maximum engineering stress when empty
    std::optional<int> endIndex;      // the last point when empty
    std::optional<int> maxIterations;
    std::optional<double> targetError;
    bool neckingConstraint = false;
    bool weighted = false;
    FitMethod method = FitMethod::Descent;  // the polish is DescentThenLeastSquares
};

struct TensileFit {
    std::optional<Project> material;  // the record with its fitted law; empty when nothing was fitted
    std::shared_ptr<const ColdLaw> law;  // the law the material's record holds, not a copy of a long curve
    std::string text;   // the result, as the screen shows it
    std::string error;  // why nothing was fitted
    bool cancelled = false;
};
// Fits the law (its model id) to a record from enterTensileTest. The Swift fit
// also leaves its comparison table in the exchange folder, as the screen does.
TensileFit fitTensileLaw(const Project& material, const RoomOri& record, ColdLawId law, const TensileFitSettings& settings,
                         const Environment& environment, const RunControl& control = {});
// The same for a caller that needs the entered record no more (its curves are moved, not copied).
TensileFit fitTensileLaw(const Project& material, RoomOri&& record, ColdLawId law, const TensileFitSettings& settings,
                         const Environment& environment, const RunControl& control = {});

// Every law fitted to a record from enterTensileTest with the same settings, ranked
// (see compareColdLaws); the record is left as it was.
LawComparisonResult compareTensileLaws(const RoomOri& record, const TensileFitSettings& settings,
                                       const RunControl& control = {});

// The material's record ready for the tensile solver: its load-displacement
// curve derived when it has none. Empty with error when there is no record.
std::shared_ptr<RoomOri> tensileJobRecord(const Project& material, std::string& error);
// The solver's identified curve read back into a simulation model (8) that the
// record holds; empty with the status's message when there is none.
struct TensileResult {
    std::optional<Project> material;
    TensileResultStatus status = TensileResultStatus::NoResultFile;
};
TensileResult readTensileJobResult(const Project& material, const RoomOri& record, const std::filesystem::path& jobFile);

}  // namespace zelko
