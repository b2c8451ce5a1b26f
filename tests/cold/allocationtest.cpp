// The descent allocates its buffers once: a fit of 1,000 iterations allocates as
// often as a fit of 10. Global operator new is counted, so this test has its own
// executable.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>

#include "cold/coldlaws.h"

namespace {
std::atomic<long> allocations{0};
}

void* operator new(std::size_t size)
{
    ++allocations;
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace zelko {
namespace {

long allocationsOfFit(ColdLawId id, int iterations, bool necking)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    for (int i = 0; i < 500; ++i) {
        const double e = 0.0004 * i;
        record.curves[TrueCurve].push_back({e, 400 + 500 * (1 - std::exp(-20 * e)) + 3 * std::sin(i)});
    }
    record.neckingIndex = 499;
    record.targetError = 0.0;
    record.maxIterations = iterations;
    record.neckingConstraint = necking;
    const auto law = makeColdLaw(id, record);
    const long before = allocations;
    if (necking)
        law->fitNeckingConstrained();
    else
        law->fitPlain();
    return allocations - before;
}

TEST(ColdDescentAllocations, DoNotGrowWithTheIterations)
{
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        EXPECT_EQ(allocationsOfFit(id, 10, false), allocationsOfFit(id, 1000, false));
    }
    EXPECT_EQ(allocationsOfFit(ColdLawId::Swift, 5, true), allocationsOfFit(ColdLawId::Swift, 50, true));
}

}  // namespace
}  // namespace zelko
