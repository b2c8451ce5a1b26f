#pragma once
// A cold hardening law: a copy of the tensile record with its fitted parameters
// and fit error, and the steepest-descent fits that find them.

#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "base/runcontrol.h"
#include "cold/lawkernels.h"
#include "models/roomori.h"
#include "numerics/fitmethod.h"

namespace zelko {

// The fitted points as separate arrays, so the descent's loops stay tight.
struct FitPoints {
    std::vector<double> strain;
    std::vector<double> stress;
    std::vector<double> weight;  // 1 for a point of two values
    bool firstPointWeighted = false;
    std::size_t size() const { return strain.size(); }
};

// Buffers of one descent, sized once so the iterations allocate nothing.
struct FitWork {
    explicit FitWork(std::size_t n);
    FitWork(const FitWork&) = delete;
    void swap(FitWork& other);
    std::vector<double> model;
    std::vector<double> factor;
    std::array<std::vector<double>, kKernelCacheArrays> cache;
    std::array<double*, kKernelCacheArrays> cachePointers{};
};

enum class ErrorRule {
    WeightedMean,  // sqrt(sum w r^2 / sum w); unweighted when the first point has no weight
    PerPoint,      // sqrt(sum w r^2 / n)
};

// How the residuals enter a fit.
enum class Residuals { Plain, Weighted };

// A parameter that enters the law nonlinearly, and the range where a search for
// a least-squares start looks for it (on a logarithmic scale when asked).
struct SearchAxis {
    std::size_t parameter = 0;
    double lo = 0.0;
    double hi = 0.0;
    bool logarithmic = false;
};

// How the last fit of a law ended.
struct FitEnd {
    FitStop stop = FitStop::Converged;
    BoundFlags bounds;  // parameters at a bound of the bound table
    int iterations = 0;
};

class ColdLaw : public RoomOri {
public:
    // The law keeps the record's settings and its true curve, the one it is fitted
    // to; the measured forms stay with the record alone.
    explicit ColdLaw(const RoomOri& record) : RoomOri(record, TrueCurve) {}

    // A copy of the law with its parameters and error (the record's held model).
    std::shared_ptr<ColdLaw> cloneLaw() const { return std::static_pointer_cast<ColdLaw>(clone()); }
    virtual std::size_t parameterCount() const = 0;
    virtual std::vector<const char*> variableNames() const = 0;  // numeric options table
    virtual std::vector<ParameterBound> defaultBounds() const = 0;
    virtual double stressAt(double strain, const double* p) const = 0;
    // d(sigma)/d(strain), as the result text reports it at the necking point.
    virtual double slopeAt(double strain, const double* p) const = 0;
    // d(sigma)/d(p_k) at one strain.
    virtual void partialsAt(double strain, const double* p, double* d) const = 0;
    // The same at n strains, parameter k of strain i at d[i * parameterCount() + k].
    virtual void partialsOver(const double* strain, std::size_t n, const double* p, double* d) const = 0;
    virtual bool admissible(const double* p) const = 0;
    // Where a fit starts: the law's own estimate (automatic start) or the bound
    // table's initial values; fixed parameters at their initial values.
    std::vector<double> startParameters() const;
    ErrorRule errorRuleOfLaw() const { return errorRule(); }
    bool isFixed(std::size_t i) const { return i < 32 && (fixedParameters >> i) & 1u; }
    // Bit i: parameter i does not move in a fit (fixed, or held by a fixed one).
    unsigned heldParameters() const;
    // The nonlinear parameters; the others enter the law linearly.
    virtual std::vector<SearchAxis> searchAxes(const FitPoints& points) const = 0;
    // A start from the straight line through ln(stress) against ln(strain), for
    // the power laws; false for a law without one or when the line can't be drawn.
    virtual bool logLogStart(const FitPoints& points, double* p) const;
    // The result text with the slope at the necking strain.
    virtual std::string resultText() const = 0;

