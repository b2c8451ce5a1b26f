#include "hot/celllaws.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Dense>

#include "numerics/leastsquares.h"

namespace zelko {

namespace {

// The searches look at this many points of a curve at most.
constexpr std::size_t kSearchPoints = 64;

double powerOf(double x, double n) { return x > 0.0 ? std::pow(x, n) : 0.0; }

struct Points {
    std::vector<double> x;
    std::vector<double> y;
};

Points usablePoints(const std::vector<double>& x, const std::vector<double>& y, bool logarithmic)
{
    Points p;
    for (std::size_t i = 0; i < x.size() && i < y.size(); ++i) {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i]))
            continue;
        if (logarithmic && !(x[i] > 0.0 && y[i] > 0.0))
            continue;
        p.x.push_back(x[i]);
        p.y.push_back(y[i]);
    }
    return p;
}

Points thinned(const Points& all)
{
    if (all.x.size() <= kSearchPoints)
        return all;
    Points p;
    for (std::size_t i = 0; i < kSearchPoints; ++i) {
        const std::size_t at = i * (all.x.size() - 1) / (kSearchPoints - 1);
        p.x.push_back(all.x[at]);
        p.y.push_back(all.y[at]);
    }
    return p;
}

// Sum of squares left after the best linear combination of the basis: the
// measure a search minimises. Normal equations of fixed size, nothing allocated.
template <std::size_t P, class Basis>
double separableSse(const Points& p, Basis&& basis)
{
    Eigen::Matrix<double, P, P> normal = Eigen::Matrix<double, P, P>::Zero();
    Eigen::Matrix<double, P, 1> right = Eigen::Matrix<double, P, 1>::Zero();
    Eigen::Matrix<double, P, 1> row;
    for (std::size_t i = 0; i < p.x.size(); ++i) {
        basis(p.x[i], row.data());
        normal.noalias() += row * row.transpose();
        right += row * p.y[i];
    }
    const Eigen::LDLT<Eigen::Matrix<double, P, P>> ldlt(normal);
    if (ldlt.info() != Eigen::Success)
        return HUGE_VAL;
    const Eigen::Matrix<double, P, 1> b = ldlt.solve(right);
    double sse = 0.0;
    for (std::size_t i = 0; i < p.x.size(); ++i) {
        basis(p.x[i], row.data());
        const double r = row.dot(b) - p.y[i];
        sse += r * r;
    }
    return std::isfinite(sse) ? sse : HUGE_VAL;
}

template <std::size_t P, class Basis>
std::optional<std::array<double, P>> solveSeparable(const Points& p, Basis&& basis)
{
    std::vector<std::array<double, P>> rows(p.x.size());
    for (std::size_t i = 0; i < p.x.size(); ++i)
        basis(p.x[i], rows[i].data());
    const auto fit = linearLeastSquares(rows, p.y);
    if (!fit)
        return std::nullopt;
    return fit->coefficients;
}

// Two nonlinear coefficients: the best node of a coarse grid, then Nelder-Mead
// from there (their valleys run across the axes), kept within the bounds.
template <class Sse>
std::array<double, 2> searchPlane(Sse&& sse, std::array<double, 2> lo, std::array<double, 2> hi)
{
    constexpr int kNodes = 16;
    const std::array<double, 2> h = {(hi[0] - lo[0]) / kNodes, (hi[1] - lo[1]) / kNodes};
    const auto bounded = [&](const std::array<double, 2>& at) {
        return sse(std::clamp(at[0], lo[0], hi[0]), std::clamp(at[1], lo[1], hi[1]));
    };
    std::array<double, 2> at = lo;
    double best = HUGE_VAL;
    for (int i = 0; i <= kNodes; ++i)
        for (int j = 0; j <= kNodes; ++j) {
            const std::array<double, 2> node = {lo[0] + i * h[0], lo[1] + j * h[1]};
            if (const double v = bounded(node); v < best) {
                best = v;
                at = node;
            }
        }
    at = minimiseInPlane(bounded, at, {h[0] / 2, h[1] / 2});
    return {std::clamp(at[0], lo[0], hi[0]), std::clamp(at[1], lo[1], hi[1])};
}

std::optional<CellCoefficients> logLinear(const Points& p, double (*f1)(double), double (*f2)(double),
                                          double (*f3)(double))
{
    std::vector<std::array<double, 4>> rows;
    std::vector<double> lnY;
    for (std::size_t i = 0; i < p.x.size(); ++i) {
        rows.push_back({1.0, f1(p.x[i]), f2(p.x[i]), f3(p.x[i])});
        lnY.push_back(std::log(p.y[i]));
    }
    const auto fit = linearLeastSquares(rows, lnY);
    if (!fit)
        return std::nullopt;
    const auto& b = fit->coefficients;
    return CellCoefficients{std::exp(b[0]), b[1], b[2], b[3]};
}

