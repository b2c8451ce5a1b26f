#include "material/hotchain.h"

#include "hot/celltypes.h"
#include "hot/stresstable.h"

namespace zelko {

namespace {

bool fitsEachCell(HotModelId id) { return dynamic_cast<const CellTableModel*>(createHotModel(id).get()) != nullptr; }

// The first cell without a curve, as a message; empty when every cell has one.
std::string missingCell(const HotDataSet& dataSet)
{
    for (std::size_t t = 0; t < dataSet.temperatures.size(); ++t)
        for (std::size_t r = 0; r < dataSet.strainRates.size(); ++r)
            if (dataSet.curve(t, r).empty())
                return formatText("no curve for temperature %g and strain rate %g; this type needs every cell",
                                  dataSet.temperatures[t], dataSet.strainRates[r]);
    return {};
}

}  // namespace

const HotDataSet* hotDataSetOf(const Project& material)
{
    return dynamic_cast<const HotDataSet*>(material.activeModel.get());
}

HotCurvesFit fitHotCurves(const Project& material, const HotDataSet& dataSet, HotModelId id,
                          const HotFitOptions& options, const RunControl& control)
{
    HotCurvesFit outcome;
    const bool perCell = fitsEachCell(id);
    if (perCell) {
        outcome.error = missingCell(dataSet);
        if (!outcome.error.empty())
            return outcome;
    }
    outcome.fit = fitHotModel(dataSet, id, options, control);
    if (!outcome.fit.result.fitted) {
        outcome.error = outcome.fit.result.message;
        return outcome;
    }
    const auto* cells = dynamic_cast<const CellTableModel*>(outcome.fit.model.get());
    if (cells && !cells->unfittedCells().empty()) {
        outcome.error = cells->unfittedCells().front();
        return outcome;
    }
    Project edited = material;
    edited.setModel(outcome.fit.model->clone());
    outcome.material = std::move(edited);
    return outcome;
}

std::shared_ptr<const PLASTIC_HOT> refitHotModel(const HotDataSet& dataSet, const RunControl& control)
{
    if (const auto id = hotModelIdOf(dataSet.modelNumber)) {
        HotFit fit = fitHotModel(dataSet, *id, {}, control);
        if (fit.cancelled)
            return nullptr;
        if (fit.result.fitted)
            return std::move(fit.model);
    }
    if (control.stopRequested())
        return nullptr;
    return std::make_shared<PLASTIC_HOT>(dataSet);
}

std::vector<CellError> cellErrorsOf(const PLASTIC_HOT& model)
{
    const HotStressTable table(model);
    std::vector<CellError> cells;
    for (std::size_t t = 0; t < table.temperatureCount(); ++t)
        for (std::size_t r = 0; r < table.rateCount(); ++r) {
            const FitError error = cellFitErrorOf(model, table, t, r);
            cells.push_back({model.temperatures[t], model.strainRates[r], error.aare, error.rmse, error.count});
        }
    return cells;
}

}  // namespace zelko
