#include "hot/plastic_17.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "hot/hotleastsquares.h"
#include "numerics/descent.h"
#include "hot/stresstable.h"
#include "numerics/vectormath.h"

namespace zelko {

namespace {

bool switchedOff(unsigned switches, int parameter) { return (switches >> parameter) & 1u; }

// The factors of ln σ that the exponents multiply, in parameter order (A's is unused).
HenselSpittelParameters logFactors(double strain, double strainRate, double temperature)
{
    const double lnRate = std::log(strainRate);
    return {0.0,
            temperature,
            std::log(strain),
            lnRate,
            1.0 / strain,
            std::log1p(strain),
            0.0,
            strain,
            temperature * lnRate,
            temperature > 0.0 ? std::log(temperature) : 0.0};
}

enum Group { ByTemperature, ByRate, ByStrain };

// Mean slope of ln σ against x(t, r, k) between index a and index b of one group,
// over the entry pairs that agree in the other two groups and are both usable.
template <class X>
double pairSlope(const HotStressTable& table, Group group, std::size_t a, std::size_t b, X&& x)
{
    double sum = 0.0;
    int count = 0;
    const std::size_t counts[3] = {table.temperatureCount(), table.rateCount(), table.strainCount()};
    if (a == b || a >= counts[group] || b >= counts[group])
        return 0.0;
    for (std::size_t t = 0; t < counts[0]; ++t)
        for (std::size_t r = 0; r < counts[1]; ++r)
            for (std::size_t k = 0; k < counts[2]; ++k) {
                std::size_t at[3] = {t, r, k};
                if (at[group] != a)
                    continue;
                std::size_t other[3] = {t, r, k};
                other[group] = b;
                if (!table.usable(t, r, k) || !table.usable(other[0], other[1], other[2]))
                    continue;
                const double dx = x(other[0], other[1], other[2]) - x(t, r, k);
                const double slope
                    = (std::log(table.at(other[0], other[1], other[2])) - std::log(table.at(t, r, k))) / dx;
                if (std::isfinite(slope)) {
                    sum += slope;
                    ++count;
                }
            }
    return count > 0 ? sum / count : 0.0;
}

// The objective as the descent sees it: every trial guarded, then evaluated.
struct GuardedObjective {
    const HenselSpittelObjective& law;
    double objective(const HenselSpittelParameters& p) const { return law.objective(p); }
    void gradient(const HenselSpittelParameters& p, HenselSpittelParameters& g) const { law.gradient(p, g); }
    TrialCheck check(HenselSpittelParameters& trial, const HenselSpittelParameters& previous) const
    {
        law.guard(trial, previous);
        return TrialCheck::Evaluate;
    }
};

}  // namespace

double henselSpittelStress(const HenselSpittelParameters& p, double strain, double strainRate, double temperature)
{
    if (!(strain > 0.0) || !(strainRate > 0.0) || (!(temperature > 0.0) && p[M9] != 0.0))
        return 0.0;
    const HenselSpittelParameters f = logFactors(strain, strainRate, temperature);
    double exponent = 0.0;
    for (int i = M1; i <= M9; ++i)
        exponent += p[i] * f[i];
    const double stress = p[A] * std::exp(exponent);
    return std::isfinite(stress) ? stress : 0.0;
}

HenselSpittelObjective::HenselSpittelObjective(const PLASTIC_HOT& dataSet, const HotStressTable& table,
                                               const std::vector<double>& rateWeights, unsigned switches)
    : switches_(switches)
{
    const auto n = static_cast<Eigen::Index>(table.usableCount());
    factors_.resize(n, 9);
    target_.resize(n);
    weight_.resize(n);
    exponential_.resize(n);
    residual_.resize(n);
    Eigen::Index e = 0;
    for (std::size_t t = 0; t < table.temperatureCount(); ++t)
        for (std::size_t r = 0; r < table.rateCount(); ++r) {
            const double w = r < rateWeights.size() ? rateWeights[r] : 1.0;
            for (std::size_t k = 0; k < table.strainCount(); ++k) {
                if (!table.usable(t, r, k))
                    continue;
                const HenselSpittelParameters f
                    = logFactors(dataSet.strains[k], dataSet.strainRates[r], dataSet.temperatures[t]);
                for (int i = M1; i <= M9; ++i)
                    factors_(e, i - M1) = f[i];
                target_(e) = table.at(t, r, k);
                weight_(e) = std::isfinite(w) && w > 0.0 ? w : 0.0;
                ++e;
            }
        }
    if (!dataSet.strains.empty()) {
        strainLo_ = dataSet.strains.front();
        strainHi_ = dataSet.strains.back();
    }
    if (!dataSet.strainRates.empty()) {
        rateLo_ = dataSet.strainRates.front();
        rateHi_ = dataSet.strainRates.back();
    }
    if (!dataSet.temperatures.empty()) {
        temperatureLo_ = dataSet.temperatures.front();
        temperatureHi_ = dataSet.temperatures.back();
    }
}

double HenselSpittelObjective::objective(const HenselSpittelParameters& p) const
{
    const Eigen::Map<const Eigen::Matrix<double, 9, 1>> exponents(p.data() + M1);
    exponential_.matrix().noalias() = factors_ * exponents;
    expInPlace(exponential_.data(), static_cast<std::size_t>(exponential_.size()));
    residual_ = p[A] * exponential_ - target_;
    return (weight_ * residual_.square()).sum();
}

void HenselSpittelObjective::gradient(const HenselSpittelParameters& p, HenselSpittelParameters& g) const
{
    objective(p);
    // d/dA: 2 w r e; d/dm_i: 2 w r A e f_i.
    residual_ *= 2.0 * weight_ * exponential_;
    g[A] = residual_.sum();
    residual_ *= p[A];
    const Eigen::Matrix<double, 9, 1> exponents = factors_.transpose() * residual_.matrix();
    for (int i = M1; i <= M9; ++i)
        g[i] = exponents(i - M1);
}

bool HenselSpittelObjective::m5InRange(double m5) const
{
    for (const double strain : {strainLo_, strainHi_}) {
        const double v = std::pow(1.0 + strain, m5);
        if (!(v >= 0.9 && v <= 1.1))
            return false;
    }
    return true;
}

bool HenselSpittelObjective::m8InRange(double m8) const
{
    for (const double rate : {rateLo_, rateHi_})
        for (const double temperature : {temperatureLo_, temperatureHi_}) {
            const double v = std::pow(rate, m8 * temperature);
            if (!(v >= 0.1 && v <= 10.0))
                return false;
        }
    return true;
}

void HenselSpittelObjective::guardLimits(HenselSpittelParameters& lower, HenselSpittelParameters& upper) const
{
    constexpr double kFree = std::numeric_limits<double>::infinity();
    lower.fill(-kFree);
    upper.fill(kFree);
    if (!switchedOff(switches_, M5)) {
        // (1 + ε)^m5 within [0.9, 1.1]: the larger strain holds it tighter.
        const double lnStrain = std::log1p(std::max({strainLo_, strainHi_, 0.0}));
        if (lnStrain > 0.0) {
            lower[M5] = std::log(0.9) / lnStrain;
            upper[M5] = std::log(1.1) / lnStrain;
        }
    }
    if (!switchedOff(switches_, M8)) {
        double largest = 0.0;
        for (const double rate : {rateLo_, rateHi_})
            for (const double temperature : {temperatureLo_, temperatureHi_})
                largest = std::max(largest, std::fabs(temperature * std::log(rate)));
        if (largest > 0.0 && std::isfinite(largest)) {
            lower[M8] = -std::log(10.0) / largest;
            upper[M8] = std::log(10.0) / largest;
        }
    }
    if (!switchedOff(switches_, M1)) {
        if (startM1_ < 0.0)
            upper[M1] = 0.8 * startM1_;
        else if (startM1_ > 0.0)
            lower[M1] = 0.8 * startM1_;
    }
}

void HenselSpittelObjective::guard(HenselSpittelParameters& trial, const HenselSpittelParameters& previous) const
{
    if (!switchedOff(switches_, M5) && !m5InRange(trial[M5]))
        trial[M5] = previous[M5];
    if (!switchedOff(switches_, M8) && !m8InRange(trial[M8]))
        trial[M8] = previous[M8];
    if (!switchedOff(switches_, M1) && std::fabs(trial[M1]) < 0.8 * std::fabs(startM1_))
        trial[M1] = previous[M1];
}

HenselSpittelParameters henselSpittelStart(const PLASTIC_HOT& dataSet, const HotStressTable& table, unsigned switches,
                                           const HenselSpittelObjective& objective)
{
    HenselSpittelParameters p{};
    const std::vector<double>& T = dataSet.temperatures;
    const std::vector<double>& R = dataSet.strainRates;
    const std::vector<double>& E = dataSet.strains;
    const std::size_t lastT = T.empty() ? 0 : T.size() - 1;
    const std::size_t lastR = R.empty() ? 0 : R.size() - 1;
    const std::size_t lastE = E.empty() ? 0 : E.size() - 1;
    std::size_t firstE = 0;
    while (firstE < E.size() && !(E[firstE] > kMinimumFitStrain))
        ++firstE;
    const std::size_t midE = E.size() / 2;

    const auto onT = [&](auto f) { return [&, f](std::size_t t, std::size_t, std::size_t) { return f(T[t]); }; };
    const auto onR = [&](auto f) { return [&, f](std::size_t, std::size_t r, std::size_t) { return f(R[r]); }; };
    const auto onE = [&](auto f) { return [&, f](std::size_t, std::size_t, std::size_t k) { return f(E[k]); }; };
    const auto log = [](double v) { return std::log(v); };
    p[M1] = pairSlope(table, ByTemperature, 0, lastT, onT([](double v) { return v; }));
    p[M2] = pairSlope(table, ByStrain, firstE, lastE, onE(log));
    p[M3] = pairSlope(table, ByRate, 0, lastR, onR(log));
    p[M4] = pairSlope(table, ByStrain, firstE, lastE, onE([](double v) { return 1.0 / v; }));
    p[M5] = pairSlope(table, ByStrain, firstE, lastE, onE([](double v) { return std::log1p(v); }));
    p[M7] = pairSlope(table, ByStrain, std::max(midE, firstE), lastE, onE([](double v) { return v; }));
    p[M8] = pairSlope(table, ByRate, 0, lastR,
                      [&](std::size_t t, std::size_t r, std::size_t) { return T[t] * std::log(R[r]); });
    if (!T.empty() && T.front() > 0.0)
        p[M9] = pairSlope(table, ByTemperature, 0, lastT, onT(log));
    for (int i = M1; i <= M9; ++i)
        if (switchedOff(switches, i) || i == M6 || !std::isfinite(p[i]))
            p[i] = 0.0;
    if (!switchedOff(switches, M5) && !objective.m5InRange(p[M5]))
        p[M5] = 0.0;

    // The reference point: the largest stress, the first one met on a tie.
    double reference = 0.0;
    std::size_t rt = 0, rr = 0, rk = 0;
    for (std::size_t t = 0; t < table.temperatureCount(); ++t)
        for (std::size_t r = 0; r < table.rateCount(); ++r)
            for (std::size_t k = 0; k < table.strainCount(); ++k)
                if (table.usable(t, r, k) && table.at(t, r, k) > reference) {
                    reference = table.at(t, r, k);
                    rt = t, rr = r, rk = k;
                }
    if (reference <= 0.0 || switchedOff(switches, A))
        return p;
    const auto throughReference = [&] {
        HenselSpittelParameters unit = p;
        unit[A] = 1.0;
        return reference / henselSpittelStress(unit, E[rk], R[rr], T[rt]);
    };
    p[A] = throughReference();
    if (!std::isfinite(p[A]) || p[A] <= 0.0) {
        // Starting exponents that overflow at the reference point start from a constant.
        for (int i = M1; i <= M9; ++i)
            p[i] = 0.0;
        p[A] = reference;
    }
    const double decade = std::floor(std::log10(p[A]));
    const double tRef = T[rt];
    if (decade >= 4 && !switchedOff(switches, M9) && tRef > 0.0 && tRef != 1.0) {
        p[M9] = (std::log(10.0) * (decade - 3) + p[M9] * std::log(tRef)) / std::log(tRef);
        p[A] = throughReference();
    }
    return p;
}

namespace {

std::string stopReasonOf(DescentStop stop)
{
    switch (stop) {
    case DescentStop::IterationLimit: return "iteration limit reached";
    case DescentStop::NonFiniteParameter: return "a trial parameter was not finite";
    case DescentStop::StepTooSmall: return "step below 1e-8 without improvement";
    case DescentStop::FlatGradient: return "no gradient to follow";
    case DescentStop::Cancelled: return std::string(kRunCancelled);
    case DescentStop::TargetReached: return "error below the target share of the start's";
    case DescentStop::NonFiniteStart: break;  // not among these rules' stops
    }
    return {};
}

}  // namespace

HotFit fitHenselSpittel(const HotDataSet& dataSet, const HotFitOptions& options, const RunControl& control)
{
    HotFit fit;
    const auto model = newHotModel<PLASTIC_17>(dataSet);
    recordFitRanges(*model);
    fit.model = model;
    const HotStressTable table(dataSet);
    HotFitResult& result = fit.result;
    unsigned switches = options.parameterSwitches;
    if (table.usableCount() == 0) {
        control.report(100);
        result.message = "no stress to fit: no curve gives a stress above 0 at a sample strain above 0";
        return fit;
    }
    const std::vector<double>& temperatures = dataSet.temperatures;
    if (temperatures.size() < 2)
        result.notes.push_back("one temperature: the data do not decide the law's temperature terms (m1, m8, m9)");
    if (!temperatures.empty() && !(temperatures.front() > 0.0) && !switchedOff(switches, M9)) {
        switches |= 1u << M9;
        result.notes.push_back("m9 held at 0: T^m9 needs temperatures above 0");
    }
    const std::vector<double> weights = options.rateWeights.empty() && options.weighting == HotWeighting::BalancedByStress
                                            ? balancedRateWeights(table)
                                            : options.rateWeights;
    HenselSpittelObjective objective(dataSet, table, weights, switches);
    HenselSpittelParameters best = henselSpittelStart(dataSet, table, switches, objective);
    objective.setStartM1(best[M1]);

    const HenselSpittelParameters start = best;
    DescentOutcome outcome;
    if (options.method != FitMethod::LeastSquares) {
        DescentSettings settings;
        settings.maxIterations = options.maxIterations;
        settings.initialStep = options.initialStep;
        settings.fixedMask = switches | (1u << M6);
        if (options.targetFraction > 0.0)
            settings.target = options.targetFraction * objective.objective(best);
        outcome = steepestDescent<RestartingStepRules>(GuardedObjective{objective}, best, settings, control);
        if (outcome.stop == DescentStop::Cancelled)
            return cancelledFit();
    }
    model->parameters = best;
    result.fitted = true;
    result.iterations = outcome.iterations;
    result.evaluations = outcome.evaluations;
    result.stoppedEarly = outcome.stop != DescentStop::IterationLimit;
    result.stopReason = stopReasonOf(outcome.stop);
    result.stop = fitStopOf(outcome.stop);
    if (options.method != FitMethod::Descent) {
        // The descent's progress has reached 100 already when it ran first.
        RunControl quiet;
        quiet.stop = control.stop;
        std::vector<HenselSpittelParameters> starts = {start};
        if (options.method == FitMethod::DescentThenLeastSquares)
            starts.push_back(best);
        const HenselSpittelLeastSquares fit = fitHenselSpittelLeastSquares(
            objective, options.objective, switches, starts, options.method == FitMethod::LeastSquares ? control : quiet);
        if (fit.cancelled)
            return cancelledFit();
        if (fit.usable) {
            model->parameters = best = fit.parameters;
            result.iterations = fit.iterations;
            result.evaluations = fit.evaluations;
            result.stop = fit.stop;
            result.bounds = fit.bounds;
            result.stoppedEarly = fit.stop == FitStop::IterationLimit || fit.stop == FitStop::StepFloor;
            result.stopReason = fitStopText(fit.stop);
        } else {
            result.notes.push_back("least squares had nothing to fit: A is held at 0");
        }
        control.report(100);
    }
    const FitError error = fitErrorOf(*model, table);
    describeTable(table, error, result);
    result.report = errorReport(error);
    const char* const names[] = {"A", "m1", "m2", "m3", "m4", "m5", "m6", "m7", "m8", "m9"};
    for (int i = A; i <= M9; ++i)
        if (i != M6)
            result.report += formatText(" %s = %g\n", names[i], best[i]);
    if (options.method != FitMethod::Descent) {
        // Only where another method was asked for: the described report stays as it is.
        result.report += formatText(" stop: %s\n", fitStopText(result.stop));
        for (int i = A; i <= M9; ++i)
            if (result.bounds.at(static_cast<std::size_t>(i)))
                result.report += formatText(" at a bound: %s (%s)\n", names[i],
                                            (result.bounds.lower >> i) & 1u ? "lower" : "upper");
    }
    return fit;
}

double PLASTIC_17::evaluate(double strain, double strainRate, double temperature) const
{
    return henselSpittelStress(parameters, strain, strainRate, temperature);
}

bool PLASTIC_17::writeLibraryBlock(TextWriter& out, int /*version*/) const
{
    out.format("%8d\n", modelNumber);
    out.format("%24.4E %15.4E %15.4E %15.4E %15.4E %15.4E\n", maxStress, 10000.0, strainMin, strainMax, auxiliaryMin,
               auxiliaryMax);
    out.format("%24.4E %15.4E %15.4E %15.4E\n", 0.0, 0.0, 0.0, 0.0);
    const HenselSpittelParameters& p = parameters;
    out.format("%24.4E %15.4E %15.4E %15.4E %15.4E %15.4E %15.4E %15.4E %15.4E\n", p[A], p[M1], p[M2], p[M3], p[M4],
               p[M5], p[M7], p[M8], p[M9]);
    return true;
}

}  // namespace zelko
