#pragma once
// Bounded least squares of a cold law's plain error (numerics' bounded
// Levenberg-Marquardt with the laws' own derivatives): the least-squares method
// beside the descent, and the polish after it.

#include <vector>

#include "base/runcontrol.h"
#include "cold/coldlaw.h"

namespace zelko {

struct LawLeastSquares {
    std::vector<double> parameters;  // empty when no start could be fitted
    double error = 0.0;              // the law's plain error there
    FitEnd end;
    bool cancelled = false;  // a stop request ended it; nothing of use
};

// Where the method starts, in this order and without repeats: the law's start,
// the log-log line (power laws), and the best nodes of a search over the
// nonlinear parameters with the linear ones solved at each node.
std::vector<std::vector<double>> leastSquaresStarts(const ColdLaw& law);

// The law fitted from one start within its bound table and admissible region.
LawLeastSquares fitLawFromStart(const ColdLaw& law, const std::vector<double>& start, const RunControl& control = {});

// The law fitted from each of its starts and of more (the descent's end, say),
// keeping the lowest error. Progress runs from 0 to 100 over the starts.
LawLeastSquares fitLawLeastSquares(const ColdLaw& law, const std::vector<std::vector<double>>& more = {},
                                   const RunControl& control = {});

}  // namespace zelko
