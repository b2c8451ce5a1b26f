#include "cold/lawpolish.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include <Eigen/Dense>

#include "numerics/leastsquares.h"

namespace zelko {

namespace {

// The start search looks at this many points of the curve at most: enough to
// tell its nodes apart, few enough to try hundreds of them in well under a millisecond.
constexpr std::size_t kSearchPoints = 32;
// Nodes along each axis of the start search, by the number of axes searched.
constexpr std::array<int, 4> kNodesPerAxis = {1, 40, 14, 7};
constexpr std::size_t kMostLinear = 4;

bool isHeld(unsigned held, std::size_t i) { return i < 32 && ((held >> i) & 1u); }

// Which parameters enter the law linearly: all but the searched ones.
std::vector<bool> linearParameters(const ColdLaw& law, const FitPoints& points)
{
    std::vector<bool> linear(law.parameterCount(), true);
    for (const SearchAxis& axis : law.searchAxes(points))
        if (axis.parameter < linear.size())
            linear[axis.parameter] = false;
    return linear;
}

// The plain error's residuals sqrt(w) r (r where the law's rule ignores weights),
// in the law's moving parameters. The stress is the linear parameters times their
// partial derivatives, so one set of derivatives gives both.
class LawResiduals {
public:
    LawResiduals(const ColdLaw& law, const std::vector<double>& full)
        : law_(law), points_(law.fittedPoints()), full_(full), count_(law.parameterCount()),
          linear_(linearParameters(law, points_)), partials_(points_.size() * count_)
    {
        const unsigned held = law.heldParameters();
        for (std::size_t i = 0; i < count_; ++i)
            if (!isHeld(held, i))
                free_.push_back(i);
        const bool weighted = law.errorRuleOfLaw() == ErrorRule::PerPoint || points_.firstPointWeighted;
        for (std::size_t i = 0; i < points_.size(); ++i)
            rootWeight_.push_back(weighted ? std::sqrt(std::max(0.0, points_.weight[i])) : 1.0);
    }

