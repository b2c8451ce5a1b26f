#include <gtest/gtest.h>

#include "material/tselikov.h"

namespace zelko {
namespace {

// The constants are exact; only the last digits of double arithmetic may differ.
constexpr double kRoundingTolerance = 1e-7;

TEST(Tselikov, ThirteenRowsFromTheComposition)
{
    const PropertyTable pure = tselikovYoungsModulus({});
    ASSERT_EQ(pure.size(), 13u);
    EXPECT_EQ(pure.front().temperature, 20);
    EXPECT_EQ(pure.back().temperature, 900);
    EXPECT_NEAR(pure.front().value, 29797.2389196, kRoundingTolerance);

    const PropertyTable steel = tselikovYoungsModulus({0.45, 0.7, 0.25, 0.02, 0.02});
    EXPECT_NEAR(steel.back().value, 10909.176165, kRoundingTolerance);
    std::vector<double> temperatures;
    for (const TablePoint& p : steel)
        temperatures.push_back(p.temperature);
    EXPECT_EQ(temperatures, (std::vector<double>{20, 50, 100, 150, 200, 250, 300, 400, 500, 600, 700, 800, 900}));
    // Each element pulls the modulus its own way.
    EXPECT_GT(tselikovYoungsModulus({0, 0, 0, 0, 0.1})[0].value, pure[0].value);
    EXPECT_LT(tselikovYoungsModulus({0, 0.1, 0, 0, 0})[0].value, pure[0].value);
}

}  // namespace
}  // namespace zelko
