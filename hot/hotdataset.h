#pragma once
// Editing the hot data set as its screen does: the three value groups, the
// grid they span, a curve shown as text, and raw curve text imported as the
// exchange file holds it. The screen calls these and shows the messages they return.

#include <array>
#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hot/plastic_hot.h"

namespace zelko {

inline constexpr std::size_t kMaxTemperatures = 30;
inline constexpr std::size_t kMaxStrains = 15;


enum class HotGroup { StrainRate, Temperature, Strain };

// A group's list as the screen holds it: "%g" texts in ascending order of value.
using GroupItems = std::vector<std::string>;

// Adds a value: refused with the group's message at its limit, nothing done when
// its "%g" text is already listed, else inserted after every value not above it.
// The message is empty unless the value was refused.
std::string_view addGroupValue(GroupItems& items, HotGroup group, double value);
// The rate list that adding the rates one by one with addGroupValue builds (the
// rates not above 0 left out), in n log n: a long CSV holds thousands of rates.
GroupItems strainRateItems(std::span<const double> rates);
std::vector<double> groupValues(const GroupItems& items);

// Rebuilds the grid from the lists; a curve stays where its temperature and rate
// (by their "%g" texts) are still listed. The refusal message, or empty.
std::string_view applyGroups(HotDataSet& dataSet, const GroupItems& strainRates, const GroupItems& temperatures,
                             const GroupItems& strains);

// The cell's curve as the raw-text edit shows it, one "\r\n"-ended line a point.
std::u16string curveText(const HotCurve& curve, bool numberedLines, int columnMode);

enum class StrainMeasure { True = 0, Engineering = 1 };
inline constexpr std::array<std::string_view, 2> kStrainMeasureItems = {"True", "Engineering"};

struct RawCurveLayout {
    bool numberedLines = false;
    int columnMode = 0;  // 0: strain, stress; 1: c0, strain, stress
    bool negateStrain = false;
    bool negateStress = false;
    StrainMeasure measure = StrainMeasure::True;
};

// What every reader does to a point after reading it: drop it when |strain| is
// below the offset (else subtract the offset), negate, raise maxStress, convert an
// engineering point. False for a point that is dropped; points that are not
// finite, or engineering strains of 1 or more, are dropped too.
bool acceptRawPoint(HotCurvePoint& point, const RawCurveLayout& layout, double strainOffset, double& maxStress);

// The raw-curve exchange file in the exchange folder.
inline constexpr std::string_view kRawCurveFileName = "tmp.txt";
// Its bytes: byte-order mark and the edit's text as UTF-16LE (line ends "\r\n").
std::string rawCurveFileBytes(std::u16string_view editText);
// The screen's step before an import: writes the exchange file into the folder
// (made when missing). The message box text on failure (the import is then not
// made), else empty.
std::string_view writeRawCurveFile(std::u16string_view editText, const std::filesystem::path& folder);

// The single-curve reader over the exchange file's bytes.
HotCurve readSingleCurve(std::string_view fileBytes, const RawCurveLayout& layout, double strainOffset,
                         double& maxStress);
// The multi-curve reader: each line a strain and one stress per column.
std::vector<HotCurve> readMultiCurve(std::string_view fileBytes, const RawCurveLayout& layout, std::size_t columns,
                                     double strainOffset, double& maxStress);

// The selected rates and temperatures (indices into the data set's lists, in the
// order of selection).
struct CurveSelection {
    std::vector<std::size_t> strainRates;
    std::vector<std::size_t> temperatures;
};

// Reads the exchange file's bytes into the selected cells: one rate and one
// temperature take a single curve, several of one of them with one of the other
// take a curve per column. False when the selection imports nothing.
bool importRawCurves(HotDataSet& dataSet, std::string_view fileBytes, const CurveSelection& selection,
                     const RawCurveLayout& layout, double strainOffset);

// Tokens of raw curve text that are not wholly a number ("abc", "1,5"): the
// reader takes them leniently (as 0, or as their leading number), which a screen
// should say.
std::size_t nonNumericTokens(std::u16string_view text);

// The screen's import of the edit's text, read as its exchange file reads; no
// file is involved. False when the selection imports nothing.
bool importRawText(HotDataSet& dataSet, std::u16string_view editText, const CurveSelection& selection,
                   const RawCurveLayout& layout, double strainOffset);

}  // namespace zelko
