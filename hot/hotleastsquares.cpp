#include "hot/hotleastsquares.h"

#include <algorithm>
#include <cmath>

#include "numerics/leastsquares.h"
#include "numerics/vectormath.h"

namespace zelko {

namespace {

// ln A stays where A is a finite number above 0.
constexpr double kLnALimit = 700.0;

// The objective's residuals in ln A and the exponents that are not switched off.
class HenselSpittelResiduals {
public:
    HenselSpittelResiduals(const HenselSpittelObjective& objective, HotObjective kind, unsigned switches)
        : objective_(objective), kind_(kind), rootWeight_(objective.weights().sqrt()),
          lnStress_(objective.stresses().log()), logValue_(objective.entryCount())
    {
        for (int i = A; i <= M9; ++i)
            if (i != M6 && !((switches >> i) & 1u))
                free_.push_back(i);
        objective.guardLimits(lower_, upper_);
        lower_[A] = -kLnALimit;
        upper_[A] = kLnALimit;
    }

    ResidualProblem problem()
    {
        return {static_cast<int>(objective_.entryCount()),
                [this](const Eigen::VectorXd& x, Eigen::VectorXd& r, Eigen::MatrixXd* j) { return evaluate(x, r, j); }};
    }
    Eigen::VectorXd limits(bool upper) const { return inputOf(upper ? upper_ : lower_, false); }
    // The free inputs of p (A as ln A), clamped into the limits when asked.
    Eigen::VectorXd inputOf(const HenselSpittelParameters& p, bool clamped = true) const
    {
        Eigen::VectorXd x(static_cast<Eigen::Index>(free_.size()));
        for (std::size_t k = 0; k < free_.size(); ++k) {
            const int i = free_[k];
            double v = i == A && clamped ? std::log(p[A]) : p[static_cast<std::size_t>(i)];
            if (clamped)
                v = std::clamp(std::isfinite(v) ? v : 0.0, lower_[static_cast<std::size_t>(i)],
                               upper_[static_cast<std::size_t>(i)]);
            x[static_cast<Eigen::Index>(k)] = v;
        }
        return x;
    }
    HenselSpittelParameters parametersOf(const Eigen::VectorXd& x) const
    {
        HenselSpittelParameters p{};
        for (std::size_t k = 0; k < free_.size(); ++k)
            p[static_cast<std::size_t>(free_[k])] = x[static_cast<Eigen::Index>(k)];
        p[A] = std::exp(p[A]);
        return p;
    }
    BoundFlags boundsOf(const BoundFlags& inputs) const
    {
        BoundFlags flags;
        for (std::size_t k = 0; k < free_.size(); ++k) {
            if ((inputs.lower >> k) & 1u)
                flags.lower |= 1u << free_[k];
            if ((inputs.upper >> k) & 1u)
                flags.upper |= 1u << free_[k];
        }
        return flags;
    }

    LeastSquaresWork work;

private:
    bool evaluate(const Eigen::VectorXd& x, Eigen::VectorXd& residuals, Eigen::MatrixXd* jacobian)
    {
        Eigen::Matrix<double, 9, 1> exponents = Eigen::Matrix<double, 9, 1>::Zero();
        double lnA = 0.0;
        for (std::size_t k = 0; k < free_.size(); ++k) {
            if (free_[k] == A)
                lnA = x[static_cast<Eigen::Index>(k)];
            else
                exponents(free_[k] - M1) = x[static_cast<Eigen::Index>(k)];
        }
        logValue_.matrix().noalias() = objective_.factors() * exponents;
        logValue_ += lnA;
        // d(residual)/d(input): the stress itself for the stress error, 1 for ln σ's.
        Eigen::ArrayXd& scale = scale_;
        if (kind_ == HotObjective::Relative) {
            residuals = (rootWeight_ * (logValue_ - lnStress_)).matrix();
            scale = rootWeight_;
        } else {
            scale = logValue_;
            expInPlace(scale.data(), static_cast<std::size_t>(scale.size()));
            residuals = (rootWeight_ * (scale - objective_.stresses())).matrix();
            scale *= rootWeight_;
        }
        if (jacobian)
            for (std::size_t k = 0; k < free_.size(); ++k) {
                const auto column = static_cast<Eigen::Index>(k);
                if (free_[k] == A)
                    jacobian->col(column) = scale.matrix();
                else
                    jacobian->col(column) = (scale * objective_.factors().col(free_[k] - M1).array()).matrix();
            }
        return true;
    }

    const HenselSpittelObjective& objective_;
    HotObjective kind_;
    Eigen::ArrayXd rootWeight_;
    Eigen::ArrayXd lnStress_;
    Eigen::ArrayXd logValue_;
    Eigen::ArrayXd scale_;
    std::vector<int> free_;
    HenselSpittelParameters lower_{}, upper_{};
};

HenselSpittelLeastSquares fitOnce(HenselSpittelResiduals& residuals, const HenselSpittelParameters& start,
                                  const RunControl& control)
{
    HenselSpittelLeastSquares result;
    const BoundedFit fit = boundedLevenbergMarquardt(residuals.problem(), residuals.inputOf(start),
                                                     residuals.limits(false), residuals.limits(true), {}, control,
                                                     &residuals.work);
    result.cancelled = fit.stop == FitStop::Cancelled;
    result.usable = fit.usable();
    result.evaluations = fit.evaluations;
    if (!result.usable)
        return result;
    result.parameters = residuals.parametersOf(fit.x);
    result.sumOfSquares = fit.sumOfSquares;
    result.stop = fit.stop;
    result.bounds = residuals.boundsOf(fit.bounds);
    result.iterations = fit.iterations;
    return result;
}

}  // namespace

HenselSpittelLeastSquares fitHenselSpittelLeastSquares(const HenselSpittelObjective& objective, HotObjective kind,
                                                       unsigned switches,
                                                       const std::vector<HenselSpittelParameters>& starts,
                                                       const RunControl& control)
{
    HenselSpittelLeastSquares best;
    if (((switches >> A) & 1u) || starts.empty() || objective.entryCount() == 0)
        return best;
    HenselSpittelResiduals logarithmic(objective, HotObjective::Relative, switches);
    best = fitOnce(logarithmic, starts.front(), control);
    if (best.cancelled || kind == HotObjective::Relative)
        return best;
    std::vector<HenselSpittelParameters> tries;
    if (best.usable)
        tries.push_back(best.parameters);
    tries.insert(tries.end(), starts.begin(), starts.end());
    HenselSpittelResiduals stress(objective, HotObjective::Absolute, switches);
    const long logEvaluations = best.evaluations;
    best = {};
    long evaluations = logEvaluations;
    for (const HenselSpittelParameters& start : tries) {
        HenselSpittelLeastSquares fit = fitOnce(stress, start, control);
        evaluations += fit.evaluations;
        if (fit.cancelled)
            return fit;
        if (fit.usable && (!best.usable || fit.sumOfSquares < best.sumOfSquares))
            best = fit;
    }
    best.evaluations = evaluations;
    return best;
}

}  // namespace zelko
