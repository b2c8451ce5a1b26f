#pragma once
// What the elastic screen holds and how its result is applied to the material.

#include <array>

#include "material/elastic.h"
#include "material/thermaltables.h"

namespace zelko {

struct ElasticScreenValues {
    std::array<int, kElasticPropertyCount> formIndex{};  // property form minus 1
    std::array<double, kElasticPropertyCount> value{};
    std::array<PropertyTable, kElasticPropertyCount> workingTables;
};

// The screen's state on opening over the material's elastic set.
ElasticScreenValues elasticScreenValues(const ELASTIC& elastic);
// Fills the four value fields (forms and tables stay).
void applyElasticPreset(MaterialPreset preset, ElasticScreenValues& values);
// The accepted screen replaces the material's elastic set: every form becomes 1,
// a field gives a one-point table and a table selection keeps its points.
void applyElasticScreen(const ElasticScreenValues& values, ELASTIC& target);

}  // namespace zelko
