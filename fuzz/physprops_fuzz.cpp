// The JMatPro PhysProps import on any bytes.

#include <cstddef>
#include <cstdint>

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
    for (std::size_t i = 0; i < result.conductivity.size(); ++i) {
        const double a = result.conductivity[i].temperature;
        const double b = result.heatCapacity[i].temperature;
        FUZZ_CHECK(a == b || (a != a && b != b));  // NaN temperatures are read as they stand
    }
    return 0;
}
