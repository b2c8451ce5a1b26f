// Fit quality of the hot types on the measured Gleeble series (and on synthetic
// curves), and how far the Hensel-Spittel descent stops from a bounded
// least-squares optimum of the same law and objective. Prints Markdown tables.
//
// The optimum comes from the bounded Levenberg-Marquardt of numerics/leastsquares,
// as the cold comparison's does: a trial outside the bounds is evaluated at the
// nearest bound. The bounds are the descent's guards: (1 + ε)^m5 within [0.9, 1.1] at the
// extreme sample strains, ε̇^(m8·T) within [0.1, 10] at the extreme rates and
// temperatures, |m1| at least 0.8 of its starting value on its sign's side, A > 0.
#include <cmath>
#include <cstdio>
#include <string>

#include <Eigen/Core>

#include "bench/hotcurves.h"
#include "hot/hotmodels.h"
#include "hot/plastic_17.h"
#include "hot/stresstable.h"
#include "numerics/leastsquares.h"

namespace {

using namespace zelko;

// The free parameters in the order A, m1, m2, m3, m4, m5, m7, m8, m9.
constexpr int kFree[] = {A, M1, M2, M3, M4, M5, M7, M8, M9};
constexpr int kInputs = 9;

struct Entry {
    double strain, rate, temperature, stress;
};

class HenselSpittelResiduals {
public:
    HenselSpittelResiduals(const PLASTIC_HOT& dataSet, const HotStressTable& table, double startM1)
    {
        for (std::size_t t = 0; t < table.temperatureCount(); ++t)
            for (std::size_t r = 0; r < table.rateCount(); ++r)
                for (std::size_t k = 0; k < table.strainCount(); ++k)
                    if (table.usable(t, r, k))
                        entries_.push_back({dataSet.strains[k], dataSet.strainRates[r], dataSet.temperatures[t],
                                            table.at(t, r, k)});
        lo_.fill(-1e6);
        hi_.fill(1e6);
        lo_[A] = 1e-300;
        hi_[A] = 1e300;
        const double lnStrain = std::log1p(dataSet.strains.back());
        lo_[M5] = std::log(0.9) / lnStrain;
        hi_[M5] = std::log(1.1) / lnStrain;
        double largest = 0.0;
        for (const double rate : {dataSet.strainRates.front(), dataSet.strainRates.back()})
            for (const double t : {dataSet.temperatures.front(), dataSet.temperatures.back()})
                largest = std::max(largest, std::fabs(t * std::log(rate)));
        lo_[M8] = -std::log(10.0) / largest;
        hi_[M8] = std::log(10.0) / largest;
        if (startM1 < 0)
            hi_[M1] = 0.8 * startM1;
        else if (startM1 > 0)
            lo_[M1] = 0.8 * startM1;
    }

    ResidualProblem problem() const
    {
        return {static_cast<int>(entries_.size()),
                [this](const Eigen::VectorXd& x, Eigen::VectorXd& r) { residuals(x, r); },
                [this](const Eigen::VectorXd& x, Eigen::MatrixXd& j) { jacobian(x, j); }};
    }
    Eigen::VectorXd lower() const { return freeOf(lo_); }
    Eigen::VectorXd upper() const { return freeOf(hi_); }

    HenselSpittelParameters parametersOf(const Eigen::VectorXd& x) const
    {
        HenselSpittelParameters p{};
        for (int i = 0; i < kInputs; ++i)
            p[kFree[i]] = x[i];
        return p;
    }
    // The free parameters of p, each within its bounds.
    Eigen::VectorXd inputOf(const HenselSpittelParameters& p) const
    {
        Eigen::VectorXd x(kInputs);
        for (int i = 0; i < kInputs; ++i)
            x[i] = std::clamp(p[kFree[i]], lo_[kFree[i]], hi_[kFree[i]]);
        return x;
    }

private:
    static Eigen::VectorXd freeOf(const HenselSpittelParameters& p)
    {
        Eigen::VectorXd x(kInputs);
        for (int i = 0; i < kInputs; ++i)
            x[i] = p[kFree[i]];
        return x;
    }

    void residuals(const Eigen::VectorXd& x, Eigen::VectorXd& residuals) const
    {
        const HenselSpittelParameters p = parametersOf(x);
        for (std::size_t e = 0; e < entries_.size(); ++e) {
            const Entry& n = entries_[e];
            const double r = henselSpittelStress(p, n.strain, n.rate, n.temperature) - n.stress;
            residuals[static_cast<Eigen::Index>(e)] = std::isfinite(r) ? r : 1e10;
        }
    }

