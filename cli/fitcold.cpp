#include "cli/fitcold.h"

#include "cold/coldfit.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>

#include "base/textfile.h"
#include "cli/coldreport.h"
#include "cli/fitpicture.h"
#include "cli/materialjson.h"
#include "cli/materialio.h"
#include "cli/messages.h"
#include "cold/curvefile.h"
#include "cold/yieldpoint.h"
#include "material/tensilechain.h"

namespace zelko::cli {

namespace {

constexpr std::string_view kOutput = "-o";
constexpr std::string_view kExport = "--export";
constexpr std::string_view kAllLaws = "all";
constexpr int kColdPictureWidth = 1400;
constexpr int kColdPictureHeight = 600;

std::string lowerCase(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

// An option's value as its index in names.
bool choiceOption(const ParsedArguments& args, std::string_view option, std::span<const std::string_view> names,
                  int& index, std::string& error)
{
    const std::string* text = args.option(option);
    if (!text)
        return true;
    int i = 0;
    for (const std::string_view name : names) {
        if (*text == name) {
            index = i;
            return true;
        }
        ++i;
    }
    error = "option '" + std::string(option) + "': '" + *text + "' is not one of";
    for (const std::string_view name : names)
        error += " " + std::string(name);
    return false;
}

// A law by its command-line name in any case.
bool lawOption(const ParsedArguments& args, std::string_view option, std::optional<ColdLawId>& law, std::string& error)
{
    const std::string* text = args.option(option);
    if (!text)
        return true;
    const std::string wanted = lowerCase(*text);
    for (const ColdLawId id : kColdLaws)
        if (wanted == lawOptionName(id)) {
            law = id;
            return true;
        }
    error = "option '" + std::string(option) + "': '" + *text + "' is not one of";
    for (const ColdLawId id : kColdLaws)
        error += " " + std::string(lawOptionName(id));
    if (option == "--law")
        error += " all";
    return false;
}

// Every output names its own file.
bool checkOutputs(const ParsedArguments& args, std::string& error)
{
    static constexpr std::array<std::string_view, 4> kOutputs = {kOutput, kExport, "--curve-out", "--png"};
    return distinctOutputs(args, kOutputs, error);
}

// The header's say on the input kind and units; an option given contradicting it is refused.
bool takeHeader(const ParsedArguments& args, const CurveHeader& header, TensileTest& test, std::string& error)
{
    const bool loadInput = test.inputKind == LoadDisplacement;
    if (header.loadDisplacement != loadInput) {
        error = "the header '" + header.text + "' names "
                + (header.loadDisplacement ? "load and displacement" : "strain and stress") + " columns, but --input is "
                + *args.option("--input");
        return false;
    }
    const auto unit = [&](std::string_view option, const std::optional<std::int32_t>& fromHeader, std::int32_t& value) {
        if (!fromHeader)
            return true;
        if (args.option(option) && value != *fromHeader) {
            error = "the header '" + header.text + "' gives another unit than " + std::string(option) + " "
                    + *args.option(option);
            return false;
        }
        value = *fromHeader;
        return true;
    };
    return unit("--length-unit", header.lengthUnit, test.lengthUnit) && unit("--force-unit", header.forceUnit, test.forceUnit);
}

// The start row from --start (a row or "yield") or --start-strain; by default the
// yield point of load and engineering input, row 0 of a true curve.
bool chooseStart(const ParsedArguments& args, const RoomOri& record, int& start, std::string& rule, std::string& error)
{
    const std::string* startText = args.option("--start");
    const std::string* strainText = args.option("--start-strain");
    if (startText && strainText) {
        error = "options '--start' and '--start-strain' both choose the start row; give one";
        return false;
    }
    const Curve& curve = startSelectionCurve(record);
    const int last = static_cast<int>(record.inputCurve().size()) - 1;
    if (strainText) {
        double strain = 0.0;
        if (!numberOption(args, "--start-strain", strain, error))
            return false;
        const std::optional<int> row = firstRowAtStrain(curve, strain);
        if (!row) {
            error = formatText("option '--start-strain': no row reaches strain %g (the last has %g)", strain,
                               curve.empty() ? 0.0 : curve.back().x);
            return false;
        }
        start = *row;
        rule = formatText("first at strain %g", strain);
        return true;
    }
    const bool yield = startText ? lowerCase(*startText) == "yield" : record.inputKind != TrueCurve;
    if (yield) {
        const std::optional<YieldPoint> point = offsetYieldPoint(curve, error);
        if (!point)
            return false;
        start = point->index;
        rule = formatText("0.2 %% offset yield, elastic slope %.4g MPa", point->elastic.slope);
        return true;
    }
    long long row = 0;
    if (startText && !integerOption(args, "--start", 0, last, row, error)) {
        error += " or yield";
        return false;
    }
    start = static_cast<int>(row);
    rule = startText ? "--start" : "first row";
    return true;
}

struct ColdFitRequest {
    TensileTest test;
    TensileFitSettings settings;
    std::optional<ColdLawId> law;     // none: every law
    std::optional<ColdLawId> choose;  // the law stored after a comparison
};

bool parseRequest(const ParsedArguments& args, ColdFitRequest& request, std::string& error)
{
    static constexpr std::string_view kInputs[] = {"load", "engineering", "true"};
    static constexpr std::string_view kLengthUnits[] = {"mm", "inch", "percent"};
    static constexpr std::string_view kForceUnits[] = {"N", "kN", "kgf", "ton", "lbf"};
    TensileTest& test = request.test;
    const bool all = lowerCase(*args.option("--law")) == kAllLaws;
    if (!choiceOption(args, "--input", kInputs, test.inputKind, error)
        || !choiceOption(args, "--length-unit", kLengthUnits, test.lengthUnit, error)
        || !choiceOption(args, "--force-unit", kForceUnits, test.forceUnit, error)
        || (!all && !lawOption(args, "--law", request.law, error)) || !lawOption(args, "--choose", request.choose, error)
        || !numberOption(args, "--diameter", test.diameter, error)
        || !numberOption(args, "--gauge-length", test.gaugeLength, error))
        return false;
    if (request.choose && !all) {
        error = "option '--choose' picks a law from '--law all'";
        return false;
    }
    if (!all && !args.option(kOutput)) {
        error = "missing option '-o'";
        return false;
    }
    if (args.option(kExport) && !args.option(kOutput)) {
        error = "option '--export' needs '-o' for the material it belongs to";
        return false;
    }
    // "percent" says what the second unit means for a stress-strain curve.
    test.lengthUnit = std::min(test.lengthUnit, 1);
    return true;
}

bool parseSettings(const ParsedArguments& args, const RoomOri& record, TensileFitSettings& settings,
                   std::vector<ChosenRow>& rows, std::string& error)
{
    const int last = static_cast<int>(record.inputCurve().size()) - 1;
    long long necking = 0, iterations = 0;
    double targetError = 0.0;
    int start = 0;
    std::string startRule;
    if (!chooseStart(args, record, start, startRule, error)
        || (args.option("--necking") && !integerOption(args, "--necking", 0, last, necking, error))
        || (args.option("--max-iter") && !integerOption(args, "--max-iter", 0, 100000000, iterations, error))
        || (args.option("--target-error") && !numberOption(args, "--target-error", targetError, error)))
        return false;
    settings.startIndex = start;
    if (args.option("--necking"))
        settings.neckingIndex = static_cast<int>(necking);
    if (args.option("--max-iter"))
        settings.maxIterations = static_cast<int>(iterations);
    if (args.option("--target-error"))
        settings.targetError = targetError;
    settings.neckingConstraint = args.flag("--necking-constraint");
    settings.weighted = args.flag("--weighted");
    int method = args.flag("--polish") ? 2 : 0;
    static constexpr std::string_view kMethods[] = {"descent", "least-squares", "descent+least-squares"};
    if (args.flag("--polish") && args.option("--method") && *args.option("--method") != kMethods[2]) {
        error = "option '--polish' is '--method descent+least-squares'; give one of them";
        return false;
    }
    if (!choiceOption(args, "--method", kMethods, method, error))
        return false;
    settings.method = static_cast<FitMethod>(method);
    const int neckingRow = settings.neckingIndex.value_or(maximumStressIndex(record.curves[EngineeringCurve]));
    rows = chosenRows(record, start, startRule, neckingRow, settings.neckingIndex ? "--necking" : "maximum stress");
    return true;
}

// The curve file and the picture of the laws shown.
bool stageViews(const ParsedArguments& args, const MaterialDocument& document,
                const std::vector<const LawComparison*>& laws, const std::string& subject, PendingOutputs& outputs,
                Json::Value& files, std::string& error)
{
    if (const std::string* csv = args.option("--curve-out")) {
        if (!outputs.stage(*csv, curvesCsv(laws), error)) {
            error = fileMessage(*csv, error);
            return false;
        }
        files["curves"] = *csv;
    }
    if (const std::string* png = args.option("--png")) {
        const std::string title = pictureTitle(document.material(), subject);
        const std::optional<std::filesystem::path> drawing = outputs.reserve(*png, error);
        if (!drawing
            || !drawPicture(coldFitScript(title, laws), *drawing, kColdPictureWidth, kColdPictureHeight,
                            document.environment(), error)) {
            error = fileMessage(*png, error);
            return false;
        }
        files["png"] = *png;
    }
    return true;
}

}  // namespace

int runFitCold(const ParsedArguments& args)
{
    const std::string& materialPath = args.positionals[0];
    MaterialDocument document;
    ColdFitRequest request;
    std::string error;
    if (!parseRequest(args, request, error) || !checkOutputs(args, error))
        return fail(error);
    if (!openMaterial(materialPath, document, error))
        return fail(error);
    if (const std::string refusal = tensileRecordRefusal(document.material()); !refusal.empty())
        return fail(fileMessage(materialPath, refusal));

    const std::string& curvePath = *args.option("--curve");
    {
        const auto bytes = readInput(curvePath, error);
        if (!bytes)
            return fail(error);
        std::optional<CurveText> curve = readCurveFile(*bytes, error);
        if (!curve || (curve->header && !takeHeader(args, *curve->header, request.test, error)))
            return fail(fileMessage(curvePath, error));
        request.test.curve = std::move(curve->curve);
    }
    EnteredTest entered = enterTensileTest(document.material(), std::move(request.test));
    if (!entered.record)
        return fail(entered.error);
    std::vector<ChosenRow> rows;
    if (!parseSettings(args, *entered.record, request.settings, rows, error))
        return fail(fileMessage(curvePath, error));
    const bool trueInput = entered.record->inputKind == TrueCurve;

    Json::Value json(Json::objectValue), files(Json::objectValue);
    std::string text;
    std::optional<ColdLawId> stored = request.law;
    std::vector<const LawComparison*> shown;
    LawComparisonResult comparison;
    std::optional<LawComparison> single;
    if (!request.law) {
        comparison = compareTensileLaws(*entered.record, request.settings);
        const LawComparison* best = bestWithLibraryBlock(comparison.rows);
        if (request.choose)
            stored = request.choose;
        else if (best)
            stored = best->law;
        for (const LawComparison& row : comparison.rows)
            if (row.fitted)
                shown.push_back(&row);
        if (shown.empty())
            return fail(fileMessage(curvePath, comparison.rows.empty() ? "no law" : comparison.rows.front().message));
        text = comparisonText(comparison.rows);
        Json::Value laws(Json::arrayValue);
        for (const LawComparison& row : comparison.rows)
            laws.append(lawJson(row));
        json["laws"] = std::move(laws);
    }
    PendingOutputs outputs;
    if (args.option(kOutput)) {
        if (!stored)
            return fail("no law with a library block could be fitted; name the law to store with --choose");
        TensileFit fit = fitTensileLaw(document.material(), std::move(*entered.record), *stored, request.settings,
                                       document.environment());
        if (!fit.material)
            return fail(fileMessage(curvePath, fit.error));
        if (request.law) {
            single = describeFittedLaw(*stored, fit.law);
            shown = {&*single};
            text = fit.text + "\n";
            // The described text alone unless another method was asked for.
            if (request.settings.method != FitMethod::Descent)
                text += fitEndText(*fit.law) + "\n";
            json = lawJson(*single);
            json["text"] = fit.text;
        } else {
            text += "stored: " + std::string(lawOptionName(*stored))
                    + (request.choose ? "\n" : " (the best law with a library block)\n");
            json["stored"] = std::string(lawOptionName(*stored));
        }
        if (!stageColdMaterial(*args.option(kOutput), args.option(kExport), document, std::move(*fit.material), outputs,
                               error))
            return fail(error);
        files["material"] = *args.option(kOutput);
        if (args.option(kExport))
            files["library"] = *args.option(kExport);
    }
    const std::string subject = single ? formatText("%s, RMSE %.3g MPa", coldLawTitle(single->law), single->rmse)
                                       : formatText("%zu laws, best %s (RMSE %.3g MPa)", shown.size(),
                                                    coldLawTitle(shown.front()->law), shown.front()->rmse);
    if (!stageViews(args, document, shown, subject, outputs, files, error))
        return fail(error);

    json["rows"] = rowsJson(rows);
    json["files"] = std::move(files);
    const std::string printed = args.flag("--json") ? jsonText(json)
                                                    : text + "\n" + rowsText(rows, trueInput);
    if (const int status = printResult(printed); status != 0)
        return status;
    return commitOutputs(outputs);
}

}  // namespace zelko::cli
