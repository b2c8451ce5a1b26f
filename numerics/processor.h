#pragma once
// The one place that chooses between the plain and the AVX2 build of a kernel
// table (numerics/vectormath, cold/lawkernels). A file built for AVX2 offers its
// table as data, null when the compiler did not target AVX2 and FMA, so nothing
// of it runs before the processor has been asked, and a plain build never runs it.

namespace zelko {

// Whether the processor runs AVX2 and FMA code; asked once.
bool processorRunsAvx2();

template <class Table>
const Table* chooseBuild(const Table* plain, const Table* avx2)
{
    return avx2 && processorRunsAvx2() ? avx2 : plain;
}

}  // namespace zelko
