#include "cold/tensilereduction.h"

#include <array>
#include <cmath>

#include "base/messages.h"
#include "base/numbers.h"

namespace zelko {

namespace {

std::optional<double> forceFactor(int forceUnit)
{
    switch (forceUnit) {
    case Newton: return 1.0;
    case Kilonewton: return 1000.0;
    case KilogramForce: return 9.80665;
    case MetricTon: return 9.80665 * 1000.0;
    case PoundForce: return 0.45359237 * 9.80665;
    default: return std::nullopt;
    }
}

// Load-displacement from engineering values: d = e L0 / 2, F = A s.
Curve loadDisplacementFrom(const Curve& engineering, double gaugeLength, double area)
{
    Curve out;
    out.reserve(engineering.size());
    for (const CurvePoint& p : engineering)
        out.push_back({p.x * gaugeLength * 0.5, area * p.y});
    return out;
}

}  // namespace

std::optional<std::string> convertEnteredUnits(RoomOri& record)
{
    const std::optional<double> factor = forceFactor(record.forceUnit);
    double lengthFactor = 1.0;
    if (record.inputKind == LoadDisplacement) {
        if (record.lengthUnit == Millimetre)
            lengthFactor = 0.5;
        else if (record.lengthUnit == Inch)
            lengthFactor = 25.4 * 0.5;
        else
            return std::string(messageText(MessageCode::IncorrectLengthUnit));
    } else if (record.lengthUnit == Inch) {
        lengthFactor = 0.01;  // strain entered in percent
    }
    if (!factor)
        return std::string(messageText(MessageCode::IncorrectForceUnit));
    if (record.inputKind < LoadDisplacement || record.inputKind > TrueCurve)
        return std::string(messageText(MessageCode::UnknownInputCurve));
    for (CurvePoint& p : record.curves[static_cast<std::size_t>(record.inputKind)]) {
        p.x *= lengthFactor;
        p.y *= *factor;
    }
    return std::nullopt;
}

double specimenArea(double diameter)
{
    return std::round(diameter * diameter * 0.7853981633974483 * 10000.0) / 10000.0;
}

std::optional<std::string> deriveCurveForms(RoomOri& record, double& area)
{
    if (!(record.diameter > 0.0) || !(record.gaugeLength > 0.0) || !std::isfinite(record.diameter)
        || !std::isfinite(record.gaugeLength))
        return std::string(messageText(MessageCode::SpecimenNotPositive));
    if (record.inputKind < LoadDisplacement || record.inputKind > TrueCurve)
        return std::string(messageText(MessageCode::UnknownInputCurve));
    const Curve& entered = record.curves[static_cast<std::size_t>(record.inputKind)];
    if (!allFinite(entered, [](const CurvePoint& p) { return std::array{p.x, p.y}; }))
        return std::string(messageText(MessageCode::CurveNotANumber));

    Curve& loadDisplacement = record.curves[LoadDisplacement];
    Curve& engineering = record.curves[EngineeringCurve];
    switch (record.inputKind) {
    case LoadDisplacement: {
        const double circle = record.diameter * record.diameter * std::atan(1.0);  // pi D^2 / 4
        if (!(circle > 0.0) || !std::isfinite(circle))
            return formatMessage(MessageCode::SpecimenAreaZero, record.diameter);
        engineering.clear();
        engineering.reserve(entered.size());
        for (const CurvePoint& p : entered)
            engineering.push_back({2.0 * p.x / record.gaugeLength, p.y / circle});
        // A tiny specimen turns large loads into stresses beyond any number.
        if (!allFinite(engineering, [](const CurvePoint& p) { return std::array{p.x, p.y}; }))
            return formatMessage(MessageCode::SpecimenGivesNoCurve, record.diameter, record.gaugeLength);
        return std::nullopt;
    }
    case EngineeringCurve:
        engineering = entered;
        break;
    case TrueCurve:
        engineering.clear();
        engineering.reserve(entered.size());
        // exp(eps - 1), not exp(eps) - 1: the screen has always derived it this way.
        for (const CurvePoint& p : entered) {
            const double e = std::exp(p.x - 1.0);
            engineering.push_back({e, p.y / (e + 1.0)});
        }
        break;
    }
    if (area <= 0.0) {
        area = specimenArea(record.diameter);
        // Rounded to four decimals, a specimen under 0.008 mm has no area at all.
        if (!(area > 0.0) || !std::isfinite(area))
            return formatMessage(MessageCode::SpecimenAreaZero, record.diameter);
    }
    loadDisplacement = loadDisplacementFrom(engineering, record.gaugeLength, area);
    if (!allFinite(loadDisplacement, [](const CurvePoint& p) { return std::array{p.x, p.y}; }))
        return formatMessage(MessageCode::SpecimenGivesNoCurve, record.diameter, record.gaugeLength);
    return std::nullopt;
}

std::optional<Curve> trueCurveFromEngineering(const RoomOri& record)
{
    const Curve& engineering = record.curves[EngineeringCurve];
    const long long first = record.startIndex;
    const long long last = record.neckingIndex;
    if (first < 0 || last - first + 1 < 2 || last >= static_cast<long long>(engineering.size()))
        return std::nullopt;
    const double startStrain = engineering[static_cast<std::size_t>(first)].x;
    if (!(startStrain > -1.0))
        return std::nullopt;
    const double shift = std::log(1.0 + startStrain);
    Curve trueCurve;
    trueCurve.reserve(static_cast<std::size_t>(last - first + 1));
    for (long long i = first; i <= last; ++i) {
        const CurvePoint& p = engineering[static_cast<std::size_t>(i)];
        if (!(p.x > -1.0) || !std::isfinite(p.y))
            return std::nullopt;
        trueCurve.push_back({std::log(1.0 + p.x) - shift, (1.0 + p.x) * p.y});
    }
    return trueCurve;
}

}  // namespace zelko
