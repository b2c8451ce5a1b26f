#include "hot/plastic_70.h"

namespace zelko {

namespace {

constexpr Model70Item kItems[kModel70ParameterCount] = {
    {"Stress1", "YB", "Y0", 0, 0},          {"Stress1", "YB", "B", 1, 1},
    {"Stress1", "YB", "n", 2, 2},           {"Stress1", "YB", "g1", 3, 3},
    {"Stress1", "YB", "g2", 4, 4},          {"Stress1", "YB", "g3", 5, 5},
    {"Stress1", "Beta0", "Beta0", 6, 6},    {"Stress1", "Beta1", "Beta11", 7, 4},
    {"Stress1", "Beta1", "Beta12", 8, 5},   {"Stress1", "Beta1", "Beta13", 9, 6},
    {"Stress1", "Beta1", "Beta14", 10, 7},  {"Stress1", "Beta1", "Beta15", 11, 8},
    {"Stress1", "Beta2", "Beta21", 12, 13}, {"Stress1", "Beta2", "Beta22", 13, 14},
    {"Stress1", "Beta3", "Beta31", 14, 11}, {"Stress1", "Beta3", "Beta32", 15, 12},
    {"Stress1", "T0", "T01", 16, 9},        {"Stress1", "T0", "T02", 17, 10},
    {"Stress2", "Y1", "y1", 18, 15},        {"Stress2", "Y1", "y2", 19, 16},
    {"Stress2", "Y1", "y3", 20, 17},        {"Stress2", "Y1", "y4", 21, 18},
    {"Stress2", "T1", "T11", 22, 19},       {"Stress2", "T1", "T12", 23, 20},
    {"Stress2", "T2", "T21", 24, 21},       {"Stress2", "T2", "T22", 25, 22},
    {"Stress2", "A", "a1", 26, 23},         {"Stress2", "A", "a2", 27, 24},
};

}  // namespace

std::span<const Model70Item> model70Items() { return kItems; }

bool PLASTIC_70::writeLibraryBlock(TextWriter& out, int /*version*/) const
{
    out.format("%8d\n", modelNumber);
    for (const double p : modelParameters)
        out.format("%30.4E\n", p);
    return true;
}

void PLASTIC_70::setItemValue(int item, double value)
{
    if (item == kModel70ParameterCount)
        item = 0;
    if (item < 0 || item > kModel70ParameterCount)
        return;
    modelParameters[static_cast<std::size_t>(kItems[item].storesIn)] = value;
}

double PLASTIC_70::itemValue(int item) const
{
    if (item < 0 || item >= kModel70ParameterCount)
        return 0.0;
    return modelParameters[static_cast<std::size_t>(kItems[item].shows)];
}

}  // namespace zelko
