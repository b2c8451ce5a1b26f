#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "numerics/descent.h"

namespace zelko {
namespace {

using Point = std::array<double, 2>;

// A problem that can never improve: a constant objective with a unit gradient.
struct FlatProblem {
    double objective(const Point&) const { return 1.0; }
    void gradient(const Point&, Point& g) const { g = {0.6, 0.8}; }
};

struct Bowl {  // (x - 3)² + (y + 1)²
    double objective(const Point& p) const { return (p[0] - 3) * (p[0] - 3) + (p[1] + 1) * (p[1] + 1); }
    void gradient(const Point& p, Point& g) const { g = {2 * (p[0] - 3), 2 * (p[1] + 1)}; }
};

struct Slope {  // falls without end as x grows
    double objective(const Point& p) const { return -p[0]; }
    void gradient(const Point&, Point& g) const { g = {-1, 0}; }
};

// A problem whose trials are all turned away by its check, and which counts what it was asked.
struct Turned {
    TrialCheck answer;
    int checks = 0;
    int evaluations = 0;
    double objective(const Point&) { return ++evaluations == 1 ? 1.0 : 0.0; }
    void gradient(const Point&, Point& g) const { g = {1, 0}; }
    TrialCheck check(Point&, const Point&)
    {
        ++checks;
        return answer;
    }
};

// The progress a descent reports.
struct Reports {
    std::vector<int> percents;
    RunControl control()
    {
        RunControl c;
        c.progress = [this](int v) { percents.push_back(v); };
        return c;
    }
};

int halvingsBelow(double floor)
{
    int k = 0;
    for (double step = 1.0; !(step < floor); step *= 0.5)
        ++k;
    return k;  // 2^-k is the first power of two below the floor
}

TEST(RestartingStepRules, HalveToTheFloorWhenNothingImproves)
{
    Point p = {0, 0};
    Reports reports;
    const DescentOutcome out = steepestDescent<RestartingStepRules>(FlatProblem{}, p, {100, 1.0, 0}, reports.control());
    EXPECT_EQ(out.stop, DescentStop::StepTooSmall);
    EXPECT_EQ(out.iterations, 0);
    // Trials at 1, 1/2, ..., 2^-26; the 27th halving falls below 1e-8 and ends it untried.
    EXPECT_EQ(halvingsBelow(RestartingStepRules::kStepFloor), 27);
    EXPECT_EQ(out.evaluations, 1 + 27);
    EXPECT_LT(out.step, RestartingStepRules::kStepFloor);
    EXPECT_GE(2 * out.step, RestartingStepRules::kStepFloor);
    EXPECT_EQ(p, (Point{0, 0}));
    EXPECT_EQ(reports.percents, (std::vector<int>{100}));
}

TEST(RestartingStepRules, FollowTheGradientKeepFixedParametersAndStopOnOverflow)
{
    Point p = {0, 0};
    Reports reports;
    const DescentOutcome out = steepestDescent<RestartingStepRules>(Bowl{}, p, {200, 0.5, 0}, reports.control());
    EXPECT_NEAR(p[0], 3.0, 1e-6);
    EXPECT_NEAR(p[1], -1.0, 1e-6);
    EXPECT_LT(out.objective, 1e-12);
    ASSERT_FALSE(reports.percents.empty());
    EXPECT_TRUE(std::is_sorted(reports.percents.begin(), reports.percents.end()));
    EXPECT_EQ(reports.percents.back(), 100);

    Point q = {0, 0};
    steepestDescent<RestartingStepRules>(Bowl{}, q, {50, 0.5, 0b10}, {});
    EXPECT_NEAR(q[0], 3.0, 1e-6);
    EXPECT_EQ(q[1], 0.0);

    // A first step that overflows ends the descent with the start kept.
    Point r = {1e308, 0};
    const DescentOutcome overflow = steepestDescent<RestartingStepRules>(Slope{}, r, {10, 1e308, 0}, {});
    EXPECT_EQ(overflow.stop, DescentStop::NonFiniteParameter);
    EXPECT_EQ(r[0], 1e308);
}

TEST(RestartingStepRules, StartEachIterationFromTheInverseGradientNormAtLeast)
{
    // On the slope |g| = 1: every iteration tries max(1, last accepted) and is accepted at once.
    Point p = {0, 0};
    const DescentOutcome out = steepestDescent<RestartingStepRules>(Slope{}, p, {5, 0.25, 0}, {});
    EXPECT_EQ(out.stop, DescentStop::IterationLimit);
    EXPECT_EQ(out.iterations, 5);
    EXPECT_EQ(out.evaluations, 6);
    EXPECT_EQ(p[0], 5.0);
    Point q = {0, 0};
    steepestDescent<RestartingStepRules>(Slope{}, q, {5, 4.0, 0}, {});
    EXPECT_EQ(q[0], 20.0);  // the longer accepted step carries over, unchanged
}

TEST(GrowingStepRules, GrowTheStepByATenthAfterEachAcceptedMove)
{
    Point p = {0, 0};
    const DescentOutcome out = steepestDescent<GrowingStepRules>(Slope{}, p, {4, 1.0, 0}, {});
    EXPECT_EQ(out.iterations, 4);
    EXPECT_DOUBLE_EQ(p[0], 1.0 + 1.1 + 1.21 + 1.331);
    EXPECT_DOUBLE_EQ(out.step, 1.331);
}

TEST(GrowingStepRules, TestTheFloorBeforeHalvingARefusedStep)
{
    Point p = {0, 0};
    const DescentOutcome out = steepestDescent<GrowingStepRules>(FlatProblem{}, p, {100, 1.0, 0}, {});
    EXPECT_EQ(out.stop, DescentStop::StepTooSmall);
    // Unlike the restarting rules, the first step below the floor is still tried.
    const int k = halvingsBelow(GrowingStepRules::kStepFloor);
    EXPECT_EQ(out.evaluations, 1 + k + 1);
    EXPECT_EQ(out.step, std::ldexp(1.0, -k));
}

TEST(GrowingStepRules, HalveInadmissibleTrialsAndSkipRefusedOnesUnevaluated)
{
    const int k = halvingsBelow(GrowingStepRules::kStepFloor);
    Point p = {0, 0};
    Turned inadmissible{TrialCheck::Inadmissible};
    const DescentOutcome halved = steepestDescent<GrowingStepRules>(inadmissible, p, {100, 1.0, 0}, {});
    EXPECT_EQ(halved.stop, DescentStop::StepTooSmall);
    EXPECT_EQ(inadmissible.evaluations, 1);  // the start only
    EXPECT_EQ(inadmissible.checks, k);       // the floor is tested after halving here
    EXPECT_EQ(p, (Point{0, 0}));

    Turned refused{TrialCheck::Refused};
    const DescentOutcome outside = steepestDescent<GrowingStepRules>(refused, p, {100, 1.0, 0}, {});
    EXPECT_EQ(outside.stop, DescentStop::StepTooSmall);
    EXPECT_EQ(refused.evaluations, 1);
    EXPECT_EQ(refused.checks, k + 1);  // and before halving there, as for a trial that doesn't improve
    EXPECT_EQ(outside.evaluations, 1);
}

TEST(GrowingStepRules, StopAtTheTargetAtAFlatGradientAndAtANonFiniteStart)
{
    Point p = {0, 0};
    DescentSettings settings{1000, 1.0, 0, -2.5};
    const DescentOutcome target = steepestDescent<GrowingStepRules>(Slope{}, p, settings, {});
    EXPECT_EQ(target.stop, DescentStop::TargetReached);
    EXPECT_EQ(target.iterations, 3);  // -3.31 is the first objective below -2.5

    struct Tiny : Slope {
        void gradient(const Point&, Point& g) const { g = {-1e-22, 0}; }
    };
    Point q = {0, 0};
    EXPECT_EQ(steepestDescent<GrowingStepRules>(Tiny{}, q, {10, 1.0, 0}, {}).stop, DescentStop::FlatGradient);
    // The restarting rules take any gradient above 0 (and a step of 1/|g| along it).
    EXPECT_EQ(steepestDescent<RestartingStepRules>(Tiny{}, q, {10, 1.0, 0}, {}).stop, DescentStop::IterationLimit);

    struct NotANumber : Bowl {
        double objective(const Point&) const { return std::numeric_limits<double>::quiet_NaN(); }
    };
    Point r = {0, 0};
    const DescentOutcome nan = steepestDescent<GrowingStepRules>(NotANumber{}, r, {10, 1.0, 0}, {});
    EXPECT_EQ(nan.stop, DescentStop::NonFiniteStart);
    EXPECT_EQ(nan.evaluations, 1);
    // The restarting rules go on and find nothing better than a NaN.
    EXPECT_EQ(steepestDescent<RestartingStepRules>(NotANumber{}, r, {10, 1.0, 0}, {}).stop, DescentStop::StepTooSmall);
}

TEST(Descent, KeepsTheEvaluationOfEachAcceptedPoint)
{
    // A problem that keeps its last evaluation is told which one became the best.
    struct Remembering : Slope {
        Point last{}, kept{};
        int accepted = 0;
        double objective(const Point& p)
        {
            last = p;
            return Slope::objective(p);
        }
        void accept()
        {
            kept = last;
            ++accepted;
        }
        void gradient(const Point& p, Point& g)
        {
            EXPECT_EQ(p, kept);  // the gradient is asked at the point kept
            Slope::gradient(p, g);
        }
    } problem;
    Point p = {0, 0};
    steepestDescent<GrowingStepRules>(problem, p, {3, 1.0, 0}, {});
    EXPECT_EQ(problem.accepted, 1 + 3);  // the start, then every accepted trial
    EXPECT_EQ(problem.kept, p);
}

TEST(Descent, ReportsEachPercentOnceAndStopsOnRequest)
{
    Point p = {0, 0};
    Reports reports;
    steepestDescent<GrowingStepRules>(Slope{}, p, {300, 1e-3, 0}, reports.control());
    ASSERT_EQ(reports.percents.size(), 101u);
    for (int i = 0; i <= 100; ++i)
        EXPECT_EQ(reports.percents[static_cast<std::size_t>(i)], i);

    // A stop asked before the first iteration: the start is evaluated, nothing moves.
    std::stop_source early;
    early.request_stop();
    RunControl stopped{{}, early.get_token()};
    Point q = {0, 0};
    const DescentOutcome none = steepestDescent<RestartingStepRules>(Bowl{}, q, {100, 1.0, 0}, stopped);
    EXPECT_EQ(none.stop, DescentStop::Cancelled);
    EXPECT_EQ(none.iterations, 0);
    EXPECT_EQ(q, (Point{0, 0}));

    // One asked during an iteration ends the descent at the next, with no 100 reported.
    std::stop_source during;
    std::vector<int> seen;
    RunControl control{[&](int v) {
                           seen.push_back(v);
                           during.request_stop();
                       },
                       during.get_token()};
    Point r = {0, 0};
    const DescentOutcome one = steepestDescent<GrowingStepRules>(Slope{}, r, {1000, 1.0, 0}, control);
    EXPECT_EQ(one.stop, DescentStop::Cancelled);
    EXPECT_EQ(one.iterations, 1);
    EXPECT_EQ(seen, (std::vector<int>{0}));

    // And a check that hears the request while it prepares a trial.
    Turned hearing{TrialCheck::Cancelled};
    EXPECT_EQ(steepestDescent<GrowingStepRules>(hearing, r, {10, 1.0, 0}, {}).stop, DescentStop::Cancelled);
    EXPECT_EQ(hearing.evaluations, 1);
}

}  // namespace
}  // namespace zelko
