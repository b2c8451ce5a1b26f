#include "cold/lawpolish.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <Eigen/Dense>

#include "numerics/leastsquares.h"

namespace zelko {

namespace {

// The start search looks at this many points of the curve at most: enough to
// tell its nodes apart, few enough to try hundreds of them in well under a millisecond.
constexpr std::size_t kSearchPoints = 32;
// Nodes along each axis of the start search, by the number of axes searched.
constexpr std::array<int, 4> kNodesPerAxis = {1, 40, 14, 8};
constexpr std::size_t kMostLinear = 4;
// Steps each start takes before the best of them alone goes on: most starts settle
// in a few dozen, and one that crawls along a valley is seldom the best.
constexpr int kFirstIterations = 100;

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
    LawResiduals(const ColdLaw& law, const FitPoints& points)
        : law_(law), points_(points), full_(law.parameterCount()), count_(law.parameterCount()),
          linear_(linearParameters(law, points_)), partials_(points_.size() * count_)
    {
        const unsigned held = law.heldParameters();
        for (std::size_t i = 0; i < count_; ++i)
            if (!isHeld(held, i))
                free_.push_back(i);
        const bool weighted = law.errorRuleOfLaw() == ErrorRule::PerPoint || points_.firstPointWeighted;
        double weights = 0.0;
        for (std::size_t i = 0; i < points_.size(); ++i) {
            rootWeight_.push_back(weighted ? std::sqrt(std::max(0.0, points_.weight[i])) : 1.0);
            weights += points_.weight[i];
        }
        // The law's error from the sum of squares, by the rule of ColdLaw::errorOf.
        const bool byWeights = law.errorRuleOfLaw() == ErrorRule::WeightedMean && points_.firstPointWeighted;
        divisor_ = byWeights ? weights : static_cast<double>(points_.size());
    }

    // The next fit starts from full: the parameters that don't move keep its values.
    void startFrom(const std::vector<double>& full) { full_ = full; }
    double errorOf(double sumOfSquares) const { return std::sqrt(sumOfSquares / divisor_); }

    LeastSquaresWork work;  // the solver's buffers, the same for every start

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
    const FitPoints& points_;
    std::vector<double> full_;
    std::size_t count_;
    double divisor_ = 1.0;
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
// linear ones that move solved by least squares; the nodes with the least sums of
// squares among those lower than their neighbours along every axis (one a valley),
// one more than axes were searched, best first.
// None where no node gives an admissible law within the bounds.
std::vector<std::vector<double>> searchedStarts(const ColdLaw& law, const FitPoints& all,
                                                const std::vector<double>& base)
{
    if (all.size() == 0)
        return {};
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
        return {};
    const bool weighted = law.errorRuleOfLaw() == ErrorRule::PerPoint || points.firstPointWeighted;

    const int nodes = kNodesPerAxis[axes.size()];
    const auto valueAt = [&](const SearchAxis& axis, int node) {
        const double t = static_cast<double>(node) / (nodes - 1);
        return axis.logarithmic ? axis.lo * std::pow(axis.hi / axis.lo, t) : axis.lo + t * (axis.hi - axis.lo);
    };
    const std::size_t count = law.parameterCount();
    std::vector<double> p = base, d(count);
    // Every node's sum of squares (infinite where it gives no law) and parameters.
    std::vector<double> sums;
    std::vector<std::vector<double>> nodeParameters;
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
            inside = inside && law.admissible(p.data());
            sums.push_back(inside ? sse : HUGE_VAL);
        } else {
            sums.push_back(HUGE_VAL);
        }
        nodeParameters.push_back(p);
        std::size_t a = 0;
        while (a < node.size() && ++node[a] == nodes)
            node[a++] = 0;
        if (a == node.size())
            break;
    }
    // Node index = sum of node[a] * nodes^a, the first axis counting fastest.
    std::vector<std::pair<double, std::size_t>> valleys;
    for (std::size_t at = 0; at < sums.size(); ++at) {
        if (!std::isfinite(sums[at]))
            continue;
        bool lowest = true;
        std::size_t stride = 1;
        for (std::size_t a = 0; a < axes.size() && lowest; ++a, stride *= static_cast<std::size_t>(nodes)) {
            const std::size_t position = at / stride % static_cast<std::size_t>(nodes);
            if (position > 0 && sums[at - stride] < sums[at])
                lowest = false;
            if (position + 1 < static_cast<std::size_t>(nodes) && sums[at + stride] < sums[at])
                lowest = false;
        }
        if (lowest)
            valleys.push_back({sums[at], at});
    }
    std::sort(valleys.begin(), valleys.end());
    std::vector<std::vector<double>> starts;
    for (std::size_t k = 0; k < valleys.size() && k <= axes.size(); ++k)
        starts.push_back(std::move(nodeParameters[valleys[k].second]));
    return starts;
}

