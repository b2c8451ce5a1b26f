#include "hot/stresstable.h"

#include <algorithm>
#include <cmath>

#include "base/textfile.h"

namespace zelko {

std::optional<double> curveStressAt(const HotCurve& curve, double strain)
{
    if (!std::isfinite(strain))
        return std::nullopt;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const HotCurvePoint& a = curve[i];
        if (!std::isfinite(a.strain) || !std::isfinite(a.stress))
            continue;
        if (a.strain == strain)
            return a.stress;
        if (i + 1 == curve.size())
            break;
        const HotCurvePoint& b = curve[i + 1];
        if (!std::isfinite(b.strain) || !std::isfinite(b.stress))
            continue;
        if ((a.strain < strain && strain < b.strain) || (b.strain < strain && strain < a.strain))
            return a.stress + (strain - a.strain) / (b.strain - a.strain) * (b.stress - a.stress);
    }
    return std::nullopt;
}

namespace {

template <class Transform>
Bracket bracketWith(const std::vector<double>& ascending, double value, Transform&& transform)
{
    Bracket b;
    if (ascending.empty())
        return b;
    const auto first = std::find_if(ascending.begin(), ascending.end(), [&](double v) { return !(v < value); });
    if (first == ascending.end()) {
        b.lo = b.hi = ascending.size() - 1;
        return b;
    }
    b.hi = static_cast<std::size_t>(first - ascending.begin());
    b.lo = b.hi == 0 ? 0 : b.hi - 1;
    if (b.lo == b.hi)
        return b;
    const double lo = transform(ascending[b.lo]);
    const double span = transform(ascending[b.hi]) - lo;
    const double w = span > 0.0 ? (transform(value) - lo) / span : 1.0;
    b.weight = std::isfinite(w) ? std::clamp(w, 0.0, 1.0) : 1.0;
    return b;
}

}  // namespace

Bracket bracketOf(const std::vector<double>& ascending, double value)
{
    return bracketWith(ascending, value, [](double v) { return v; });
}

Bracket logBracketOf(const std::vector<double>& ascending, double value)
{
    if (!(value > 0.0) || ascending.empty() || !(ascending.front() > 0.0))
        return bracketOf(ascending, value);
    return bracketWith(ascending, value, [](double v) { return std::log(v); });
}

