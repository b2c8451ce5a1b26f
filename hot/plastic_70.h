#pragma once
// Model 70: a law the forming system evaluates itself; here only its 28
// parameters are collected and written to the library.

#include <array>
#include <span>

#include "hot/plastic_hot.h"

namespace zelko {

inline constexpr int kModel70ParameterCount = 28;

// One item of the parameter screen's grid, in the order the items are created.
struct Model70Item {
    const char* category;  // "Stress1" or "Stress2"
    const char* group;
    const char* label;
    int shows;     // the parameter the item displays
    int storesIn;  // the parameter an edit of the item is stored in
};
std::span<const Model70Item> model70Items();

class PLASTIC_70 : public PLASTIC_HOT {
public:
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_70>(); }
    PLASTIC_70() { modelNumber = 70; }

    // "%8d\n" with the id, then P0 to P27 as "%30.4E\n": always 29 lines.
    bool writeLibraryBlock(TextWriter& out, int version) const override;

    // An edit of item k goes to the parameter the item table names, which from
    // item 7 on is not the one the item shows; 28 stands for item 0, higher
    // numbers (and negative ones) are ignored.
    void setItemValue(int item, double value);
    double itemValue(int item) const;  // what the item shows; 0 for no item

    std::array<double, kModel70ParameterCount> modelParameters{};  // P0 .. P27
};

}  // namespace zelko
