#pragma once
// The hot-compression data set and base of the hot model types.

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/runcontrol.h"
#include "models/plastic.h"
#include "numerics/fitmethod.h"

namespace zelko {

// One point of a hot flow curve.
struct HotCurvePoint {
    double c0 = 0.0;  // optional leading value of the raw text
    double strain = 0.0;
    double stress = 0.0;  // MPa
    friend bool operator==(const HotCurvePoint&, const HotCurvePoint&) = default;
};
using HotCurve = std::vector<HotCurvePoint>;

enum HenselSpittelParameter { A = 0, M1, M2, M3, M4, M5, M6, M7, M8, M9, kHenselSpittelParameterCount };

inline constexpr int kDefaultHotIterations = 10000;
// The length of the Hensel-Spittel descent's first trial move (unless 1/|gradient|
// is longer); it is halved from there until the objective falls.
inline constexpr double kDefaultHotInitialStep = 1.0;

// What a least-squares fit minimises: the squared stress errors, or the squared
// errors of ln σ (relative errors, what AARE judges).
enum class HotObjective { Absolute, Relative };

// How the strain rates weigh in the fit: alike, or each by the inverse square of
// its mean measured stress, so slow (soft) tests count as much as fast ones.
enum class HotWeighting { Equal, BalancedByStress };

struct HotFitOptions {
    int maxIterations = kDefaultHotIterations;
    double initialStep = kDefaultHotInitialStep;
    std::vector<double> rateWeights;  // one per strain rate; missing ones weigh 1
    HotWeighting weighting = HotWeighting::Equal;  // when rateWeights is empty
    // The descent ends once its objective is below this fraction of the start's
    // (0: it runs to its iteration limit or step floor).
    double targetFraction = 0.0;
    unsigned parameterSwitches = 0;   // bit i holds Hensel-Spittel parameter i at 0
    // Hensel-Spittel: the descent (always of the stress error), or least squares
    // within the descent's guards of the stress error or of the error of ln σ.
    FitMethod method = FitMethod::Descent;
    HotObjective objective = HotObjective::Absolute;
};

struct HotFitResult {
    bool fitted = false;       // false: nothing could be fitted (message says why)
    std::string report;        // the report text
    std::string message;
    double aare = 0.0;         // fraction (the report shows percent)
    double rmse = 0.0;         // MPa
    std::size_t compared = 0;  // stress-table entries behind the two measures
    std::size_t missing = 0;   // entries the curves could not give (no point there, stress not above 0)
    int iterations = 0;
    long evaluations = 0;  // objective evaluations of a descent
    bool stoppedEarly = false;
    std::string stopReason;
    FitStop stop = FitStop::Converged;
    BoundFlags bounds;  // Hensel-Spittel parameters (by index, A first) at a guard's limit
    std::vector<std::string> notes;  // what was left out and why
};

// What a stopped fit or map says.
inline constexpr std::string_view kRunCancelled = "cancelled";

class PLASTIC_HOT : public Plastic {
public:
    PLASTIC_HOT() { modelKind = HotModel; }
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_HOT>(); }

    void readMaterialBlock(TextReader& in, int major, int minor) override;
    void writeMaterialBlock(TextWriter& out, int major, int minor) const override;
    // The type's own step of a fit (its coefficient table), on the new model the
    // fit builds; false when a stop was requested. Nothing here.
    virtual bool fillCellCoefficients(const RunControl& /*control*/) { return true; }
    // Flow stress (MPa) at a strain, strain rate (1/s) and temperature. The data
    // set alone interpolates its measured curves; each type evaluates its law.
    virtual double evaluate(double strain, double strainRate, double temperature) const;
    // Whether evaluate is a law of the type's own (else it reads the measured curves).
    virtual bool hasLaw() const { return false; }

    // The material reader's three-column flag is the hot flag of the block.
    bool hasThreeColumns() const { return hotFlag; }
    void setHasThreeColumns(bool value) { hotFlag = value; }

    // The cell's curve; an empty one for a cell the grid doesn't have.
    const HotCurve& curve(std::size_t temperatureIndex, std::size_t rateIndex) const;

    std::vector<double> strainRates;   // ascending, 1/s
    std::vector<double> temperatures;  // ascending
    std::vector<double> strains;       // ascending sample strains
    std::vector<double> auxiliaryValues;  // the screen's fourth ascending list
    std::vector<std::vector<HotCurve>> curves;  // [temperature][strain rate]
    bool hasIndexColumn = false;
    bool hotFlag = false;
    // Recorded by a fit for the library block: the sample strains' range, and the
    // range of the auxiliary list (of the temperatures while it is empty).
    double strainMin = 0.0;
    double strainMax = 0.0;
    double auxiliaryMin = 0.0;
    double auxiliaryMax = 0.0;
    double maxStress = 0.0;
    double strainOffset = 0.0;
    std::array<double, kHenselSpittelParameterCount> parameters{};  // A, m1 .. m9
};

// The data a fit reads: the lists and curves of a hot model, of whatever type.
using HotDataSet = PLASTIC_HOT;

// A fit's outcome: a new model (the data set's copy with the fitted law) and its
// report. No model when the fit was stopped, or for an id with no class.
struct HotFit {
    std::shared_ptr<PLASTIC_HOT> model;
    HotFitResult result;
    bool cancelled = false;
};
HotFit cancelledFit();

// A new model of the type holding a copy of the data set.
template <class Model>
std::shared_ptr<Model> newHotModel(const HotDataSet& dataSet)
{
    auto model = std::make_shared<Model>();
    const int number = model->modelNumber;
    static_cast<PLASTIC_HOT&>(*model) = dataSet;
    model->modelNumber = number;
    return model;
}

}  // namespace zelko
