#pragma once
// What the hot chart screen draws and tabulates: the measured curves and the
// model through them, against strain or against strain rate, for the chosen
// cells; and the model's error at each sample strain and temperature, with the
// table's summary rows and cell marks.

#include <cstddef>
#include <string>
#include <vector>

#include "hot/plastic_hot.h"
#include "material/chartpoints.h"

namespace zelko {

enum class HotChartAxis { Strain, StrainRate };

// Indices into the model's lists, in list order: the temperatures, and the
// strain rates (stress against strain) or the sample strains (against rate).
struct HotChartChoice {
    HotChartAxis axis = HotChartAxis::Strain;
    std::vector<std::size_t> temperatures;
    std::vector<std::size_t> others;
    bool measured = true;
    bool model = true;
};

struct HotChartSeries {
    std::string name;  // "T:%g, R:%g" or "T:%g, E:%g"; a model series has its curve's name
    ChartPoints points;
    bool model = false;
};

// For each chosen temperature and each chosen rate (or strain), the measured
// series then the model's at the same abscissae, its negative stresses left out.
// Against rate, a measured point is the curve's stress at the sample strain, so a
// rate whose curve doesn't reach the strain has none.
std::vector<HotChartSeries> hotChartSeries(const PLASTIC_HOT& model, const HotChartChoice& choice);

// A cell mark: its colour and where.
struct CellMark {
    int red = 0;
    int green = 0;
    int blue = 0;
    std::size_t row = 0;
    std::size_t column = 0;
    friend bool operator==(const CellMark&, const CellMark&) = default;
};
inline constexpr CellMark kOutlierMark{255, 100, 100, 0, 0};
inline constexpr CellMark kCheckMark{255, 0, 0, 0, 0};

// Numeric columns start at the fourth; the last one is checked against 100.
struct FitErrorTable {
    static constexpr std::size_t kFirstNumericColumn = 3;
    static constexpr double kCheckLimit = 100.0;
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;  // the data rows, then "Mean" and "Standard deviation"
    std::size_t dataRows = 0;
    std::size_t checkColumn = 0;
    std::vector<CellMark> marks;
};

// The table's summary of its data rows, read as their cells show them (from the
// first numeric column on): the mean and the standard deviation over the rows (divided
// by their number) as "%g", a mark on each cell more than three deviations from
// its column's mean, and one on each check-column value below the limit.
void summariseFitErrors(FitErrorTable& table);

// One row per sample strain and temperature with usable measured entries: the
// model's AARE and RMSE over the strain rates, its largest relative error, and
// the mean ratio of model to measured stress in percent (the check column: below
// 100 the model predicts less force than was measured), then the summary.
FitErrorTable fitErrorTable(const PLASTIC_HOT& model);

}  // namespace zelko
