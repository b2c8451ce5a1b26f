#include "hot/hotmodels.h"

#include "hot/celltypes.h"
#include "hot/plastic_17.h"
#include "hot/plastic_70.h"
#include "hot/zenerhollomon.h"

namespace zelko {

namespace {

constexpr HotTypeItem kTypeItems[] = {
    {"Type: 16", 16},   {"Type: 17", 17},   {"Type: 161", 161}, {"Type: 162 (Not supported)", 0},
    {"Type: 163", 163}, {"Type: 164", 164}, {"Type: 165", 165}, {"Type: 166", 166},
    {"Type: 167", 167}, {"Type: 168", 168}, {"Type: 169", 169}, {"Type: 1600", 1600},
    {"Zener-Hollomon model", 50},
};

}  // namespace

std::span<const HotTypeItem> hotTypeItems() { return kTypeItems; }

int modelIdOfTypeIndex(int index)
{
    const auto items = hotTypeItems();
    return index >= 0 && static_cast<std::size_t>(index) < items.size() ? items[static_cast<std::size_t>(index)].modelId
                                                                        : 0;
}

std::shared_ptr<PLASTIC_HOT> createHotModel(int modelId)
{
    switch (modelId) {
    case 16: return std::make_shared<PLASTIC_16>();
    case 17: return std::make_shared<PLASTIC_17>();
    case 50: return std::make_shared<PLASTIC_Zener_Hollomon>();
    case 70: return std::make_shared<PLASTIC_70>();
    case 161: return std::make_shared<PLASTIC_161>();
    case 162: return std::make_shared<PLASTIC_162>();
    case 163: return std::make_shared<PLASTIC_163>();
    case 164: return std::make_shared<PLASTIC_164>();
    case 165: return std::make_shared<PLASTIC_165>();
    case 166: return std::make_shared<PLASTIC_166>();
    case 167: return std::make_shared<PLASTIC_167>();
    case 168: return std::make_shared<PLASTIC_168>();
    case 169: return std::make_shared<PLASTIC_169>();
    case 1600: return std::make_shared<PLASTIC_1600>();
    default: return nullptr;
    }
}

std::shared_ptr<PLASTIC_HOT> createHotModel(int modelId, const PLASTIC_HOT& dataSet)
{
    std::shared_ptr<PLASTIC_HOT> model = createHotModel(modelId);
    if (!model)
        return nullptr;
    static_cast<PLASTIC_HOT&>(*model) = dataSet;
    model->modelNumber = modelId;
    return model;
}

TypeFit runTypeFit(PLASTIC_HOT& dataSet, int typeIndex, int columnMode, const HotFitOptions& options,
                   const HotProgress& progress)
{
    constexpr int kRefusedIndex = 3;
    constexpr int kZenerHollomonIndex = 12;
    TypeFit fit;
    const int modelId = modelIdOfTypeIndex(typeIndex);
    if (typeIndex == kRefusedIndex) {
        fit.message = kModel162Refused;
        return fit;
    }
    if (modelId == 0) {
        if (progress)
            progress(0);
        return fit;
    }
    dataSet.hotFlag = columnMode == 1;
    if (progress)
        progress(5);
    fit.model = createHotModel(modelId, dataSet);
    if (typeIndex != kZenerHollomonIndex)
        fit.result = fit.model->fit(options, progress);
    return fit;
}

}  // namespace zelko
