#pragma once
// Young's modulus of a steel against temperature from its composition (Tselikov).

#include "base/tablepoint.h"

namespace zelko {

struct ChemicalComposition {  // weight percent
    double carbon = 0.0;
    double manganese = 0.0;
    double silicon = 0.0;
    double phosphorus = 0.0;
    double sulfur = 0.0;
};

// 13 rows at 20, 50, 100, ..., 900 C; values in MPa.
PropertyTable tselikovYoungsModulus(const ChemicalComposition& composition);

}  // namespace zelko
