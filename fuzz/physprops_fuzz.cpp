// The JMatPro PhysProps import on any bytes.

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/numbers.h"
#include "fuzz/fuzzcheck.h"
#include "material/physprops.h"

using namespace zelko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const PhysPropsImport result = importPhysProps(fuzzBytes(data, size));
    if (!result.ok) {
        // A refusal is shown to the user, so it must say why and replace nothing.
        FUZZ_CHECK(!result.message.empty());
        FUZZ_CHECK(result.conductivity.empty() && result.heatCapacity.empty());
        return 0;
    }
    // One point per selected row in each table, the coldest row always among them.
    FUZZ_CHECK(!result.conductivity.empty());
    FUZZ_CHECK(result.conductivity.size() == result.heatCapacity.size());
    for (std::size_t i = 0; i < result.conductivity.size(); ++i)
        FUZZ_CHECK(result.conductivity[i].temperature == result.heatCapacity[i].temperature);
    // No table holds inf or NaN: such a file is refused.
    const auto both = [](const TablePoint& p) { return std::array<double, 2>{p.temperature, p.value}; };
    FUZZ_CHECK(allFinite(result.conductivity, both) && allFinite(result.heatCapacity, both));
    return 0;
}
