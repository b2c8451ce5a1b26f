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

}  // namespace zelko