    void jacobian(const Eigen::VectorXd& x, Eigen::MatrixXd& jacobian) const
    {
        const HenselSpittelParameters p = parametersOf(x);
        for (std::size_t e = 0; e < entries_.size(); ++e) {
            const Entry& n = entries_[e];
            const double stress = henselSpittelStress(p, n.strain, n.rate, n.temperature);
            const double lnRate = std::log(n.rate);
            const double d[kInputs] = {stress / p[A],       stress * n.temperature,          stress * std::log(n.strain),
                                       stress * lnRate,     stress / n.strain,               stress * std::log1p(n.strain),
                                       stress * n.strain,   stress * n.temperature * lnRate, stress * std::log(n.temperature)};
            for (int i = 0; i < kInputs; ++i)
                jacobian(static_cast<Eigen::Index>(e), i) = std::isfinite(d[i]) ? d[i] : 0.0;
        }
    }

    std::vector<Entry> entries_;
    HenselSpittelParameters lo_{}, hi_{};
};

struct Measures {
    double sse, aare, rmse;
};

Measures measure(const PLASTIC_17& model, const HotStressTable& table)
{
    const FitError e = fitErrorOf(model, table);
    return {e.rmse * e.rmse * static_cast<double>(e.count), e.aare * 100.0, e.rmse};
}

PLASTIC_17 boundedOptimum(const PLASTIC_HOT& dataSet, const HotStressTable& table, const HenselSpittelParameters& from,
                          double startM1)
{
    const HenselSpittelResiduals residuals(dataSet, table, startM1);
    const BoundedFit fit = boundedLevenbergMarquardt(residuals.problem(), residuals.inputOf(from), residuals.lower(),
                                                     residuals.upper(), 20000);
    PLASTIC_17 optimum;
    static_cast<PLASTIC_HOT&>(optimum) = dataSet;
    optimum.parameters = residuals.parametersOf(fit.x);
    return optimum;
}

void compareWithOptimum(const char* name, const PLASTIC_HOT& dataSet)
{
    const HotFit fit = fitHotModel(dataSet, HotModelId::Type17, {});
    const HotFitResult& result = fit.result;
    const auto& descent = fit.model;
    const HotStressTable table(*descent);
    const HenselSpittelObjective objective(*descent, table, {}, 0);
    const HenselSpittelParameters start = henselSpittelStart(*descent, table, 0, objective);
    const auto& fitted = static_cast<const PLASTIC_17&>(*descent);
    const Measures d = measure(fitted, table);
    // From the descent's end and from its start; the better of the two is the optimum.
    PLASTIC_17 best = boundedOptimum(*descent, table, fitted.parameters, start[M1]);
    const PLASTIC_17 fromStart = boundedOptimum(*descent, table, start, start[M1]);
    if (measure(fromStart, table).sse < measure(best, table).sse)
        best = fromStart;
    const Measures o = measure(best, table);
    std::printf("| %s | %d (%s) | %.4g | %.2f | %.2f | %.4g | %.2f | %.2f | %.2f |\n", name, result.iterations,
                result.stopReason.c_str(), d.sse, d.aare, d.rmse, o.sse, o.aare, o.rmse, d.sse / o.sse);
    std::printf("|  | descent:");
    for (int i : kFree)
        std::printf(" %.4g", fitted.parameters[i]);
    std::printf(" |  |  |  |  |  |  | optimum:");
    for (int i : kFree)
        std::printf(" %.4g", best.parameters[i]);
    std::printf(" |\n");
}

}  // namespace

int main()
{
    const PLASTIC_HOT measured = bench::measuredDataSet();
    const PLASTIC_HOT synthetic = bench::syntheticDataSet(6, {0.01, 0.1, 1.0, 10.0});
    std::printf("Measured series: %zu temperatures x %zu rates x %zu sample strains\n\n", measured.temperatures.size(),
                measured.strainRates.size(), measured.strains.size());
    std::printf("| type | AARE %% | RMSE MPa | entries |\n|---|---|---|---|\n");
    for (const int id : {17, 50, 16, 161, 163, 164, 165, 166, 167, 168, 169, 1600}) {
        const HotFitResult r = fitHotModel(measured, *hotModelIdOf(id), {}).result;
        std::printf("| %d | %.2f | %.2f | %zu |\n", id, r.aare * 100.0, r.rmse, r.compared);
    }
    std::printf("\nHensel-Spittel descent (defaults) against the bounded optimum of the same objective\n\n");
    std::printf("| data | iterations (stop) | SSE | AARE %% | RMSE | optimum SSE | AARE %% | RMSE | SSE ratio |\n"
                "|---|---|---|---|---|---|---|---|---|\n");
    compareWithOptimum("measured", measured);
    compareWithOptimum("synthetic 6x4x15", synthetic);
    return 0;
}
