#pragma once
// The tensile test's reduction: units of the entered curve, the other two forms
// derived from it, and the true curve the hardening laws fit.

#include <cstdint>
#include <optional>
#include <string>

#include "models/roomori.h"

namespace zelko {

// The record's unit fields hold positions in the screen's unit lists.
enum LengthUnit : std::int32_t { Millimetre = 0, Inch = 1 };  // Inch means percent for a stress-strain curve
enum ForceUnit : std::int32_t { Newton = 0, Kilonewton = 1, KilogramForce = 2, MetricTon = 3, PoundForce = 4 };
inline constexpr const char* kLengthUnitNames[] = {"[mm]", "[inch]"};
inline constexpr const char* kForceUnitNames[] = {"[N]", "[kN]", "[kgf]", "[ton]", "[lbf]"};

// Converts the entered list to mm and N (a displacement is stored as half the
// elongation: the simulation models half the gauge length). On a wrong unit index
// the message is returned and the lists are left as they were.
std::optional<std::string> convertEnteredUnits(RoomOri& record);

// Cross-section of the round specimen, rounded to four decimals.
double specimenArea(double diameter);

// Rebuilds the forms not entered from the entered one. area is the dialog's
// cross-section: computed from the diameter when not set (<= 0) and kept.
// Returns a message when the specimen or the curve can't give the other forms.
std::optional<std::string> deriveCurveForms(RoomOri& record, double& area);

// Engineering to true between start and necking index, both inclusive, shifted
// so that the start point has zero strain. Nothing when fewer than two points
// lie in that range or a strain lies at or below -1.
std::optional<Curve> trueCurveFromEngineering(const RoomOri& record);

}  // namespace zelko
