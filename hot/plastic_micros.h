#pragma once
// The peak and steady-state strain model: for each temperature and strain rate,
// the peak strain and stress, the strain at half softening and the steady
// strain. A known kind of the hot family with no law and no library block.

#include <vector>

#include "hot/plastic_hot.h"

namespace zelko {

struct MicrosCell {
    double peakStrain = 0.0;
    double peakStress = 0.0;  // MPa
    double halfStrain = 0.0;
    double steadyStrain = 0.0;
};

class PLASTIC_MICROS : public PLASTIC_HOT {
public:
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_MICROS>(); }
    std::vector<std::vector<MicrosCell>> cells;  // [temperature][strain rate]
};

}  // namespace zelko
