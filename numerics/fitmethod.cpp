#include "numerics/fitmethod.h"

namespace zelko {

const char* fitStopText(FitStop stop)
{
    switch (stop) {
    case FitStop::Converged: return "converged";
    case FitStop::AtBound: return "converged at a bound";
    case FitStop::IterationLimit: return "iteration limit reached";
    case FitStop::StepFloor: return "step floor reached without improvement";
    case FitStop::Cancelled: return "cancelled";
    }
    return "";
}

const char* fitStopWord(FitStop stop)
{
    switch (stop) {
    case FitStop::Converged: return "converged";
    case FitStop::AtBound: return "at bound";
    case FitStop::IterationLimit: return "iterations";
    case FitStop::StepFloor: return "step floor";
    case FitStop::Cancelled: return "cancelled";
    }
    return "";
}

}  // namespace zelko
