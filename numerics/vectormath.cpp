#include "numerics/vectormath.h"

#include <algorithm>

#include <Eigen/Core>

#include "numerics/processor.h"
#include "numerics/vectormathbuilds.h"

namespace zelko {

namespace vectormath_generic {
#include "numerics/vectormath.inc"
constexpr ArrayFunctions kFunctions{expArray, logArray};
}  // namespace vectormath_generic

namespace {

const ArrayFunctions& chosen()
{
    static const ArrayFunctions* const functions
        = chooseBuild(&vectormath_generic::kFunctions, vectormath_avx2::kFunctions);
    return *functions;
}

}  // namespace

void expInPlace(double* values, std::size_t count) { chosen().exp(values, count); }
void logInPlace(double* values, std::size_t count) { chosen().log(values, count); }

}  // namespace zelko