    // The fits. Each leaves the best accepted parameters and their error, and
    // returns false when a stop request ended it (what it leaves is then of no use).
    bool fitPlain(const RunControl& control = {});
    virtual bool fitNeckingConstrained(const RunControl& control = {});
    bool fitWeighted(const RunControl& control = {});
    // The error of p over the first n fitted points (all when n exceeds them).
    double objective(const std::vector<double>& p, std::size_t n) const;
    // What a fit of that mode minimises: the error, with the necking mismatch
    // when penalised (sqrt((N E^2 + P^2) / (N + 1))).
    double fitObjective(const std::vector<double>& p, Residuals mode, bool neckingPenalty) const;
    // Gradient of the plain sum of squared residuals over the fitted points.
    std::vector<double> sumOfSquaresGradient(const std::vector<double>& p) const;

    // The points the law is fitted to: the true curve from the start index on,
    // up to the necking index when the curve reaches it.
    FitPoints fittedPoints() const;
    // Strain and stress of the fitted point at (necking index - start index).
    bool neckingPoint(double& strain, double& stress) const;
    double neckingSlope() const;
    // The bound table of the record when it has one row per parameter, else the law's own.
    std::vector<ParameterBound> bounds() const;
    // The parameters of p at (within rounding of) a limit of the bound table.
    BoundFlags boundsReached(const std::vector<double>& p) const;
    // Takes the initial values of the bound table (the fit's start without automatic start).
    void takeInitialValues();

    std::vector<double> parameters;
    double fitError = 0.0;
    FitEnd fitEnd;  // not stored: how the fit that left the parameters ended

protected:
    virtual ErrorRule errorRule() const { return ErrorRule::WeightedMean; }
    virtual void estimateStart(const FitPoints& points, double* p) const = 0;
    // Model stresses of the first n points into work (with what the gradient needs).
    virtual void evaluateAll(const FitPoints& points, const double* p, std::size_t n, FitWork& work) const = 0;
    // sum factor_i d(sigma_i)/d(p) from the evaluation of p held in work.
    virtual void gradientAll(const FitPoints& points, const double* p, FitWork& work, double* g) const = 0;
    // Zeroes what a fixed parameter holds still; Swift's fixed exponent also holds s0.
    virtual void maskGradient(double* g) const;
    // The index of s0 when the necking-constrained fit searches it on a grid.
    virtual int neckingGridParameter() const { return -1; }

    // The error of the evaluation in work over the first n points.
    double errorOf(const FitPoints& points, const FitWork& work, Residuals mode, std::size_t n) const;

private:
    class Descent;
    // The law's start (when automatic), then the descent.
    bool startAndDescend(bool neckingPenalty, const RunControl& control);
    bool descend(const FitPoints& points, Residuals mode, bool neckingPenalty, const RunControl& control);
};

// Formula-based implementation: single values from the formula, whole curves
// from its vectorised kernels.
template <class Formula>
class FormulaLaw : public ColdLaw {
public:
    using ColdLaw::ColdLaw;
    std::size_t parameterCount() const override { return Formula::kCount; }
    double stressAt(double strain, const double* p) const override { return Formula::value(strain, p); }
    double slopeAt(double strain, const double* p) const override { return Formula::slope(strain, p); }
    void partialsAt(double strain, const double* p, double* d) const override { Formula::partials(strain, p, d); }
    void partialsOver(const double* strain, std::size_t n, const double* p, double* d) const override
    {
        for (std::size_t i = 0; i < n; ++i)
            Formula::partials(strain[i], p, d + i * Formula::kCount);
    }
    bool admissible(const double* p) const override { return Formula::admissible(p); }

protected:
    void evaluateAll(const FitPoints& points, const double* p, std::size_t n, FitWork& work) const override
    {
        lawKernels(Formula::kKernel).evaluate(points.strain.data(), n, p, work.model.data(), work.cachePointers.data());
    }
    void gradientAll(const FitPoints& points, const double* p, FitWork& work, double* g) const override
    {
        lawKernels(Formula::kKernel)
            .gradient(points.strain.data(), points.size(), p, work.factor.data(), work.cachePointers.data(), g);
    }
};

// The result texts print with "%16.4E"; a value that is no number prints as 0
// rather than as "nan" or "inf".
double printable(double value);

}  // namespace zelko
