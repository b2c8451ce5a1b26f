#pragma once
// How a fit is run and how it ended, shared by the cold and the hot fits.

#include <cstddef>

namespace zelko {

enum class FitMethod {
    Descent,                  // the steepest descent the fits have always run
    LeastSquares,             // bounded least squares from several starts
    DescentThenLeastSquares,  // the descent, then least squares from its end among the starts
};

// Why a fit stopped.
enum class FitStop {
    Converged,       // no step lowers the error any more
    AtBound,         // converged with a parameter held at a bound
    IterationLimit,  // the iteration limit came first
    StepFloor,       // the step shrank below its floor without improving
    Cancelled,       // a stop request
};

// The text the screens and the command-line tool show for a stop.
const char* fitStopText(FitStop stop);
// The same in a word or two, for a table column.
const char* fitStopWord(FitStop stop);

// Bit i set: parameter i at that bound.
struct BoundFlags {
    unsigned lower = 0;
    unsigned upper = 0;
    bool any() const { return (lower | upper) != 0; }
    bool at(std::size_t i) const { return i < 32 && (((lower | upper) >> i) & 1u); }
};

}  // namespace zelko
