#include "material/heat.h"

namespace zelko {

void HEAT::writeMaterialBlock(TextWriter& out) const
{
    out.format(" %5d\n", static_cast<int>(points.size()));
    for (const TablePoint& p : points)
        out.format(" %.7f %.7f\n", p.temperature, p.value);
}

bool HEAT::writeLibraryBlock(TextWriter& out, int /*version*/) const
{
    out.format("      %d\n", static_cast<int>(points.size()));
    for (const TablePoint& p : points)
        out.format("      %.4E  %.4E\n", p.temperature, p.value);
    return true;
}

bool HEAT::readLibraryBlock(TextReader& in)
{
    std::u16string token;
    const int count = in.readToken(token) ? toInt(token) : 0;
    points.assign(in.claim(count), TablePoint{});
    for (TablePoint& p : points) {
        if (in.readToken(token))
            p.temperature = toDouble(token);
        if (in.readToken(token))
            p.value = toDouble(token);
    }
    return true;
}

}  // namespace zelko
