#include "cold/lawcomparison.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <thread>

#include "base/textfile.h"
#include "cold/coldfit.h"

namespace zelko {

namespace {

// A parameter this close to a bound (relative to the bound's size) sits on it.
constexpr double kAtBoundTolerance = 1e-9;

bool onBound(double value, double bound)
{
    return std::fabs(value - bound) <= kAtBoundTolerance * std::max(1.0, std::fabs(bound));
}

bool writesLibraryBlock(const ColdLaw& law)
{
    TextWriter scratch(TextEncoding::EightBit);
    return law.writeLibraryBlock(scratch, 6);
}

}  // namespace

const char* coldParameterUnit(ColdLawId law, std::size_t index)
{
    // Per law, the parameters that carry a stress.
    unsigned stresses = 0;
    switch (law) {
    case ColdLawId::Swift: stresses = 0b1; break;            // Y0, s0, n
    case ColdLawId::Hollomon: stresses = 0b1; break;         // K, n
    case ColdLawId::Ludwik: stresses = 0b11; break;          // Y, K, n
    case ColdLawId::KimTuan: stresses = 0b101; break;        // YS, s0, T, m, C
    case ColdLawId::HockettSherby: stresses = 0b11; break;   // YS, V1, V2, H1
    case ColdLawId::VoceGeneral: stresses = 0b11; break;     // V0, V1, V2, V3
    case ColdLawId::ElMagd: stresses = 0b1011; break;        // C0, C1, C2, C3 (C3 per unit strain)
    case ColdLawId::VoyiadjisAbed: stresses = 0b11; break;   // V0, V1, V2
    }
    return index < 32 && (stresses >> index) & 1u ? "MPa" : "-";
}

std::string fittedLawRefusal(const ColdLaw& law)
{
    const auto* hollomon = dynamic_cast<const PLASTIC_3*>(&law);
    if (!hollomon || !law.neckingConstraint || hollomon->hasNeckingReading())
        return {};
    return formatText("the Hollomon necking constraint reads the true curve at the necking row %d, which the curve "
                      "from start row %d (%zu points) does not have or has at zero strain; start at row 0 or fit "
                      "without the necking constraint",
                      law.neckingIndex, law.startIndex, law.curves[TrueCurve].size());
}

double rootMeanSquareError(const ColdLaw& law)
{
    const FitPoints points = law.fittedPoints();
    if (points.size() == 0 || law.parameters.size() != law.parameterCount())
        return 0.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double r = law.stressAt(points.strain[i], law.parameters.data()) - points.stress[i];
        sum += r * r;
    }
    return std::sqrt(sum / static_cast<double>(points.size()));
}

LawComparison describeFittedLaw(ColdLawId id, std::shared_ptr<const ColdLaw> law)
{
    LawComparison row;
    row.law = id;
    row.rmse = rootMeanSquareError(*law);
    const std::vector<ParameterBound> bounds = law->bounds();
    for (std::size_t k = 0; k < law->parameters.size(); ++k)
        row.atBound.push_back(k < bounds.size()
                              && (onBound(law->parameters[k], bounds[k].minimum)
                                  || onBound(law->parameters[k], bounds[k].maximum)));
    for (std::size_t k = 0; k < kComparisonStrains.size(); ++k)
        row.extrapolated[k] = law->stressAt(kComparisonStrains[k], law->parameters.data());
    row.hasLibraryBlock = writesLibraryBlock(*law);
    row.fitted = std::move(law);
    return row;
}

LawComparisonResult compareColdLaws(const RoomOri& record, const RunControl& control, FitMethod method)
{
    LawComparisonResult result;
    RunControl each;
    each.stop = control.stop;
    // The laws are fitted side by side, as many at once as there are processors:
    // each fit reads the record and writes only its own law, and holds a copy of a
    // long curve while it runs.
    const std::size_t atOnce = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, kColdLaws.size());
    std::vector<std::future<ColdFitResult>> fits(kColdLaws.size());
    const auto start = [&](std::size_t i) {
        if (i < fits.size())
            fits[i] = std::async(std::launch::async, [&record, &each, method, id = kColdLaws[i]] {
                return fitColdLaw(record, id, each, method);
            });
    };
    for (std::size_t i = 0; i < atOnce; ++i)
        start(i);
    int done = 0;
    for (std::size_t i = 0; i < fits.size(); ++i) {
        const ColdLawId id = kColdLaws[i];
        LawComparison row;
        row.law = id;
        const ColdFitResult fit = fits[i].get();
        start(i + atOnce);
        if (fit.cancelled || control.stopRequested()) {
            result.cancelled = true;
            continue;  // the others end at the same stop
        }
        row.message = fit.law ? fittedLawRefusal(*fit.law) : fit.message;
        if (fit.law && row.message.empty())
            row = describeFittedLaw(id, fit.law);
        result.rows.push_back(std::move(row));
        control.report(++done * 100 / static_cast<int>(kColdLaws.size()));
    }
    if (result.cancelled) {
        result.rows.clear();
        return result;
    }
    // A law without a finite error ranks with the failed ones.
    const auto rank = [](const LawComparison& row) {
        return row.fitted && std::isfinite(row.rmse) ? row.rmse : HUGE_VAL;
    };
    std::stable_sort(result.rows.begin(), result.rows.end(),
                     [&](const LawComparison& a, const LawComparison& b) { return rank(a) < rank(b); });
    return result;
}

const LawComparison* bestWithLibraryBlock(const std::vector<LawComparison>& rows)
{
    for (const LawComparison& row : rows)
        if (row.fitted && row.hasLibraryBlock && std::isfinite(row.rmse))
            return &row;
    return nullptr;
}

}  // namespace zelko
