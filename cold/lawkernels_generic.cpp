#include <Eigen/Core>

#include "cold/lawkernels.h"
#include "numerics/processor.h"

namespace zelko {

namespace kernels_generic {

namespace {
void expInPlace(double* x, Eigen::Index n) { Eigen::Map<Eigen::ArrayXd>(x, n) = Eigen::Map<Eigen::ArrayXd>(x, n).exp(); }
void logInPlace(double* x, Eigen::Index n) { Eigen::Map<Eigen::ArrayXd>(x, n) = Eigen::Map<Eigen::ArrayXd>(x, n).log(); }
}  // namespace

#include "cold/lawkernels.inc"

}  // namespace kernels_generic

const LawKernels& lawKernels(LawKernelId id)
{
    static const LawKernels* const chosen = chooseBuild<LawKernels>(kernels_generic::kTable, kernels_avx2::kKernels);
    return chosen[static_cast<int>(id)];
}

}  // namespace zelko