std::optional<CellCoefficients> fitVoceLinear(const Points& p)
{
    const auto basis = [](double lnRate) {
        const double rate = std::exp(lnRate);
        return [rate](double x, double* row) {
            const double decay = std::exp(-rate * x);
            row[0] = decay;
            row[1] = 1.0 - decay;
            row[2] = x;
        };
    };
    const Points search = thinned(p);
    const double lnRate
        = minimiseOnInterval([&](double v) { return separableSse<3>(search, basis(v)); }, std::log(0.01), std::log(1000.0));
    const auto b = solveSeparable<3>(p, basis(lnRate));
    if (!b)
        return std::nullopt;
    return CellCoefficients{(*b)[0], (*b)[1], std::exp(lnRate), (*b)[2]};
}

std::optional<CellCoefficients> fitHockettSherby(const Points& p)
{
    const auto basis = [](double lnRate, double exponent) {
        const double rate = std::exp(lnRate);
        return [rate, exponent](double x, double* row) {
            const double decay = std::exp(-rate * powerOf(x, exponent));
            row[0] = 1.0 - decay;
            row[1] = decay;
        };
    };
    const Points search = thinned(p);
    const auto at = searchPlane([&](double a, double b) { return separableSse<2>(search, basis(a, b)); },
                                {std::log(1e-3), 0.05}, {std::log(1e4), 3.0});
    const auto b = solveSeparable<2>(p, basis(at[0], at[1]));
    if (!b)
        return std::nullopt;
    return CellCoefficients{(*b)[0], (*b)[1], std::exp(at[0]), at[1]};
}

std::optional<CellCoefficients> fitPowerExponential(const Points& p)
{
    const auto basis = [](double exponent, double softening) {
        return [exponent, softening](double x, double* row) {
            row[0] = 1.0;
            row[1] = powerOf(x, exponent) * std::exp(-softening * x);
        };
    };
    const Points search = thinned(p);
    const auto at = searchPlane([&](double a, double b) { return separableSse<2>(search, basis(a, b)); }, {0.01, 0.0},
                                {2.0, 30.0});
    const auto b = solveSeparable<2>(p, basis(at[0], at[1]));
    if (!b)
        return std::nullopt;
    return CellCoefficients{(*b)[0], (*b)[1], at[0], at[1]};
}

double square(double x) { return x * x; }
double reciprocal(double x) { return 1.0 / x; }
double identity(double x) { return x; }
double logarithm(double x) { return std::log(x); }

}  // namespace

double cellLawStress(CellLaw law, const CellCoefficients& c, double x)
{
    double stress = 0.0;
    switch (law) {
    case CellLaw::HenselSpittelStrain:
        stress = x > 0.0 ? c[0] * std::exp(c[1] * std::log(x) + c[2] / x + c[3] * x) : 0.0;
        break;
    case CellLaw::SwiftSoftening:
        stress = x > 0.0 ? c[0] * std::exp(c[1] * std::log(x) + c[2] * x + c[3] * x * x) : 0.0;
        break;
    case CellLaw::VoceLinear:
        stress = c[0] + (c[1] - c[0]) * (1.0 - std::exp(-c[2] * x)) + c[3] * x;
        break;
    case CellLaw::HockettSherby:
        stress = c[0] - (c[0] - c[1]) * std::exp(-c[2] * powerOf(x, c[3]));
        break;
    case CellLaw::PowerExponential:
        stress = c[0] + c[1] * powerOf(x, c[2]) * std::exp(-c[3] * x);
        break;
    }
    return std::isfinite(stress) ? stress : 0.0;
}

std::optional<CellCoefficients> fitCellLaw(CellLaw law, const std::vector<double>& x, const std::vector<double>& stress)
{
    const bool logarithmic = law == CellLaw::HenselSpittelStrain || law == CellLaw::SwiftSoftening;
    const Points p = usablePoints(x, stress, logarithmic);
    if (p.x.size() < 4)
        return std::nullopt;
    std::optional<CellCoefficients> c;
    switch (law) {
    case CellLaw::HenselSpittelStrain: c = logLinear(p, logarithm, reciprocal, identity); break;
    case CellLaw::SwiftSoftening: c = logLinear(p, logarithm, identity, square); break;
    case CellLaw::VoceLinear: c = fitVoceLinear(p); break;
    case CellLaw::HockettSherby: c = fitHockettSherby(p); break;
    case CellLaw::PowerExponential: c = fitPowerExponential(p); break;
    }
    if (c)
        for (const double v : *c)
            if (!std::isfinite(v))
                return std::nullopt;
    return c;
}

}  // namespace zelko
