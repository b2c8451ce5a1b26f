#pragma once
// The laws over all fitted points at once: model stresses (with what the gradient
// needs kept in cache arrays) and the gradient of the sum of squares. Compiled
// twice, for plain x86-64 and for AVX2, and chosen once (numerics/processor.h).

#include <cstddef>

namespace zelko {

inline constexpr int kKernelCacheArrays = 3;

using EvaluateKernel = void (*)(const double* strain, std::size_t n, const double* p, double* model,
                                double* const* cache);
// g[k] = sum factor_i d(sigma_i)/d(p_k), from the cache of p's evaluation.
using GradientKernel = void (*)(const double* strain, std::size_t n, const double* p, const double* factor,
                                double* const* cache, double* g);

struct LawKernels {
    EvaluateKernel evaluate;
    GradientKernel gradient;
};

enum class LawKernelId { Swift, Hollomon, Ludwik, KimTuan, HockettSherby, VoceGeneral, ElMagd, VoyiadjisAbed, Count };

const LawKernels& lawKernels(LawKernelId id);

namespace kernels_avx2 {
// The table of lawkernels_avx2.cpp, indexed by LawKernelId; null unless that
// file was built for AVX2 and FMA.
extern const LawKernels* const kKernels;
}  // namespace kernels_avx2

}  // namespace zelko
