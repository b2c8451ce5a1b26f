#pragma once
// The hot model family by model id, its fits, and the data screen's model and
// type choices.

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "base/runcontrol.h"
#include "hot/plastic_hot.h"

namespace zelko {

// The ids the forming system knows the hot models by.
enum class HotModelId : int {
    Type16 = 16,
    Type17 = 17,  // Hensel-Spittel
    ZenerHollomon = 50,
    Model70 = 70,
    Type161 = 161,
    Type162 = 162,
    Type163 = 163,
    Type164 = 164,
    Type165 = 165,
    Type166 = 166,
    Type167 = 167,
    Type168 = 168,
    Type169 = 169,
    Type1600 = 1600,
};

// The id of a model number (as a file holds it); nothing for a number of no hot model.
std::optional<HotModelId> hotModelIdOf(int modelNumber);


// The model choice, in order.
inline constexpr std::array<std::string_view, 4> kHotModelItems = {"Raw data", "Hensel-Spittel model",
                                                                   "Zener-Hollomon model", "Model 70"};

// The type choice, in order: the item text, the model it selects (none: refused
// with "162 model is not supported") and whether choosing it runs the fit (Zener-Hollomon is
// made without one).
struct HotTypeItem {
    std::string_view text;
    std::optional<HotModelId> model;
    bool runsFit = true;
};
std::span<const HotTypeItem> hotTypeItems();
// The model of a type-choice index; nothing for 162 and for an index outside the list.
std::optional<HotModelId> modelIdOfTypeIndex(int index);

// A new model of the id's class.
std::shared_ptr<PLASTIC_HOT> createHotModel(HotModelId id);
// The same holding a copy of the data set (lists, curves, flags, ranges).
std::shared_ptr<PLASTIC_HOT> createHotModel(HotModelId id, const HotDataSet& dataSet);

// Fits the type to the data set, which only is read: the new model and its
// report. Progress goes 0 to 100 to the control; a stop ends the fit within one
// descent iteration, cell or sample strain and gives no model. A type without a
// law to fit (70, 162) gives its model unfitted, with a message.
HotFit fitHotModel(const HotDataSet& dataSet, HotModelId id, const HotFitOptions& options,
                   const RunControl& control = {});

// The screen's three-column mode is the data set's hot flag.
inline bool hotFlagOfColumnMode(int columnMode) { return columnMode == 1; }

// The data screen's Fit over its data set, which the fit only reads: the type of
// the type choice, fitted (or only made, for Zener-Hollomon) as a new model that
// carries hotFlag; the screen sets the same flag on its own data set. A refused
// type gives "162 model is not supported"; an index outside the list does nothing (no model,
// no message, progress 0).
struct TypeFit {
    std::shared_ptr<PLASTIC_HOT> model;
    HotFitResult result;
    std::string_view message;
    bool cancelled = false;
};
TypeFit runTypeFit(const HotDataSet& dataSet, int typeIndex, bool hotFlag, const HotFitOptions& options,
                   const RunControl& control = {});

}  // namespace zelko
