#pragma once
// Where plastic flow starts on a measured tensile curve: the 0.2 % offset yield
// point, with the elastic slope read from the curve itself, and the first row
// that reaches a given strain.

#include <optional>
#include <string>

#include "models/roomori.h"

namespace zelko {

// The conventional proof strain of the offset method.
inline constexpr double kYieldOffsetStrain = 0.002;

struct ElasticLine {
    double slope = 0.0;      // MPa per unit strain
    double strainAtZero = 0.0;  // where the line meets zero stress (the toe of the curve)
};

// The steepest straight stretch before the maximum stress, by least squares over
// a sliding window of a quarter of the points below half that stress (at least
// five), so the seating toe and the scatter of single points do not pass for the
// elastic line.
std::optional<ElasticLine> elasticLine(const Curve& curve);

struct YieldPoint {
    int index = 0;
    ElasticLine elastic;
};
// The first row at or beyond the crossing of the curve and the elastic line
// shifted by kYieldOffsetStrain; nothing, with the reason, when the curve does not
// cross it before its maximum stress.
std::optional<YieldPoint> offsetYieldPoint(const Curve& curve, std::string& error);

// The first row whose strain reaches strain; nothing when none does.
std::optional<int> firstRowAtStrain(const Curve& curve, double strain);

// The curve the start row is chosen on: the engineering one, or the true one
// when the test was entered as true stress and strain.
const Curve& startSelectionCurve(const RoomOri& record);

}  // namespace zelko
