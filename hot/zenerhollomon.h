#pragma once
// Zener-Hollomon (model 50): the hyperbolic-sine Arrhenius law
//   Z = ε̇·exp(Q/(R·T)),  σ = (1/α)·asinh((Z/A)^(1/n)),
// with its four constants fitted at each sample strain (one "order" a strain)
// and interpolated linearly in strain between them. T is the data set's
// temperature in °C, taken in kelvin.

#include <array>
#include <vector>

#include "hot/plastic_hot.h"

namespace zelko {

inline constexpr double kGasConstant = 8.314462618;  // J/(mol·K)
inline constexpr double kKelvinOffset = 273.15;

// The columns of the parameter screen's grid, each 80 units wide.
inline constexpr std::array<const char*, 5> kZenerHollomonColumns = {"Order", "alpha", "n", "Q", "lnA"};
inline constexpr int kZenerHollomonColumnWidth = 80;

struct ZenerHollomonOrder {
    double strain = 0.0;
    double alpha = 0.0;  // 1/MPa
    double n = 0.0;
    double Q = 0.0;    // J/mol
    double lnA = 0.0;  // A in 1/s
    bool fitted = false;
};

// A constant typed on the parameter screen (the grid's columns 1 to 4: α, n, Q,
// ln A); the order takes part in the law while α and n are above 0.
void setOrderConstant(ZenerHollomonOrder& order, int column, double value);
double orderConstant(const ZenerHollomonOrder& order, int column);

// The law with one order's constants; 0 where it has no value.
double zenerHollomonStress(const ZenerHollomonOrder& order, double strainRate, double temperature);

class PLASTIC_Zener_Hollomon : public PLASTIC_HOT {
public:
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_Zener_Hollomon>(); }
    PLASTIC_Zener_Hollomon() { modelNumber = 50; }

    double evaluate(double strain, double strainRate, double temperature) const override;

    bool hasLaw() const override { return true; }

    std::vector<ZenerHollomonOrder> orders;  // one per sample strain
};

// A new model 50 with its constants at each sample strain: α from the ratio of the
// slopes of ln ε̇ against σ and against ln σ, then refined by a search on ln α in
// which each α gives n, Q and ln A by linear least squares of ln ε̇ on ln sinh(ασ)
// and 1/(R·T); the α kept is the one with the least squared stress error. A stop
// ends it within one sample strain.
HotFit fitZenerHollomon(const HotDataSet& dataSet, const RunControl& control);

}  // namespace zelko
