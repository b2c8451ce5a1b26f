#include "models/roomori.h"


namespace zelko {

const Curve& RoomOri::inputCurve() const
{
    static const Curve kEmpty;
    const bool knownKind = inputKind >= 0 && inputKind < static_cast<std::int32_t>(curves.size());
    return knownKind ? curves[static_cast<std::size_t>(inputKind)] : kEmpty;
}

void RoomOri::writeMaterialBlock(TextWriter& out, int major, int minor) const
{
    if (minor > 4)
        out.format(" %5d %5d\n", modelKind, modelNumber);
    if (major < 21)
        out.format(" %5d %5d %5d\n", lengthUnit, forceUnit, recordFlag ? 1 : 0);
    else
        out.format(" %5d %5d %5d %5d\n", lengthUnit, forceUnit, recordFlag ? 1 : 0, weighted ? 1 : 0);
    out.format("%30.4E %20.4E\n", gaugeLength, diameter);
    const Curve& points = inputCurve();  // an unknown kind is written with no points
    out.format(" %5d  %8d\n", inputKind, static_cast<int>(points.size()));
    // The longest point line ("    -1.0000E-100    -1.0000E-100", line end): the file
    // of a long curve is then never copied as it grows.
    constexpr std::size_t kLongestPointLine = 34;
    out.reserve(points.size() * kLongestPointLine);
    for (const CurvePoint& p : points)
        out.format("    %.4E    %.4E\n", p.x, p.y);
    out.format(" %5d  %5d\n", startIndex, endIndex);
    out.format(" %5d  %.4E\n", maxIterations, targetError);
}

void RoomOri::readMaterialBlock(TextReader& in, int major, int /*minor*/)
{
    // Each group is one scanf call of the original: it stops at the first item
    // that is not a number, and what was not read keeps its value.
    int flag = recordFlag ? 1 : 0;
    int weight = weighted ? 1 : 0;
    if (in.scanInt(lengthUnit) && in.scanInt(forceUnit) && in.scanInt(flag) && major >= 21)
        in.scanInt(weight);
    recordFlag = flag != 0;
    weighted = weight != 0;

    if (in.scanDouble(gaugeLength))
        in.scanDouble(diameter);

    int count = 0;
    if (in.scanInt(inputKind))
        in.scanInt(count);
    if (inputKind >= 0 && inputKind < static_cast<int>(curves.size())) {
        Curve& points = curves[static_cast<std::size_t>(inputKind)];
        points.assign(in.claim(count), CurvePoint{});
        for (CurvePoint& p : points) {
            if (!in.scanDouble(p.x) || !in.scanDouble(p.y))
                break;  // the rest stay 0, as the original's failed reads leave them
        }
    }

    if (in.scanInt(startIndex))
        in.scanInt(endIndex);
    if (in.scanInt(maxIterations))
        in.scanDouble(targetError);
}

}  // namespace zelko
