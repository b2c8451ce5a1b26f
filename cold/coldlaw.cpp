#include "cold/coldlaw.h"

#include <algorithm>
#include <cmath>

#include "numerics/descent.h"

namespace zelko {

namespace {

// The necking-constrained fit searches s0 over 0.0001, 0.0002, ..., 1.0.
constexpr double kGridStep = 0.0001;
constexpr int kGridSteps = 10000;
// A tenth of the grid costs well under a millisecond.
constexpr int kGridStepsBetweenStopChecks = 1000;
// A parameter this close to a limit (relative to the limit, or absolute near 0)
// is at it: the strict limits (s0 > 0, n < 1) are only approached.
constexpr double kAtBound = 1e-9;


}  // namespace

double printable(double value) { return std::isfinite(value) ? value : 0.0; }

FitPoints ColdLaw::fittedPoints() const
{
    FitPoints points;
    const Curve& curve = curves[TrueCurve];
    // A true curve rebuilt from engineering data starts at the start point already.
    const bool rebuilt = inputKind != TrueCurve;
    const long long first = rebuilt ? 0 : std::max(0, startIndex);
    long long last = rebuilt ? static_cast<long long>(curve.size()) - 1 : neckingIndex;
    last = std::min(last, static_cast<long long>(curve.size()) - 1);
    for (long long i = first; i <= last; ++i) {
        const CurvePoint& p = curve[static_cast<std::size_t>(i)];
        points.strain.push_back(p.x);
        points.stress.push_back(p.y);
        points.weight.push_back(p.hasWeight ? p.weight : 1.0);
    }
    points.firstPointWeighted = first <= last && curve[static_cast<std::size_t>(first)].hasWeight;
    return points;
}

bool ColdLaw::neckingPoint(double& strain, double& stress) const
{
    const FitPoints points = fittedPoints();
    const long long index = static_cast<long long>(neckingIndex) - startIndex;
    if (index < 0 || index >= static_cast<long long>(points.size()))
        return false;
    strain = points.strain[static_cast<std::size_t>(index)];
    stress = points.stress[static_cast<std::size_t>(index)];
    return true;
}

double ColdLaw::neckingSlope() const
{
    double strain = 0.0, stress = 0.0;
    if (parameters.size() != parameterCount() || !neckingPoint(strain, stress))
        return 0.0;
    return slopeAt(strain, parameters.data());
}

std::vector<ParameterBound> ColdLaw::bounds() const
{
    return parameterBounds.size() == parameterCount() ? parameterBounds : defaultBounds();
}

void ColdLaw::takeInitialValues()
{
    const std::vector<ParameterBound> table = bounds();
    parameters.resize(parameterCount());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        parameters[i] = table[i].initial;
}

std::vector<double> ColdLaw::startParameters() const
{
    std::vector<double> start(parameterCount(), 0.0);
    const std::vector<ParameterBound> table = bounds();
    const FitPoints points = fittedPoints();
    if (automaticStart && !points.strain.empty())
        estimateStart(points, start.data());
    for (std::size_t i = 0; i < start.size(); ++i)
        if (isFixed(i) || !automaticStart)
            start[i] = table[i].initial;
    return start;
}

unsigned ColdLaw::heldParameters() const
{
    std::vector<double> g(parameterCount(), 1.0);
    maskGradient(g.data());
    unsigned held = 0;
    for (std::size_t i = 0; i < g.size() && i < 32; ++i)
        if (g[i] == 0.0)
            held |= 1u << i;
    return held;
}

bool ColdLaw::logLogStart(const FitPoints&, double*) const { return false; }

BoundFlags ColdLaw::boundsReached(const std::vector<double>& p) const
{
    BoundFlags flags;
    const std::vector<ParameterBound> table = bounds();
    for (std::size_t i = 0; i < p.size() && i < table.size() && i < 32; ++i) {
        const auto near = [&](double limit) { return std::fabs(p[i] - limit) <= kAtBound * std::max(1.0, std::fabs(limit)); };
        if (near(table[i].minimum))
            flags.lower |= 1u << i;
        else if (near(table[i].maximum))
            flags.upper |= 1u << i;
    }
    return flags;
}

void ColdLaw::maskGradient(double* g) const
{
    for (std::size_t i = 0; i < parameterCount(); ++i)
        if (isFixed(i))
            g[i] = 0.0;
}

FitWork::FitWork(std::size_t n) : model(n), factor(n)
{
    for (std::size_t k = 0; k < cache.size(); ++k) {
        cache[k].resize(n);
        cachePointers[k] = cache[k].data();
    }
}

void FitWork::swap(FitWork& other)
{
    model.swap(other.model);
    cache.swap(other.cache);
    std::swap(cachePointers, other.cachePointers);
}

double ColdLaw::errorOf(const FitPoints& points, const FitWork& work, Residuals mode, std::size_t n) const
{
    if (n == 0)
        return 0.0;
    // Weighted residuals are w r; otherwise r enters the sum weighted by w, where
    // the rule says so.
    const bool perPointWeight = mode == Residuals::Weighted || errorRule() == ErrorRule::PerPoint
                                || points.firstPointWeighted;
    double sum = 0.0;
    double weights = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double r = work.model[i] - points.stress[i];
        const double w = perPointWeight ? points.weight[i] : 1.0;
        sum += mode == Residuals::Weighted ? (w * r) * (w * r) : w * r * r;
        weights += w;
    }
    const bool dividedByWeights =
        mode == Residuals::Plain && errorRule() == ErrorRule::WeightedMean && points.firstPointWeighted;
    return std::sqrt(sum / (dividedByWeights ? weights : static_cast<double>(n)));
}

