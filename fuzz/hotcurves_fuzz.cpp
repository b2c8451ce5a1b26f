// The hot readers: the long CSV of curves, and the raw-curve exchange file read
// by the single- and the multi-curve reader in every layout.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "fuzz/fuzzcheck.h"
#include "hot/hotcsv.h"
#include "hot/hotdataset.h"

using namespace zelko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes = fuzzBytes(data, size);
    std::string error;
    const std::optional<PLASTIC_HOT> dataSet = readHotCurvesCsv(bytes, {0.001 * (size % 3), StrainMeasure::True}, error);
    if (!dataSet)
        FUZZ_CHECK(!error.empty());
    else
        FUZZ_CHECK(dataSet->curves.size() == dataSet->temperatures.size());

    RawCurveLayout layout;
    layout.numberedLines = size % 2 == 1;
    layout.columnMode = static_cast<int>(size / 2 % 2);
    layout.negateStrain = size % 5 == 0;
    layout.measure = size % 3 == 0 ? StrainMeasure::Engineering : StrainMeasure::True;
    double maxStress = 0.0;
    for (const HotCurvePoint& p : readSingleCurve(bytes, layout, 0.002, maxStress))
        FUZZ_CHECK(std::isfinite(p.strain) && std::isfinite(p.stress));  // kept points are numbers
    const std::vector<HotCurve> columns = readMultiCurve(bytes, layout, 1 + size % 4, 0.0, maxStress);
    FUZZ_CHECK(columns.size() == 1 + size % 4);
    return 0;
}
