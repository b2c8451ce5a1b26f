#include "material/thermaltables.h"

#include "base/messages.h"

#include <algorithm>
#include <array>

#include "base/textfile.h"

namespace zelko {

namespace {

struct PresetRow {
    double temperature;
    double steelConductivity;
    double steelHeatCapacity;
    double aluminumConductivity;
    double aluminumHeatCapacity;
};

constexpr std::array<PresetRow, 8> kPresetRows{{
    {20, 0.0255, 0.005151, 0.10532, 0.00469},
    {200, 0.0255, 0.005151, 0.10532, 0.00469},
    {800, 0.0263, 0.005152, 0.10862, 0.004691},
    {900, 0.0277, 0.005152, 0.11441, 0.004691},
    {1000, 0.0291, 0.005224, 0.12019, 0.004757},
    {1100, 0.0305, 0.005228, 0.12597, 0.00476},
    {1200, 0.0319, 0.005352, 0.13175, 0.004873},
    {1300, 0.0333, 0.005584, 0.13754, 0.005084},
}};

void sortByTemperature(PropertyTable& table)
{
    std::stable_sort(table.begin(), table.end(),
                     [](const TablePoint& a, const TablePoint& b) { return a.temperature < b.temperature; });
}

// Temperatures are told apart by their "%.8f" text, as the screen shows them.
bool sameTemperatureText(double a, double b) { return thermalEditedCellText(a) == thermalEditedCellText(b); }

std::string noSelectionMessage(ThermalTable which)
{
    return std::string(messageText(which == ThermalTable::Conductivity ? MessageCode::SelectConductivityRow
                                                                        : MessageCode::SelectHeatCapacityRow));
}

bool validRow(const PropertyTable& table, int row) { return row >= 0 && static_cast<std::size_t>(row) < table.size(); }

}  // namespace

void applyThermalPreset(MaterialPreset preset, PropertyTable& conductivity, PropertyTable& heatCapacity)
{
    conductivity.clear();
    heatCapacity.clear();
    for (const PresetRow& row : kPresetRows) {
        const bool steel = preset == MaterialPreset::Steel;
        conductivity.push_back({row.temperature, steel ? row.steelConductivity : row.aluminumConductivity});
        heatCapacity.push_back({row.temperature, steel ? row.steelHeatCapacity : row.aluminumHeatCapacity});
    }
}

ThermalEdit addThermalPoint(PropertyTable& table, TablePoint point)
{
    for (const TablePoint& p : table)
        if (sameTemperatureText(p.temperature, point.temperature))
            return {};
    table.push_back(point);
    sortByTemperature(table);
    return {true, {}};
}

ThermalEdit modifyThermalPoint(PropertyTable& table, ThermalTable which, int selectedRow, TablePoint point)
{
    if (!validRow(table, selectedRow))
        return {false, noSelectionMessage(which)};
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (static_cast<int>(i) != selectedRow && sameTemperatureText(table[i].temperature, point.temperature)) {
            return {false, formatMessage(which == ThermalTable::Conductivity ? MessageCode::ConductivityTemperatureExists
                                                                             : MessageCode::HeatCapacityTemperatureExists,
                                         point.temperature)};
        }
    }
    table[static_cast<std::size_t>(selectedRow)] = point;
    sortByTemperature(table);
    return {true, {}};
}

ThermalEdit removeThermalPoint(PropertyTable& table, ThermalTable which, int selectedRow)
{
    if (!validRow(table, selectedRow))
        return {false, noSelectionMessage(which)};
    table.erase(table.begin() + selectedRow);
    return {true, {}};
}

std::string thermalEditedCellText(double value) { return formatText("%.8f", value); }

std::string thermalRedrawCellText(double value) { return formatText("%.7f", value); }

}  // namespace zelko
