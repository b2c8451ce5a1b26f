#pragma once
// A bounded Levenberg-Marquardt least-squares fit of a cold law (Eigen's), used
// to polish the descent's result and to measure how far the descent stops short.

#include <vector>

#include "cold/coldlaw.h"

namespace zelko {

// Minimises the law's own error over its free parameters from start, within the
// bound table and the law's admissible region. Returns the parameters reached.
std::vector<double> levenbergMarquardt(const ColdLaw& law, std::vector<double> start, int maxEvaluations = 2000);

// Runs levenbergMarquardt from the law's fitted parameters and keeps the result
// only when it lowers the error.
void polishWithLevenbergMarquardt(ColdLaw& law);

}  // namespace zelko
