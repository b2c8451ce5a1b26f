#pragma once
// The array functions of one instruction-set build of vectormath.inc.

#include <cstddef>

namespace zelko {

struct ArrayFunctions {
    void (*exp)(double* values, std::size_t count);
    void (*log)(double* values, std::size_t count);
};

namespace vectormath_avx2 {
// Null unless vectormath_avx2.cpp was built for AVX2 and FMA.
extern const ArrayFunctions* const kFunctions;
}  // namespace vectormath_avx2

}  // namespace zelko
