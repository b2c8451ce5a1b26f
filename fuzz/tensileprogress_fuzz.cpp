// The tensile solver's progress file, and the simulation model's library block.

#include <cstddef>
#include <cstdint>

#include "cold/plastic_8.h"
#include "fuzz/fuzzcheck.h"

using namespace zelko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    PLASTIC_8 model;
    model.identifiedCurve = {{1.0, 2.0}};
    if (readTensileProgress(fuzzBytes(data, size), model))
        FUZZ_CHECK(model.identifiedCurve.size() <= 20);
    else
        FUZZ_CHECK(model.identifiedCurve.size() == 1);  // no marker: the curve stays

    PLASTIC_8 block;
    TextReader in(fuzzBytes(data, size), ReadMode::EightBit);
    if (block.readLibraryBlock(in)) {
        TextWriter out(TextEncoding::EightBit);
        FUZZ_CHECK(block.writeLibraryBlock(out, 6));
    }
    return 0;
}