double interpolateRates(const std::vector<double>& rates, const std::vector<double>& stresses, double rate)
{
    const std::size_t n = std::min(rates.size(), stresses.size());
    if (n == 0)
        return 0.0;
    bool logarithmic = rate > 0.0;
    for (std::size_t r = 0; r < n; ++r)
        logarithmic = logarithmic && rates[r] > 0.0 && stresses[r] > 0.0;
    if (!logarithmic || n < 3) {
        const Bracket b = logBracketOf(rates, rate);
        const double lo = stresses[b.lo], hi = stresses[b.hi];
        if (b.lo == b.hi)
            return lo;
        if (lo > 0.0 && hi > 0.0)
            return std::exp(std::log(lo) + b.weight * (std::log(hi) - std::log(lo)));
        return lo + b.weight * (hi - lo);
    }
    // Natural cubic spline through (ln ε̇, ln σ): second derivatives by the tridiagonal sweep.
    thread_local std::vector<double> x, y, second, sweep;
    x.resize(n), y.resize(n), second.assign(n, 0.0), sweep.assign(n, 0.0);
    for (std::size_t r = 0; r < n; ++r) {
        x[r] = std::log(rates[r]);
        y[r] = std::log(stresses[r]);
    }
    for (std::size_t i = 1; i + 1 < n; ++i) {
        const double sigma = (x[i] - x[i - 1]) / (x[i + 1] - x[i - 1]);
        const double p = sigma * second[i - 1] + 2.0;
        second[i] = (sigma - 1.0) / p;
        sweep[i] = (y[i + 1] - y[i]) / (x[i + 1] - x[i]) - (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
        sweep[i] = (6.0 * sweep[i] / (x[i + 1] - x[i - 1]) - sigma * sweep[i - 1]) / p;
    }
    second[n - 1] = 0.0;
    for (std::size_t i = n - 1; i-- > 0;)
        second[i] = second[i] * second[i + 1] + sweep[i];
    const double at = std::clamp(std::log(rate), x.front(), x.back());
    std::size_t hi = 1;
    while (hi + 1 < n && x[hi] < at)
        ++hi;
    const std::size_t lo = hi - 1;
    const double h = x[hi] - x[lo];
    const double a = (x[hi] - at) / h, b = (at - x[lo]) / h;
    const double ln = a * y[lo] + b * y[hi] + ((a * a * a - a) * second[lo] + (b * b * b - b) * second[hi]) * h * h / 6.0;
    return std::exp(ln);
}

double interpolateCells(const PLASTIC_HOT& grid, double strainRate, double temperature,
                        const std::function<double(std::size_t, std::size_t)>& cellStress)
{
    if (grid.temperatures.empty() || grid.strainRates.empty())
        return 0.0;
    const Bracket t = bracketOf(grid.temperatures, temperature);
    thread_local std::vector<double> stresses;
    const auto alongRates = [&](std::size_t ti) {
        stresses.resize(grid.strainRates.size());
        for (std::size_t r = 0; r < stresses.size(); ++r)
            stresses[r] = cellStress(ti, r);
        return interpolateRates(grid.strainRates, stresses, strainRate);
    };
    const double lo = alongRates(t.lo);
    if (t.lo == t.hi)
        return lo;
    const double value = lo + t.weight * (alongRates(t.hi) - lo);
    return std::isfinite(value) ? value : 0.0;
}

HotStressTable::HotStressTable(const PLASTIC_HOT& dataSet)
    : temperatures_(dataSet.temperatures.size()),
      rates_(dataSet.strainRates.size()),
      strains_(dataSet.strains.size()),
      stress_(temperatures_ * rates_ * strains_, 0.0),
      usable_(stress_.size(), 0)
{
    for (std::size_t t = 0; t < temperatures_; ++t) {
        for (std::size_t r = 0; r < rates_; ++r) {
            const double rate = dataSet.strainRates[r];
            const HotCurve& curve = dataSet.curve(t, r);
            for (std::size_t k = 0; k < strains_; ++k) {
                const double strain = dataSet.strains[k];
                if (!(strain > kMinimumFitStrain))
                    continue;
                const std::optional<double> stress = curveStressAt(curve, strain);
                const bool good = stress && *stress > 0.0 && rate > 0.0 && std::isfinite(rate)
                                  && std::isfinite(dataSet.temperatures[t]);
                stress_[index(t, r, k)] = stress.value_or(0.0);
                usable_[index(t, r, k)] = good ? 1 : 0;
                ++(good ? usableCount_ : missingCount_);
            }
        }
    }
}

namespace {

// Sums of |relative| and squared differences over the cells [t0, t1) x [r0, r1).
FitError errorOver(const PLASTIC_HOT& model, const HotStressTable& table, std::size_t t0, std::size_t t1,
                   std::size_t r0, std::size_t r1)
{
    FitError error;
    double relative = 0.0;
    double squares = 0.0;
    for (std::size_t t = t0; t < t1; ++t)
        for (std::size_t r = r0; r < r1; ++r)
            for (std::size_t k = 0; k < table.strainCount(); ++k) {
                if (!table.usable(t, r, k))
                    continue;
                const double measured = table.at(t, r, k);
                const double predicted
                    = model.evaluate(model.strains[k], model.strainRates[r], model.temperatures[t]);
                const double difference = predicted - measured;
                relative += std::fabs(difference) / measured;
                squares += difference * difference;
                ++error.count;
            }
    if (error.count > 0) {
        error.aare = relative / static_cast<double>(error.count);
        error.rmse = std::sqrt(squares / static_cast<double>(error.count));
    }
    // A law that overflows somewhere has no finite measure; it is reported as a huge
    // number rather than as "inf" (in percent too).
    constexpr double kHuge = 1e300;
    error.aare = std::isfinite(error.aare) ? std::min(error.aare, kHuge) : kHuge;
    error.rmse = std::isfinite(error.rmse) ? std::min(error.rmse, kHuge) : kHuge;
    return error;
}

}  // namespace

FitError fitErrorOf(const PLASTIC_HOT& model, const HotStressTable& table)
{
    return errorOver(model, table, 0, table.temperatureCount(), 0, table.rateCount());
}

FitError cellFitErrorOf(const PLASTIC_HOT& model, const HotStressTable& table, std::size_t t, std::size_t r)
{
    return errorOver(model, table, t, t + 1, r, r + 1);
}

void recordFitRanges(PLASTIC_HOT& model)
{
    model.strainMin = model.strains.empty() ? 0.0 : *std::min_element(model.strains.begin(), model.strains.end());
    model.strainMax = model.strains.empty() ? 0.0 : *std::max_element(model.strains.begin(), model.strains.end());
    const std::vector<double>& auxiliary
        = model.auxiliaryValues.empty() ? model.temperatures : model.auxiliaryValues;
    model.auxiliaryMin = auxiliary.empty() ? 0.0 : *std::min_element(auxiliary.begin(), auxiliary.end());
    model.auxiliaryMax = auxiliary.empty() ? 0.0 : *std::max_element(auxiliary.begin(), auxiliary.end());
    for (const auto& row : model.curves)
        for (const HotCurve& curve : row)
            for (const HotCurvePoint& p : curve)
                if (std::isfinite(p.stress))
                    model.maxStress = std::max(model.maxStress, p.stress);
}

std::string errorReport(const FitError& error)
{
    return formatText(" AARE = %g %%\n RMSE = %g MPa\n", error.aare * 100.0, error.rmse);
}

void describeTable(const HotStressTable& table, const FitError& error, HotFitResult& result)
{
    result.aare = error.aare;
    result.rmse = error.rmse;
    result.compared = error.count;
    result.missing = table.missingCount();
    if (table.missingCount() > 0)
        result.notes.push_back(formatText("%zu of %zu stress-table entries left out: no curve point there, or a stress not above 0",
                                          table.missingCount(), table.missingCount() + table.usableCount()));
}

double PLASTIC_HOT::evaluate(double strain, double strainRate, double temperature) const
{
    return interpolateCells(*this, strainRate, temperature, [&](std::size_t t, std::size_t r) {
        const std::optional<double> stress = curveStressAt(curve(t, r), strain);
        return stress ? *stress : 0.0;
    });
}

std::vector<double> balancedRateWeights(const HotStressTable& table)
{
    std::vector<double> sums(table.rateCount(), 0.0);
    std::vector<std::size_t> counts(table.rateCount(), 0);
    double total = 0.0;
    std::size_t count = 0;
    for (std::size_t t = 0; t < table.temperatureCount(); ++t)
        for (std::size_t r = 0; r < table.rateCount(); ++r)
            for (std::size_t k = 0; k < table.strainCount(); ++k)
                if (table.usable(t, r, k)) {
                    sums[r] += table.at(t, r, k);
                    ++counts[r];
                    total += table.at(t, r, k);
                    ++count;
                }
    std::vector<double> weights(table.rateCount(), 1.0);
    if (count == 0)
        return weights;
    const double mean = total / static_cast<double>(count);
    for (std::size_t r = 0; r < weights.size(); ++r)
        if (counts[r] > 0 && sums[r] > 0.0) {
            const double ratio = mean / (sums[r] / static_cast<double>(counts[r]));
            weights[r] = ratio * ratio;
        }
    return weights;
}

std::string reportWithNotes(const HotFitResult& result)
{
    std::string text = result.report;
    for (const std::string& note : result.notes)
        text += " note: " + note + "\n";
    return text;
}

}  // namespace zelko