// From one start with the residuals' own points; the error by their measure.
LawLeastSquares fitFrom(const ColdLaw& law, LawResiduals& residuals, const std::vector<double>& start,
                        const RunControl& control, int maxIterations = LeastSquaresSettings{}.maxIterations)
{
    LawLeastSquares result;
    if (start.size() != law.parameterCount())
        return result;
    residuals.startFrom(start);
    LeastSquaresSettings settings;
    settings.maxIterations = maxIterations;
    const BoundedFit fit = boundedLevenbergMarquardt(residuals.problem(), residuals.freeOf(start),
                                                     residuals.limits(false), residuals.limits(true), settings,
                                                     control, &residuals.work);
    if (fit.stop == FitStop::Cancelled) {
        result.cancelled = true;
        return result;
    }
    if (!fit.usable())
        return result;
    result.parameters = residuals.fullOf(fit.x);
    result.error = residuals.errorOf(fit.sumOfSquares);
    result.end.iterations = fit.iterations;
    result.end.bounds = law.boundsReached(result.parameters);
    result.end.stop = fit.stop;
    if (fit.stop == FitStop::Converged || fit.stop == FitStop::AtBound)
        result.end.stop = result.end.bounds.any() ? FitStop::AtBound : FitStop::Converged;
    return result;
}

std::vector<std::vector<double>> startsOf(const ColdLaw& law, const FitPoints& points)
{
    std::vector<std::vector<double>> starts;
    const auto add = [&](std::vector<double> start) {
        if (std::find(starts.begin(), starts.end(), start) == starts.end())
            starts.push_back(std::move(start));
    };
    const std::vector<double> own = law.startParameters();
    add(own);
    std::vector<double> line = own;
    if (points.size() > 0 && law.logLogStart(points, line.data())) {
        // Parameters that don't move keep their values whatever the line says.
        const unsigned held = law.heldParameters();
        for (std::size_t i = 0; i < line.size(); ++i)
            if (isHeld(held, i))
                line[i] = own[i];
        add(line);
    }
    for (std::vector<double>& searched : searchedStarts(law, points, own))
        add(std::move(searched));
    return starts;
}

}  // namespace

std::vector<std::vector<double>> leastSquaresStarts(const ColdLaw& law) { return startsOf(law, law.fittedPoints()); }

LawLeastSquares fitLawFromStart(const ColdLaw& law, const std::vector<double>& start, const RunControl& control)
{
    const FitPoints points = law.fittedPoints();
    LawResiduals residuals(law, points);
    LawLeastSquares fit = fitFrom(law, residuals, start, control);
    if (!fit.parameters.empty())
        fit.error = law.objective(fit.parameters, points.size());
    return fit;
}

LawLeastSquares fitLawLeastSquares(const ColdLaw& law, const std::vector<std::vector<double>>& more,
                                   const RunControl& control)
{
    const FitPoints points = law.fittedPoints();
    std::vector<std::vector<double>> starts = startsOf(law, points);
    for (const std::vector<double>& start : more)
        if (std::find(starts.begin(), starts.end(), start) == starts.end())
            starts.push_back(start);
    LawResiduals residuals(law, points);
    LawLeastSquares best;
    for (std::size_t k = 0; k < starts.size(); ++k) {
        LawLeastSquares fit = fitFrom(law, residuals, starts[k], control, kFirstIterations);
        if (fit.cancelled)
            return fit;
        if (!fit.parameters.empty() && std::isfinite(fit.error)
            && (best.parameters.empty() || fit.error < best.error))
            best = std::move(fit);
        control.report(static_cast<int>((k + 1) * 100 / std::max<std::size_t>(starts.size(), 1) * 9 / 10));
    }
    // Only the best start goes on along a long valley.
    if (!best.parameters.empty() && best.end.stop == FitStop::IterationLimit) {
        LawLeastSquares fit = fitFrom(law, residuals, best.parameters, control);
        if (fit.cancelled)
            return fit;
        if (!fit.parameters.empty() && fit.error <= best.error) {
            fit.end.iterations += best.end.iterations;
            best = std::move(fit);
        }
    }
    control.report(100);
    // The error as every other fit reports it, from the law's own evaluation.
    if (!best.parameters.empty())
        best.error = law.objective(best.parameters, points.size());
    return best;
}

}  // namespace zelko
