#pragma once
// Steepest descent along the normalised gradient with step halving: the
// procedure of the Hensel-Spittel fit, apart from its law so that its stopping
// rules can be checked on their own. Nothing is allocated while it runs.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "base/runcontrol.h"

namespace zelko {

inline constexpr double kMinimumDescentStep = 1e-8;

enum class DescentStop {
    IterationLimit,
    NonFiniteParameter,  // a trial parameter overflowed
    StepTooSmall,        // halved below kMinimumDescentStep without improving
    FlatGradient,        // no direction to move in (zero or not finite)
    Cancelled,           // a stop was requested; best holds the last accepted point
};

struct DescentSettings {
    int maxIterations = 0;
    double initialStep = 1.0;
    unsigned fixedMask = 0;  // bit i: parameter i never moves
};

struct DescentOutcome {
    DescentStop stop = DescentStop::IterationLimit;
    int iterations = 0;    // iterations that improved the objective
    long evaluations = 0;  // objective evaluations, the start's included
    double objective = 0.0;
    double step = 0.0;  // the last trial step
};

// Problem offers double objective(const P&), void gradient(const P&, P&) and
// void guard(P& trial, const P& previous). Progress goes 0 to 100 to the
// control; a stop request ends the descent before its next iteration.
template <class Problem, std::size_t N>
DescentOutcome steepestDescent(const Problem& problem, std::array<double, N>& best, const DescentSettings& settings,
                               const RunControl& control)
{
    DescentOutcome out;
    out.objective = problem.objective(best);
    out.evaluations = 1;
    double accepted = settings.initialStep;
    int reported = -1;
    std::array<double, N> gradient{};
    std::array<double, N> trial{};
    const auto finish = [&](DescentStop stop) {
        out.stop = stop;
        if (stop != DescentStop::Cancelled)
            control.report(100);
        return out;
    };
    for (int iteration = 0; iteration < settings.maxIterations; ++iteration) {
        if (control.stopRequested())
            return finish(DescentStop::Cancelled);
        problem.gradient(best, gradient);
        double norm = 0.0;
        for (std::size_t i = 0; i < N; ++i) {
            if (settings.fixedMask & (1u << i))
                gradient[i] = 0.0;
            norm += gradient[i] * gradient[i];
        }
        norm = std::sqrt(norm);
        if (!(norm > 0.0) || !std::isfinite(norm))
            return finish(DescentStop::FlatGradient);
        // A small gradient allows a long step: near a minimum the step grows again.
        out.step = std::max(1.0 / norm, accepted);
        for (;;) {
            bool finite = true;
            for (std::size_t i = 0; i < N; ++i) {
                trial[i] = best[i] - out.step * gradient[i] / norm;
                finite = finite && std::isfinite(trial[i]);
            }
            if (!finite)
                return finish(DescentStop::NonFiniteParameter);
            problem.guard(trial, best);
            const double value = problem.objective(trial);
            ++out.evaluations;
            if (value < out.objective) {
                best = trial;
                out.objective = value;
                accepted = out.step;
                break;
            }
            out.step *= 0.5;
            if (out.step < kMinimumDescentStep)
                return finish(DescentStop::StepTooSmall);
        }
        out.iterations = iteration + 1;
        const int percent = static_cast<int>((static_cast<long long>(iteration) + 1) * 100 / settings.maxIterations);
        if (percent != reported) {
            control.report(percent);
            reported = percent;
        }
    }
    return finish(DescentStop::IterationLimit);
}

}  // namespace zelko
