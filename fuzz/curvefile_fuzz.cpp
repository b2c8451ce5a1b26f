// A measured tensile curve as text, then the whole cold path on what it gives:
// units, the other forms, and a short fit of one of the laws.

#include <cstddef>
#include <cstdint>

#include "cold/coldfit.h"
#include "cold/curvefile.h"
#include "cold/tensilereduction.h"
#include "fuzz/fuzzcheck.h"

using namespace zelko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string error;
    std::optional<Curve> curve = readCurveText(fuzzBytes(data, size), error);
    if (!curve) {
        FUZZ_CHECK(!error.empty());
        return 0;
    }
    FUZZ_CHECK(curve->size() >= 2);
    RoomOri record;
    record.inputKind = static_cast<int>(size % 3);
    record.lengthUnit = static_cast<int>(size % 2);
    record.forceUnit = static_cast<int>(size % 5);
    record.diameter = 10;
    record.gaugeLength = 50;
    record.curves[static_cast<std::size_t>(record.inputKind)] = std::move(*curve);
    if (convertEnteredUnits(record))
        return 0;
    double area = 0.0;
    if (deriveCurveForms(record, area))
        return 0;
    record.neckingIndex = static_cast<int>(record.inputCurve().size()) - 1;
    record.maxIterations = 20;
    record.weighted = size % 7 == 0;
    const ColdFitResult result = fitColdLaw(record, kColdLaws[size % kColdLaws.size()], RunControl{});
    if (!result.law)
        return 0;
    // Whatever the data, no written text carries nan or inf.
    FUZZ_CHECK(result.text.find("nan") == std::string::npos && result.text.find("inf") == std::string::npos);
    TextWriter block(TextEncoding::EightBit);
    result.law->writeLibraryBlock(block, 6);
    const std::string bytes = block.bytes();
    FUZZ_CHECK(bytes.find("nan") == std::string::npos && bytes.find("inf") == std::string::npos);
    return 0;
}
