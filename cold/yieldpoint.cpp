#include "cold/yieldpoint.h"

#include <algorithm>
#include <cmath>

#include "base/textfile.h"

namespace zelko {

namespace {

constexpr std::size_t kSmallestElasticWindow = 5;

std::size_t maximumStressRow(const Curve& curve)
{
    return static_cast<std::size_t>(
        std::max_element(curve.begin(), curve.end(), [](const CurvePoint& a, const CurvePoint& b) { return a.y < b.y; })
        - curve.begin());
}

}  // namespace

std::optional<ElasticLine> elasticLine(const Curve& curve)
{
    if (curve.empty())
        return std::nullopt;
    const std::size_t rows = maximumStressRow(curve) + 1;
    const double halfMaximum = 0.5 * curve[rows - 1].y;
    const auto lowerHalf = static_cast<std::size_t>(
        std::count_if(curve.begin(), curve.begin() + static_cast<std::ptrdiff_t>(rows),
                      [halfMaximum](const CurvePoint& p) { return p.y < halfMaximum; }));
    const std::size_t window = std::max(kSmallestElasticWindow, lowerHalf / 4);
    if (rows < window)
        return std::nullopt;
    // Running sums over the window, moved one row at a time.
    double sx = 0.0, sy = 0.0, sxx = 0.0, sxy = 0.0;
    const auto add = [&](const CurvePoint& p, double sign) {
        sx += sign * p.x;
        sy += sign * p.y;
        sxx += sign * p.x * p.x;
        sxy += sign * p.x * p.y;
    };
    std::optional<ElasticLine> best;
    const double n = static_cast<double>(window);
    for (std::size_t i = 0; i < rows; ++i) {
        add(curve[i], 1.0);
        if (i + 1 < window)
            continue;
        if (i + 1 > window)
            add(curve[i - window], -1.0);
        const double spread = n * sxx - sx * sx;
        // Repeated strains (a coarse extensometer) give no slope at all.
        if (!(spread > 1e-12 * n * sxx))
            continue;
        const double slope = (n * sxy - sx * sy) / spread;
        if (std::isfinite(slope) && slope > 0.0 && (!best || slope > best->slope)) {
            const double intercept = (sy - slope * sx) / n;
            best = ElasticLine{slope, -intercept / slope};
        }
    }
    return best;
}

std::optional<YieldPoint> offsetYieldPoint(const Curve& curve, std::string& error)
{
    const std::optional<ElasticLine> line = elasticLine(curve);
    if (!line) {
        error = "no elastic stretch to take the yield point's slope from (too few points before the maximum stress)";
        return std::nullopt;
    }
    const std::size_t last = maximumStressRow(curve);
    for (std::size_t i = 0; i <= last; ++i) {
        const CurvePoint& p = curve[i];
        const double offsetLine = line->slope * (p.x - line->strainAtZero - kYieldOffsetStrain);
        if (offsetLine >= p.y)
            return YieldPoint{static_cast<int>(i), *line};
    }
    error = formatText("the curve does not cross the 0.2 %% offset line (elastic slope %.4g MPa) before its maximum "
                       "stress; give the start row",
                       line->slope);
    return std::nullopt;
}

std::optional<int> firstRowAtStrain(const Curve& curve, double strain)
{
    for (std::size_t i = 0; i < curve.size(); ++i)
        if (curve[i].x >= strain)
            return static_cast<int>(i);
    return std::nullopt;
}

const Curve& startSelectionCurve(const RoomOri& record)
{
    return record.curves[record.inputKind == TrueCurve ? TrueCurve : EngineeringCurve];
}

}  // namespace zelko
