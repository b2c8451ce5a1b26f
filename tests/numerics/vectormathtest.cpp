#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "numerics/processor.h"
#include "numerics/vectormath.h"

namespace zelko {
namespace {

// Both builds' exp and log are within a few units in the last place.
constexpr double kRelativeTolerance = 1e-15;

TEST(ProcessorDispatch, TakesTheAvx2BuildOnlyWhenThereIsOneAndTheProcessorRunsIt)
{
    const int plain = 1, avx2 = 2;
    EXPECT_EQ(chooseBuild(&plain, static_cast<const int*>(nullptr)), &plain);
    EXPECT_EQ(chooseBuild(&plain, &avx2), processorRunsAvx2() ? &avx2 : &plain);
}

TEST(VectorMath, AgreesWithTheScalarFunctionsWhateverTheLengthOfTheTail)
{
    for (std::size_t count = 0; count <= 11; ++count) {
        std::vector<double> x(count), e(count), l(count);
        for (std::size_t i = 0; i < count; ++i)
            x[i] = e[i] = l[i] = 0.37 * static_cast<double>(i) - 1.3;
        expInPlace(e.data(), count);
        for (double& v : l)
            v = std::fabs(v) + 0.01;
        std::vector<double> positive = l;
        logInPlace(l.data(), count);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_NEAR(e[i], std::exp(x[i]), kRelativeTolerance * std::exp(x[i])) << count << " " << i;
            EXPECT_NEAR(l[i], std::log(positive[i]), 4 * kRelativeTolerance) << count << " " << i;
        }
    }
}

}  // namespace
}  // namespace zelko
