#pragma once
// The hot model family by model id, and the data screen's model and type choices.

#include <array>
#include <memory>
#include <span>
#include <string_view>

#include "hot/plastic_hot.h"

namespace zelko {

inline constexpr std::string_view kModel162Refused = "162 model is not supported";

// The model choice, in order.
inline constexpr std::array<std::string_view, 4> kHotModelItems = {"Raw data", "Hensel-Spittel model",
                                                                   "Zener-Hollomon model", "Model 70"};

// The type choice, in order: item text and the model id it selects (0 for the
// refused 162).
struct HotTypeItem {
    std::string_view text;
    int modelId;
};
std::span<const HotTypeItem> hotTypeItems();
// The model id of a type-choice index; 0 for 162 and for an index outside the list.
int modelIdOfTypeIndex(int index);

// A new model of the id's class (16, 17, 50, 70, 161 to 169, 1600); nothing for another id.
std::shared_ptr<PLASTIC_HOT> createHotModel(int modelId);
// The same holding a copy of the data set (lists, curves, flags, ranges).
std::shared_ptr<PLASTIC_HOT> createHotModel(int modelId, const PLASTIC_HOT& dataSet);

// The data screen's Fit: sets hotFlag from the column mode and fits the type of
// the type choice on a copy of the data set. Index 12 (Zener-Hollomon) makes the
// model 50 without fitting it; index 3 is refused with kModel162Refused; any
// other index outside the list does nothing (no model, no message).
struct TypeFit {
    std::shared_ptr<PLASTIC_HOT> model;
    HotFitResult result;
    std::string_view message;
};
TypeFit runTypeFit(PLASTIC_HOT& dataSet, int typeIndex, int columnMode, const HotFitOptions& options,
                   const HotProgress& progress = {});

}  // namespace zelko
