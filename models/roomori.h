#pragma once
// The cold tensile record: raw and reduced curves, specimen, units, indices and
// fit settings. Base of every cold law and of the tensile simulation model.

#include <array>
#include <cstdint>
#include <vector>

#include "models/plastic.h"

namespace zelko {

enum InputKind : std::int32_t { LoadDisplacement = 0, EngineeringCurve = 1, TrueCurve = 2 };

// {x, y} or {strain, stress, weight}.
struct CurvePoint {
    double x = 0.0;
    double y = 0.0;
    double weight = 1.0;
    bool hasWeight = false;  // a point of three values
    friend bool operator==(const CurvePoint&, const CurvePoint&) = default;
};
using Curve = std::vector<CurvePoint>;

struct ParameterBound {
    double initial = 0.0;
    double minimum = 0.0;
    double maximum = 0.0;
};

// What a tensile record holds beside its curves.
struct TensileRecordSettings {
    std::int32_t lengthUnit = 0;
    std::int32_t forceUnit = 0;
    bool recordFlag = false;
    bool weighted = false;
    std::int32_t inputKind = LoadDisplacement;
    double diameter = 0.0;
    double gaugeLength = 0.0;
    double targetError = 1.0;
    std::int32_t maxIterations = 10000;
    double blockLeadValue = 0.0;
    std::int32_t startIndex = 0;
    std::int32_t neckingIndex = 0;
    std::int32_t endIndex = 0;
    bool neckingConstraint = false;
    double neckingPenaltyWeight = 1.0;
    std::vector<ParameterBound> parameterBounds;
    std::uint32_t fixedParameters = 0;  // one bit per parameter
    bool automaticStart = true;
};

class RoomOri : public Plastic, public TensileRecordSettings {
public:
    RoomOri() { modelKind = ColdModel; }
    // The record with one of its curves only; the others (a long test's load and
    // engineering curves, tens of megabytes) are not copied.
    RoomOri(const RoomOri& record, std::size_t keptCurve)
        : Plastic(record), TensileRecordSettings(record)
    {
        curves.at(keptCurve) = record.curves[keptCurve];
    }
    std::shared_ptr<Plastic> clone() const override { return cloneAs<RoomOri>(); }

    void readMaterialBlock(TextReader& in, int major, int minor) override;
    void writeMaterialBlock(TextWriter& out, int major, int minor) const override;

    // The list of the entered kind; an empty one for a kind a damaged file named.
    const Curve& inputCurve() const;

    std::array<Curve, 3> curves;  // by input kind; the true curve is the one the laws fit
};

}  // namespace zelko
