#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "numerics/leastsquares.h"

namespace zelko {
namespace {

// Exact data through the normal equations: agreement to rounding.
constexpr double kExactTolerance = 1e-12;
// Levenberg-Marquardt stops on relative reductions of about 1e-8.
constexpr double kSolverTolerance = 1e-6;

TEST(PowerLawFit, RecoversKAndNAndSkipsWhatHasNoLogarithm)
{
    std::vector<double> x, y;
    for (int i = 1; i <= 20; ++i) {
        x.push_back(0.01 * i);
        y.push_back(700.0 * std::pow(0.01 * i, 0.21));
    }
    auto fit = fitPowerLaw(x, y);
    ASSERT_TRUE(fit);
    EXPECT_NEAR(std::exp(fit->lnK), 700.0, 700.0 * kExactTolerance);
    EXPECT_NEAR(fit->n, 0.21, kExactTolerance);

    // A zero strain, a NaN and a negative stress take no part.
    x.insert(x.begin(), {0.0, 0.5, 0.6});
    y.insert(y.begin(), {100.0, std::nan(""), -5.0});
    fit = fitPowerLaw(x, y);
    ASSERT_TRUE(fit);
    EXPECT_NEAR(fit->n, 0.21, kExactTolerance);

    // With an offset the law is y = offset + K x^n: Ludwik's start.
    for (double& v : y)
        v += 250.0;
    fit = fitPowerLaw(x, y, 250.0);
    ASSERT_TRUE(fit);
    EXPECT_NEAR(fit->n, 0.21, 1e-9);
}

TEST(PowerLawFit, NeedsTwoDistinctUsableStrains)
{
    EXPECT_FALSE(fitPowerLaw(std::vector<double>{0.1}, std::vector<double>{200.0}));
    EXPECT_FALSE(fitPowerLaw(std::vector<double>{0.1, 0.1, 0.1}, std::vector<double>{200.0, 210.0, 220.0}));
    EXPECT_FALSE(fitPowerLaw(std::vector<double>{0.1, 0.2}, std::vector<double>{-1.0, 200.0}));
    EXPECT_TRUE(fitPowerLaw(std::vector<double>{0.1, 0.2}, std::vector<double>{100.0, 200.0}));
}

// y = a e^(b x) on eleven points.
struct Exponential {
    std::vector<double> x, y;
    Eigen::VectorXd lowestSeen = Eigen::VectorXd::Constant(2, std::numeric_limits<double>::infinity());
    Eigen::VectorXd highestSeen = Eigen::VectorXd::Constant(2, -std::numeric_limits<double>::infinity());

    Exponential(double a, double b)
    {
        for (int i = 0; i <= 10; ++i) {
            x.push_back(0.1 * i);
            y.push_back(a * std::exp(b * 0.1 * i));
        }
    }
    void see(const Eigen::VectorXd& p)
    {
        lowestSeen = lowestSeen.cwiseMin(p);
        highestSeen = highestSeen.cwiseMax(p);
    }
    ResidualProblem problem()
    {
        return {static_cast<int>(x.size()),
                [this](const Eigen::VectorXd& p, Eigen::VectorXd& r) {
                    see(p);
                    for (std::size_t i = 0; i < x.size(); ++i)
                        r[static_cast<Eigen::Index>(i)] = p[0] * std::exp(p[1] * x[i]) - y[i];
                },
                [this](const Eigen::VectorXd& p, Eigen::MatrixXd& j) {
                    see(p);
                    for (std::size_t i = 0; i < x.size(); ++i) {
                        const auto row = static_cast<Eigen::Index>(i);
                        j(row, 0) = std::exp(p[1] * x[i]);
                        j(row, 1) = p[0] * x[i] * std::exp(p[1] * x[i]);
                    }
                }};
    }
};

TEST(BoundedLevenbergMarquardt, FindsTheOptimumInsideTheBounds)
{
    Exponential data(3.0, 1.5);
    const BoundedFit fit = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 0.5),
                                                     Eigen::Vector2d(0.0, -5.0), Eigen::Vector2d(10.0, 5.0), 2000);
    EXPECT_FALSE(fit.cancelled);
    EXPECT_NEAR(fit.x[0], 3.0, kSolverTolerance);
    EXPECT_NEAR(fit.x[1], 1.5, kSolverTolerance);
}

TEST(BoundedLevenbergMarquardt, SettlesOnABoundAndAsksOnlyInsideThem)
{
    Exponential data(3.0, 1.5);
    const Eigen::Vector2d lower(0.0, -5.0), upper(2.0, 5.0);  // a below its best value
    const BoundedFit fit = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 0.5), lower, upper, 2000);
    EXPECT_EQ(fit.x[0], 2.0);
    EXPECT_GT(fit.x[1], 1.5);  // b makes up for the missing height
    for (int k = 0; k < 2; ++k) {
        EXPECT_GE(data.lowestSeen[k], lower[k]);
        EXPECT_LE(data.highestSeen[k], upper[k]);
    }
}

TEST(BoundedLevenbergMarquardt, ReturnsTheStartWhenItCannotOrMayNotRun)
{
    Exponential data(3.0, 1.5);
    ResidualProblem few = data.problem();
    few.values = 1;  // fewer residuals than parameters
    const Eigen::Vector2d start(9.0, 9.0);  // outside the bounds, and kept so
    EXPECT_EQ(boundedLevenbergMarquardt(few, start, Eigen::Vector2d(0, 0), Eigen::Vector2d(5, 5), 100).x, start);

    std::stop_source stop;
    stop.request_stop();
    const BoundedFit stopped = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 0.5),
                                                         Eigen::Vector2d(0, -5), Eigen::Vector2d(10, 5), 2000,
                                                         RunControl{{}, stop.get_token()});
    EXPECT_TRUE(stopped.cancelled);
    EXPECT_EQ(stopped.x, Eigen::Vector2d(1.0, 0.5));
}

}  // namespace
}  // namespace zelko
