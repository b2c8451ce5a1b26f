// vectormath.inc for AVX2 and FMA; called only where the processor has them.
#include <algorithm>

#include <Eigen/Core>

namespace zelko::vectormath_avx2 {
#include "numerics/vectormath.inc"
}  // namespace zelko::vectormath_avx2
