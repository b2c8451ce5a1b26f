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

ColdFitResult fitColdLaw(const RoomOri& record, ColdLawId id, const RunControl& control)
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
    const bool first = !law->weighted || law->automaticStart;
    const bool second = law->weighted;
    StagedProgress progress(control);
    bool finished = true;
    if (first) {
        const RunControl stage = progress.stage(0, second ? 50 : 100);
        finished = law->neckingConstraint ? law->fitNeckingConstrained(stage) : law->fitPlain(stage);
    }
    if (finished && second)
        finished = law->fitWeighted(progress.stage(first ? 50 : 0, 100));
    // The polish minimises the plain error, so it would undo a constrained or weighted fit.
    if (finished && law->polishWithLeastSquares && !law->neckingConstraint && !law->weighted)
        finished = polishWithLevenbergMarquardt(*law, control);
    if (!finished)
        return cancelled();
    progress.report(100);

    result.text = law->resultText();
    result.law = law;
    return result;
}

void applyColdFit(const ColdFitResult& result, RoomOri& record)
{
    if (result.cancelled)
        return;
    if (result.trueCurve)
        record.curves[TrueCurve] = *result.trueCurve;
    if (result.law)
        record.heldModel = result.law->clone();
}

}  // namespace zelko
