#include "material/elasticscreen.h"

namespace zelko {

ElasticScreenValues elasticScreenValues(const ELASTIC& elastic)
{
    ElasticScreenValues values;
    for (int i = 0; i < kElasticPropertyCount; ++i) {
        const auto k = static_cast<std::size_t>(i);
        values.formIndex[k] = elastic.propertyType[k] - 1;
        if (elastic.propertyType[k] == 1)
            values.value[k] = elastic.value(i);
        else
            values.workingTables[k] = elastic.tables[k];
    }
    return values;
}

void applyElasticPreset(MaterialPreset preset, ElasticScreenValues& values)
{
    if (preset == MaterialPreset::Steel)
        values.value = {210000, 0.3, 7850, 1.2e-05};
    else
        values.value = {72400, 0.33, 2790, 2.36e-05};
}

void applyElasticScreen(const ElasticScreenValues& values, ELASTIC& target)
{
    ELASTIC fresh;
    for (int i = 0; i < kElasticPropertyCount; ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (values.formIndex[k] == 0)
            fresh.tables[k].push_back({0.0, values.value[k]});
        else if (values.formIndex[k] == 1)
            fresh.setTable(i, values.workingTables[k]);
    }
    target.propertyType = fresh.propertyType;
    target.tables = fresh.tables;
}

}  // namespace zelko
