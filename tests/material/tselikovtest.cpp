#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "material/tselikov.h"

namespace zelko {
namespace {

// The constants are exact; only the last digits of double arithmetic may differ.
constexpr double kRoundingTolerance = 1e-7;

PropertyTable estimated(const ChemicalComposition& composition)
{
    const ModulusEstimate estimate = tselikovYoungsModulus(composition);
    EXPECT_TRUE(estimate.ok) << estimate.message;
    EXPECT_TRUE(estimate.message.empty());
    return estimate.table;
}

TEST(Tselikov, ThirteenRowsFromTheComposition)
{
    const PropertyTable pure = estimated({});
    ASSERT_EQ(pure.size(), 13u);
    EXPECT_EQ(pure.front().temperature, 20);
    EXPECT_EQ(pure.back().temperature, 900);
    EXPECT_NEAR(pure.front().value, 29797.2389196, kRoundingTolerance);

    const PropertyTable steel = estimated({0.45, 0.7, 0.25, 0.02, 0.02});
    ASSERT_EQ(steel.size(), 13u);
    EXPECT_NEAR(steel.back().value, 10909.176165, kRoundingTolerance);
    std::vector<double> temperatures;
    for (const TablePoint& p : steel)
        temperatures.push_back(p.temperature);
    EXPECT_EQ(temperatures, (std::vector<double>{20, 50, 100, 150, 200, 250, 300, 400, 500, 600, 700, 800, 900}));
    // Each element pulls the modulus its own way.
    EXPECT_GT(estimated({0, 0, 0, 0, 0.1})[0].value, pure[0].value);
    EXPECT_LT(estimated({0, 0.1, 0, 0, 0})[0].value, pure[0].value);
}

TEST(Tselikov, TheWholeRangeOfContentsIsAccepted)
{
    // Silicon and sulfur only raise the sum, so even a content of 100 wt% gives a modulus.
    EXPECT_EQ(estimated({0, 0, 100, 0, 0}).size(), 13u);
    EXPECT_EQ(estimated({0, 0, 0, 0, 100}).size(), 13u);
    // Exactly the whole, in pieces.
    EXPECT_EQ(estimated({0.5, 0, 60, 0, 39.5}).size(), 13u);
}

// Refused, with an empty table and a message that names what is wrong.
void expectRefused(const ChemicalComposition& composition, const std::string& mention)
{
    const ModulusEstimate estimate = tselikovYoungsModulus(composition);
    EXPECT_FALSE(estimate.ok);
    EXPECT_TRUE(estimate.table.empty());
    EXPECT_NE(estimate.message.find(mention), std::string::npos) << estimate.message;
}

TEST(Tselikov, RefusesCompositionsNoSteelHas)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    // A minus sign typed by mistake, a content in per mille, and values a script computed from nothing.
    expectRefused({-0.1, 0.7, 0.25, 0.02, 0.02}, "carbon (C) content -0.1 wt%");
    expectRefused({0.45, 0.7, 0.25, 0.02, 250}, "sulfur (S) content 250 wt%");
    expectRefused({0.45, nan, 0.25, 0.02, 0.02}, "manganese (Mn)");
    expectRefused({0.45, 0.7, inf, 0.02, 0.02}, "silicon (Si)");
    expectRefused({0.45, 0.7, 0.25, -inf, 0.02}, "phosphorus (P)");
    // Each content possible alone, but not together.
    expectRefused({0, 0, 60, 0, 50}, "add up to 110 wt% (silicon (Si) alone 60 wt%)");
}

TEST(Tselikov, RefusesAModulusOfZeroOrLess)
{
    // Manganese lowers the sum: 70 wt% takes it below zero at every temperature.
    expectRefused({0, 70, 0, 0, 0}, "at 20 C is -");
    expectRefused({0, 70, 0, 0, 0}, "manganese (Mn) content 70 wt%");
    // 1.5 wt% carbon (a cast iron) turns the quadratic carbon term negative; 20 C still holds, 900 C not.
    const ModulusEstimate castIron = tselikovYoungsModulus({1.5, 0, 0, 0, 0});
    EXPECT_FALSE(castIron.ok);
    EXPECT_NE(castIron.message.find("carbon (C)"), std::string::npos) << castIron.message;
    EXPECT_EQ(castIron.message.find("at 20 C"), std::string::npos) << castIron.message;
    expectRefused({0, 0, 0, 40, 0}, "phosphorus (P) content 40 wt%");
}

}  // namespace
}  // namespace zelko
