#pragma once
// The peak and steady-state strain model: for each temperature and strain rate,
// the peak strain and stress, the strain at half softening and the steady
// strain. A known kind of the hot family with no law and no library block.

#include <limits>
#include <vector>

#include "hot/plastic_hot.h"

namespace zelko {

// What a cell's curve gave. Only Found has every value; StillSoftening has the
// peak alone; the others have none (the values are then NaN).
enum class MicrosStatus {
    Found,                // peak, softening and a flat tail
    StillSoftening,       // a peak, but the stress still falls at the end
    HardeningOnly,        // no peak: dynamic recovery alone
    NoCurve,              // the cell holds no points
    TooFewPoints,         // too short to show a rise, a peak and a fall
    StrainNotIncreasing,  // the strain goes back, or never moves
    NotFinite,            // a strain or stress is not a finite number
};

struct MicrosCell {
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    double peakStrain = kNone;
    double peakStress = kNone;  // MPa
    double halfStrain = kNone;
    double steadyStrain = kNone;
    double steadyStress = kNone;  // MPa
    MicrosStatus status = MicrosStatus::NoCurve;
};

class PLASTIC_MICROS : public PLASTIC_HOT {
public:
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_MICROS>(); }
    std::vector<std::vector<MicrosCell>> cells;  // [temperature][strain rate]
};

}  // namespace zelko
