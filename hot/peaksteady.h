#pragma once
// Peak and steady state of measured hot flow curves: where dynamic
// recrystallisation peaks, how far the stress then softens and where it levels
// off, cell by cell, and the table the screen shows and exports.

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/gridtext.h"
#include "hot/plastic_micros.h"

namespace zelko {

// Shorter curves cannot show a rise, a peak and a fall.
inline constexpr std::size_t kMicrosMinPoints = 5;
// The smoothing window reaches this fraction of the points each side, at least
// one and at most kMicrosMaxHalfWindow (a densely logged test is smoothed over a
// short strain, not over a fiftieth of its points).
inline constexpr double kMicrosWindowFraction = 0.01;
inline constexpr std::size_t kMicrosMaxHalfWindow = 25;
// A maximum is a peak only when the smoothed stress falls below it afterwards by
// this fraction of it and by this many times the curve's scatter ...
inline constexpr double kMicrosMinDrop = 0.01;
inline constexpr double kMicrosDropScatters = 4.0;
// ... and this fraction of the strain range follows it (a last wobble is no peak).
inline constexpr double kMicrosMinFallRange = 0.1;
// The flat tail starts where the smoothed stress comes within this fraction of
// the softening (or this many scatters) of its lowest value after the peak ...
inline constexpr double kMicrosSteadyBand = 0.1;
inline constexpr double kMicrosSteadyScatters = 2.0;
// ... and is flat only when it covers this fraction of the strain after the peak
// (a curve falling straight to its end would give a tenth).
inline constexpr double kMicrosMinTail = 0.2;

// The curve's stresses lightly smoothed: a running median (a lone spike drops
// out) and then a running mean (scatter), both over the same window of points.
std::vector<double> smoothedStresses(const HotCurve& curve);
// The point-to-point scatter (MPa, as a standard deviation): the median distance
// of a point from the chord of its neighbours, so the curve's shape adds nothing.
double curveScatter(const HotCurve& curve);

// One curve's peak, half-softening and steady state.
MicrosCell peakSteadyCell(const HotCurve& curve);
// Every cell of the data set, [temperature][strain rate].
std::vector<std::vector<MicrosCell>> peakSteadyCells(const HotDataSet& dataSet);
// The data set's copy with its cells filled.
std::shared_ptr<PLASTIC_MICROS> peakSteadyModel(const HotDataSet& dataSet);

// "ok", "still softening", "hardening only", ...
std::string_view microsStatusText(MicrosStatus status);

// The table's columns, and its rows: one a cell, the rates of each temperature in
// turn; a value the curve could not give is an empty text.
inline constexpr std::array<std::string_view, 8> kPeakSteadyColumns = {
    "Temperature",       "Strain rate",  "Peak strain", "Peak stress (MPa)", "Steady stress (MPa)",
    "Half-softening strain", "Steady strain", "Status"};
std::vector<std::u16string> peakSteadyHeaders();
TextTable peakSteadyRows(const PLASTIC_MICROS& model);
// The CSV export's bytes (as the chart screens' raw-data export writes them).
std::string peakSteadyCsv(const PLASTIC_MICROS& model);

}  // namespace zelko
