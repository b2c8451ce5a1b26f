#include "hot/plastic_hot.h"


namespace zelko {

namespace {

void writeList(TextWriter& out, const std::vector<double>& values)
{
    for (const double v : values)
        out.format("%30.4E\n", v);
    out.put(std::string_view("\n"));
}

// Reads up to count values; stops at the first item that is not a number.
void readList(TextReader& in, int count, std::vector<double>& values)
{
    values.assign(in.claim(count), 0.0);
    for (double& v : values)
        if (!in.scanDouble(v))
            break;
}

}  // namespace

HotFit cancelledFit()
{
    HotFit fit;
    fit.cancelled = true;
    fit.result.message = std::string(kRunCancelled);
    return fit;
}

const HotCurve& PLASTIC_HOT::curve(std::size_t temperatureIndex, std::size_t rateIndex) const
{
    static const HotCurve kEmpty;
    if (temperatureIndex >= curves.size() || rateIndex >= curves[temperatureIndex].size())
        return kEmpty;
    return curves[temperatureIndex][rateIndex];
}

void PLASTIC_HOT::writeMaterialBlock(TextWriter& out, int /*major*/, int minor) const
{
    if (minor >= 6)
        out.format("%8d %8d %8d\n", 1, modelNumber, hotFlag ? 1 : 0);
    else if (minor == 5)
        out.format("%8d %8d\n", 1, modelNumber);
    else
        out.format("%8d\n", modelNumber);
    if (minor >= 2)
        out.format("%8d\n", hasIndexColumn ? 1 : 0);
    out.format("%8zd %8zd %8zd %8zd\n", strainRates.size(), temperatures.size(), strains.size(),
               auxiliaryValues.size());
    // The curves are nearly all of a material file: room for them at once, not grown into.
    std::size_t points = 0;
    for (const auto& row : curves)
        for (const HotCurve& c : row)
            points += c.size();
    out.reserve(points * 70 + strainRates.size() * temperatures.size() * 80);
    writeList(out, strainRates);
    writeList(out, temperatures);
    writeList(out, strains);
    writeList(out, auxiliaryValues);
    for (std::size_t r = 0; r < strainRates.size(); ++r) {
        for (std::size_t t = 0; t < temperatures.size(); ++t) {
            out.format("\tstrain-rate: %17.4E\ttemperature: %17.4E\n", strainRates[r], temperatures[t]);
            const HotCurve& points = curve(t, r);
            out.format("%8zd\n", points.size());
            for (const HotCurvePoint& p : points)
                out.format("%30.7E %17.4E %17.4E\n", p.c0, p.strain, p.stress);
        }
    }
}

void PLASTIC_HOT::readMaterialBlock(TextReader& in, int /*major*/, int minor)
{
    if (minor >= 2) {
        int indexColumn = hasIndexColumn ? 1 : 0;
        if (in.scanInt(indexColumn))
            hasIndexColumn = indexColumn != 0;
    }
    int rateCount = 0, temperatureCount = 0, strainCount = 0, auxiliaryCount = 0;
    if (in.scanInt(rateCount) && in.scanInt(temperatureCount) && in.scanInt(strainCount))
        in.scanInt(auxiliaryCount);
    readList(in, rateCount, strainRates);
    readList(in, temperatureCount, temperatures);
    readList(in, strainCount, strains);
    readList(in, auxiliaryCount, auxiliaryValues);

    curves.clear();
    const std::size_t cells = temperatures.size() * strainRates.size();
    if (cells == 0)
        return;
    // A grid larger than the file could describe is damage, not data: the block
    // is dropped whole rather than kept with lists no grid can match.
    if (in.claim(static_cast<long long>(cells)) < cells) {
        strainRates.clear();
        temperatures.clear();
        strains.clear();
        auxiliaryValues.clear();
        return;
    }
    curves.assign(temperatures.size(), std::vector<HotCurve>(strainRates.size()));
    std::u16string header;
    for (std::size_t r = 0; r < strainRates.size(); ++r) {
        for (std::size_t t = 0; t < temperatures.size(); ++t) {
            if (!in.readNonBlankLine(header))
                return;
            int count = 0;
            if (!in.scanInt(count))
                continue;
            HotCurve& points = curves[t][r];
            points.assign(in.claim(count), HotCurvePoint{});
            for (HotCurvePoint& p : points)
                if (!in.scanDouble(p.c0) || !in.scanDouble(p.strain) || !in.scanDouble(p.stress))
                    break;
        }
    }
}

}  // namespace zelko
