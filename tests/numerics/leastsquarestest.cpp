#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "numerics/leastsquares.h"

namespace zelko {
namespace {

// Exact data through the normal equations: agreement to rounding.
constexpr double kExactTolerance = 1e-12;
// Levenberg-Marquardt stops on relative reductions of 1e-10 of the sum of squares.
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
    double domainFloorOfB = -std::numeric_limits<double>::infinity();  // below it the problem refuses b

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
        return {static_cast<int>(x.size()), [this](const Eigen::VectorXd& p, Eigen::VectorXd& r, Eigen::MatrixXd* j) {
                    see(p);
                    if (p[1] < domainFloorOfB)
                        return false;
                    for (std::size_t i = 0; i < x.size(); ++i) {
                        const auto row = static_cast<Eigen::Index>(i);
                        r[row] = p[0] * std::exp(p[1] * x[i]) - y[i];
                        if (j) {
                            (*j)(row, 0) = std::exp(p[1] * x[i]);
                            (*j)(row, 1) = p[0] * x[i] * std::exp(p[1] * x[i]);
                        }
                    }
                    return true;
                }};
    }
};

TEST(BoundedLevenbergMarquardt, FindsTheOptimumInsideTheBounds)
{
    Exponential data(3.0, 1.5);
    const BoundedFit fit = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 0.5),
                                                     Eigen::Vector2d(0.0, -5.0), Eigen::Vector2d(10.0, 5.0));
    EXPECT_TRUE(fit.usable());
    EXPECT_EQ(fit.stop, FitStop::Converged);
    EXPECT_FALSE(fit.bounds.any());
    EXPECT_NEAR(fit.x[0], 3.0, kSolverTolerance);
    EXPECT_NEAR(fit.x[1], 1.5, kSolverTolerance);
    EXPECT_LT(fit.sumOfSquares, 1e-16);
}

TEST(BoundedLevenbergMarquardt, SettlesOnABoundAndAsksOnlyInsideThem)
{
    Exponential data(3.0, 1.5);
    const Eigen::Vector2d lower(0.0, -5.0), upper(2.0, 5.0);  // a below its best value
    const BoundedFit fit = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 0.5), lower, upper);
    EXPECT_EQ(fit.x[0], 2.0);
    EXPECT_GT(fit.x[1], 1.5);  // b makes up for the missing height
    for (int k = 0; k < 2; ++k) {
        EXPECT_GE(data.lowestSeen[k], lower[k]);
        EXPECT_LE(data.highestSeen[k], upper[k]);
    }
    // Held at a's upper bound, and said so.
    EXPECT_EQ(fit.stop, FitStop::AtBound);
    EXPECT_EQ(fit.bounds.upper, 1u);
    EXPECT_EQ(fit.bounds.lower, 0u);
    EXPECT_TRUE(fit.bounds.at(0));
    EXPECT_FALSE(fit.bounds.at(1));
}

TEST(BoundedLevenbergMarquardt, ReachesTheOptimumOfTheSameProblemAtTheBoundFromEitherSide)
{
    // The bounded optimum is unique here: starting high or low in b must end alike.
    const Eigen::Vector2d lower(0.0, -5.0), upper(2.0, 5.0);
    Exponential low(3.0, 1.5), high(3.0, 1.5);
    const BoundedFit a = boundedLevenbergMarquardt(low.problem(), Eigen::Vector2d(0.1, -4.0), lower, upper);
    const BoundedFit b = boundedLevenbergMarquardt(high.problem(), Eigen::Vector2d(1.9, 4.5), lower, upper);
    EXPECT_NEAR(a.x[1], b.x[1], kSolverTolerance);
    EXPECT_NEAR(a.sumOfSquares, b.sumOfSquares, 1e-9 * b.sumOfSquares);
}

