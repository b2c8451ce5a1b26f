#include "cold/coldfit.h"

#include <array>
#include <cmath>

#include "cold/coldlaws.h"
#include "cold/lawpolish.h"
#include "cold/tensilereduction.h"
#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/numbers.h"

namespace zelko {

namespace {

void writeSwiftComparisonFile(const ColdLaw& swift)
{
    std::string error;
    if (!ensureExchangeFolder(error))
        return;  // the table is a convenience: no folder, no table
    TextWriter out(TextEncoding::Utf16Le);
    out.put(swiftComparisonTable(swift));
    saveFileAtomically(exchangeFolder() / "ZELKO_MAT_PL1.dat", out.bytes(), error);
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

ColdFitResult fitColdLaw(RoomOri& record, int listIndex)
{
    ColdFitResult result;
    if (listIndex < 1 || listIndex >= kColdLawCount) {
        result.message = "There is no hardening law with that number.";
        return result;
    }
    if (record.inputKind != TrueCurve) {
        if (record.neckingIndex - record.startIndex + 1 < 2) {
            result.message = "At least two points are needed between the start and the necking point.";
            return result;
        }
        std::optional<Curve> trueCurve = trueCurveFromEngineering(record);
        if (!trueCurve) {
            result.message = "The engineering curve has no valid points between the start and the necking point.";
            return result;
        }
        record.curves[TrueCurve] = std::move(*trueCurve);
    }
    if (!allFinite(record.curves[TrueCurve], [](const CurvePoint& p) { return std::array{p.x, p.y, p.weight}; })) {
        result.message = "The true curve holds a value that is not a number.";
        return result;
    }

    std::shared_ptr<ColdLaw> law = makeColdLaw(listIndex, record);
    if (law->fittedPoints().size() < 2) {
        result.message = "At least two points are needed between the start and the necking point.";
        return result;
    }
    law->parameters.assign(law->parameterCount(), 0.0);
    if (!law->automaticStart)
        law->takeInitialValues();
    if (!law->weighted || law->automaticStart) {
        if (law->neckingConstraint)
            law->fitNeckingConstrained();
        else
            law->fitPlain();
    }
    if (law->weighted)
        law->fitWeighted();
    // The polish minimises the plain error, so it would undo a constrained or weighted fit.
    if (law->polishWithLeastSquares && !law->neckingConstraint && !law->weighted)
        polishWithLevenbergMarquardt(*law);

    result.text = law->resultText();
    if (listIndex == 1)
        writeSwiftComparisonFile(*law);
    record.heldModel = law->clone();
    result.law = law;
    return result;
}

}  // namespace zelko
