#include "material/tensilechain.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

#include "cold/coldfit.h"
#include "cold/lawcomparison.h"
#include "cold/tensilereduction.h"

namespace zelko {

namespace {

// The material with record as its active model (the law it holds goes to the library).
Project withRecord(const Project& material, std::shared_ptr<RoomOri> record)
{
    Project edited = material;
    edited.setModel(std::move(record));
    return edited;
}

// A copy of the material's record, or a new one; empty for a hot model.
std::shared_ptr<RoomOri> recordCopy(const Project& material)
{
    if (!material.activeModel)
        return std::make_shared<RoomOri>();
    if (material.activeModel->modelKind != ColdModel)
        return nullptr;
    return std::dynamic_pointer_cast<RoomOri>(material.activeModel->clone());
}

}  // namespace

std::string tensileRecordRefusal(const Project& material)
{
    return recordCopy(material) ? std::string() : "the material holds a hot flow-stress model, not a tensile record";
}

int maximumStressIndex(const Curve& curve)
{
    const auto highest = std::max_element(curve.begin(), curve.end(),
                                          [](const CurvePoint& a, const CurvePoint& b) { return a.y < b.y; });
    return static_cast<int>(highest - curve.begin());
}

EnteredTest enterTensileTest(const Project& material, TensileTest test)
{
    EnteredTest entered;
    std::shared_ptr<RoomOri> record = recordCopy(material);
    if (!record) {
        entered.error = tensileRecordRefusal(material);
        return entered;
    }
    record->inputKind = test.inputKind;
    record->lengthUnit = test.lengthUnit;
    record->forceUnit = test.forceUnit;
    record->diameter = test.diameter;
    record->gaugeLength = test.gaugeLength;
    record->curves = {};
    if (test.inputKind >= 0 && test.inputKind < static_cast<int>(record->curves.size()))
        record->curves[static_cast<std::size_t>(test.inputKind)] = std::move(test.curve);
    if (const auto message = convertEnteredUnits(*record)) {
        entered.error = *message;
        return entered;
    }
    double area = 0.0;
    if (const auto message = deriveCurveForms(*record, area)) {
        entered.error = *message;
        return entered;
    }
    entered.record = std::move(record);
    return entered;
}

namespace {

void applySettings(const TensileFitSettings& settings, RoomOri& record)
{
    record.startIndex = settings.startIndex.value_or(record.startIndex);
    record.neckingIndex = settings.neckingIndex.value_or(maximumStressIndex(record.curves[EngineeringCurve]));
    record.endIndex = settings.endIndex.value_or(static_cast<int>(record.inputCurve().size()) - 1);
    record.maxIterations = settings.maxIterations.value_or(record.maxIterations);
    record.targetError = settings.targetError.value_or(record.targetError);
    record.neckingConstraint = settings.neckingConstraint;
    record.weighted = settings.weighted;
}

// Fits the law to record, a copy of the entered record that the fit may change.
TensileFit fitRecord(const Project& material, std::shared_ptr<RoomOri> record, ColdLawId law,
                     const TensileFitSettings& settings, const Environment& environment, const RunControl& control)
{
    applySettings(settings, *record);
    TensileFit fit;
    ColdFitResult result = fitColdLaw(*record, law, control, settings.method);
    if (!result.law) {
        fit.error = result.message;
        fit.cancelled = result.cancelled;
        return fit;
    }
    if (std::string refusal = fittedLawRefusal(*result.law); !refusal.empty()) {
        fit.error = std::move(refusal);
        return fit;
    }
    if (law == ColdLawId::Swift) {
        // The table is a convenience beside the fit: no folder, no table.
        std::string ignored;
        writeSwiftComparisonTable(*result.law, environment.exchangeFolder, ignored);
    }
    // No copies of a long curve: the rebuilt true curve moves into the record,
    // and the fit's own law becomes its held model.
    if (result.trueCurve)
        record->curves[TrueCurve] = std::move(*result.trueCurve);
    fit.law = result.law;
    record->heldModel = std::move(result.law);
    fit.text = std::move(result.text);
    fit.material = withRecord(material, std::move(record));
    return fit;
}

}  // namespace

TensileFit fitTensileLaw(const Project& material, const RoomOri& entered, ColdLawId law, const TensileFitSettings& settings,
                         const Environment& environment, const RunControl& control)
{
    return fitRecord(material, std::dynamic_pointer_cast<RoomOri>(entered.clone()), law, settings, environment, control);
}

TensileFit fitTensileLaw(const Project& material, RoomOri&& entered, ColdLawId law, const TensileFitSettings& settings,
                         const Environment& environment, const RunControl& control)
{
    // A record of a derived kind keeps its kind through a copy; a plain one is moved.
    if (typeid(entered) != typeid(RoomOri))
        return fitTensileLaw(material, std::as_const(entered), law, settings, environment, control);
    return fitRecord(material, std::make_shared<RoomOri>(std::move(entered)), law, settings, environment, control);
}

LawComparisonResult compareTensileLaws(const RoomOri& entered, const TensileFitSettings& settings,
                                       const RunControl& control)
{
    // The settings go onto a copy of the record, as for a single fit. The laws
    // rebuild their curve from the engineering one: each fit's copy of the record
    // need not hold the load-displacement curve too.
    RoomOri record(entered, EngineeringCurve);
    record.curves[TrueCurve] = entered.curves[TrueCurve];
    applySettings(settings, record);
    return compareColdLaws(record, control, settings.method);
}

std::shared_ptr<RoomOri> tensileJobRecord(const Project& material, std::string& error)
{
    std::shared_ptr<RoomOri> record = material.activeModel ? recordCopy(material) : nullptr;
    if (!record) {
        error = material.activeModel ? tensileRecordRefusal(material) : "the material holds no tensile record";
        return nullptr;
    }
    if (record->curves[LoadDisplacement].empty()) {
        double area = 0.0;
        if (const auto message = deriveCurveForms(*record, area)) {
            error = *message;
            return nullptr;
        }
    }
    return record;
}

TensileResult readTensileJobResult(const Project& material, const RoomOri& record, const std::filesystem::path& jobFile)
{
    TensileResult result;
    auto model = std::make_shared<PLASTIC_8>(record);
    result.status = readTensileResult(jobFile, *model);
    if (result.status != TensileResultStatus::Read)
        return result;
    auto holder = std::dynamic_pointer_cast<RoomOri>(record.clone());
    holder->heldModel = std::move(model);
    result.material = withRecord(material, std::move(holder));
    return result;
}

}  // namespace zelko
