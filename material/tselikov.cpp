#include "material/tselikov.h"

#include <array>

namespace zelko {

PropertyTable tselikovYoungsModulus(const ChemicalComposition& c)
{
    static constexpr std::array<double, 13> kTemperatures = {20, 50, 100, 150, 200, 250, 300,
                                                             400, 500, 600, 700, 800, 900};
    PropertyTable table;
    table.reserve(kTemperatures.size());
    for (const double t : kTemperatures) {
        const double sum = 308250 + 42924 * c.carbon - 144000 * c.carbon * c.carbon + 20525 * c.silicon
                           - 5289 * c.manganese - 12000 * c.phosphorus + 174000 * c.sulfur - 225.6 * t
                           + 0.01379 * t * t;
        table.push_back({t, 0.0981 * sum});
    }
    return table;
}

}  // namespace zelko
