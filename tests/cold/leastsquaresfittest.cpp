// The least-squares method of the cold laws: that it reaches the bounded optimum,
// says how it stopped and which parameter ended at a bound, keeps what is fixed,
// and hears a stop. (It leaves the constrained and weighted fits to the descent:
// coldfittest.cpp, with the polish.)
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>
#include <sstream>

#include "base/fileio.h"
#include "bench/coldcurves.h"
#include "cold/coldfit.h"
#include "cold/lawpolish.h"
#include "coldrecords.h"

namespace zelko {
namespace {

namespace fs = std::filesystem;
using test::convexCurve;
using test::swiftCurve;
using test::trueRecord;

// Within 0.1 % of the optimum's error, or of rounding where a law fits a curve exactly.
constexpr double kOptimumShare = 1e-3;
constexpr double kExactFit = 1e-6;  // MPa

// The cases of bench/coldquality, by the names bench/scipy/coldoptimum.py gives them.
RoomOri caseRecord(const std::string& name)
{
    if (name == "synthetic-clean" || name == "synthetic-noisy")
        return bench::trueCurveRecord(name == "synthetic-noisy");
    // steel-1045-220: the measured test and the start row.
    const std::string steel = name.substr(6, 4);
    const int start = std::stoi(name.substr(11));
    return bench::measuredTensileRecord(
        (fs::path(ZELKO_TEST_DATA) / "measured" / ("tensile-steel-" + steel + ".csv")).string(), start);
}

TEST(ColdLeastSquares, ReachesTheBoundedOptimumOfEveryLawOnEveryCurve)
{
    // The reference errors come from scipy's trust-region least squares from many
    // starts on the same points (see the file's head); ours come from its own few.
    std::string error;
    const auto bytes = readFileBytes(fs::path(ZELKO_TEST_DATA) / "cold-optimum" / "optimum.txt", error);
    ASSERT_TRUE(bytes) << error;
    std::istringstream lines(*bytes);
    std::map<std::string, RoomOri> records;
    std::string line;
    int compared = 0;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::string name;
        int law = 0;
        double optimum = 0.0;
        ASSERT_TRUE(fields >> name >> law >> optimum) << line;
        if (!records.count(name))
            records.emplace(name, caseRecord(name));
        const auto id = static_cast<ColdLawId>(law);
        SCOPED_TRACE(name + ", " + coldLawTitle(id));
        const ColdFitResult fit = fitColdLaw(records.at(name), id, {}, FitMethod::LeastSquares);
        ASSERT_TRUE(fit.law);
        EXPECT_LE(fit.law->fitError, optimum * (1.0 + kOptimumShare) + kExactFit);
        ++compared;
    }
    // Every law, two tests from four start rows and the two synthetic curves.
    EXPECT_EQ(compared, 8 * (2 * 4 + 2));
}

TEST(ColdLeastSquares, TheLinearParametersTimesTheirDerivativesAreTheStress)
{
    // The residuals build the stress from the partial derivatives of the parameters
    // that are not searched: a law whose search axes miss a nonlinear parameter
    // would be fitted to a wrong curve.
    std::mt19937 generator(31);
    std::uniform_real_distribution<double> unit(0.05, 0.95);
    const RoomOri record = trueRecord(swiftCurve);
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        const auto law = makeColdLaw(id, record);
        const FitPoints points = law->fittedPoints();
        const std::vector<SearchAxis> axes = law->searchAxes(points);
        for (int trial = 0; trial < 20; ++trial) {
            // Linear parameters anywhere, the others within their search ranges.
            std::vector<double> p(law->parameterCount());
            std::vector<bool> linear(p.size(), true);
            for (double& v : p)
                v = 1000.0 * unit(generator);
            for (const SearchAxis& axis : axes) {
                const double t = unit(generator);
                p[axis.parameter] = axis.logarithmic ? axis.lo * std::pow(axis.hi / axis.lo, t)
                                                     : axis.lo + t * (axis.hi - axis.lo);
                linear[axis.parameter] = false;
            }
            if (!law->admissible(p.data()))
                continue;
            std::vector<double> d(p.size());
            for (const double strain : {0.0, 0.003, 0.05, 0.2}) {
                law->partialsAt(strain, p.data(), d.data());
                double stress = 0.0;
                for (std::size_t k = 0; k < p.size(); ++k)
                    if (linear[k])
                        stress += p[k] * d[k];
                const double expected = law->stressAt(strain, p.data());
                EXPECT_NEAR(stress, expected, 1e-9 * std::max(1.0, std::fabs(expected))) << "strain " << strain;
            }
        }
    }
}

