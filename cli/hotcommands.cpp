#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "base/environment.h"
#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/messages.h"
#include "base/numbers.h"
#include <json/json.h>

#include "cli/commands.h"
#include "cli/fitpicture.h"
#include "cli/materialjson.h"
#include "cli/materialio.h"
#include "cli/messages.h"
#include "hot/celltypes.h"
#include "hot/gnuplot.h"
#include "hot/hotcsv.h"
#include "hot/hotmodels.h"
#include "hot/plastic_17.h"
#include "hot/zenerhollomon.h"
#include "hot/processingmap.h"
#include "material/hotchain.h"
#include "material/libraryexport.h"

namespace zelko::cli {

namespace {

constexpr std::string_view kOutput = "-o";
constexpr std::string_view kExport = "--export";
constexpr int kMapPictureWidth = 1200;
constexpr int kMapPictureHeight = 600;

bool parseType(const std::string& text, HotModelId& modelId, std::string& error)
{
    if (text == "162") {
        error = "option '--type': " + std::string(messageText(MessageCode::Model162Refused));
        return false;
    }
    for (const HotTypeItem& item : hotTypeItems())
        if (item.model && std::to_string(static_cast<int>(*item.model)) == text) {
            modelId = *item.model;
            return true;
        }
    error = "option '--type': '" + text + "' is none of 16, 17, 161, 163 to 169, 1600, 50";
    return false;
}

// "--strains 0.1,0.2,0.3": the list as the screen's group builds it.
bool parseStrains(const std::string& text, GroupItems& items, std::string& error)
{
    for (const std::string& piece : split(std::string_view(text), ", \t;")) {
        double value = 0.0;
        if (parseNumberField(piece, value) != NumberField::Finite) {
            error = "option '--strains': '" + piece + "' is not a number";
            return false;
        }
        if (const std::string_view refused = addGroupValue(items, HotGroup::Strain, value); !refused.empty()) {
            error = "option '--strains': " + std::string(refused);
            return false;
        }
    }
    if (items.empty()) {
        error = "option '--strains': no strain given";
        return false;
    }
    return true;
}

bool parseCsvOptions(const ParsedArguments& args, HotCsvOptions& options, std::string& error)
{
    if (const std::string* measure = args.option("--strain-measure")) {
        if (*measure == "true")
            options.measure = StrainMeasure::True;
        else if (*measure == "engineering")
            options.measure = StrainMeasure::Engineering;
        else {
            error = "option '--strain-measure': '" + *measure + "' is neither true nor engineering";
            return false;
        }
    }
    if (args.option("--strain-offset")) {
        if (!numberOption(args, "--strain-offset", options.strainOffset, error))
            return false;
        if (options.strainOffset < 0.0) {
            error = "option '--strain-offset': must not be below 0";
            return false;
        }
    }
    return true;
}

// "--method" and "--objective": the Hensel-Spittel fit's method and what least squares minimises.
bool parseMethod(const ParsedArguments& args, HotFitOptions& options, std::string& error)
{
    if (const std::string* method = args.option("--method")) {
        if (*method == "descent")
            options.method = FitMethod::Descent;
        else if (*method == "least-squares")
            options.method = FitMethod::LeastSquares;
        else if (*method == "descent+least-squares")
            options.method = FitMethod::DescentThenLeastSquares;
        else {
            error = "option '--method': '" + *method + "' is not one of descent least-squares descent+least-squares";
            return false;
        }
    }
    if (const std::string* weighting = args.option("--weighting")) {
        if (*weighting == "balanced")
            options.weighting = HotWeighting::BalancedByStress;
        else if (*weighting != "equal") {
            error = "option '--weighting': '" + *weighting + "' is neither equal nor balanced";
            return false;
        }
    }
    if (args.option("--target-percent")) {
        double percent = 0.0;
        if (!numberOption(args, "--target-percent", percent, error))
            return false;
        if (percent < 0 || percent >= 100) {
            error = "option '--target-percent': must be from 0 up to 100";
            return false;
        }
        options.targetFraction = percent / 100.0;
    }
    if (const std::string* objective = args.option("--objective")) {
        if (*objective == "relative")
            options.objective = HotObjective::Relative;
        else if (*objective != "absolute") {
            error = "option '--objective': '" + *objective + "' is neither absolute nor relative";
            return false;
        }
        if (options.objective == HotObjective::Relative && options.method == FitMethod::Descent) {
            error = "option '--objective': the descent fits the stress error; relative needs --method least-squares "
                    "or descent+least-squares";
            return false;
        }
    }
    return true;
}

void warnAbout(const HotFitResult& result, const std::string& path)
{
    for (const std::string& note : result.notes)
        warn(fileMessage(path, note));
    if (result.stoppedEarly)
        warn(formatText("the fit stopped after %d iterations: %s", result.iterations, result.stopReason.c_str()));
}

constexpr int kHotPictureWidth = 1500;

std::string cellErrorsText(const std::vector<CellError>& cells)
{
    std::string text = "By temperature and strain rate:\n  temperature  strain rate   AARE (%)  RMSE (MPa)  points\n";
    for (const CellError& cell : cells)
        text += formatText("  %11g  %11g  %9.3f  %10.3f  %6zu\n", cell.temperature, cell.strainRate, 100.0 * cell.aare,
                           cell.rmse, cell.count);
    return text;
}

// A cell this many times worse than the average is what the average hides.
constexpr double kWorstCellFactor = 2.0;

void warnAboutWorstCell(const std::vector<CellError>& cells, const HotFitResult& result)
{
    const auto worst = std::max_element(cells.begin(), cells.end(),
                                        [](const CellError& a, const CellError& b) { return a.aare < b.aare; });
    if (worst != cells.end() && worst->aare > kWorstCellFactor * result.aare)
        warn(formatText("the worst cell, temperature %g and strain rate %g, has AARE %.3g %% (RMSE %.3g MPa) against %.3g %% over "
                        "all; --cell-errors lists every cell",
                        worst->temperature, worst->strainRate, 100.0 * worst->aare, worst->rmse, 100.0 * result.aare));
}

Json::Value fitHotJson(const HotFitResult& result, const PLASTIC_HOT& model, const std::vector<CellError>& cells)
{
    Json::Value json(Json::objectValue);
    json["model"] = model.modelNumber;
    json["aare"] = 100.0 * result.aare;
    json["rmse"] = result.rmse;
    json["compared"] = static_cast<Json::UInt64>(result.compared);
    json["missing"] = static_cast<Json::UInt64>(result.missing);
    json["iterations"] = result.iterations;
    json["stoppedEarly"] = result.stoppedEarly;
    json["stopReason"] = result.stopReason;
    Json::Value notes(Json::arrayValue);
    for (const std::string& note : result.notes)
        notes.append(note);
    json["notes"] = std::move(notes);
    if (dynamic_cast<const PLASTIC_17*>(&model)) {
        static constexpr const char* kNames[] = {"A", "m1", "m2", "m3", "m4", "m5", "m6", "m7", "m8", "m9"};
        Json::Value parameters(Json::objectValue);
        for (std::size_t i = 0; i < model.parameters.size(); ++i)
            parameters[kNames[i]] = model.parameters[i];
        json["parameters"] = std::move(parameters);
    }
    if (const auto* zener = dynamic_cast<const PLASTIC_Zener_Hollomon*>(&model)) {
        // One set of constants per sample strain.
        Json::Value orders(Json::arrayValue);
        for (const ZenerHollomonOrder& order : zener->orders) {
            Json::Value one(Json::objectValue);
            one["strain"] = order.strain;
            one["alpha"] = order.alpha;
            one["n"] = order.n;
            one["Q"] = order.Q;
            one["lnA"] = order.lnA;
            orders.append(std::move(one));
        }
        json["orders"] = std::move(orders);
    }
    Json::Value cellList(Json::arrayValue);
    for (const CellError& cell : cells) {
        Json::Value one(Json::objectValue);
        one["temperature"] = cell.temperature;
        one["strainRate"] = cell.strainRate;
        one["aare"] = 100.0 * cell.aare;
        one["rmse"] = cell.rmse;
        one["points"] = static_cast<Json::UInt64>(cell.count);
        cellList.append(std::move(one));
    }
    json["cells"] = std::move(cellList);
    json["report"] = result.report;
    return json;
}

// temperature, strain rate, strain, measured and model stress, a line per measured point.
std::string hotCurvesCsv(const PLASTIC_HOT& model)
{
    std::string csv = "temperature,strain_rate,strain,measured_stress_MPa,model_stress_MPa\n";
    for (std::size_t t = 0; t < model.temperatures.size(); ++t)
        for (std::size_t r = 0; r < model.strainRates.size(); ++r)
            for (const HotCurvePoint& p : model.curve(t, r))
                csv += formatText("%.9g,%.9g,%.9g,%.9g,%.9g\n", model.temperatures[t], model.strainRates[r], p.strain,
                                  p.stress, model.evaluate(p.strain, model.strainRates[r], model.temperatures[t]));
    return csv;
}

int runFitHot(const ParsedArguments& args)
{
    const std::string& materialPath = args.positionals[0];
    const std::string& curvesPath = *args.option("--curves");
    std::string error;
    HotModelId modelId = HotModelId::Type17;
    HotCsvOptions csvOptions;
    HotFitOptions fitOptions;
    GroupItems strainItems;
    long long iterations = kDefaultHotIterations;
    if (!parseType(*args.option("--type"), modelId, error) || !parseCsvOptions(args, csvOptions, error)
        || !parseMethod(args, fitOptions, error)
        || (args.option("--max-iter") && !integerOption(args, "--max-iter", 1, 100'000'000, iterations, error))
        || (args.option("--strains") && !parseStrains(*args.option("--strains"), strainItems, error)))
        return fail(error);
    fitOptions.maxIterations = static_cast<int>(iterations);
    if (fitOptions.method != FitMethod::Descent && modelId != HotModelId::Type17)
        return fail(formatText("option '--method': type %d has no descent to choose against; the choice is for type 17",
                               static_cast<int>(modelId)));
    static constexpr std::array<std::string_view, 4> kOutputs = {kOutput, kExport, "--curve-out", "--png"};
    if (!distinctOutputs(args, kOutputs, error))
        return fail(error);

    MaterialDocument document;
    if (!openMaterial(materialPath, document, error))
        return fail(error);
    const auto bytes = readInput(curvesPath, error, kMaxHotCsvBytes);
    if (!bytes)
        return fail(error);
    std::optional<PLASTIC_HOT> dataSet = readHotCurvesCsv(*bytes, csvOptions, error);
    if (!dataSet)
        return fail(fileMessage(curvesPath, error));
    dataSet->strains = strainItems.empty() ? defaultSampleStrains(*dataSet) : groupValues(strainItems);
    if (dataSet->strains.empty())
        return fail(fileMessage(curvesPath, "no strain above 0 that every curve reaches; give --strains"));

    HotCurvesFit fitted = fitHotCurves(document.material(), *dataSet, modelId, fitOptions);
    if (!fitted.material)
        return fail(fileMessage(curvesPath, fitted.error));
    const HotFitResult& result = fitted.fit.result;
    warnAbout(result, curvesPath);

    document.commit(std::move(*fitted.material));
    PendingOutputs outputs;
    if (!saveMaterial(outputs, *args.option(kOutput), document, error))
        return fail(error);
    if (const std::string* library = args.option(kExport)) {
        bool wroteModelBlock = false;
        if (!exportMaterial(outputs, *library, document, wroteModelBlock, error))
            return fail(error);
        if (!wroteModelBlock)
            warn(formatText("model %d has no library block; the entry's model section is empty",
                            static_cast<int>(modelId)));
    }
    const PLASTIC_HOT& model = *fitted.fit.model;
    const std::vector<CellError> cells = cellErrorsOf(model);
    Json::Value files(Json::objectValue);
    files["material"] = *args.option(kOutput);
    if (const std::string* library = args.option(kExport))
        files["library"] = *library;
    if (const std::string* csv = args.option("--curve-out")) {
        if (!outputs.stage(*csv, hotCurvesCsv(model), error))
            return fail(fileMessage(*csv, error));
        files["curves"] = *csv;
    }
    if (const std::string* png = args.option("--png")) {
        const std::string title = pictureTitle(
            document.material(), formatText("model %d, AARE %.3g %%, RMSE %.3g MPa (points measured, lines model)",
                                            model.modelNumber, 100.0 * result.aare, result.rmse));
        const std::optional<std::filesystem::path> drawing = outputs.reserve(*png, error);
        if (!drawing
            || !drawPicture(hotFitScript(title, model), *drawing, kHotPictureWidth, hotFitPictureHeight(model),
                            document.environment(), error))
            return fail(fileMessage(*png, error));
        files["png"] = *png;
    }
    std::string printed = result.report;
    if (args.flag("--cell-errors"))
        printed += "\n" + cellErrorsText(cells);
    else
        warnAboutWorstCell(cells, result);
    if (args.flag("--json")) {
        Json::Value json = fitHotJson(result, model, cells);
        json["files"] = std::move(files);
        printed = jsonText(json);
    }
    if (const int status = printResult(printed); status != 0)
        return status;
    return commitOutputs(outputs);
}

// Below this spread of efficiency (percent) the map has no domains to tell apart.
constexpr double kFlatEfficiency = 0.5;

// The sample strain by index or as the nearest to --strain; the list when neither fits.
bool chooseMapStrain(const ParsedArguments& args, const std::vector<double>& strains, long long& index,
                     std::string& error)
{
    std::string list;
    for (std::size_t k = 0; k < strains.size(); ++k)
        list += formatText("%s%zu: %g", k ? ", " : "", k, strains[k]);
    const std::string* byIndex = args.option("--strain-index");
    const std::string* byValue = args.option("--strain");
    if (!byIndex == !byValue) {
        error = std::string(byIndex ? "give one of" : "missing option") + " '--strain-index' or '--strain'; the sample strains are "
                + list;
        return false;
    }
    if (byValue) {
        double strain = 0.0;
        if (!numberOption(args, "--strain", strain, error))
            return false;
        const auto nearest = std::min_element(strains.begin(), strains.end(), [strain](double a, double b) {
            return std::fabs(a - strain) < std::fabs(b - strain);
        });
        index = nearest - strains.begin();
        return true;
    }
    if (!integerOption(args, "--strain-index", 0, static_cast<long long>(strains.size()) - 1, index, error)) {
        error += "; the sample strains are " + list;
        return false;
    }
    return true;
}

struct MapSummary {
    bool unstable = false;
    double lowest = HUGE_VAL;
    double highest = -HUGE_VAL;
};

MapSummary summarise(const ProcessingMap& map)
{
    MapSummary summary;
    for (std::size_t j = 0; j < map.rateNodes(); ++j)
        for (std::size_t i = 0; i < map.temperatureNodes(); ++i) {
            summary.unstable = summary.unstable || map.flag(j, i, 0) == kUnstable;
            summary.lowest = std::min(summary.lowest, map.efficiency(j, i, 0));
            summary.highest = std::max(summary.highest, map.efficiency(j, i, 0));
        }
    return summary;
}

int runProcessingMap(const ParsedArguments& args)
{
    const std::string& materialPath = args.positionals[0];
    std::string error;
    MaterialDocument document;
    if (!openMaterial(materialPath, document, error))
        return fail(error);
    const HotDataSet* dataSet = hotDataSetOf(document.material());
    if (!dataSet)
        return fail(fileMessage(materialPath, "the material has no hot data set"));
    if (dataSet->strains.empty())
        return fail(fileMessage(materialPath, "the hot data set has no sample strains"));
    long long strainIndex = 0;
    double contourStep = 0.0;
    if (!chooseMapStrain(args, dataSet->strains, strainIndex, error) || !numberOption(args, "--contour-step", contourStep, error))
        return fail(error);
    const double strain = dataSet->strains[static_cast<std::size_t>(strainIndex)];
    if (!(contourStep >= kSmallestContourStep && contourStep <= 100.0))
        return fail(formatText("option '--contour-step': must lie between %g and 100 (percent)", kSmallestContourStep));
    const std::string* png = args.option("--png");
    if (png && (dataSet->temperatures.size() < 2 || dataSet->strainRates.size() < 2))
        return fail(fileMessage(materialPath, "a map needs two temperatures and two strain rates to draw"));

    const std::shared_ptr<const PLASTIC_HOT> model = refitHotModel(*dataSet);
    const Environment& environment = document.environment();
    const auto map = computeProcessingMap(*model, static_cast<std::size_t>(strainIndex), error);
    if (!map)
        return fail(fileMessage(materialPath, error));
    // Trouble with the exchange folder is told about the folder, not the material.
    const std::filesystem::path& folder = environment.exchangeFolder;
    if (!ensureFolder(folder, error))
        return fail(error);
    // The map's files and the picture are put in place together once all are
    // written, so a drawing that fails leaves every file as it was.
    PendingOutputs outputs;
    const std::filesystem::path data = folder / "processing_map.dat";
    const std::filesystem::path script = folder / "processing_map.txt";
    if (!outputs.stage(data, processingMapData(*map, 0).bytes(), error))
        return fail(fileMessage(data.string(), error));
    if (!outputs.stage(script, processingMapScript(*model, contourStep, data.string()).bytes(), error))
        return fail(fileMessage(script.string(), error));
    std::string written = data.string() + "\n" + script.string() + "\n";
    Json::Value json(Json::objectValue), files(Json::objectValue);
    files["data"] = data.string();
    files["script"] = script.string();
    if (png) {
        const std::optional<std::filesystem::path> drawing = outputs.reserve(*png, error);
        const PngRequest picture{{}, drawing.value_or(std::filesystem::path()), kMapPictureWidth, kMapPictureHeight};
        const MapPictureLabels labels{pictureTitle(document.material(),
                                                   formatText("model %d, true strain %g", model->modelNumber, strain))};
        if (!drawing
            || renderProcessingMapPng(*map, 0, *model, contourStep, picture, environment, {}, error, labels)
                   != RenderEnd::Drawn)
            return fail(fileMessage(*png, error));
        written += *png + "\n";
        files["png"] = *png;
    }
    const MapSummary summary = summarise(*map);
    if (!summary.unstable)
        warn(formatText("the map at strain %g has no unstable region", strain));
    if (summary.highest - summary.lowest < kFlatEfficiency)
        warn(formatText("the efficiency at strain %g is flat (%.3g to %.3g %%): the map shows no domains", strain,
                        summary.lowest, summary.highest));
    if (args.option("--strain"))
        written += formatText("sample strain %g (index %lld)\n", strain, strainIndex);
    if (args.flag("--json")) {
        json["model"] = model->modelNumber;
        json["strain"] = strain;
        json["strainIndex"] = static_cast<Json::Int64>(strainIndex);
        json["unstable"] = summary.unstable;
        json["efficiencyMin"] = summary.lowest;
        json["efficiencyMax"] = summary.highest;
        json["files"] = std::move(files);
        written = jsonText(json);
    }
    if (const int status = commitOutputs(outputs); status != 0)
        return status;
    return printResult(written);
}

}  // namespace

std::span<const Command> hotCommands()
{
    static const std::vector<Command> kCommands = {
        {"fit-hot", "fit a hot flow-stress model to hot-compression curves",
            "Usage: zelko-mat-cli fit-hot MATERIAL.zmat --curves FILE.csv\n"
            "                             --type 16|17|161|163..169|1600|50 [--strains LIST]\n"
            "                             [--strain-measure true|engineering] [--strain-offset X]\n"
            "                             [--max-iter N] [--method descent|least-squares|descent+least-squares]\n"
            "                             [--objective absolute|relative] [--weighting equal|balanced]\n"
            "                             [--target-percent P] -o OUT.zmat [--export LIB.z3dlib]\n"
            "                             [--cell-errors] [--curve-out FILE.csv] [--png FILE.png]\n"
            "                             [--json]\n"
            "\n"
            "Builds the hot data set from a long CSV (temperature, strain_rate, strain, stress\n"
            "a line; a header line and lines beginning with # are skipped), fits the type and\n"
            "prints its report. The sample strains are LIST (comma-separated, at most 15), or\n"
            "by default up to 15 evenly spaced strains that every curve reaches. Points whose\n"
            "strain is below the offset are dropped and the offset is subtracted from the\n"
            "others; engineering points are converted as the data screen converts them.\n"
            "--max-iter bounds the Hensel-Spittel descent (default 10000). --method fits\n"
            "Hensel-Spittel (17) by the descent (default), by bounded least squares within the\n"
            "descent's guards from the log-linear start, or by least squares after the descent;\n"
            "least squares minimises the stress error (--objective absolute, default) or the\n"
            "error of ln stress (relative, the fit for AARE), and its report ends with how it\n"
            "stopped and which parameters ended at a guard's limit. --weighting balanced\n"
            "weighs each strain rate by the inverse square of its mean stress, so slow tests\n"
            "count as much as fast ones; --target-percent ends the descent once its error is\n"
            "below P % of the start's (0, the default: never). The data set\n"
            "replaces the material's flow-stress model; --export also writes the library\n"
            "entry with the fitted law (Zener-Hollomon, 50, has no library block).\n"
            "\n"
            "With --cell-errors the AARE and RMSE of each temperature and strain rate follow\n"
            "the report; without it, a cell more than twice as far off as the average is\n"
            "named on standard error. --curve-out writes every measured point with the model's stress as CSV;\n"
            "--png draws them with gnuplot, a panel per temperature and a colour per rate;\n"
            "--json prints one JSON object (errors, stop reason, the Hensel-Spittel\n"
            "parameters by name or the Zener-Hollomon constants per strain, the errors per\n"
            "cell, file paths) instead of the text.\n",
            {{kOutput, "--curves", "--type", "--strains", "--strain-measure", "--strain-offset", "--max-iter",
                 "--method", "--objective", "--weighting", "--target-percent", kExport, "--curve-out", "--png"},
                {kOutput, "--curves", "--type"}, {"MATERIAL.zmat"}, 1, {"--json", "--cell-errors"}},
            runFitHot},
        {"processing-map", "write the processing map's data and gnuplot script, optionally its picture",
            "Usage: zelko-mat-cli processing-map MATERIAL.zmat --strain-index K|--strain X\n"
            "                                    --contour-step S [--png FILE] [--json]\n"
            "\n"
            "Computes the power-dissipation and instability maps at sample strain K (from 0)\n"
            "from the material's hot model, fitted again to its data set, and writes\n"
            "processing_map.dat and processing_map.txt into the exchange folder ($ZELKO_TEMP,\n"
            "else ZELKO in the system's temporary folder); prints their paths. S is the\n"
            "efficiency contour step in percent. With --png, gnuplot ($ZELKO_GNUPLOT, else\n"
            "gnuplot on the PATH) draws both maps into FILE, titled with the material, the\n"
            "model and the strain, with labelled colour bars.\n"
            "\n"
            "--strain X takes the sample strain nearest to X and names it after the paths. A\n"
            "map without an unstable region, or with an efficiency that hardly varies, is\n"
            "told about on standard error. --json prints one JSON object (model, strain,\n"
            "efficiency range, whether any region is unstable, file paths) instead.\n",
            {{"--strain-index", "--strain", "--contour-step", "--png"}, {"--contour-step"}, {"MATERIAL.zmat"}, 1,
                {"--json"}},
            runProcessingMap},
    };
    return kCommands;
}

}  // namespace zelko::cli
