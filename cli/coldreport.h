#pragma once
// What fit-cold shows beyond the law's result text: the rows the fit used, the
// ranked comparison of the laws, the same as JSON, and the curves as CSV.

#include <string>
#include <string_view>
#include <vector>

#include <json/json.h>

#include "cold/lawcomparison.h"

namespace zelko::cli {

// The command line's name of a law ("hockett-sherby").
std::string_view lawOptionName(ColdLawId law);

// One of the rows the fit used, on the curve the start was chosen on.
struct ChosenRow {
    const char* role = "";  // "start", "necking", "fracture"
    int row = 0;
    std::string rule;  // how it was chosen: "0.2 % offset yield", "maximum stress", "--start"
    double strain = 0.0;
    double stress = 0.0;
};
std::vector<ChosenRow> chosenRows(const RoomOri& record, int start, std::string startRule, int necking,
                                  std::string neckingRule);

// "start row 231 (0.2 % offset yield): engineering strain 0.004523, stress 736.2 MPa", a line each.
std::string rowsText(const std::vector<ChosenRow>& rows, bool trueCurve);
Json::Value rowsJson(const std::vector<ChosenRow>& rows);

// The ranked table; "*" marks a parameter held at a bound.
std::string comparisonText(const std::vector<LawComparison>& rows);
// One law as JSON: name, title, parameters by name, units, at-bound names, errors,
// extrapolated stresses and whether it has a library block.
Json::Value lawJson(const LawComparison& row);

// true_strain, measured stress and one fitted column per law, over the fitted points.
std::string curvesCsv(const std::vector<const LawComparison*>& laws);

}  // namespace zelko::cli
