// The kernels built for AVX2 and FMA, with glibc's vector exp and log (four
// doubles at a time). Only called when the processor has both.
#include "cold/lawkernels.h"

#if defined(__AVX2__) && defined(__FMA__)
#include <Eigen/Core>
#include <cmath>

#if defined(__GLIBC__)
#include <immintrin.h>
extern "C" __m256d _ZGVdN4v_exp(__m256d);
extern "C" __m256d _ZGVdN4v_log(__m256d);
#endif

namespace zelko::kernels_avx2 {

namespace {

template <class Scalar, class Vector>
void applyInPlace(double* x, Eigen::Index n, Scalar scalar, [[maybe_unused]] Vector vector)
{
    Eigen::Index i = 0;
#if defined(__GLIBC__)
    for (; i + 4 <= n; i += 4)
        _mm256_storeu_pd(x + i, vector(_mm256_loadu_pd(x + i)));
#endif
    for (; i < n; ++i)
        x[i] = scalar(x[i]);
}

#if defined(__GLIBC__)
void expInPlace(double* x, Eigen::Index n)
{
    applyInPlace(x, n, [](double v) { return std::exp(v); }, _ZGVdN4v_exp);
}
void logInPlace(double* x, Eigen::Index n)
{
    applyInPlace(x, n, [](double v) { return std::log(v); }, _ZGVdN4v_log);
}
#else
void expInPlace(double* x, Eigen::Index n) { Eigen::Map<Eigen::ArrayXd>(x, n) = Eigen::Map<Eigen::ArrayXd>(x, n).exp(); }
void logInPlace(double* x, Eigen::Index n) { Eigen::Map<Eigen::ArrayXd>(x, n) = Eigen::Map<Eigen::ArrayXd>(x, n).log(); }
#endif

}  // namespace

#include "cold/lawkernels.inc"

extern const LawKernels* const kKernels = kTable;

}  // namespace zelko::kernels_avx2
#else
namespace zelko::kernels_avx2 {
extern const LawKernels* const kKernels = nullptr;
}  // namespace zelko::kernels_avx2
#endif
