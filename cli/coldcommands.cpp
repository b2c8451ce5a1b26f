// The cold flow curve commands: a law fitted to a tensile test, and the tensile
// solver's job and result.

#include <algorithm>
#include <array>
#include <vector>

#include "cli/commands.h"
#include "cli/materialio.h"
#include "cli/messages.h"
#include "base/exchangefolder.h"
#include "cold/coldfit.h"
#include "cold/coldlaws.h"
#include "cold/curvefile.h"
#include "cold/plastic_8.h"
#include "cold/tensilereduction.h"
#include "material/libraryexport.h"

namespace zelko::cli {

namespace {

constexpr std::string_view kOutput = "-o";
constexpr std::string_view kExport = "--export";

// The law names of the command line, by the tensile screen's list position.
constexpr std::array<std::string_view, kColdLawListSize> kLawNames = {
    "", "swift", "hollomon", "ludwik", "kim-tuan", "hockett-sherby", "voce", "el-magd", "voyiadjis-abed"};

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

// The material's tensile record: the one it holds, or a new one when it has none.
bool tensileRecord(Project& project, const std::string& path, std::shared_ptr<RoomOri>& record, std::string& error)
{
    if (!project.activeModel) {
        record = std::make_shared<RoomOri>();
        project.setModel(record);
        return true;
    }
    record = std::dynamic_pointer_cast<RoomOri>(project.activeModel);
    if (!record || record->modelKind != ColdModel) {
        error = fileMessage(path, "the material holds a hot flow-stress model, not a tensile record");
        return false;
    }
    return true;
}

// Saves the material and, when asked, its library entry with the record's model.
int saveResults(const ParsedArguments& args, const Project& project)
{
    std::string error;
    if (!saveMaterial(*args.option(kOutput), project, error))
        return fail(error);
    if (const std::string* library = args.option(kExport)) {
        TextWriter entry(TextEncoding::EightBit);
        if (!writeLibraryEntry(project, entry))
            warn(fileMessage(*library, "the model writes no block of its own; the entry has none"));
        if (!saveText(*library, entry, error))
            return fail(error);
    }
    return 0;
}

int indexOfMaximumStress(const Curve& curve)
{
    const auto highest = std::max_element(curve.begin(), curve.end(),
                                          [](const CurvePoint& a, const CurvePoint& b) { return a.y < b.y; });
    return static_cast<int>(highest - curve.begin());
}

int runFitCold(const ParsedArguments& args)
{
    const std::string& materialPath = args.positionals[0];
    Project project;
    std::string error;
    if (!loadMaterial(materialPath, project, error))
        return fail(error);
    std::shared_ptr<RoomOri> record;
    if (!tensileRecord(project, materialPath, record, error))
        return fail(error);

    int kind = 0, lengthUnit = 0, forceUnit = 0, law = 0;
    double diameter = 0, gaugeLength = 0;
    static constexpr std::string_view kInputs[] = {"load", "engineering", "true"};
    static constexpr std::string_view kLengthUnits[] = {"mm", "inch", "percent"};
    static constexpr std::string_view kForceUnits[] = {"N", "kN", "kgf", "ton", "lbf"};
    if (!choiceOption(args, "--input", kInputs, kind, error)
        || !choiceOption(args, "--length-unit", kLengthUnits, lengthUnit, error)
        || !choiceOption(args, "--force-unit", kForceUnits, forceUnit, error)
        || !choiceOption(args, "--law", kLawNames, law, error)
        || !numberOption(args, "--diameter", diameter, error)
        || !numberOption(args, "--gauge-length", gaugeLength, error))
        return fail(error);
    const std::optional<ColdLawId> lawId = coldLawListEntry(law).law;
    if (!lawId)
        return fail("option '--law': '' is not a law");
    // "percent" says what the second unit means for a stress-strain curve.
    lengthUnit = std::min(lengthUnit, 1);

    const std::string& curvePath = *args.option("--curve");
    const auto bytes = readInput(curvePath, error);
    if (!bytes)
        return fail(error);
    std::optional<Curve> curve = readCurveText(*bytes, error);
    if (!curve)
        return fail(fileMessage(curvePath, error));

    record->inputKind = kind;
    record->lengthUnit = lengthUnit;
    record->forceUnit = forceUnit;
    record->diameter = diameter;
    record->gaugeLength = gaugeLength;
    record->curves = {};
    record->curves[static_cast<std::size_t>(kind)] = std::move(*curve);
    if (const auto message = convertEnteredUnits(*record))
        return fail(*message);
    double area = 0.0;
    if (const auto message = deriveCurveForms(*record, area))
        return fail(*message);

    const int last = static_cast<int>(record->inputCurve().size()) - 1;
    long long start = 0, necking = indexOfMaximumStress(record->curves[EngineeringCurve]);
    long long iterations = record->maxIterations;
    if ((args.option("--start") && !integerOption(args, "--start", 0, last, start, error))
        || (args.option("--necking") && !integerOption(args, "--necking", 0, last, necking, error))
        || (args.option("--max-iter") && !integerOption(args, "--max-iter", 0, 100000000, iterations, error))
        || (args.option("--target-error") && !numberOption(args, "--target-error", record->targetError, error)))
        return fail(error);
    record->startIndex = static_cast<int>(start);
    record->neckingIndex = static_cast<int>(necking);
    record->endIndex = last;
    record->maxIterations = static_cast<int>(iterations);
    record->neckingConstraint = args.flag("--necking-constraint");
    record->weighted = args.flag("--weighted");
    record->polishWithLeastSquares = args.flag("--polish");

    const ColdFitResult result = fitColdLaw(*record, *lawId, RunControl{});
    if (!result.law)
        return fail(fileMessage(curvePath, result.message));
    auto fitted = std::make_shared<RoomOri>(*record);
    applyColdFit(result, *fitted);
    project.setModel(fitted);
    project.libraryModel = fitted->heldModel;
    if (*lawId == ColdLawId::Swift) {
        std::string ignored;  // the table is a convenience: no folder, no table
        writeSwiftComparisonTable(*result.law, exchangeFolder(), ignored);
    }
    if (const int status = printResult(result.text + "\n"); status != 0)
        return status;
    return saveResults(args, project);
}

// The record of the material, with its load-displacement curve derived if needed.
bool jobRecord(const ParsedArguments& args, Project& project, std::shared_ptr<RoomOri>& record, std::string& error)
{
    const std::string& path = args.positionals[0];
    if (!loadMaterial(path, project, error))
        return false;
    if (!project.activeModel || !tensileRecord(project, path, record, error)) {
        if (error.empty())
            error = fileMessage(path, "the material holds no tensile record");
        return false;
    }
    if (record->curves[LoadDisplacement].empty()) {
        double area = 0.0;
        if (const auto message = deriveCurveForms(*record, area)) {
            error = fileMessage(path, *message);
            return false;
        }
    }
    return true;
}

int runTensileJob(const ParsedArguments& args)
{
    Project project;
    std::shared_ptr<RoomOri> record;
    std::string error;
    if (!jobRecord(args, project, record, error))
        return fail(error);
    const std::string& job = *args.option("--job");
    if (!writeTensileJob(*record, job, TensileJobSettings{}, error)
        || (args.flag("--run") && !startTensileSolver(job, error)))
        return fail(fileMessage(job, error));
    return 0;
}

int runTensileResult(const ParsedArguments& args)
{
    Project project;
    std::shared_ptr<RoomOri> record;
    std::string error;
    if (!jobRecord(args, project, record, error))
        return fail(error);
    const std::string& job = *args.option("--job");
    auto model = std::make_shared<PLASTIC_8>(*record);
    if (const TensileResultStatus status = readTensileResult(job, *model); status != TensileResultStatus::Read)
        return fail(fileMessage(job, tensileResultMessage(status)));
    record->heldModel = model;
    project.libraryModel = model;
    return saveResults(args, project);
}

}  // namespace

std::span<const Command> coldCommands()
{
    static const std::vector<Command> kCommands = {
        {"fit-cold", "fit a hardening law to a tensile test",
            "Usage: zelko-mat-cli fit-cold MATERIAL.zmat --curve FILE --input load|engineering|true\n"
            "         --diameter D --gauge-length L [--length-unit mm|inch|percent]\n"
            "         [--force-unit N|kN|kgf|ton|lbf] --law LAW [--start I] [--necking J]\n"
            "         [--necking-constraint] [--weighted] [--polish] [--max-iter N] [--target-error E]\n"
            "         -o OUT.zmat [--export LIB.z3dlib]\n"
            "\n"
            "Converts and reduces the curve as the tensile screen does, fits the law and prints\n"
            "the result as the screen shows it, then stores the tensile record (and with\n"
            "--export writes the library entry with the fitted law).\n"
            "\n"
            "LAW: swift, hollomon, ludwik, kim-tuan, hockett-sherby, voce, el-magd,\n"
            "voyiadjis-abed. The curve file holds two or three numbers a line (the third a\n"
            "weight) separated by blanks, tabs, commas or semicolons; '#' lines and a header\n"
            "are skipped. Load input is displacement and force; for stress-strain input the\n"
            "length unit 'inch' (or 'percent') means strains in percent. The necking index\n"
            "defaults to the point of maximum engineering stress. --polish refines the plain\n"
            "fit with a bounded Levenberg-Marquardt least-squares solver.\n",
            {{"--curve", "--input", "--diameter", "--gauge-length", "--length-unit", "--force-unit", "--law",
                 "--start", "--necking", "--max-iter", "--target-error", kOutput, kExport},
                {"--curve", "--input", "--diameter", "--gauge-length", "--law", kOutput}, {"MATERIAL.zmat"}, 1,
                {"--necking-constraint", "--weighted", "--polish"}},
            runFitCold},
        {"tensile-job", "write (and start) the tensile solver's job",
            "Usage: zelko-mat-cli tensile-job MATERIAL.zmat --job PATH.tnsprj [--run]\n"
            "\n"
            "Writes the five job files of the two-dimensional tensile-test solver for the\n"
            "material's tensile record. With --run the solver ($ZELKO_TENSILE_SOLVER, else\n"
            "Z2DTS_V24R02 on PATH or in $ZELKO_V24R02) is started in the job's folder.\n",
            {{"--job"}, {"--job"}, {"MATERIAL.zmat"}, 1, {"--run"}}, runTensileJob},
        {"tensile-result", "read the tensile solver's flow curve back",
            "Usage: zelko-mat-cli tensile-result MATERIAL.zmat --job PATH.tnsprj -o OUT.zmat\n"
            "                                   [--export LIB.z3dlib]\n"
            "\n"
            "Reads the flow curve the solver identified into a simulation model (8) of the\n"
            "material's tensile record, stores the material, and with --export writes the\n"
            "library entry with the identified curve.\n",
            {{"--job", kOutput, kExport}, {"--job", kOutput}, {"MATERIAL.zmat"}, 1}, runTensileResult},
    };
    return kCommands;
}

}  // namespace zelko::cli
