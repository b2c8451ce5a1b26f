#pragma once
// The bounded Levenberg-Marquardt least-squares fit (numerics) of a cold law,
// used to polish the descent's result and to measure how far the descent stops short.

#include <vector>

#include "base/runcontrol.h"
#include "cold/coldlaw.h"

namespace zelko {

// Minimises the law's own error over its free parameters from start, within the
// bound table and the law's admissible region. Returns the parameters reached
// (where it stopped, when a stop request came).
std::vector<double> levenbergMarquardt(const ColdLaw& law, std::vector<double> start, int maxEvaluations = 2000,
                                       const RunControl& control = {});

// Runs levenbergMarquardt from the law's fitted parameters and keeps the result
// only when it lowers the error; false (and the law unchanged) after a stop request.
bool polishWithLevenbergMarquardt(ColdLaw& law, const RunControl& control = {});

}  // namespace zelko
