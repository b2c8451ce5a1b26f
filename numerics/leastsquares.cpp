#include "numerics/leastsquares.h"

#include <cmath>

#include <Eigen/Dense>

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

// Up to this many parameters the step's system lives on the stack.
constexpr Eigen::Index kMaxParameters = 16;
using SmallMatrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMaxParameters, kMaxParameters>;
using SmallVector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMaxParameters, 1>;

// Damping grows by doubling factors after refused steps; past this the step is
// too short to change anything.
constexpr double kLargestDamping = 1e16;
// A step taken with damping above this was forced short by refusals, not by the optimum.
constexpr double kShortByRefusal = 1e6;
// Gain ratios: below the first a step is refused, above the second the model is trusted.
constexpr double kAcceptedGain = 1e-4;
constexpr double kTrustedGain = 0.25;

bool evaluateAt(const ResidualProblem& problem, const Eigen::VectorXd& x, Eigen::VectorXd& r, Eigen::MatrixXd& j)
{
    return problem.evaluate(x, r, &j) && r.allFinite() && j.allFinite();
}

}  // namespace

BoundedFit boundedLevenbergMarquardt(const ResidualProblem& problem, const Eigen::VectorXd& start,
                                     const Eigen::VectorXd& lower, const Eigen::VectorXd& upper,
                                     const LeastSquaresSettings& settings, const RunControl& control,
                                     LeastSquaresWork* work)
{
    BoundedFit fit;
    fit.x = start;
    const Eigen::Index p = start.size();
    if (p == 0 || p > kMaxParameters || problem.values < p || lower.size() != p || upper.size() != p)
        return fit;
    if (control.stopRequested()) {
        fit.stop = FitStop::Cancelled;
        return fit;
    }
    const Eigen::Index m = problem.values;
    Eigen::VectorXd x = start.cwiseMax(lower).cwiseMin(upper);
    LeastSquaresWork own;
    LeastSquaresWork& buffers = work ? *work : own;
    Eigen::VectorXd& r = buffers.residuals;
    Eigen::VectorXd& trialR = buffers.trialResiduals;
    Eigen::MatrixXd& j = buffers.jacobian;
    Eigen::MatrixXd& trialJ = buffers.trialJacobian;
    r.resize(m);
    trialR.resize(m);
    j.resize(m, p);
    trialJ.resize(m, p);
    Eigen::VectorXd trial(p);
    ++fit.evaluations;
    if (!evaluateAt(problem, x, r, j))
        return fit;
    fit.x = x;
    fit.started = true;
    double cost = r.squaredNorm();

    SmallMatrix normal(p, p), reduced;
    SmallVector gradient(p), scale = SmallVector::Zero(p), step(p);
    std::array<Eigen::Index, kMaxParameters> freeIndex{};
    double damping = 1e-3;
    double growth = 2.0;
    const auto finish = [&](FitStop stop) {
        fit.stop = stop;
        fit.x = x;
        fit.sumOfSquares = cost;
        for (Eigen::Index k = 0; k < p; ++k) {
            if (x[k] <= lower[k])
                fit.bounds.lower |= 1u << k;
            if (x[k] >= upper[k])
                fit.bounds.upper |= 1u << k;
        }
        if (stop == FitStop::Converged && fit.bounds.any())
            fit.stop = FitStop::AtBound;
        return fit;
    };

    for (;;) {
        if (fit.iterations >= settings.maxIterations)
            return finish(FitStop::IterationLimit);
        if (control.stopRequested())
            return finish(FitStop::Cancelled);
        // Coefficient by coefficient: a few columns over many rows, where a blocked
        // product would only allocate its workspace.
        normal.noalias() = j.transpose().lazyProduct(j);
        gradient.noalias() = j.transpose().lazyProduct(r);
        // Held: at a bound with the gradient pointing out of the box.
        Eigen::Index free = 0;
        for (Eigen::Index k = 0; k < p; ++k) {
            scale[k] = std::max(scale[k], std::sqrt(normal(k, k)));
            const bool held = (x[k] <= lower[k] && gradient[k] > 0.0) || (x[k] >= upper[k] && gradient[k] < 0.0);
            if (!held && scale[k] > 0.0 && gradient[k] != 0.0)
                freeIndex[static_cast<std::size_t>(free++)] = k;
        }
        if (free == 0 || cost == 0.0)
            return finish(FitStop::Converged);
        // The system in variables scaled by the columns' norms, so that the
        // damping treats a stress and an exponent alike.
        reduced.resize(free, free);
        SmallVector rhs(free);
        for (Eigen::Index a = 0; a < free; ++a) {
            const Eigen::Index ka = freeIndex[static_cast<std::size_t>(a)];
            rhs[a] = -gradient[ka] / scale[ka];
            for (Eigen::Index b = 0; b < free; ++b) {
                const Eigen::Index kb = freeIndex[static_cast<std::size_t>(b)];
                reduced(a, b) = normal(ka, kb) / (scale[ka] * scale[kb]);
            }
        }
        for (;;) {
            if (control.stopRequested())
                return finish(FitStop::Cancelled);
            SmallMatrix damped = reduced;
            damped.diagonal().array() += damping;
            const Eigen::LLT<SmallMatrix> llt(damped);
            step.setZero();
            if (llt.info() == Eigen::Success) {
                const SmallVector z = llt.solve(rhs);
                for (Eigen::Index a = 0; a < free; ++a) {
                    const Eigen::Index ka = freeIndex[static_cast<std::size_t>(a)];
                    step[ka] = z[a] / scale[ka];
                }
            }
            trial = (x + step).cwiseMax(lower).cwiseMin(upper);
            step = trial - x;
            if (llt.info() == Eigen::Success
                && step.norm() <= settings.relativeStep * (x.norm() + settings.relativeStep))
                return finish(damping <= kShortByRefusal ? FitStop::Converged : FitStop::StepFloor);
            const double predicted = -(gradient.dot(step) + 0.5 * step.dot(normal * step));
            bool taken = false;
            double gain = 0.0, trialCost = cost;
            if (llt.info() == Eigen::Success && predicted > 0.0) {
                ++fit.evaluations;
                if (evaluateAt(problem, trial, trialR, trialJ)) {
                    trialCost = trialR.squaredNorm();
                    gain = (cost - trialCost) / predicted;
                    taken = trialCost < cost && gain > kAcceptedGain;
                }
            }
            if (!taken) {
                damping *= growth;
                growth *= 2.0;
                if (damping > kLargestDamping)
                    return finish(FitStop::StepFloor);
                continue;
            }
            const double reduction = cost - trialCost;
            const bool settled = (gain > kTrustedGain && reduction <= settings.relativeReduction * cost)
                                 || step.norm() <= settings.relativeStep * (x.norm() + settings.relativeStep);
            x = trial;
            r.swap(trialR);
            j.swap(trialJ);
            cost = trialCost;
            ++fit.iterations;
            damping *= std::max(1.0 / 3.0, 1.0 - std::pow(2.0 * gain - 1.0, 3));
            growth = 2.0;
            if (settled)
                return finish(FitStop::Converged);
            break;
        }
    }
}

}  // namespace zelko
