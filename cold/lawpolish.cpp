#include "cold/lawpolish.h"

#include <algorithm>
#include <cmath>

#include "numerics/leastsquares.h"

namespace zelko {

namespace {

// Residuals sqrt(w) r over the fitted points, in the law's free parameters. A
// point the law can't take gets huge residuals, which Levenberg-Marquardt refuses.
class LawResiduals {
public:
    LawResiduals(const ColdLaw& law, const std::vector<double>& start)
        : law_(law), points_(law.fittedPoints()), full_(start)
    {
        for (std::size_t i = 0; i < full_.size(); ++i)
            if (!law.isFixed(i))
                free_.push_back(i);
        const bool weighted = law.errorRuleOfLaw() == ErrorRule::PerPoint || points_.firstPointWeighted;
        for (std::size_t i = 0; i < points_.size(); ++i)
            rootWeight_.push_back(weighted ? std::sqrt(std::max(0.0, points_.weight[i])) : 1.0);
    }

    ResidualProblem problem() const
    {
        return {static_cast<int>(points_.size()),
                [this](const Eigen::VectorXd& x, Eigen::VectorXd& r) { residuals(x, r); },
                [this](const Eigen::VectorXd& x, Eigen::MatrixXd& j) { jacobian(x, j); }};
    }
    Eigen::VectorXd freeOf(const std::vector<double>& full) const
    {
        Eigen::VectorXd x(static_cast<Eigen::Index>(free_.size()));
        for (std::size_t k = 0; k < free_.size(); ++k)
            x[static_cast<Eigen::Index>(k)] = full[free_[k]];
        return x;
    }
    std::vector<double> fullOf(const Eigen::VectorXd& x) const
    {
        std::vector<double> full = full_;
        for (std::size_t k = 0; k < free_.size(); ++k)
            full[free_[k]] = x[static_cast<Eigen::Index>(k)];
        return full;
    }
    // The bound table's limits of the free parameters.
    Eigen::VectorXd limits(bool upper) const
    {
        const std::vector<ParameterBound> table = law_.bounds();
        Eigen::VectorXd x(static_cast<Eigen::Index>(free_.size()));
        for (std::size_t k = 0; k < free_.size(); ++k)
            x[static_cast<Eigen::Index>(k)] = upper ? table[free_[k]].maximum : table[free_[k]].minimum;
        return x;
    }

private:
    void residuals(const Eigen::VectorXd& x, Eigen::VectorXd& residuals) const
    {
        const std::vector<double> p = fullOf(x);
        const bool usable = law_.admissible(p.data());
        for (std::size_t i = 0; i < points_.size(); ++i) {
            const double r = usable ? law_.stressAt(points_.strain[i], p.data()) - points_.stress[i] : 1e10;
            residuals[static_cast<Eigen::Index>(i)] = std::isfinite(r) ? rootWeight_[i] * r : 1e10;
        }
    }
    void jacobian(const Eigen::VectorXd& x, Eigen::MatrixXd& jacobian) const
    {
        const std::vector<double> p = fullOf(x);
        std::vector<double> d(p.size());
        for (std::size_t i = 0; i < points_.size(); ++i) {
            law_.partialsAt(points_.strain[i], p.data(), d.data());
            for (std::size_t k = 0; k < free_.size(); ++k) {
                const double v = rootWeight_[i] * d[free_[k]];
                jacobian(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(k)) = std::isfinite(v) ? v : 0.0;
            }
        }
    }

    const ColdLaw& law_;
    FitPoints points_;
    std::vector<double> full_;
    std::vector<std::size_t> free_;
    std::vector<double> rootWeight_;
};

// The law's free parameters fitted from start; cancelled says a stop request ended it.
std::vector<double> fitFromStart(const ColdLaw& law, const std::vector<double>& start, int maxEvaluations,
                                 const RunControl& control, bool& cancelled)
{
    const LawResiduals residuals(law, start);
    const BoundedFit fit = boundedLevenbergMarquardt(residuals.problem(), residuals.freeOf(start),
                                                     residuals.limits(false), residuals.limits(true), maxEvaluations,
                                                     control);
    cancelled = fit.cancelled;
    return residuals.fullOf(fit.x);
}

}  // namespace

std::vector<double> levenbergMarquardt(const ColdLaw& law, std::vector<double> start, int maxEvaluations,
                                       const RunControl& control)
{
    bool cancelled = false;
    return fitFromStart(law, start, maxEvaluations, control, cancelled);
}

bool polishWithLevenbergMarquardt(ColdLaw& law, const RunControl& control)
{
    const std::size_t n = law.fittedPoints().size();
    bool cancelled = false;
    const std::vector<double> polished = fitFromStart(law, law.parameters, 2000, control, cancelled);
    if (cancelled)
        return false;
    if (!law.admissible(polished.data()))
        return true;
    const double error = law.objective(polished, n);
    if (std::isfinite(error) && error < law.objective(law.parameters, n)) {
        law.parameters = polished;
        law.fitError = error;
    }
    return true;
}

}  // namespace zelko
