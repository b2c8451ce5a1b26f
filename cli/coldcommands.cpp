// The cold flow curve commands: a law fitted to a tensile test, and the tensile
// solver's job and result.

#include <algorithm>
#include <array>
#include <vector>

#include "cli/commands.h"
#include "cli/materialio.h"
#include "cli/messages.h"
#include "cold/coldfit.h"
#include "cold/curvefile.h"
#include "material/tensilechain.h"

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

// Refused before any work: the second file would silently replace the first.
bool checkOutputs(const ParsedArguments& args, std::string& error)
{
    return distinctOutputs(kOutput, *args.option(kOutput), kExport, args.option(kExport), error);
}

// Stages the material and, when asked, its library entry with the record's model.
bool stageResults(const ParsedArguments& args, MaterialDocument& document, Project edited, PendingOutputs& outputs,
                  std::string& error)
{
    document.commit(std::move(edited));
    if (!saveMaterial(outputs, *args.option(kOutput), document, error))
        return false;
    if (const std::string* library = args.option(kExport)) {
        bool wroteModelBlock = false;
        if (!exportMaterial(outputs, *library, document, wroteModelBlock, error))
            return false;
        if (!wroteModelBlock)
            warn(fileMessage(*library, "the model writes no block of its own; the entry has none"));
    }
    return true;
}

int runFitCold(const ParsedArguments& args)
{
    const std::string& materialPath = args.positionals[0];
    MaterialDocument document;
    std::string error;
    if (!checkOutputs(args, error) || !openMaterial(materialPath, document, error))
        return fail(error);
    if (const std::string refusal = tensileRecordRefusal(document.material()); !refusal.empty())
        return fail(fileMessage(materialPath, refusal));

    TensileTest test;
    int law = 0;
    static constexpr std::string_view kInputs[] = {"load", "engineering", "true"};
    static constexpr std::string_view kLengthUnits[] = {"mm", "inch", "percent"};
    static constexpr std::string_view kForceUnits[] = {"N", "kN", "kgf", "ton", "lbf"};
    if (!choiceOption(args, "--input", kInputs, test.inputKind, error)
        || !choiceOption(args, "--length-unit", kLengthUnits, test.lengthUnit, error)
        || !choiceOption(args, "--force-unit", kForceUnits, test.forceUnit, error)
        || !choiceOption(args, "--law", kLawNames, law, error)
        || !numberOption(args, "--diameter", test.diameter, error)
        || !numberOption(args, "--gauge-length", test.gaugeLength, error))
        return fail(error);
    const std::optional<ColdLawId> lawId = coldLawListEntry(law).law;
    if (!lawId)
        return fail("option '--law': '' is not a law");
    // "percent" says what the second unit means for a stress-strain curve.
    test.lengthUnit = std::min(test.lengthUnit, 1);

    const std::string& curvePath = *args.option("--curve");
    const auto bytes = readInput(curvePath, error);
    if (!bytes)
        return fail(error);
    std::optional<Curve> curve = readCurveText(*bytes, error);
    if (!curve)
        return fail(fileMessage(curvePath, error));
    test.curve = std::move(*curve);
    EnteredTest entered = enterTensileTest(document.material(), std::move(test));
    if (!entered.record)
        return fail(entered.error);

    const int last = static_cast<int>(entered.record->inputCurve().size()) - 1;
    TensileFitSettings settings;
    long long start = 0, necking = 0, iterations = 0;
    double targetError = 0.0;
    if ((args.option("--start") && !integerOption(args, "--start", 0, last, start, error))
        || (args.option("--necking") && !integerOption(args, "--necking", 0, last, necking, error))
        || (args.option("--max-iter") && !integerOption(args, "--max-iter", 0, 100000000, iterations, error))
        || (args.option("--target-error") && !numberOption(args, "--target-error", targetError, error)))
        return fail(error);
    settings.startIndex = static_cast<int>(start);
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
    if (args.flag("--polish") && args.option("--method") && *args.option("--method") != kMethods[2])
        return fail("option '--polish' is '--method descent+least-squares'; give one of them");
    if (!choiceOption(args, "--method", kMethods, method, error))
        return fail(error);
    settings.method = static_cast<FitMethod>(method);

    TensileFit fit = fitTensileLaw(document.material(), std::move(*entered.record), *lawId, settings, document.environment());
    if (!fit.material)
        return fail(fileMessage(curvePath, fit.error));
    PendingOutputs outputs;
    if (!stageResults(args, document, std::move(*fit.material), outputs, error))
        return fail(error);
    // The described text alone unless another method was asked for.
    std::string text = fit.text + "\n";
    if (settings.method != FitMethod::Descent)
        text += fitEndText(*fit.law, fit.end) + "\n";
    if (const int status = printResult(text); status != 0)
        return status;
    return commitOutputs(outputs);
}

// The record of the material, ready for the solver.
std::shared_ptr<RoomOri> jobRecord(const ParsedArguments& args, MaterialDocument& document, std::string& error)
{
    const std::string& path = args.positionals[0];
    if (!openMaterial(path, document, error))
        return nullptr;
    std::shared_ptr<RoomOri> record = tensileJobRecord(document.material(), error);
    if (!record)
        error = fileMessage(path, error);
    return record;
}

int runTensileJob(const ParsedArguments& args)
{
    MaterialDocument document;
    std::string error;
    const std::shared_ptr<RoomOri> record = jobRecord(args, document, error);
    if (!record)
        return fail(error);
    const std::string& job = *args.option("--job");
    if (!writeTensileJob(*record, job, TensileJobSettings{}, error)
        || (args.flag("--run") && !startTensileSolver(job, document.environment(), error)))
        return fail(fileMessage(job, error));
    return 0;
}

int runTensileResult(const ParsedArguments& args)
{
    MaterialDocument document;
    std::string error;
    if (!checkOutputs(args, error))
        return fail(error);
    const std::shared_ptr<RoomOri> record = jobRecord(args, document, error);
    if (!record)
        return fail(error);
    const std::string& job = *args.option("--job");
    TensileResult result = readTensileJobResult(document.material(), *record, job);
    if (!result.material)
        return fail(fileMessage(job, tensileResultMessage(result.status)));
    PendingOutputs outputs;
    if (!stageResults(args, document, std::move(*result.material), outputs, error))
        return fail(error);
    return commitOutputs(outputs);
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
            "         [--method descent|least-squares|descent+least-squares]\n"
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
            "defaults to the point of maximum engineering stress.\n"
            "\n"
            "--method chooses the fit: the steepest descent (default), bounded least squares\n"
            "from several starts (the law's start, the log-log line, a search over the\n"
            "nonlinear parameters), or least squares after the descent from its end as well;\n"
            "--polish is the last. Least squares fits the plain error: with\n"
            "--necking-constraint or --weighted the descent runs alone. With a method other\n"
            "than the default a last line tells how the fit stopped and which parameters\n"
            "ended at a bound.\n",
            {{"--curve", "--input", "--diameter", "--gauge-length", "--length-unit", "--force-unit", "--law",
                 "--start", "--necking", "--max-iter", "--target-error", "--method", kOutput, kExport},
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