TEST(ColdLeastSquares, SaysWhenAParameterEndsAtItsBound)
{
    // A Ludwik exponent held below what the curve wants stops at the table's limit.
    RoomOri record = trueRecord([](double e) { return 300.0 + 800.0 * std::sqrt(e); });
    record.parameterBounds = {{200.0, -1e6, 1e6}, {500.0, -1e6, 1e6}, {0.2, 0.0, 0.3}};
    const ColdFitResult fit = fitColdLaw(record, ColdLawId::Ludwik, {}, FitMethod::LeastSquares);
    ASSERT_TRUE(fit.law);
    EXPECT_EQ(fit.law->parameters[2], 0.3);
    EXPECT_EQ(fit.law->fitEnd.stop, FitStop::AtBound);
    EXPECT_EQ(fit.law->fitEnd.bounds.upper, 1u << 2);
    EXPECT_EQ(fit.law->fitEnd.bounds.lower, 0u);
    EXPECT_EQ(fitEndText(*fit.law), "Stop: converged at a bound; at a bound: n (upper)");

    // With room to move the same fit converges inside, on the curve's own exponent.
    record.parameterBounds.clear();
    const ColdFitResult free = fitColdLaw(record, ColdLawId::Ludwik, {}, FitMethod::LeastSquares);
    EXPECT_EQ(free.law->fitEnd.stop, FitStop::Converged);
    EXPECT_FALSE(free.law->fitEnd.bounds.any());
    EXPECT_NEAR(free.law->parameters[2], 0.5, 1e-6);
    EXPECT_EQ(fitEndText(*free.law), "Stop: converged");
}

TEST(ColdLeastSquares, TheDescentSaysHowItStoppedToo)
{
    RoomOri record = trueRecord(swiftCurve);
    record.maxIterations = 3;
    record.targetError = 0.0;
    const ColdFitResult limited = fitColdLaw(record, ColdLawId::Swift, {});
    EXPECT_EQ(limited.law->fitEnd.stop, FitStop::IterationLimit);
    EXPECT_EQ(limited.law->fitEnd.iterations, 3);
    record.maxIterations = 10000;
    record.targetError = 1.0;
    EXPECT_EQ(fitColdLaw(record, ColdLawId::Swift, {}).law->fitEnd.stop, FitStop::Converged);  // its target reached
}

TEST(ColdLeastSquares, KeepsFixedParametersAndFindsTheOthers)
{
    // Swift with s0 fixed at the curve's own value: Y0 and n are found exactly.
    RoomOri record = trueRecord(swiftCurve);
    record.automaticStart = false;
    record.parameterBounds = {{400.0, -1e6, 1e6}, {0.02, 0.0, 100.0}, {0.5, -10.0, 1.0}};
    record.fixedParameters = 1u << 1;
    const ColdFitResult fit = fitColdLaw(record, ColdLawId::Swift, {}, FitMethod::LeastSquares);
    ASSERT_TRUE(fit.law);
    EXPECT_EQ(fit.law->parameters[1], 0.02);
    EXPECT_NEAR(fit.law->parameters[0], 500.0, 1e-6);
    EXPECT_NEAR(fit.law->parameters[2], 0.22, 1e-9);

    // A fixed exponent holds s0 still as well, as in the descent.
    record.fixedParameters = 1u << 2;
    record.parameterBounds[2].initial = 0.22;
    record.parameterBounds[1].initial = 0.05;
    const ColdFitResult held = fitColdLaw(record, ColdLawId::Swift, {}, FitMethod::LeastSquares);
    EXPECT_EQ(held.law->parameters[1], 0.05);
    EXPECT_EQ(held.law->parameters[2], 0.22);
}

TEST(ColdLeastSquares, ProgressRisesToHundredAndAStopEndsItCancelled)
{
    const RoomOri record = trueRecord(convexCurve, 200);
    std::vector<int> seen;
    RunControl control;
    control.progress = [&](int percent) { seen.push_back(percent); };
    ASSERT_TRUE(fitColdLaw(record, ColdLawId::KimTuan, control, FitMethod::LeastSquares).law);
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.back(), 100);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GT(seen.size(), 1u);  // one step a start

    std::stop_source stop;
    RunControl stopping;
    stopping.stop = stop.get_token();
    stopping.progress = [&](int) { stop.request_stop(); };  // after the first start
    const ColdFitResult stopped = fitColdLaw(record, ColdLawId::KimTuan, stopping, FitMethod::LeastSquares);
    EXPECT_TRUE(stopped.cancelled);
    EXPECT_FALSE(stopped.law);
}

TEST(ColdLeastSquares, StartsFromTheLawsStartTheLineAndTheSearchWithoutRepeats)
{
    const RoomOri record = trueRecord(swiftCurve);
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        const auto law = makeColdLaw(id, record);
        const std::vector<std::vector<double>> starts = leastSquaresStarts(*law);
        ASSERT_GE(starts.size(), 2u);  // the law's own and at least one found by the search
        EXPECT_EQ(starts.front(), law->startParameters());
        for (std::size_t a = 0; a < starts.size(); ++a) {
            EXPECT_TRUE(law->admissible(starts[a].data()));
            for (std::size_t b = a + 1; b < starts.size(); ++b)
                EXPECT_NE(starts[a], starts[b]);
        }
    }
    // From the search's start alone Swift finds its own curve.
    const auto swift = makeColdLaw(ColdLawId::Swift, record);
    const LawLeastSquares fit = fitLawFromStart(*swift, leastSquaresStarts(*swift).back());
    EXPECT_LT(fit.error, kExactFit);
    EXPECT_EQ(fit.end.stop, FitStop::Converged);
}

}  // namespace
}  // namespace zelko
