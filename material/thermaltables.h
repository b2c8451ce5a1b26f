#pragma once
// What the thermal screen does to its two working tables: presets and point edits.

#include <string>

#include "base/tablepoint.h"

namespace zelko {

enum class MaterialPreset { Steel, Aluminum };
enum class ThermalTable { Conductivity, HeatCapacity };

// Replaces both tables by the preset's eight points.
void applyThermalPreset(MaterialPreset preset, PropertyTable& conductivity, PropertyTable& heatCapacity);

// An edit either changes the table or leaves it with a message for the user
// (UTF-8; empty when the screen says nothing).
struct ThermalEdit {
    bool changed = false;
    std::string message;
};

// Appends the point unless its temperature matches one in "%.8f" text; sorts.
ThermalEdit addThermalPoint(PropertyTable& table, TablePoint point);
// Replaces the selected row (-1: none selected) unless another row has the same
// temperature text; sorts.
ThermalEdit modifyThermalPoint(PropertyTable& table, ThermalTable which, int selectedRow, TablePoint point);
ThermalEdit removeThermalPoint(PropertyTable& table, ThermalTable which, int selectedRow);

// Cell texts: rows added or changed one at a time, and a full redraw.
std::string thermalEditedCellText(double value);  // "%.8f"
std::string thermalRedrawCellText(double value);  // "%.7f"

}  // namespace zelko