    ResidualProblem problem()
    {
        return {static_cast<int>(points_.size()),
                [this](const Eigen::VectorXd& x, Eigen::VectorXd& r, Eigen::MatrixXd* j) { return evaluate(x, r, j); }};
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
    // The bound table's limits of the moving parameters.
    Eigen::VectorXd limits(bool upper) const
    {
        const std::vector<ParameterBound> table = law_.bounds();
        Eigen::VectorXd x(static_cast<Eigen::Index>(free_.size()));
        for (std::size_t k = 0; k < free_.size(); ++k)
            x[static_cast<Eigen::Index>(k)] = upper ? table[free_[k]].maximum : table[free_[k]].minimum;
        return x;
    }

private:
    bool evaluate(const Eigen::VectorXd& x, Eigen::VectorXd& residuals, Eigen::MatrixXd* jacobian)
    {
        for (std::size_t k = 0; k < free_.size(); ++k)
            full_[free_[k]] = x[static_cast<Eigen::Index>(k)];
        const double* p = full_.data();
        if (!law_.admissible(p))
            return false;
        law_.partialsOver(points_.strain.data(), points_.size(), p, partials_.data());
        for (std::size_t i = 0; i < points_.size(); ++i) {
            const double* d = partials_.data() + i * count_;
            double stress = 0.0;
            for (std::size_t k = 0; k < count_; ++k)
                if (linear_[k])
                    stress += p[k] * d[k];
            const auto row = static_cast<Eigen::Index>(i);
            residuals[row] = rootWeight_[i] * (stress - points_.stress[i]);
            if (jacobian)
                for (std::size_t k = 0; k < free_.size(); ++k)
                    (*jacobian)(row, static_cast<Eigen::Index>(k)) = rootWeight_[i] * d[free_[k]];
        }
        return true;
    }

    const ColdLaw& law_;
    FitPoints points_;
    std::vector<double> full_;
    std::size_t count_;
    std::vector<bool> linear_;
    std::vector<double> partials_;
    std::vector<std::size_t> free_;
    std::vector<double> rootWeight_;
};

FitPoints thinned(const FitPoints& all)
{
    if (all.size() <= kSearchPoints)
        return all;
    FitPoints p;
    p.firstPointWeighted = all.firstPointWeighted;
    for (std::size_t i = 0; i < kSearchPoints; ++i) {
        const std::size_t at = i * (all.size() - 1) / (kSearchPoints - 1);
        p.strain.push_back(all.strain[at]);
        p.stress.push_back(all.stress[at]);
        p.weight.push_back(all.weight[at]);
    }
    return p;
}

// The nodes of the search over the nonlinear parameters that move, each with the
// linear ones that move solved by least squares; the node with the least sum of
// squares, or nothing when no node gives an admissible law within the bounds.
std::optional<std::vector<double>> searchedStart(const ColdLaw& law, const std::vector<double>& base)
{
    const FitPoints all = law.fittedPoints();
    if (all.size() == 0)
        return std::nullopt;
    const FitPoints points = thinned(all);
    const unsigned held = law.heldParameters();
    const std::vector<ParameterBound> table = law.bounds();
    std::vector<SearchAxis> axes;
    for (SearchAxis axis : law.searchAxes(all)) {
        if (isHeld(held, axis.parameter))
            continue;
        axis.lo = std::max(axis.lo, table[axis.parameter].minimum);
        axis.hi = std::min(axis.hi, table[axis.parameter].maximum);
        if (axis.logarithmic && !(axis.lo > 0.0))
            axis.logarithmic = false;
        if (axis.hi > axis.lo)
            axes.push_back(axis);
    }
    const std::vector<bool> linear = linearParameters(law, all);
    std::vector<std::size_t> solved;
    for (std::size_t k = 0; k < linear.size(); ++k)
        if (linear[k] && !isHeld(held, k))
            solved.push_back(k);
    if (axes.empty() || axes.size() >= kNodesPerAxis.size() || solved.size() > kMostLinear)
        return std::nullopt;
    const bool weighted = law.errorRuleOfLaw() == ErrorRule::PerPoint || points.firstPointWeighted;

    const int nodes = kNodesPerAxis[axes.size()];
    const auto valueAt = [&](const SearchAxis& axis, int node) {
        const double t = static_cast<double>(node) / (nodes - 1);
        return axis.logarithmic ? axis.lo * std::pow(axis.hi / axis.lo, t) : axis.lo + t * (axis.hi - axis.lo);
    };
    const std::size_t count = law.parameterCount();
    std::vector<double> p = base, d(count);
    std::optional<std::vector<double>> best;
    double bestSse = HUGE_VAL;
    using Small = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostLinear, kMostLinear>;
    using SmallVector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostLinear, 1>;
    const auto columns = static_cast<Eigen::Index>(solved.size());
    std::vector<int> node(axes.size(), 0);
    for (;;) {
        for (std::size_t a = 0; a < axes.size(); ++a)
            p[axes[a].parameter] = valueAt(axes[a], node[a]);
        // The normal equations of the linear parameters over the thinned points.
        Small normal = Small::Zero(columns, columns);
        SmallVector right = SmallVector::Zero(columns), row(columns);
        double yy = 0.0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            law.partialsAt(points.strain[i], p.data(), d.data());
            double target = points.stress[i];
            for (std::size_t k = 0; k < count; ++k)
                if (linear[k] && isHeld(held, k))
                    target -= p[k] * d[k];
            const double w = weighted ? std::max(0.0, points.weight[i]) : 1.0;
            for (Eigen::Index c = 0; c < columns; ++c)
                row[c] = d[solved[static_cast<std::size_t>(c)]];
            normal.noalias() += w * row * row.transpose();
            right += w * target * row;
            yy += w * target * target;
        }
        const Eigen::LDLT<Small> ldlt(normal);
        if (ldlt.info() == Eigen::Success && normal.allFinite() && right.allFinite()) {
            const SmallVector b = ldlt.solve(right);
            const double sse = yy - 2.0 * b.dot(right) + b.dot(normal * b);
            bool inside = b.allFinite() && std::isfinite(sse);
            for (Eigen::Index c = 0; c < columns && inside; ++c) {
                const std::size_t k = solved[static_cast<std::size_t>(c)];
                p[k] = b[c];
                inside = p[k] >= table[k].minimum && p[k] <= table[k].maximum;
            }
            if (inside && sse < bestSse && law.admissible(p.data())) {
                bestSse = sse;
                best = p;
            }
        }
        std::size_t a = 0;
        while (a < node.size() && ++node[a] == nodes)
            node[a++] = 0;
        if (a == node.size())
            break;
    }
    return best;
}

}  // namespace

std::vector<std::vector<double>> leastSquaresStarts(const ColdLaw& law)
{
    std::vector<std::vector<double>> starts;
    const auto add = [&](std::vector<double> start) {
        if (std::find(starts.begin(), starts.end(), start) == starts.end())
            starts.push_back(std::move(start));
    };
    const std::vector<double> own = law.startParameters();
    add(own);
    const FitPoints points = law.fittedPoints();
    std::vector<double> line = own;
    if (points.size() > 0 && law.logLogStart(points, line.data())) {
        // Fixed parameters keep their values whatever the line says.
        for (std::size_t i = 0; i < line.size(); ++i)
            if (law.isFixed(i))
                line[i] = own[i];
        add(line);
    }
    if (std::optional<std::vector<double>> searched = searchedStart(law, own))
        add(std::move(*searched));
    return starts;
}

LawLeastSquares fitLawFromStart(const ColdLaw& law, const std::vector<double>& start, const RunControl& control)
{
    LawLeastSquares result;
    if (start.size() != law.parameterCount())
        return result;
    LawResiduals residuals(law, start);
    const BoundedFit fit = boundedLevenbergMarquardt(residuals.problem(), residuals.freeOf(start),
                                                     residuals.limits(false), residuals.limits(true), {}, control);
    if (fit.stop == FitStop::Cancelled) {
        result.cancelled = true;
        return result;
    }
    if (!fit.usable())
        return result;
    result.parameters = residuals.fullOf(fit.x);
    result.error = law.objective(result.parameters, law.fittedPoints().size());
    result.end.iterations = fit.iterations;
    result.end.bounds = law.boundsReached(result.parameters);
    result.end.stop = fit.stop;
    if (fit.stop == FitStop::Converged || fit.stop == FitStop::AtBound)
        result.end.stop = result.end.bounds.any() ? FitStop::AtBound : FitStop::Converged;
    return result;
}

LawLeastSquares fitLawLeastSquares(const ColdLaw& law, const std::vector<std::vector<double>>& more,
                                   const RunControl& control)
{
    std::vector<std::vector<double>> starts = leastSquaresStarts(law);
    for (const std::vector<double>& start : more)
        if (std::find(starts.begin(), starts.end(), start) == starts.end())
            starts.push_back(start);
    LawLeastSquares best;
    for (std::size_t k = 0; k < starts.size(); ++k) {
        LawLeastSquares fit = fitLawFromStart(law, starts[k], control);
        if (fit.cancelled)
            return fit;
        if (!fit.parameters.empty() && std::isfinite(fit.error)
            && (best.parameters.empty() || fit.error < best.error))
            best = std::move(fit);
        control.report(static_cast<int>((k + 1) * 100 / starts.size()));
    }
    return best;
}

}  // namespace zelko
