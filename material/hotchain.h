#pragma once
// The hot chain as the hot screens and the hot commands both run it: a data set
// fitted with a type and handed back as a new material holding the fitted
// model, and the law fitted again after a load (the material file keeps the
// data set, not the fitted law). The material it starts from is never changed.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/runcontrol.h"
#include "hot/hotmodels.h"
#include "material/project.h"

namespace zelko {

// The material's hot data set; nothing when it holds no hot model.
const HotDataSet* hotDataSetOf(const Project& material);

struct HotCurvesFit {
    std::optional<Project> material;  // holding the fitted model; empty when nothing was fitted
    HotFit fit;
    std::string error;  // why nothing was fitted
};
// Fits the type to the data set. A type with coefficients per cell needs a
// curve in every cell, and every cell fitted, or the library entry would have
// holes.
HotCurvesFit fitHotCurves(const Project& material, const HotDataSet& dataSet, HotModelId id,
                          const HotFitOptions& options, const RunControl& control = {});

// The error of a fitted model in one test cell, over the cell's usable entries of
// the stress table (the measures of the whole fit, cell by cell).
struct CellError {
    double temperature = 0.0;
    double strainRate = 0.0;
    double aare = 0.0;  // fraction
    double rmse = 0.0;  // MPa
    std::size_t count = 0;
};
std::vector<CellError> cellErrorsOf(const PLASTIC_HOT& model);

// The stored type fitted again to the stored data set; for a type without a law
// (or one that can't be fitted) the data set itself, whose measured curves serve.
// Nothing when the stop was requested.
std::shared_ptr<const PLASTIC_HOT> refitHotModel(const HotDataSet& dataSet, const RunControl& control = {});

}  // namespace zelko
