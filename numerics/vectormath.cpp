#include "numerics/vectormath.h"

#include <algorithm>

#include <Eigen/Core>

namespace zelko {

namespace vectormath_generic {
#include "numerics/vectormath.inc"
}  // namespace vectormath_generic

#if defined(ZELKO_HAVE_AVX2_VECTORMATH)
namespace vectormath_avx2 {
void expArray(double* values, std::size_t count);
void logArray(double* values, std::size_t count);
}  // namespace vectormath_avx2
#endif

namespace {

using ArrayFunction = void (*)(double*, std::size_t);

struct Functions {
    ArrayFunction exp;
    ArrayFunction log;
};

const Functions& chosen()
{
    static const Functions functions = [] {
#if defined(ZELKO_HAVE_AVX2_VECTORMATH)
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
            return Functions{vectormath_avx2::expArray, vectormath_avx2::logArray};
#endif
        return Functions{vectormath_generic::expArray, vectormath_generic::logArray};
    }();
    return functions;
}

}  // namespace

void expInPlace(double* values, std::size_t count) { chosen().exp(values, count); }
void logInPlace(double* values, std::size_t count) { chosen().log(values, count); }

}  // namespace zelko
