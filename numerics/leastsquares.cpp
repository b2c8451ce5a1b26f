#include "numerics/leastsquares.h"

#include <cmath>

#include <Eigen/Dense>
#include <unsupported/Eigen/NonLinearOptimization>

namespace zelko {

template <std::size_t P>
std::optional<LinearFit<P>> linearLeastSquares(const std::vector<std::array<double, P>>& rows, const std::vector<double>& y)
{
    const auto n = static_cast<Eigen::Index>(rows.size());
    if (rows.size() < P || y.size() != rows.size())
        return std::nullopt;
    Eigen::MatrixXd design(n, static_cast<Eigen::Index>(P));
    Eigen::VectorXd target(n);
    for (Eigen::Index i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < P; ++j)
            design(i, static_cast<Eigen::Index>(j)) = rows[static_cast<std::size_t>(i)][j];
        target(i) = y[static_cast<std::size_t>(i)];
    }
    if (!design.allFinite() || !target.allFinite())
        return std::nullopt;
    // Columns such as 1/ε and ε differ by orders of magnitude; scaled, the rank test means something.
    Eigen::VectorXd scale = design.colwise().norm().transpose();
    for (Eigen::Index j = 0; j < scale.size(); ++j) {
        if (!(scale(j) > 0.0))
            return std::nullopt;
        design.col(j) /= scale(j);
    }
    Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(design);
    qr.setThreshold(1e-12);
    if (qr.rank() < static_cast<Eigen::Index>(P))
        return std::nullopt;
    const Eigen::VectorXd b = qr.solve(target);
    LinearFit<P> fit;
    fit.sse = (design * b - target).squaredNorm();
    for (std::size_t j = 0; j < P; ++j)
        fit.coefficients[j] = b(static_cast<Eigen::Index>(j)) / scale(static_cast<Eigen::Index>(j));
    for (const double c : fit.coefficients)
        if (!std::isfinite(c))
            return std::nullopt;
    if (!std::isfinite(fit.sse))
        return std::nullopt;
    return fit;
}

template std::optional<LinearFit<2>> linearLeastSquares(const std::vector<std::array<double, 2>>&, const std::vector<double>&);
template std::optional<LinearFit<3>> linearLeastSquares(const std::vector<std::array<double, 3>>&, const std::vector<double>&);
template std::optional<LinearFit<4>> linearLeastSquares(const std::vector<std::array<double, 4>>&, const std::vector<double>&);

std::optional<double> slopeOf(const std::vector<double>& x, const std::vector<double>& y)
{
    std::vector<std::array<double, 2>> rows;
    rows.reserve(x.size());
    for (const double v : x)
        rows.push_back({1.0, v});
    const auto fit = linearLeastSquares(rows, y);
    if (!fit)
        return std::nullopt;
    return fit->coefficients[1];
}

namespace {
constexpr double kSameStrainSpread = 1e-12;
}  // namespace

std::optional<PowerLawFit> fitPowerLaw(std::span<const double> x, std::span<const double> y, double offset)
{
    // The normal equations in closed form: two unknowns, and the cold laws' start
    // values have always come from exactly these sums.
    double sx = 0, sy = 0, sxx = 0, sxy = 0;
    int n = 0;
    for (std::size_t i = 0; i < x.size() && i < y.size(); ++i) {
        const double e = x[i];
        const double s = y[i] - offset;
        if (e > 0.0 && s > 0.0 && std::isfinite(e) && std::isfinite(s)) {
            const double lnX = std::log(e), lnY = std::log(s);
            sx += lnX, sy += lnY, sxx += lnX * lnX, sxy += lnX * lnY;
            ++n;
        }
    }
    // n sxx - sx^2 is n times the spread of ln x; rounding leaves a trace of it
    // when every x is the same, so it is measured against n sxx.
    const double denominator = n * sxx - sx * sx;
    if (n < 2 || !(std::fabs(denominator) > kSameStrainSpread * n * sxx))
        return std::nullopt;
    PowerLawFit fit;
    fit.n = (n * sxy - sx * sy) / denominator;
    fit.lnK = (sy - fit.n * sx) / n;
    if (!std::isfinite(fit.n) || !std::isfinite(fit.lnK))
        return std::nullopt;
    return fit;
}

namespace {

// Eigen's functor over a ResidualProblem, each trial clamped into the box first.
class BoxedResiduals {
public:
    using Scalar = double;
    using InputType = Eigen::VectorXd;
    using ValueType = Eigen::VectorXd;
    using JacobianType = Eigen::MatrixXd;

    BoxedResiduals(const ResidualProblem& problem, const Eigen::VectorXd& lower, const Eigen::VectorXd& upper)
        : problem_(problem), lower_(lower), upper_(upper), inside_(lower.size())
    {
    }

    int inputs() const { return static_cast<int>(lower_.size()); }
    int values() const { return problem_.values; }

    const Eigen::VectorXd& inside(const Eigen::VectorXd& x) const
    {
        for (Eigen::Index k = 0; k < x.size(); ++k)
            inside_[k] = std::clamp(x[k], lower_[k], upper_[k]);
        return inside_;
    }
    int operator()(const Eigen::VectorXd& x, Eigen::VectorXd& residuals) const
    {
        problem_.residuals(inside(x), residuals);
        return 0;
    }
    int df(const Eigen::VectorXd& x, Eigen::MatrixXd& jacobian) const
    {
        problem_.jacobian(inside(x), jacobian);
        return 0;
    }

private:
    const ResidualProblem& problem_;
    const Eigen::VectorXd& lower_;
    const Eigen::VectorXd& upper_;
    mutable Eigen::VectorXd inside_;
};

}  // namespace

BoundedFit boundedLevenbergMarquardt(const ResidualProblem& problem, const Eigen::VectorXd& start,
                                     const Eigen::VectorXd& lower, const Eigen::VectorXd& upper, int maxEvaluations,
                                     const RunControl& control)
{
    BoundedFit fit{start, false};
    if (start.size() == 0 || problem.values < start.size() || lower.size() != start.size()
        || upper.size() != start.size())
        return fit;
    BoxedResiduals residuals(problem, lower, upper);
    Eigen::LevenbergMarquardt<BoxedResiduals> solver(residuals);
    solver.parameters.maxfev = maxEvaluations;
    // Eigen's minimize(), one step at a time so that a stop request is heard.
    auto status = solver.minimizeInit(fit.x);
    if (status != Eigen::LevenbergMarquardtSpace::ImproperInputParameters) {
        do {
            if (control.stopRequested()) {
                fit.cancelled = true;
                break;
            }
            status = solver.minimizeOneStep(fit.x);
        } while (status == Eigen::LevenbergMarquardtSpace::Running);
    }
    fit.x = residuals.inside(fit.x);
    return fit;
}

}  // namespace zelko
