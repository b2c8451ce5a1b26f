#include "cold/coldlaw.h"

#include <algorithm>
#include <cmath>

namespace zelko {

namespace {

constexpr double kStepFloor = 1e-21;
constexpr double kGradientFloor = 1e-21;

// The necking-constrained fit searches s0 over 0.0001, 0.0002, ..., 1.0.
constexpr double kGridStep = 0.0001;
constexpr int kGridSteps = 10000;

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

void ColdLaw::fitPlain() { startAndDescend(false); }

void ColdLaw::fitNeckingConstrained() { startAndDescend(true); }

void ColdLaw::startAndDescend(bool neckingPenalty)
{
    const FitPoints points = fittedPoints();
    parameters.resize(parameterCount());
    if (automaticStart && !points.strain.empty())
        estimateStart(points, parameters.data());
    descend(points, Residuals::Plain, neckingPenalty);
}

void ColdLaw::fitWeighted()
{
    const FitPoints points = fittedPoints();
    parameters.resize(parameterCount());
    descend(points, Residuals::Weighted, false);
}

// Normalised steepest descent: step against the unit gradient, grow the step by
// 1.1 after an accepted move, halve it after a refused one, stop below the floor.
void ColdLaw::descend(const FitPoints& points, Residuals mode, bool neckingPenalty)
{
    const std::size_t count = parameterCount();
    const std::vector<ParameterBound> table = bounds();
    for (std::size_t i = 0; i < count; ++i)
        if (isFixed(i))
            parameters[i] = table[i].initial;

    const std::size_t n = points.size();
    FitWork work(n), trialWork(n);
    std::vector<double> g(count), trial(count);

    double neckStrain = 0.0, neckStress = 0.0;
    const bool penalised = neckingPenalty && neckingPoint(neckStrain, neckStress);
    const int grid = penalised && gridParameter() >= 0 && !isFixed(static_cast<std::size_t>(gridParameter()))
                         ? gridParameter()
                         : -1;
    // The combined error: sqrt((N E^2 + P^2) / (N + 1)), P the necking mismatch.
    const auto penalty = [&](const double* p) {
        const double mismatch = slopeAt(neckStrain, p) - neckStress;
        return neckingPenaltyWeight * mismatch * mismatch;
    };
    const auto evaluate = [&](const double* p, FitWork& into) {
        evaluateAll(points, p, n, into);
        const double e = errorOf(points, into, mode, n);
        if (!penalised)
            return e;
        const double nd = static_cast<double>(n);
        return std::sqrt((nd * e * e + penalty(p)) / (nd + 1.0));
    };

    int iteration = 0;
    double error = evaluate(parameters.data(), work);
    fitError = error;
    if (maxIterations < 1 || n == 0 || !std::isfinite(error))
        return;
    double h = 1.0;
    for (;;) {
        for (std::size_t i = 0; i < n; ++i) {
            double r = work.model[i] - points.stress[i];
            double factor = 2.0 * r;
            if (mode == Residuals::Weighted) {
                const double w = points.weight[i];
                r *= w;
                if (r == 0.0)
                    r = 1e-10;  // keeps a point that fits exactly in the weighted gradient
                factor = 2.0 * r * w;
            }
            work.factor[i] = factor;
        }
        gradientAll(points, parameters.data(), work, g.data());
        if (penalised) {
            // The penalty's own gradient, by central differences of the law's slope.
            for (std::size_t k = 0; k < count; ++k) {
                trial = parameters;
                const double delta = 1e-7 * std::max(1.0, std::fabs(parameters[k]));
                trial[k] = parameters[k] + delta;
                const double up = penalty(trial.data());
                trial[k] = parameters[k] - delta;
                const double down = penalty(trial.data());
                g[k] += (up - down) / (2.0 * delta);
            }
        }
        maskGradient(g.data());
        if (grid >= 0)
            g[static_cast<std::size_t>(grid)] = 0.0;
        double norm = 0.0;
        for (const double v : g)
            norm += v * v;
        norm = std::sqrt(norm);
        if (!(norm >= kGradientFloor))
            return;

        bool accepted = false;
        while (!accepted) {
            for (std::size_t k = 0; k < count; ++k)
                trial[k] = parameters[k] - h * g[k] / norm;
            if (grid >= 0) {
                // s0 where the slope at necking meets the necking stress most closely.
                double best = 1e21;
                double bestValue = trial[static_cast<std::size_t>(grid)];
                for (int step = 1; step <= kGridSteps; ++step) {
                    trial[static_cast<std::size_t>(grid)] = kGridStep * step;
                    const double mismatch = std::fabs(slopeAt(neckStrain, trial.data()) - neckStress);
                    if (mismatch < best) {
                        best = mismatch;
                        bestValue = kGridStep * step;
                    }
                }
                trial[static_cast<std::size_t>(grid)] = bestValue;
            }
            if (!admissible(trial.data())) {
                h *= 0.5;
                if (h < kStepFloor)
                    return;
                continue;
            }
            bool inside = true;
            for (std::size_t k = 0; k < count; ++k)
                inside = inside && trial[k] >= table[k].minimum && trial[k] <= table[k].maximum;
            const double trialError = inside ? evaluate(trial.data(), trialWork) : error;
            if (!inside || !(trialError < error)) {
                if (h < kStepFloor)
                    return;
                h *= 0.5;
                continue;
            }
            error = trialError;
            fitError = error;
            parameters = trial;
            work.swap(trialWork);
            h *= 1.1;
            accepted = true;
        }
        if (error < targetError)
            return;
        if (++iteration >= maxIterations)
            return;
    }
}

}  // namespace zelko
