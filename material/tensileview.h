#pragma once
// What the tensile screen draws and labels: the entered curve as engineering or
// true stress-strain, the fitted law over the strains it was fitted to, the
// solver's identified curve, and the values its point labels show.

#include <vector>

#include "cold/coldlaw.h"
#include "material/chartpoints.h"
#include "cold/plastic_8.h"
#include "models/roomori.h"

namespace zelko {

enum class CurveForm { Engineering, True };

// The entered curve in that form: the whole engineering list, or the true curve
// the laws fit (from the start to the necking point, starting at zero strain).
ChartPoints measuredPoints(const RoomOri& record, CurveForm form);

// The law at the strains of its fitted points; as engineering stress-strain it
// is taken back through the record's engineering strains.
ChartPoints lawPoints(const ColdLaw& law, const RoomOri& record, CurveForm form);

// The flow curve the tensile solver identified (true stress-strain).
ChartPoints identifiedPoints(const PLASTIC_8& model);

// The point the slider places, and the value its label shows: the raw first
// value at the fracture point (over the gauge length for load-displacement
// input), the strain of the entered curve elsewhere.
enum class PlacedPoint { Necking, Last, Fracture };
double placedPointValue(const RoomOri& record, PlacedPoint point, int index);

}  // namespace zelko

namespace zelko {

// The record's entered curve as the screen shows it again: in mm and N with the
// displacement whole (the record keeps it halved), so entering it once more
// gives the same record.
struct ShownTest {
    std::int32_t inputKind = LoadDisplacement;
    Curve curve;
    double diameter = 0.0;
    double gaugeLength = 0.0;
};
ShownTest shownTestOf(const RoomOri& record);

}  // namespace zelko
