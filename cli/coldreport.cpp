#include "cli/coldreport.h"

#include <cmath>

#include "base/textfile.h"

namespace zelko::cli {

namespace {

std::string parameterList(const LawComparison& row)
{
    std::string text;
    const ColdLaw& law = *row.fitted;
    const std::vector<const char*> names = law.variableNames();
    for (std::size_t k = 0; k < law.parameters.size() && k < names.size(); ++k) {
        const std::string_view unit = coldParameterUnit(row.law, k);
        text += formatText("%s%s%s = %.5g%s", k ? ", " : "", names[k], row.atBound[k] ? "*" : "", law.parameters[k],
                           unit == "-" ? "" : " MPa");
    }
    return text;
}

}  // namespace

std::string_view lawOptionName(ColdLawId law)
{
    switch (law) {
    case ColdLawId::Swift: return "swift";
    case ColdLawId::Hollomon: return "hollomon";
    case ColdLawId::Ludwik: return "ludwik";
    case ColdLawId::KimTuan: return "kim-tuan";
    case ColdLawId::HockettSherby: return "hockett-sherby";
    case ColdLawId::VoceGeneral: return "voce";
    case ColdLawId::ElMagd: return "el-magd";
    case ColdLawId::VoyiadjisAbed: return "voyiadjis-abed";
    }
    return "";
}

std::vector<ChosenRow> chosenRows(const RoomOri& record, int start, std::string startRule, int necking,
                                  std::string neckingRule)
{
    const Curve& curve = record.curves[record.inputKind == TrueCurve ? TrueCurve : EngineeringCurve];
    const auto at = [&](const char* role, int row, std::string rule) {
        ChosenRow chosen{role, row, std::move(rule), 0.0, 0.0};
        if (row >= 0 && static_cast<std::size_t>(row) < curve.size()) {
            chosen.strain = curve[static_cast<std::size_t>(row)].x;
            chosen.stress = curve[static_cast<std::size_t>(row)].y;
        }
        return chosen;
    };
    return {at("start", start, std::move(startRule)), at("necking", necking, std::move(neckingRule)),
            at("fracture", static_cast<int>(curve.size()) - 1, "last row")};
}

std::string rowsText(const std::vector<ChosenRow>& rows, bool trueCurve)
{
    std::string text;
    for (const ChosenRow& row : rows)
        text += formatText("%s row %d (%s): %s strain %.6g, stress %.6g MPa\n", row.role, row.row, row.rule.c_str(),
                           trueCurve ? "true" : "engineering", row.strain, row.stress);
    return text;
}

Json::Value rowsJson(const std::vector<ChosenRow>& rows)
{
    Json::Value json(Json::objectValue);
    for (const ChosenRow& row : rows) {
        Json::Value one(Json::objectValue);
        one["row"] = row.row;
        one["rule"] = row.rule;
        one["strain"] = row.strain;
        one["stress"] = row.stress;
        json[row.role] = std::move(one);
    }
    return json;
}

std::string comparisonText(const std::vector<LawComparison>& rows)
{
    std::string text = formatText("%-4s %-15s %11s %11s %11s %11s %-6s %-10s %s\n", "rank", "law", "RMSE (MPa)",
                                  "s(0.1)", "s(0.5)", "s(1.0)", "block", "stop", "parameters");
    bool anyAtBound = false;
    int rank = 0;
    for (const LawComparison& row : rows) {
        const std::string name(lawOptionName(row.law));
        if (!row.fitted) {
            text += formatText("%-4s %-15s not fitted: %s\n", "-", name.c_str(), row.message.c_str());
            continue;
        }
        text += formatText("%-4d %-15s %11.4g %11.5g %11.5g %11.5g %-6s %-10s %s\n", ++rank, name.c_str(), row.rmse,
                           row.extrapolated[0], row.extrapolated[1], row.extrapolated[2],
                           row.hasLibraryBlock ? "yes" : "no", fitStopWord(row.fitted->fitEnd.stop), parameterList(row).c_str());
        for (const bool at : row.atBound)
            anyAtBound = anyAtBound || at;
    }
    text += "s(e): stress (MPa) at true strain e from the start point; block: the law has a library block;\n"
            "stop: how the fit ended (converged, at bound, iterations: its limit, step floor: no step improved)\n";
    if (anyAtBound)
        text += "*: held at a bound of the law's parameter table\n";
    return text;
}

Json::Value lawJson(const LawComparison& row)
{
    Json::Value json(Json::objectValue);
    json["law"] = std::string(lawOptionName(row.law));
    json["model"] = static_cast<int>(row.law);
    json["title"] = coldLawTitle(row.law);
    if (!row.fitted) {
        json["error"] = row.message;
        return json;
    }
    const ColdLaw& law = *row.fitted;
    Json::Value parameters(Json::objectValue), units(Json::objectValue), atBound(Json::arrayValue);
    const std::vector<const char*> names = law.variableNames();
    for (std::size_t k = 0; k < law.parameters.size() && k < names.size(); ++k) {
        parameters[names[k]] = law.parameters[k];
        units[names[k]] = coldParameterUnit(row.law, k);
        if (row.atBound[k])
            atBound.append(names[k]);
    }
    json["parameters"] = std::move(parameters);
    json["units"] = std::move(units);
    json["atBound"] = std::move(atBound);
    json["stopReason"] = fitStopText(row.fitted->fitEnd.stop);
    json["rmse"] = row.rmse;
    json["lawError"] = std::isfinite(law.fitError) ? law.fitError : 0.0;
    Json::Value extrapolated(Json::objectValue);
    for (std::size_t k = 0; k < kComparisonStrains.size(); ++k)
        extrapolated[formatText("%g", kComparisonStrains[k])] = row.extrapolated[k];
    json["stressAtStrain"] = std::move(extrapolated);
    json["libraryBlock"] = row.hasLibraryBlock;
    return json;
}

std::string curvesCsv(const std::vector<const LawComparison*>& laws)
{
    if (laws.empty() || !laws.front()->fitted)
        return {};
    const FitPoints points = laws.front()->fitted->fittedPoints();
    std::string csv = "true_strain,measured_stress_MPa";
    for (const LawComparison* row : laws)
        csv += "," + std::string(lawOptionName(row->law)) + "_MPa";
    csv += "\n";
    for (std::size_t i = 0; i < points.size(); ++i) {
        csv += formatText("%.9g,%.9g", points.strain[i], points.stress[i]);
        for (const LawComparison* row : laws)
            csv += formatText(",%.9g", row->fitted->stressAt(points.strain[i], row->fitted->parameters.data()));
        csv += "\n";
    }
    return csv;
}

}  // namespace zelko::cli
