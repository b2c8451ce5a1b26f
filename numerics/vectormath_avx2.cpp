// vectormath.inc for AVX2 and FMA; chosen only where the processor has them.
#include "numerics/vectormathbuilds.h"

#if defined(__AVX2__) && defined(__FMA__)
#include <algorithm>

#include <Eigen/Core>

namespace zelko::vectormath_avx2 {
#include "numerics/vectormath.inc"
constexpr ArrayFunctions kBuild{expArray, logArray};
extern const ArrayFunctions* const kFunctions = &kBuild;
}  // namespace zelko::vectormath_avx2
#else
namespace zelko::vectormath_avx2 {
extern const ArrayFunctions* const kFunctions = nullptr;
}  // namespace zelko::vectormath_avx2
#endif
