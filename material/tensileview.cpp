#include "material/tensileview.h"

#include <cmath>

#include "cold/tensilereduction.h"

namespace zelko {

namespace {

ChartPoints fromCurve(const Curve& curve)
{
    ChartPoints points;
    points.x.reserve(curve.size());
    points.y.reserve(curve.size());
    for (const CurvePoint& p : curve) {
        points.x.push_back(p.x);
        points.y.push_back(p.y);
    }
    return points;
}

}  // namespace

ChartPoints measuredPoints(const RoomOri& record, CurveForm form)
{
    if (form == CurveForm::Engineering)
        return fromCurve(record.curves[EngineeringCurve]);
    if (record.inputKind == TrueCurve)
        return fromCurve(record.curves[TrueCurve]);
    const std::optional<Curve> rebuilt = trueCurveFromEngineering(record);
    return rebuilt ? fromCurve(*rebuilt) : ChartPoints{};
}

ChartPoints lawPoints(const ColdLaw& law, const RoomOri& record, CurveForm form)
{
    ChartPoints points;
    if (law.parameters.size() != law.parameterCount())
        return points;
    const FitPoints fitted = law.fittedPoints();
    const Curve& engineering = record.curves[EngineeringCurve];
    for (std::size_t i = 0; i < fitted.size(); ++i) {
        const double stress = law.stressAt(fitted.strain[i], law.parameters.data());
        if (!std::isfinite(stress))
            continue;
        if (form == CurveForm::True) {
            points.x.push_back(fitted.strain[i]);
            points.y.push_back(stress);
            continue;
        }
        // A true strain measured from the start point, back to engineering terms.
        const std::size_t row = static_cast<std::size_t>(std::max(0, record.startIndex)) + i;
        if (record.inputKind == TrueCurve || row >= engineering.size())
            break;
        const double e = engineering[row].x;
        points.x.push_back(e);
        points.y.push_back(stress / (1.0 + e));
    }
    return points;
}

ChartPoints identifiedPoints(const PLASTIC_8& model)
{
    ChartPoints points;
    for (const auto& [strain, stress] : model.identifiedCurve) {
        points.x.push_back(strain);
        points.y.push_back(stress);
    }
    return points;
}

double placedPointValue(const RoomOri& record, PlacedPoint point, int index)
{
    const Curve& entered = record.inputCurve();
    if (index < 0 || static_cast<std::size_t>(index) >= entered.size())
        return 0.0;
    const auto at = static_cast<std::size_t>(index);
    if (point == PlacedPoint::Fracture && record.inputKind != TrueCurve) {
        const double raw = entered[at].x;
        return record.inputKind == LoadDisplacement && record.gaugeLength != 0.0 ? raw / record.gaugeLength : raw;
    }
    if (record.inputKind == TrueCurve)
        return entered[at].x;
    const Curve& engineering = record.curves[EngineeringCurve];
    return at < engineering.size() ? engineering[at].x : 0.0;
}

}  // namespace zelko

namespace zelko {

ShownTest shownTestOf(const RoomOri& record)
{
    ShownTest shown;
    shown.inputKind = record.inputKind;
    shown.curve = record.inputCurve();
    shown.diameter = record.diameter;
    shown.gaugeLength = record.gaugeLength;
    if (record.inputKind == LoadDisplacement)
        for (CurvePoint& p : shown.curve)
            p.x *= 2.0;
    return shown;
}

}  // namespace zelko
