#pragma once
// Young's modulus of a steel against temperature from its composition (Tselikov).

#include <string>

#include "base/tablepoint.h"

namespace zelko {

struct ChemicalComposition {  // weight percent
    double carbon = 0.0;
    double manganese = 0.0;
    double silicon = 0.0;
    double phosphorus = 0.0;
    double sulfur = 0.0;
};

struct ModulusEstimate {
    bool ok = false;
    std::string message;  // why the composition was refused (UTF-8)
    PropertyTable table;  // 13 rows at 20, 50, 100, ..., 900 C; values in MPa
};

// Refuses a composition no steel has (a content outside 0 to 100 wt%, or more
// than 100 wt% together) and one the formula takes to a modulus of zero or less.
ModulusEstimate tselikovYoungsModulus(const ChemicalComposition& composition);

}  // namespace zelko
