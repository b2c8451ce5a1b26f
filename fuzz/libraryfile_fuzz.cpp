// The library-file reader and the token and line readers of the property sets,
// each on its own fresh 8-bit stream over the same bytes.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/fuzzcheck.h"
#include "material/project.h"

using namespace zelko;

namespace {

void checkTable(const PropertyTable& table, std::size_t textUnits)
{
    // Counts are trusted only as far as the text could hold the points.
    FUZZ_CHECK(table.size() <= std::max<std::size_t>(textUnits, 65536));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto bytes = fuzzBytes(data, size);
    {
        // Inert on a fresh stream: nothing read, nothing changed.
        TextReader in(bytes, ReadMode::EightBit);
        Project project;
        project.ReadLibraryFile(in);
        FUZZ_CHECK(in.position() == 0);
        FUZZ_CHECK(!project.activeModel && !project.libraryModel());
        FUZZ_CHECK(project.elastic->tables[YoungsModulus].empty());
    }
    {
        TextReader in(bytes, ReadMode::EightBit);
        const std::size_t units = in.remaining();
        HEAT conductivity;
        HEAT heatCapacity;
        FUZZ_CHECK(conductivity.readLibraryBlock(in));
        heatCapacity.readLibraryBlock(in);
        checkTable(conductivity.points, units);
        checkTable(heatCapacity.points, units);
        TextWriter out(TextEncoding::EightBit);
        conductivity.writeLibraryBlock(out, 6);
        heatCapacity.writeMaterialBlock(out);
        (void)out.bytes();

        // Once the stream has ended the library readers loop on the end-of-file
        // indicator; they must still stop.
        Project project;
        project.ReadLibraryFile(in);
        project.elastic->readLibraryBlock(in);
    }
    for (const int minor : {6, 4}) {
        TextReader in(bytes, ReadMode::EightBit);
        const std::size_t units = in.remaining();
        ELASTIC elastic;
        elastic.readMaterialBlock(in, minor);
        TextWriter out(TextEncoding::EightBit);
        for (int i = 0; i < kElasticPropertyCount; ++i) {
            checkTable(elastic.tables[static_cast<std::size_t>(i)], units);
            elastic.writeMaterialBlock(out, i);
        }
        elastic.writeLibraryBlock(out, minor);
        (void)out.bytes();
    }
    return 0;
}
