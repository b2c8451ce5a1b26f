#pragma once
// The least-squares tools of the cold and the hot fits: linear fits, the power
// law, one-dimensional and planar searches, and a bounded Levenberg-Marquardt.

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include <Eigen/Core>

#include "base/runcontrol.h"
#include "numerics/fitmethod.h"

namespace zelko {

// Coefficients b minimising Σ (y − Σ b_j·row_j)²; nothing when the rows don't
// determine them (too few, or dependent columns) or the result is not finite.
template <std::size_t P>
struct LinearFit {
    std::array<double, P> coefficients{};
    double sse = 0.0;
};
template <std::size_t P>
std::optional<LinearFit<P>> linearLeastSquares(const std::vector<std::array<double, P>>& rows, const std::vector<double>& y);

// Slope of y against x by least squares; nothing for fewer than two distinct x.
std::optional<double> slopeOf(const std::vector<double>& x, const std::vector<double>& y);

// y = K x^n + offset by least squares of ln(y - offset) on ln x, over the points
// where x and y - offset are finite and above 0; nothing with fewer than two such
// points, a single x, or a result that is not finite.
struct PowerLawFit {
    double lnK = 0.0;
    double n = 0.0;
};
std::optional<PowerLawFit> fitPowerLaw(std::span<const double> x, std::span<const double> y, double offset = 0.0);

// A least-squares problem for boundedLevenbergMarquardt: values residuals r(x)
// and, when asked, their Jacobian (values x parameters), asked only at points
// inside the bounds. evaluate returns false where x is outside the function's
// domain (the step that led there is refused).
struct ResidualProblem {
    int values = 0;
    std::function<bool(const Eigen::VectorXd& x, Eigen::VectorXd& residuals, Eigen::MatrixXd* jacobian)> evaluate;
};

struct LeastSquaresSettings {
    int maxIterations = 2000;
    // Converged when an accepted step lowers the sum of squares by less than this
    // fraction of it, or moves every parameter by less than this fraction of itself.
    double relativeReduction = 1e-10;
    double relativeStep = 1e-10;
};

struct BoundedFit {
    Eigen::VectorXd x;  // within the bounds
    double sumOfSquares = 0.0;
    FitStop stop = FitStop::Converged;
    int iterations = 0;    // accepted steps
    long evaluations = 0;  // residual evaluations, the start's included
    BoundFlags bounds;     // the parameters held at a bound at the end
    bool started = false;  // the start lay in the function's domain
    bool usable() const { return started && stop != FitStop::Cancelled; }
};

// The solver's residuals and Jacobians, kept by a caller that fits many times so
// that long curves are not allocated again for every start.
struct LeastSquaresWork {
    Eigen::VectorXd residuals, trialResiduals;
    Eigen::MatrixXd jacobian, trialJacobian;
};

// Minimises the sum of squared residuals within [lower, upper] by a projected
// Levenberg-Marquardt: parameters at a bound that the gradient pushes outwards
// are held there, the others take the damped Gauss-Newton step in scaled
// variables, and the trial is projected into the box. The start (clamped into
// the box) must lie in the function's domain; a start that doesn't, or a problem
// with no parameter or fewer residuals, comes back unmoved with no evaluation.
BoundedFit boundedLevenbergMarquardt(const ResidualProblem& problem, const Eigen::VectorXd& start,
                                     const Eigen::VectorXd& lower, const Eigen::VectorXd& upper,
                                     const LeastSquaresSettings& settings = {}, const RunControl& control = {},
                                     LeastSquaresWork* work = nullptr);

// The x in [lo, hi] where f is least, by golden-section search from the best of
// a coarse scan (the functions met here are not unimodal over the whole range).
template <class F>
double minimiseOnInterval(F&& f, double lo, double hi, int scanPoints = 24, int refinements = 40);

// The point near start where f is least, by Nelder-Mead in two dimensions from a
// simplex of the given size; for valleys that lie across the axes.
template <class F>
std::array<double, 2> minimiseInPlane(F&& f, std::array<double, 2> start, std::array<double, 2> size, int iterations = 300);

template <class F>
std::array<double, 2> minimiseInPlane(F&& f, std::array<double, 2> start, std::array<double, 2> size, int iterations)
{
    using Point = std::array<double, 2>;
    std::array<Point, 3> p = {start, Point{start[0] + size[0], start[1]}, Point{start[0], start[1] + size[1]}};
    std::array<double, 3> v = {f(p[0]), f(p[1]), f(p[2])};
    const auto along = [](const Point& a, const Point& b, double t) {
        return Point{a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1])};
    };
    for (int i = 0; i < iterations; ++i) {
        // Order best, middle, worst.
        for (int a = 0; a < 2; ++a)
            for (int b = 0; b < 2 - a; ++b)
                if (v[b + 1] < v[b]) {
                    std::swap(v[b], v[b + 1]);
                    std::swap(p[b], p[b + 1]);
                }
        const Point centre = along(p[0], p[1], 0.5);
        const Point reflected = along(centre, p[2], -1.0);
        const double vr = f(reflected);
        if (vr < v[0]) {
            const Point expanded = along(centre, p[2], -2.0);
            const double ve = f(expanded);
            p[2] = ve < vr ? expanded : reflected;
            v[2] = std::min(ve, vr);
        } else if (vr < v[1]) {
            p[2] = reflected, v[2] = vr;
        } else {
            const Point contracted = along(centre, p[2], 0.5);
            const double vc = f(contracted);
            if (vc < v[2]) {
                p[2] = contracted, v[2] = vc;
            } else {
                for (int k = 1; k < 3; ++k) {
                    p[k] = along(p[0], p[k], 0.5);
                    v[k] = f(p[k]);
                }
            }
        }
    }
    const auto best = std::min_element(v.begin(), v.end()) - v.begin();
    return p[static_cast<std::size_t>(best)];
}

template <class F>
double minimiseOnInterval(F&& f, double lo, double hi, int scanPoints, int refinements)
{
    double bestX = lo;
    double bestF = f(lo);
    const double h = (hi - lo) / scanPoints;
    for (int i = 1; i <= scanPoints; ++i) {
        const double x = lo + i * h;
        const double v = f(x);
        if (v < bestF) {
            bestF = v;
            bestX = x;
        }
    }
    double a = std::max(lo, bestX - h);
    double b = std::min(hi, bestX + h);
    constexpr double kRatio = 0.6180339887498949;
    double c = b - kRatio * (b - a);
    double d = a + kRatio * (b - a);
    double fc = f(c);
    double fd = f(d);
    for (int i = 0; i < refinements; ++i) {
        if (fc < fd) {
            b = d, d = c, fd = fc;
            c = b - kRatio * (b - a);
            fc = f(c);
        } else {
            a = c, c = d, fc = fd;
            d = a + kRatio * (b - a);
            fd = f(d);
        }
    }
    const double x = fc < fd ? c : d;
    return std::min(fc, fd) < bestF ? x : bestX;
}

}  // namespace zelko