TEST(BoundedLevenbergMarquardt, RefusesStepsOutsideTheDomainAndStopsOnTheIterationLimit)
{
    // b may not go below 1.6 although the optimum (1.5) lies there: the solver
    // creeps up to the edge of the domain and never asks beyond it twice in a row.
    Exponential data(3.0, 1.5);
    data.domainFloorOfB = 1.6;
    const BoundedFit fit = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 2.5),
                                                     Eigen::Vector2d(0.0, -5.0), Eigen::Vector2d(10.0, 5.0));
    ASSERT_TRUE(fit.usable());
    EXPECT_GE(fit.x[1], 1.6);
    EXPECT_LT(fit.x[1], 1.7);
    EXPECT_NE(fit.stop, FitStop::IterationLimit);

    LeastSquaresSettings few;
    few.maxIterations = 2;
    Exponential again(3.0, 1.5);
    const BoundedFit limited = boundedLevenbergMarquardt(again.problem(), Eigen::Vector2d(1.0, 0.5),
                                                         Eigen::Vector2d(0.0, -5.0), Eigen::Vector2d(10.0, 5.0), few);
    EXPECT_EQ(limited.stop, FitStop::IterationLimit);
    EXPECT_EQ(limited.iterations, 2);
    EXPECT_GT(limited.sumOfSquares, 1e-6);  // two steps are not enough from there
}

TEST(BoundedLevenbergMarquardt, ReturnsTheStartWhenItCannotOrMayNotRun)
{
    Exponential data(3.0, 1.5);
    ResidualProblem few = data.problem();
    few.values = 1;  // fewer residuals than parameters
    const Eigen::Vector2d start(9.0, 9.0);  // outside the bounds, and kept so
    const BoundedFit unrun = boundedLevenbergMarquardt(few, start, Eigen::Vector2d(0, 0), Eigen::Vector2d(5, 5));
    EXPECT_EQ(unrun.x, start);
    EXPECT_FALSE(unrun.usable());

    // A start outside the domain is no start.
    Exponential refusing(3.0, 1.5);
    refusing.domainFloorOfB = 1.0;
    const BoundedFit outside = boundedLevenbergMarquardt(refusing.problem(), Eigen::Vector2d(1.0, 0.5),
                                                         Eigen::Vector2d(0, -5), Eigen::Vector2d(10, 5));
    EXPECT_FALSE(outside.usable());
    EXPECT_EQ(outside.x, Eigen::Vector2d(1.0, 0.5));

    std::stop_source stop;
    stop.request_stop();
    const BoundedFit stopped = boundedLevenbergMarquardt(data.problem(), Eigen::Vector2d(1.0, 0.5),
                                                         Eigen::Vector2d(0, -5), Eigen::Vector2d(10, 5), {},
                                                         RunControl{{}, stop.get_token()});
    EXPECT_EQ(stopped.stop, FitStop::Cancelled);
    EXPECT_FALSE(stopped.usable());
    EXPECT_EQ(stopped.x, Eigen::Vector2d(1.0, 0.5));
}

TEST(BoundedLevenbergMarquardt, HearsAStopBetweenSteps)
{
    // The stop comes with the third evaluation: the fit ends there, cancelled.
    Exponential data(3.0, 1.5);
    std::stop_source stop;
    ResidualProblem problem = data.problem();
    int calls = 0;
    const auto inner = problem.evaluate;
    problem.evaluate = [&](const Eigen::VectorXd& p, Eigen::VectorXd& r, Eigen::MatrixXd* j) {
        if (++calls == 3)
            stop.request_stop();
        return inner(p, r, j);
    };
    const BoundedFit fit = boundedLevenbergMarquardt(problem, Eigen::Vector2d(1.0, 0.5), Eigen::Vector2d(0, -5),
                                                     Eigen::Vector2d(10, 5), {}, RunControl{{}, stop.get_token()});
    EXPECT_EQ(fit.stop, FitStop::Cancelled);
    EXPECT_EQ(calls, 3);
}

TEST(FitStopText, NamesEveryStop)
{
    for (const FitStop stop : {FitStop::Converged, FitStop::AtBound, FitStop::IterationLimit, FitStop::StepFloor,
                               FitStop::Cancelled})
        EXPECT_STRNE(fitStopText(stop), "");
    EXPECT_STRNE(fitStopText(FitStop::Converged), fitStopText(FitStop::AtBound));
}

}  // namespace
}  // namespace zelko
