#pragma once
// Hensel-Spittel by bounded least squares within the descent's guards, of the
// stress error or of the error of ln σ (numerics' bounded Levenberg-Marquardt in
// ln A and the exponents, with their exact derivatives).

#include <vector>

#include "base/runcontrol.h"
#include "hot/plastic_17.h"
#include "numerics/fitmethod.h"

namespace zelko {

struct HenselSpittelLeastSquares {
    HenselSpittelParameters parameters{};
    double sumOfSquares = 0.0;  // of the objective fitted, weighted by the rates' weights
    FitStop stop = FitStop::Converged;
    BoundFlags bounds;  // by parameter index, A first
    int iterations = 0;
    long evaluations = 0;
    bool usable = false;     // some start could be fitted
    bool cancelled = false;  // a stop request ended it
};

// The log-linear fit first (ln σ by least squares within the guards, from the
// first start), then, for the stress error, a fit from its end and from every
// start; the least sum of squares is kept. Switched-off parameters and m6 stay
// at 0; nothing is usable when A is switched off. Starts are clamped into the guards.
HenselSpittelLeastSquares fitHenselSpittelLeastSquares(const HenselSpittelObjective& objective, HotObjective kind,
                                                       unsigned switches,
                                                       const std::vector<HenselSpittelParameters>& starts,
                                                       const RunControl& control = {});

}  // namespace zelko
