#pragma once
// The four-coefficient strain laws of the per-cell hot types (161, 163 to 169,
// 1600). Each describes one curve, at one temperature and one strain rate, as a
// function of the law's strain x (the strain plus the type's offset):
//
//   HenselSpittelStrain  σ = C1·x^C2·e^(C3/x + C4·x)            (ln σ linear in the Cs)
//   SwiftSoftening       σ = C1·x^C2·e^(C3·x + C4·x²)           (ln σ linear in the Cs)
//   VoceLinear           σ = C1 + (C2 − C1)·(1 − e^(−C3·x)) + C4·x
//   HockettSherby        σ = C1 − (C1 − C2)·e^(−C3·x^C4)
//   PowerExponential     σ = C1 + C2·x^C3·e^(−C4·x)

#include <array>
#include <optional>
#include <vector>

namespace zelko {

enum class CellLaw { HenselSpittelStrain, SwiftSoftening, VoceLinear, HockettSherby, PowerExponential };

using CellCoefficients = std::array<double, 4>;

// The law's stress; 0 where it has no finite value (x not above 0 for the power laws).
double cellLawStress(CellLaw law, const CellCoefficients& c, double x);

// Least squares of the law on the points (x, σ); non-finite points and, for the
// logarithmic laws, points with x or σ not above 0 take no part. Nothing when
// fewer than four points remain or the fit has no finite solution. The nonlinear
// coefficients are searched on a thinned curve, the linear ones solved on all of it.
std::optional<CellCoefficients> fitCellLaw(CellLaw law, const std::vector<double>& x, const std::vector<double>& stress);

}  // namespace zelko
