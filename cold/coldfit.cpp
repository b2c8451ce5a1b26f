#include "cold/coldfit.h"

#include <array>
#include <cmath>

#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/textfile.h"
#include "cold/lawpolish.h"
#include "cold/tensilereduction.h"

namespace zelko {

namespace {

// The fit's progress over its descents: each one's 0 to 100 mapped onto its
// share of the whole, reported only when the whole's percent changes.
class StagedProgress {
public:
    explicit StagedProgress(const RunControl& whole) : whole_(whole) {}

    RunControl stage(int from, int to)
    {
        RunControl part;
        part.stop = whole_.stop;
        if (whole_.progress)
            part.progress = [this, from, to](int percent) { report(from + percent * (to - from) / 100); };
        return part;
    }
    void report(int percent)
    {
        if (percent != reported_) {
            reported_ = percent;
            whole_.report(percent);
        }
    }

private:
    const RunControl& whole_;
    int reported_ = -1;
};

// Least squares from the descent's end and the method's own starts; the result
// replaces the descent's only when it lowers the error. The descent's progress
// has reached 100 already, so only a stop is heard.
bool polish(ColdLaw& law, const RunControl& control)
{
    RunControl quiet;
    quiet.stop = control.stop;
    LawLeastSquares fit = fitLawLeastSquares(law, {law.parameters}, quiet);
    if (fit.cancelled)
        return false;
    if (!fit.parameters.empty() && fit.error < law.fitError) {
        law.parameters = std::move(fit.parameters);
        law.fitError = fit.error;
        law.fitEnd = fit.end;
    }
    return true;
}

ColdFitResult cancelled()
{
    ColdFitResult result;
    result.cancelled = true;
    return result;
}

}  // namespace

std::string swiftComparisonTable(const ColdLaw& swift)
{
    std::string table = formatText("%16s,%16s,%16s,%16s\n", "strain", "experiment", "predicted", "Error[%]");
    const FitPoints points = swift.fittedPoints();
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double predicted = swift.stressAt(points.strain[i], swift.parameters.data());
        double percent = predicted != 0.0 ? 100.0 * (points.stress[i] - predicted) / predicted : 0.0;
        if (swift.weighted)
            percent *= points.weight[i];
        table += formatText("%16.4E,%16.4E,%16.4E,%16.4E\n", printable(points.strain[i]), printable(points.stress[i]),
                            printable(predicted), printable(percent));
    }
    return table;
}

bool writeSwiftComparisonTable(const ColdLaw& swift, const std::filesystem::path& exchangeFolder, std::string& error)
{
    if (!ensureFolder(exchangeFolder, error))
        return false;
    TextWriter out(TextEncoding::Utf16Le);
    out.put(swiftComparisonTable(swift));
    return saveFileAtomically(exchangeFolder / "ZELKO_MAT_PL1.dat", out.bytes(), error);
}

std::string fitEndText(const ColdLaw& law)
{
    const FitEnd& end = law.fitEnd;
    std::string text = std::string("Stop: ") + fitStopText(end.stop);
    if (end.bounds.any()) {
        text += "; at a bound:";
        const std::vector<const char*> names = law.variableNames();
        const char* separator = " ";
        for (std::size_t i = 0; i < names.size(); ++i)
            if (end.bounds.at(i)) {
                text += formatText("%s%s (%s)", separator, names[i], (end.bounds.lower >> i) & 1u ? "lower" : "upper");
                separator = ", ";
            }
    }
    return text;
}

ColdFitResult fitColdLaw(const RoomOri& record, ColdLawId id, const RunControl& control, FitMethod method)
{
    ColdFitResult result;
    std::shared_ptr<ColdLaw> law = makeColdLaw(id, record);
    if (!law) {
        result.message = messageText(MessageCode::UnknownHardeningLaw);
        return result;
    }
    if (record.inputKind != TrueCurve) {
        if (record.neckingIndex - record.startIndex + 1 < 2) {
            result.message = messageText(MessageCode::TooFewPointsToNecking);
            return result;
        }
        result.trueCurve = trueCurveFromEngineering(record);
        if (!result.trueCurve) {
            result.message = messageText(MessageCode::NoValidEngineeringPoints);
            return result;
        }
        law->curves[TrueCurve] = *result.trueCurve;
    }
    if (!allFinite(law->curves[TrueCurve], [](const CurvePoint& p) { return std::array{p.x, p.y, p.weight}; })) {
        result.message = messageText(MessageCode::TrueCurveNotANumber);
        return result;
    }
    if (law->fittedPoints().size() < 2) {
        result.message = messageText(MessageCode::TooFewPointsToNecking);
        return result;
    }

    law->parameters.assign(law->parameterCount(), 0.0);
    if (!law->automaticStart)
        law->takeInitialValues();
    // Least squares minimises the plain error, so it would undo a constrained or weighted fit.
    const bool plain = !law->neckingConstraint && !law->weighted;
    bool finished = true;
    bool descended = true;
    if (plain && method == FitMethod::LeastSquares) {
        LawLeastSquares fit = fitLawLeastSquares(*law, {}, control);
        if (fit.cancelled)
            return cancelled();
        descended = fit.parameters.empty();  // no start could be fitted: the descent instead
        if (!descended) {
            law->parameters = std::move(fit.parameters);
            law->fitError = fit.error;
            law->fitEnd = fit.end;
        }
    }
    if (descended) {
        const bool first = !law->weighted || law->automaticStart;
        const bool second = law->weighted;
        StagedProgress progress(control);
        if (first) {
            const RunControl stage = progress.stage(0, second ? 50 : 100);
            finished = law->neckingConstraint ? law->fitNeckingConstrained(stage) : law->fitPlain(stage);
        }
        if (finished && second)
            finished = law->fitWeighted(progress.stage(first ? 50 : 0, 100));
        if (finished && plain && method == FitMethod::DescentThenLeastSquares)
            finished = polish(*law, control);
        if (!finished)
            return cancelled();
        progress.report(100);
    }

    result.text = law->resultText();
    result.law = law;
    return result;
}

}  // namespace zelko
