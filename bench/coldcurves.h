#pragma once
// Tensile records for the cold benchmarks: a clean Swift curve and a noisy one
// with a yield plateau, 2,000 true points each; and the measured tensile tests of
// tests/data/measured (lucasguesserts/mechanical_testing, MIT licence) as the
// tensile screen reduces them.

#include <cmath>
#include <random>
#include <stdexcept>
#include <string>

#include "base/fileio.h"
#include "cold/curvefile.h"
#include "cold/tensilereduction.h"
#include "models/roomori.h"

namespace zelko::bench {

inline RoomOri trueCurveRecord(bool noisy, std::size_t count = 2000)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    std::mt19937 generator(1045);
    std::normal_distribution<double> noise(0.0, 4.0);  // MPa, a load cell's scatter
    for (std::size_t i = 0; i < count; ++i) {
        const double strain = 0.15 * static_cast<double>(i) / static_cast<double>(count - 1);
        double stress = 650.0 * std::pow(1.0 + strain / 0.008, 0.18);
        if (noisy)
            stress = 420.0 + 520.0 * (1.0 - std::exp(-22.0 * strain)) + 300.0 * strain + noise(generator);
        record.curves[TrueCurve].push_back({strain, stress});
    }
    record.startIndex = 0;
    record.neckingIndex = static_cast<std::int32_t>(count - 1);
    record.endIndex = record.neckingIndex;
    return record;
}

// A measured load-displacement test (mm, N) of a round specimen (of diameter 10 mm
// and gauge length 75 mm unless told), fitted from the start row on to the largest
// engineering stress, as the tensile screen makes it.
inline RoomOri measuredTensileRecord(const std::string& path, int start, double diameter = 10.0,
                                     double gaugeLength = 75.0)
{
    std::string error;
    const auto bytes = readFileBytes(path, error);
    std::optional<Curve> curve = bytes ? readCurveText(*bytes, error) : std::nullopt;
    if (!curve)
        throw std::runtime_error(path + ": " + error);
    RoomOri record;
    record.inputKind = LoadDisplacement;
    record.diameter = diameter;
    record.gaugeLength = gaugeLength;
    record.curves[LoadDisplacement] = std::move(*curve);
    double area = 0.0;
    if (convertEnteredUnits(record) || deriveCurveForms(record, area))
        throw std::runtime_error(path + ": cannot be reduced");
    const Curve& engineering = record.curves[EngineeringCurve];
    int necking = 0;
    for (std::size_t i = 0; i < engineering.size(); ++i)
        if (engineering[i].y > engineering[static_cast<std::size_t>(necking)].y)
            necking = static_cast<int>(i);
    record.startIndex = start;
    record.neckingIndex = necking;
    record.endIndex = static_cast<int>(engineering.size()) - 1;
    return record;
}

}  // namespace zelko::bench
