#include <Eigen/Core>

#include "cold/lawkernels.h"

namespace zelko {

namespace kernels_generic {

namespace {
void expInPlace(double* x, Eigen::Index n) { Eigen::Map<Eigen::ArrayXd>(x, n) = Eigen::Map<Eigen::ArrayXd>(x, n).exp(); }
void logInPlace(double* x, Eigen::Index n) { Eigen::Map<Eigen::ArrayXd>(x, n) = Eigen::Map<Eigen::ArrayXd>(x, n).log(); }
}  // namespace

#include "cold/lawkernels.inc"

}  // namespace kernels_generic

#if defined(ZELKO_HAVE_AVX2_KERNELS)
namespace kernels_avx2 {
const LawKernels* table();
}
#endif

const LawKernels& lawKernels(LawKernelId id)
{
    static const LawKernels* const chosen = [] {
#if defined(ZELKO_HAVE_AVX2_KERNELS)
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
            return kernels_avx2::table();
#endif
        return static_cast<const LawKernels*>(kernels_generic::kKernels);
    }();
    return chosen[static_cast<int>(id)];
}

}  // namespace zelko
