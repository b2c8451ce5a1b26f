#pragma once
// The hot-compression data set and base of the hot model types.

#include <array>
#include <vector>

#include "models/plastic.h"

namespace zelko {

// One point of a hot flow curve.
struct HotCurvePoint {
    double c0 = 0.0;  // optional leading value of the raw text
    double strain = 0.0;
    double stress = 0.0;  // MPa
    friend bool operator==(const HotCurvePoint&, const HotCurvePoint&) = default;
};
using HotCurve = std::vector<HotCurvePoint>;

enum HenselSpittelParameter { A = 0, M1, M2, M3, M4, M5, M6, M7, M8, M9, kHenselSpittelParameterCount };

class PLASTIC_HOT : public Plastic {
public:
    PLASTIC_HOT() { modelKind = HotModel; }

    void readMaterialBlock(TextReader& in, int major, int minor) override;
    void writeMaterialBlock(TextWriter& out, int major, int minor) const override;
    // The type's own step after a fit (its coefficient table); nothing here.
    virtual void fillCellCoefficients() {}

    // The material reader's three-column flag is the hot flag of the block.
    bool hasThreeColumns() const { return hotFlag; }
    void setHasThreeColumns(bool value) { hotFlag = value; }

    // The cell's curve; an empty one for a cell the grid doesn't have.
    const HotCurve& curve(std::size_t temperatureIndex, std::size_t rateIndex) const;

    std::vector<double> strainRates;   // ascending, 1/s
    std::vector<double> temperatures;  // ascending
    std::vector<double> strains;       // ascending sample strains
    std::vector<double> fourthValues;  // the fourth ascending list of the screen
    std::vector<std::vector<HotCurve>> curves;  // [temperature][strain rate]
    bool hasIndexColumn = false;
    bool hotFlag = false;
    double strainMin = 0.0;
    double strainMax = 0.0;
    double secondMin = 0.0;
    double secondMax = 0.0;
    double maxStress = 0.0;
    double strainOffset = 0.0;
    std::array<double, kHenselSpittelParameterCount> parameters{};  // A, m1 .. m9
};

}  // namespace zelko
