#pragma once
// Measured stresses at the sample strains, and the interpolation between the
// test temperatures and strain rates that every hot model shares.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hot/plastic_hot.h"

namespace zelko {

// Laws with ε^m or 1/ε have no value at zero strain; such entries take no part in
// a fit or its error measures.
inline constexpr double kMinimumFitStrain = 1e-6;

// A curve's stress at a strain: linear between the first two neighbouring points
// that enclose it, nothing outside the curve or where a point is not finite.
std::optional<double> curveStressAt(const HotCurve& curve, double strain);

// Where a value stands in an ascending list: hi is the first entry not below it,
// lo the one before (both 0 before the list, both the last after it), and
// weight the value's fraction of the way from lo to hi.
struct Bracket {
    std::size_t lo = 0;
    std::size_t hi = 0;
    double weight = 0.0;
};
Bracket bracketOf(const std::vector<double>& ascending, double value);
// The same in logarithms (for strain rates); linear where a value is not above 0.
Bracket logBracketOf(const std::vector<double>& ascending, double value);

// Between test cells. Along the rates, a natural cubic spline of ln σ in ln ε̇
// through every test rate, so that m = d ln σ / d ln ε̇ and its slope (the
// processing map's) are continuous; outside the rates the end values hold, and
// where a cell's stress is not above 0, σ is linear in ln ε̇ between the two rates
// around.
// Then σ linear in temperature. cellStress(t, r) gives a cell's stress.
double interpolateCells(const PLASTIC_HOT& grid, double strainRate, double temperature,
                        const std::function<double(std::size_t, std::size_t)>& cellStress);
// The spline along the rates alone, for one temperature's cell stresses.
double interpolateRates(const std::vector<double>& rates, const std::vector<double>& stresses, double rate);

// σ_measured[temperature][strain rate][sample strain].
class HotStressTable {
public:
    explicit HotStressTable(const PLASTIC_HOT& dataSet);

    std::size_t temperatureCount() const { return temperatures_; }
    std::size_t rateCount() const { return rates_; }
    std::size_t strainCount() const { return strains_; }
    // An entry a fit may use: the curve gave a finite stress above 0 at a strain
    // above kMinimumFitStrain, and its rate is above 0.
    bool usable(std::size_t t, std::size_t r, std::size_t k) const { return usable_[index(t, r, k)] != 0; }
    double at(std::size_t t, std::size_t r, std::size_t k) const { return stress_[index(t, r, k)]; }
    std::size_t usableCount() const { return usableCount_; }
    // Entries at strains above kMinimumFitStrain that the curves could not give.
    std::size_t missingCount() const { return missingCount_; }

private:
    std::size_t index(std::size_t t, std::size_t r, std::size_t k) const { return (t * rates_ + r) * strains_ + k; }
    std::size_t temperatures_ = 0;
    std::size_t rates_ = 0;
    std::size_t strains_ = 0;
    std::vector<double> stress_;
    std::vector<unsigned char> usable_;
    std::size_t usableCount_ = 0;
    std::size_t missingCount_ = 0;
};

// One weight per strain rate, (mean stress of all usable entries / mean at the
// rate)²; 1 for a rate without usable entries.
std::vector<double> balancedRateWeights(const HotStressTable& table);

// AARE (fraction) and RMSE (MPa) of the model over the table's usable entries.
struct FitError {
    double aare = 0.0;
    double rmse = 0.0;
    std::size_t count = 0;
};
FitError fitErrorOf(const PLASTIC_HOT& model, const HotStressTable& table);
// The same over one cell's entries.
FitError cellFitErrorOf(const PLASTIC_HOT& model, const HotStressTable& table, std::size_t t, std::size_t r);

// On the model a fit builds: the sample-strain range, the auxiliary range (the
// auxiliary list's, else the temperatures'), and the largest measured stress.
void recordFitRanges(PLASTIC_HOT& model);

// " AARE = %g %%\n RMSE = %g MPa\n", the head of every report.
std::string errorReport(const FitError& error);
// The report followed by a line " note: ..." for each note, as a screen shows it.
std::string reportWithNotes(const HotFitResult& result);
// Fills the result's measures and notes from the table.
void describeTable(const HotStressTable& table, const FitError& error, HotFitResult& result);

}  // namespace zelko
