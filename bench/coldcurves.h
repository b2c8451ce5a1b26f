#pragma once
// Tensile records for the cold benchmarks: a clean Swift curve and a noisy one
// with a yield plateau, 2,000 true points each.

#include <cmath>
#include <random>

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

}  // namespace zelko::bench