double ColdLaw::objective(const std::vector<double>& p, std::size_t n) const
{
    const FitPoints points = fittedPoints();
    n = std::min(n, points.size());
    if (p.size() != parameterCount())
        return 0.0;
    FitWork work(points.size());
    evaluateAll(points, p.data(), n, work);
    return errorOf(points, work, Residuals::Plain, n);
}

std::vector<double> ColdLaw::sumOfSquaresGradient(const std::vector<double>& p) const
{
    std::vector<double> g(parameterCount(), 0.0);
    const FitPoints points = fittedPoints();
    if (p.size() != g.size())
        return g;
    FitWork work(points.size());
    evaluateAll(points, p.data(), points.size(), work);
    for (std::size_t i = 0; i < points.size(); ++i)
        work.factor[i] = 2.0 * (work.model[i] - points.stress[i]);
    gradientAll(points, p.data(), work, g.data());
    return g;
}

bool ColdLaw::fitPlain(const RunControl& control) { return startAndDescend(false, control); }

bool ColdLaw::fitNeckingConstrained(const RunControl& control) { return startAndDescend(true, control); }

bool ColdLaw::startAndDescend(bool neckingPenalty, const RunControl& control)
{
    const FitPoints points = fittedPoints();
    parameters.resize(parameterCount());
    if (automaticStart && !points.strain.empty())
        estimateStart(points, parameters.data());
    return descend(points, Residuals::Plain, neckingPenalty, control);
}

bool ColdLaw::fitWeighted(const RunControl& control)
{
    const FitPoints points = fittedPoints();
    parameters.resize(parameterCount());
    return descend(points, Residuals::Weighted, false, control);
}

// The law as the descent engine sees it. An evaluation goes into the trial
// buffers; an accepted one becomes the current evaluation, which the gradient uses.
class ColdLaw::Descent {
public:
    Descent(const ColdLaw& law, const FitPoints& points, Residuals mode, bool neckingPenalty, const RunControl& control)
        : law_(law), points_(points), mode_(mode), control_(control), table_(law.bounds()), work_(points.size()),
          trialWork_(points.size()), shifted_(law.parameterCount())
    {
        penalised_ = neckingPenalty && law.neckingPoint(neckStrain_, neckStress_);
        const int grid = law.neckingGridParameter();
        grid_ = penalised_ && grid >= 0 && !law.isFixed(static_cast<std::size_t>(grid)) ? grid : -1;
    }

    // The combined error: sqrt((N E^2 + P^2) / (N + 1)), P the necking mismatch.
    double objective(const std::vector<double>& p)
    {
        const std::size_t n = points_.size();
        law_.evaluateAll(points_, p.data(), n, trialWork_);
        const double e = law_.errorOf(points_, trialWork_, mode_, n);
        if (!penalised_)
            return e;
        const double nd = static_cast<double>(n);
        return std::sqrt((nd * e * e + penalty(p.data())) / (nd + 1.0));
    }

    void accept() { work_.swap(trialWork_); }

