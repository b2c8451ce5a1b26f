#pragma once
// Steepest descent along the normalised gradient with step halving: the one
// engine of the cold law fits and of the Hensel-Spittel fit. The two fits differ
// only in their rules (how the step starts and grows, where it bottoms out, what
// ends the descent), given as a policy type so that each set can be checked on
// its own. Nothing is allocated once the first iteration starts.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "base/runcontrol.h"
#include "numerics/fitmethod.h"

namespace zelko {

enum class DescentStop {
    IterationLimit,
    TargetReached,       // the objective fell below the settings' target
    NonFiniteStart,      // the start's objective is not finite (rules that stop there)
    NonFiniteParameter,  // a trial parameter overflowed (rules that stop there)
    StepTooSmall,        // halved below the rules' floor without improving
    FlatGradient,        // no direction to move in
    Cancelled,           // a stop request
};

// The stop as every fit reports it: a target reached or a flat gradient is
// convergence, a step or a value that gave out is the step floor.
inline FitStop fitStopOf(DescentStop stop)
{
    switch (stop) {
    case DescentStop::IterationLimit: return FitStop::IterationLimit;
    case DescentStop::StepTooSmall:
    case DescentStop::NonFiniteStart:
    case DescentStop::NonFiniteParameter: return FitStop::StepFloor;
    case DescentStop::Cancelled: return FitStop::Cancelled;
    case DescentStop::TargetReached:
    case DescentStop::FlatGradient: break;
    }
    return FitStop::Converged;
}

// What a problem says of a trial point before it is evaluated.
enum class TrialCheck {
    Evaluate,
    Inadmissible,  // outside the function's domain: halve the step
    Refused,       // outside the bounds: no improvement, and not evaluated
    Cancelled,     // a stop request came while the trial was being set up
};

// The Hensel-Spittel fit's rules: each iteration starts from the longer of 1/|g|
// and the step last accepted, so near a minimum the step grows again; a step
// halved below 1e-8, an overflowing trial or a gradient of 0 or inf ends it.
struct RestartingStepRules {
    static constexpr double kStepFloor = 1e-8;
    static constexpr bool kFloorBeforeHalving = false;
    static constexpr double kGrowth = 1.0;
    static constexpr bool kRestartFromInverseNorm = true;
    static constexpr double kGradientFloor = std::numeric_limits<double>::denorm_min();
    static constexpr bool kInfiniteGradientIsFlat = true;
    static constexpr bool kStopOnNonFiniteTrial = true;
    static constexpr bool kStopOnNonFiniteStart = false;
};

// The cold law fits' rules: the step carries over, grows by a tenth after an
// accepted move and halves after a refused one. A refused step already below
// 1e-21, an inadmissible one halved below it, or a gradient below 1e-21 ends it.
struct GrowingStepRules {
    static constexpr double kStepFloor = 1e-21;
    static constexpr bool kFloorBeforeHalving = true;
    static constexpr double kGrowth = 1.1;
    static constexpr bool kRestartFromInverseNorm = false;
    static constexpr double kGradientFloor = 1e-21;
    static constexpr bool kInfiniteGradientIsFlat = false;
    static constexpr bool kStopOnNonFiniteTrial = false;
    static constexpr bool kStopOnNonFiniteStart = true;
};

struct DescentSettings {
    int maxIterations = 0;
    double initialStep = 1.0;
    unsigned fixedMask = 0;  // bit i: parameter i never moves
    double target = -std::numeric_limits<double>::infinity();  // an accepted objective below it ends the descent
};

struct DescentOutcome {
    DescentStop stop = DescentStop::IterationLimit;
    int iterations = 0;    // iterations that improved the objective
    long evaluations = 0;  // objective evaluations, the start's included
    double objective = 0.0;
    double step = 0.0;  // the last trial step
};

// Problem offers double objective(const P&) and void gradient(const P& best, P& g);
// optionally TrialCheck check(P& trial, const P& best), which may move the trial
// (absent: every trial is evaluated), and void accept(), told that the point last
// passed to objective is now the best (for problems that keep its evaluation).
// P is std::array<double, N> or std::vector<double>. Progress goes from 0 to 100
// by iterations over maxIterations, reported only when the percent changes.
template <class Rules, class Problem, class Parameters>
DescentOutcome steepestDescent(Problem&& problem, Parameters& best, const DescentSettings& settings,
                               const RunControl& control)
{
    DescentOutcome out;
    int reported = -1;
    const auto report = [&](int percent) {
        if (percent != reported) {
            control.report(percent);
            reported = percent;
        }
    };
    const auto finish = [&](DescentStop stop) {
        out.stop = stop;
        if (stop != DescentStop::Cancelled)
            report(100);
        return out;
    };
    const auto accepted = [&problem] {
        if constexpr (requires { problem.accept(); })
            problem.accept();
    };

    out.objective = problem.objective(best);
    out.evaluations = 1;
    accepted();
    if (Rules::kStopOnNonFiniteStart && !std::isfinite(out.objective))
        return finish(DescentStop::NonFiniteStart);

    const std::size_t count = best.size();
    Parameters gradient = best;
    Parameters trial = best;
    double carried = settings.initialStep;
    double& step = out.step;
    for (int iteration = 0; iteration < settings.maxIterations; ++iteration) {
        if (control.stopRequested())
            return finish(DescentStop::Cancelled);
        problem.gradient(best, gradient);
        double norm = 0.0;
        for (std::size_t i = 0; i < count; ++i) {
            if (i < 32 && ((settings.fixedMask >> i) & 1u))
                gradient[i] = 0.0;
            norm += gradient[i] * gradient[i];
        }
        norm = std::sqrt(norm);
        if (!(norm >= Rules::kGradientFloor) || (Rules::kInfiniteGradientIsFlat && !std::isfinite(norm)))
            return finish(DescentStop::FlatGradient);

        step = Rules::kRestartFromInverseNorm ? std::max(1.0 / norm, carried) : carried;
        for (;;) {
            bool finite = true;
            for (std::size_t i = 0; i < count; ++i) {
                trial[i] = best[i] - step * gradient[i] / norm;
                finite = finite && std::isfinite(trial[i]);
            }
            if (Rules::kStopOnNonFiniteTrial && !finite)
                return finish(DescentStop::NonFiniteParameter);
            TrialCheck check = TrialCheck::Evaluate;
            if constexpr (requires { problem.check(trial, best); })
                check = problem.check(trial, best);
            if (check == TrialCheck::Cancelled)
                return finish(DescentStop::Cancelled);
            if (check == TrialCheck::Inadmissible) {
                step *= 0.5;
                if (step < Rules::kStepFloor)
                    return finish(DescentStop::StepTooSmall);
                continue;
            }
            if (check == TrialCheck::Evaluate) {
                const double value = problem.objective(trial);
                ++out.evaluations;
                if (value < out.objective) {
                    best = trial;
                    out.objective = value;
                    accepted();
                    carried = step * Rules::kGrowth;
                    break;
                }
            }
            if (Rules::kFloorBeforeHalving && step < Rules::kStepFloor)
                return finish(DescentStop::StepTooSmall);
            step *= 0.5;
            if (!Rules::kFloorBeforeHalving && step < Rules::kStepFloor)
                return finish(DescentStop::StepTooSmall);
        }
        out.iterations = iteration + 1;
        if (out.objective < settings.target)
            return finish(DescentStop::TargetReached);
        report(static_cast<int>((static_cast<long long>(iteration) + 1) * 100 / settings.maxIterations));
    }
    return finish(DescentStop::IterationLimit);
}

}  // namespace zelko
