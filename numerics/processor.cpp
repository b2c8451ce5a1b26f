#include "numerics/processor.h"

namespace zelko {

bool processorRunsAvx2()
{
#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
    static const bool runs = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    }();
    return runs;
#else
    return false;
#endif
}

}  // namespace zelko
