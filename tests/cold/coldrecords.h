#pragma once
// Tensile records for the cold tests: true curves drawn from a law, and an
// engineering curve that the fit turns into a true one.

#include <cmath>
#include <cstddef>

#include "models/roomori.h"

namespace zelko::test {

inline RoomOri trueRecord(double (*law)(double), std::size_t count = 80, double maxStrain = 0.2)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    for (std::size_t i = 0; i < count; ++i) {
        const double e = maxStrain * static_cast<double>(i) / static_cast<double>(count - 1);
        record.curves[TrueCurve].push_back({e, law(e)});
    }
    record.neckingIndex = static_cast<int>(count) - 1;
    return record;
}

inline double swiftCurve(double e) { return 500.0 * std::pow(1.0 + e / 0.02, 0.22); }
inline double convexCurve(double e) { return 300.0 + 4000.0 * e * e; }  // wants a Swift exponent above 1


// 41 engineering points, fitted from index 2 to the necking point at 30.
inline RoomOri engineeringRecord()
{
    RoomOri record;
    record.inputKind = EngineeringCurve;
    for (int i = 0; i <= 40; ++i) {
        const double e = 0.004 * i;
        record.curves[EngineeringCurve].push_back({e, swiftCurve(std::log(1 + e)) / (1 + e)});
    }
    record.startIndex = 2;
    record.neckingIndex = 30;
    record.blockLeadValue = 2;
    return record;
}

}  // namespace zelko::test
