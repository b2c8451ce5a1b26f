// The model blocks of the material file, read directly (without the frame in
// front, which rarely lets a mutated input reach them), written back and read again.
// The first byte picks the file version the block is read with.

#include <cstddef>
#include <cstdint>

#include "fuzz/fuzzcheck.h"
#include "hot/plastic_hot.h"
#include "models/roomori.h"

using namespace zelko;

namespace {

// Blocks this long come from counts with no points behind them (read as zeros);
// reading those back checks nothing new and made the target crawl.
constexpr std::size_t kLongestRoundTrip = std::size_t{1} << 20;

// The frame reads a model's head line itself; a re-read starts after it. The text
// is read back as it stands (the materialfile target covers the encoding).
TextReader afterHeadLine(const TextWriter& out)
{
    TextReader in = TextReader::fromText(out.text());
    std::u16string head;
    FUZZ_CHECK(in.readNonBlankLine(head));
    return in;
}

void roundTripCold(std::string_view block, int major, int minor)
{
    TextReader in(block, ReadMode::EightBit);
    RoomOri record;
    record.readMaterialBlock(in, major, minor);

    TextWriter out;
    record.writeMaterialBlock(out, major, 6);
    if (out.text().size() > kLongestRoundTrip)
        return;
    TextReader again = afterHeadLine(out);
    RoomOri reread;
    reread.readMaterialBlock(again, major, 6);
    FUZZ_CHECK(reread.inputKind == record.inputKind);
    FUZZ_CHECK(reread.lengthUnit == record.lengthUnit && reread.forceUnit == record.forceUnit);
    FUZZ_CHECK(reread.startIndex == record.startIndex && reread.endIndex == record.endIndex);
    FUZZ_CHECK(reread.maxIterations == record.maxIterations);
    if (record.inputKind >= 0 && record.inputKind < static_cast<int>(record.curves.size()))
        FUZZ_CHECK(reread.inputCurve().size() == record.inputCurve().size());
}

void roundTripHot(std::string_view block, int major, int minor)
{
    TextReader in(block, ReadMode::EightBit);
    PLASTIC_HOT hot;
    hot.modelNumber = 17;
    hot.readMaterialBlock(in, major, minor);

    TextWriter out;
    hot.writeMaterialBlock(out, major, 6);
    if (out.text().size() > kLongestRoundTrip)
        return;
    TextReader again = afterHeadLine(out);
    PLASTIC_HOT reread;
    reread.readMaterialBlock(again, major, 6);
    FUZZ_CHECK(reread.hasIndexColumn == hot.hasIndexColumn);
    FUZZ_CHECK(reread.strainRates.size() == hot.strainRates.size());
    FUZZ_CHECK(reread.temperatures.size() == hot.temperatures.size());
    FUZZ_CHECK(reread.strains.size() == hot.strains.size());
    FUZZ_CHECK(reread.auxiliaryValues.size() == hot.auxiliaryValues.size());
    for (std::size_t t = 0; t < hot.curves.size(); ++t)
        for (std::size_t r = 0; r < hot.curves[t].size(); ++r)
            FUZZ_CHECK(reread.curve(t, r).size() == hot.curve(t, r).size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const int major = (data[0] & 1) ? 21 : 20;
    const int minor = (data[0] >> 1) % 7;
    const auto block = fuzzBytes(data + 1, size - 1);
    roundTripCold(block, major, minor);
    roundTripHot(block, major, minor);
    return 0;
}