    void gradient(const std::vector<double>& p, std::vector<double>& g)
    {
        for (std::size_t i = 0; i < points_.size(); ++i) {
            double r = work_.model[i] - points_.stress[i];
            double factor = 2.0 * r;
            if (mode_ == Residuals::Weighted) {
                const double w = points_.weight[i];
                r *= w;
                if (r == 0.0)
                    r = 1e-10;  // keeps a point that fits exactly in the weighted gradient
                factor = 2.0 * r * w;
            }
            work_.factor[i] = factor;
        }
        law_.gradientAll(points_, p.data(), work_, g.data());
        if (penalised_) {
            // The penalty's own gradient, by central differences of the law's slope.
            for (std::size_t k = 0; k < g.size(); ++k) {
                shifted_ = p;
                const double delta = 1e-7 * std::max(1.0, std::fabs(p[k]));
                shifted_[k] = p[k] + delta;
                const double up = penalty(shifted_.data());
                shifted_[k] = p[k] - delta;
                const double down = penalty(shifted_.data());
                g[k] += (up - down) / (2.0 * delta);
            }
        }
        law_.maskGradient(g.data());
        if (grid_ >= 0)
            g[static_cast<std::size_t>(grid_)] = 0.0;
    }

    TrialCheck check(std::vector<double>& trial, const std::vector<double>&)
    {
        if (grid_ >= 0 && !searchGrid(trial))
            return TrialCheck::Cancelled;
        if (!law_.admissible(trial.data()))
            return TrialCheck::Inadmissible;
        for (std::size_t k = 0; k < trial.size(); ++k)
            if (!(trial[k] >= table_[k].minimum && trial[k] <= table_[k].maximum))
                return TrialCheck::Refused;
        return TrialCheck::Evaluate;
    }

private:
    double penalty(const double* p) const
    {
        const double mismatch = law_.slopeAt(neckStrain_, p) - neckStress_;
        return law_.neckingPenaltyWeight * mismatch * mismatch;
    }

    // Puts s0 where the slope at necking meets the necking stress most closely;
    // false when a stop request came during the search.
    bool searchGrid(std::vector<double>& trial) const
    {
        const auto at = static_cast<std::size_t>(grid_);
        double best = 1e21;
        double bestValue = trial[at];
        for (int step = 1; step <= kGridSteps; ++step) {
            if (step % kGridStepsBetweenStopChecks == 0 && control_.stopRequested())
                return false;
            trial[at] = kGridStep * step;
            const double mismatch = std::fabs(law_.slopeAt(neckStrain_, trial.data()) - neckStress_);
            if (mismatch < best) {
                best = mismatch;
                bestValue = kGridStep * step;
            }
        }
        trial[at] = bestValue;
        return true;
    }

    const ColdLaw& law_;
    const FitPoints& points_;
    Residuals mode_;
    const RunControl& control_;
    std::vector<ParameterBound> table_;
    FitWork work_, trialWork_;
    std::vector<double> shifted_;
    bool penalised_ = false;
    int grid_ = -1;
    double neckStrain_ = 0.0, neckStress_ = 0.0;
};

double ColdLaw::fitObjective(const std::vector<double>& p, Residuals mode, bool neckingPenalty) const
{
    if (p.size() != parameterCount())
        return 0.0;
    const FitPoints points = fittedPoints();
    const RunControl none;
    Descent problem(*this, points, mode, neckingPenalty, none);
    return problem.objective(p);
}

bool ColdLaw::descend(const FitPoints& points, Residuals mode, bool neckingPenalty, const RunControl& control)
{
    const std::vector<ParameterBound> table = bounds();
    for (std::size_t i = 0; i < parameterCount(); ++i)
        if (isFixed(i))
            parameters[i] = table[i].initial;
    Descent problem(*this, points, mode, neckingPenalty, control);
    DescentSettings settings;
    settings.maxIterations = points.size() == 0 ? 0 : maxIterations;
    settings.target = targetError;
    const DescentOutcome outcome = steepestDescent<GrowingStepRules>(problem, parameters, settings, control);
    fitError = outcome.objective;
    fitEnd = {fitStopOf(outcome.stop), boundsReached(parameters), outcome.iterations};
    if (fitEnd.stop == FitStop::Converged && fitEnd.bounds.any())
        fitEnd.stop = FitStop::AtBound;
    return outcome.stop != DescentStop::Cancelled;
}

}  // namespace zelko
