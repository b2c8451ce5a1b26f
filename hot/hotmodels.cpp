#include "hot/hotmodels.h"

#include "base/messages.h"
#include "base/textfile.h"
#include "hot/celltypes.h"
#include "hot/plastic_17.h"
#include "hot/plastic_70.h"
#include "hot/zenerhollomon.h"

namespace zelko {

namespace {

using enum HotModelId;

// The screen's list; its positions live here and nowhere else.
constexpr HotTypeItem kTypeItems[] = {
    {"Type: 16", Type16},       {"Type: 17", Type17},   {"Type: 161", Type161},
    {"Type: 162 (Not supported)", std::nullopt},        {"Type: 163", Type163},
    {"Type: 164", Type164},     {"Type: 165", Type165}, {"Type: 166", Type166},
    {"Type: 167", Type167},     {"Type: 168", Type168}, {"Type: 169", Type169},
    {"Type: 1600", Type1600},   {"Zener-Hollomon model", ZenerHollomon, false},
};

const HotTypeItem* typeItemAt(int index)
{
    const auto items = hotTypeItems();
    return index >= 0 && static_cast<std::size_t>(index) < items.size() ? &items[static_cast<std::size_t>(index)]
                                                                        : nullptr;
}

HotFit unfitted(std::shared_ptr<PLASTIC_HOT> model, const RunControl& control)
{
    control.report(100);
    HotFit fit;
    fit.result.message = formatText("model %d has no law to fit", model->modelNumber);
    fit.model = std::move(model);
    return fit;
}

}  // namespace

std::optional<HotModelId> hotModelIdOf(int modelNumber)
{
    switch (static_cast<HotModelId>(modelNumber)) {
    case Type16: case Type17: case ZenerHollomon: case Model70: case Type161: case Type162: case Type163:
    case Type164: case Type165: case Type166: case Type167: case Type168: case Type169: case Type1600:
        return static_cast<HotModelId>(modelNumber);
    }
    return std::nullopt;
}

std::span<const HotTypeItem> hotTypeItems() { return kTypeItems; }

std::optional<HotModelId> modelIdOfTypeIndex(int index)
{
    const HotTypeItem* item = typeItemAt(index);
    return item ? item->model : std::nullopt;
}

std::shared_ptr<PLASTIC_HOT> createHotModel(HotModelId id)
{
    switch (id) {
    case Type16: return std::make_shared<PLASTIC_16>();
    case Type17: return std::make_shared<PLASTIC_17>();
    case ZenerHollomon: return std::make_shared<PLASTIC_Zener_Hollomon>();
    case Model70: return std::make_shared<PLASTIC_70>();
    case Type161: return std::make_shared<PLASTIC_161>();
    case Type162: return std::make_shared<PLASTIC_162>();
    case Type163: return std::make_shared<PLASTIC_163>();
    case Type164: return std::make_shared<PLASTIC_164>();
    case Type165: return std::make_shared<PLASTIC_165>();
    case Type166: return std::make_shared<PLASTIC_166>();
    case Type167: return std::make_shared<PLASTIC_167>();
    case Type168: return std::make_shared<PLASTIC_168>();
    case Type169: return std::make_shared<PLASTIC_169>();
    case Type1600: return std::make_shared<PLASTIC_1600>();
    }
    return nullptr;
}

std::shared_ptr<PLASTIC_HOT> createHotModel(HotModelId id, const HotDataSet& dataSet)
{
    std::shared_ptr<PLASTIC_HOT> model = createHotModel(id);
    if (!model)
        return nullptr;
    static_cast<PLASTIC_HOT&>(*model) = dataSet;
    model->modelNumber = static_cast<int>(id);
    return model;
}

HotFit fitHotModel(const HotDataSet& dataSet, HotModelId id, const HotFitOptions& options, const RunControl& control)
{
    switch (id) {
    case Type17: return fitHenselSpittel(dataSet, options, control);
    case ZenerHollomon: return fitZenerHollomon(dataSet, control);
    case Model70:
    case Type162: return unfitted(createHotModel(id, dataSet), control);
    default: break;
    }
    auto cells = std::dynamic_pointer_cast<CellTableModel>(createHotModel(id, dataSet));
    if (!cells) {
        control.report(100);
        HotFit none;
        none.result.message = formatText("model %d has no law to fit", static_cast<int>(id));
        return none;
    }
    return fitCellTable(std::move(cells), control);
}

TypeFit runTypeFit(const HotDataSet& dataSet, int typeIndex, bool hotFlag, const HotFitOptions& options,
                   const RunControl& control)
{
    TypeFit fit;
    const HotTypeItem* item = typeItemAt(typeIndex);
    if (!item) {
        control.report(0);
        return fit;
    }
    if (!item->model) {
        fit.message = messageText(MessageCode::Model162Refused);
        return fit;
    }
    control.report(5);
    if (!item->runsFit) {
        fit.model = createHotModel(*item->model, dataSet);
    } else {
        HotFit fitted = fitHotModel(dataSet, *item->model, options, control);
        fit.model = std::move(fitted.model);
        fit.result = std::move(fitted.result);
        fit.cancelled = fitted.cancelled;
    }
    if (fit.model)
        fit.model->hotFlag = hotFlag;
    return fit;
}

}  // namespace zelko
