#include "cold/lawpolish.h"

#include <Eigen/Core>
#include <unsupported/Eigen/NonLinearOptimization>
#include <algorithm>
#include <cmath>

namespace zelko {

namespace {

// Residuals sqrt(w) r over the fitted points, in the free parameters only. A step
// outside the bounds is evaluated at the nearest bound; one the law can't take
// gets huge residuals, which Levenberg-Marquardt refuses.
class LawResiduals {
public:
    using Scalar = double;
    using InputType = Eigen::VectorXd;
    using ValueType = Eigen::VectorXd;
    using JacobianType = Eigen::MatrixXd;

    LawResiduals(const ColdLaw& law, std::vector<double> full)
        : law_(law), points_(law.fittedPoints()), full_(std::move(full)), table_(law.bounds())
    {
        for (std::size_t i = 0; i < full_.size(); ++i)
            if (!law.isFixed(i))
                free_.push_back(i);
        const bool weighted = law.errorRuleOfLaw() == ErrorRule::PerPoint || points_.firstPointWeighted;
        for (std::size_t i = 0; i < points_.size(); ++i)
            rootWeight_.push_back(weighted ? std::sqrt(std::max(0.0, points_.weight[i])) : 1.0);
    }

    int inputs() const { return static_cast<int>(free_.size()); }
    int values() const { return static_cast<int>(points_.size()); }
    Eigen::VectorXd freeOf(const std::vector<double>& full) const
    {
        Eigen::VectorXd x(inputs());
        for (int k = 0; k < inputs(); ++k)
            x[k] = full[free_[static_cast<std::size_t>(k)]];
        return x;
    }
    std::vector<double> fullOf(const Eigen::VectorXd& x) const
    {
        std::vector<double> full = full_;
        for (int k = 0; k < inputs(); ++k) {
            const std::size_t i = free_[static_cast<std::size_t>(k)];
            full[i] = std::clamp(x[k], table_[i].minimum, table_[i].maximum);
        }
        return full;
    }

    int operator()(const Eigen::VectorXd& x, Eigen::VectorXd& residuals) const
    {
        const std::vector<double> p = fullOf(x);
        const bool usable = law_.admissible(p.data());
        for (std::size_t i = 0; i < points_.size(); ++i) {
            const double r = usable ? law_.stressAt(points_.strain[i], p.data()) - points_.stress[i] : 1e10;
            residuals[static_cast<Eigen::Index>(i)] = std::isfinite(r) ? rootWeight_[i] * r : 1e10;
        }
        return 0;
    }

    int df(const Eigen::VectorXd& x, Eigen::MatrixXd& jacobian) const
    {
        const std::vector<double> p = fullOf(x);
        std::vector<double> d(p.size());
        for (std::size_t i = 0; i < points_.size(); ++i) {
            law_.partialsAt(points_.strain[i], p.data(), d.data());
            for (int k = 0; k < inputs(); ++k) {
                const double v = rootWeight_[i] * d[free_[static_cast<std::size_t>(k)]];
                jacobian(static_cast<Eigen::Index>(i), k) = std::isfinite(v) ? v : 0.0;
            }
        }
        return 0;
    }

private:
    const ColdLaw& law_;
    FitPoints points_;
    std::vector<double> full_;
    std::vector<ParameterBound> table_;
    std::vector<std::size_t> free_;
    std::vector<double> rootWeight_;
};

}  // namespace

std::vector<double> levenbergMarquardt(const ColdLaw& law, std::vector<double> start, int maxEvaluations)
{
    LawResiduals residuals(law, start);
    if (residuals.inputs() == 0 || residuals.values() < residuals.inputs())
        return start;
    Eigen::VectorXd x = residuals.freeOf(start);
    Eigen::LevenbergMarquardt<LawResiduals> solver(residuals);
    solver.parameters.maxfev = maxEvaluations;
    solver.minimize(x);
    return residuals.fullOf(x);
}

void polishWithLevenbergMarquardt(ColdLaw& law)
{
    const std::size_t n = law.fittedPoints().size();
    const std::vector<double> polished = levenbergMarquardt(law, law.parameters);
    if (!law.admissible(polished.data()))
        return;
    const double error = law.objective(polished, n);
    if (std::isfinite(error) && error < law.objective(law.parameters, n)) {
        law.parameters = polished;
        law.fitError = error;
    }
}

}  // namespace zelko
