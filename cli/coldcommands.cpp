// The cold flow curve commands: a law fitted to a tensile test, and the tensile
// solver's job and result.

#include <vector>

#include "cli/commands.h"
#include "cli/fitcold.h"
#include "cli/materialio.h"
#include "cli/messages.h"
#include "material/tensilechain.h"

namespace zelko::cli {

namespace {

constexpr std::string_view kOutput = "-o";
constexpr std::string_view kExport = "--export";

// Refused before any work: the second file would silently replace the first.
bool checkOutputs(const ParsedArguments& args, std::string& error)
{
    return distinctOutputs(kOutput, *args.option(kOutput), kExport, args.option(kExport), error);
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
    if (!stageColdMaterial(*args.option(kOutput), args.option(kExport), document, std::move(*result.material), outputs, error))
        return fail(error);
    return commitOutputs(outputs);
}

}  // namespace

std::span<const Command> coldCommands()
{
    static const std::vector<Command> kCommands = {
        {"fit-cold", "fit a hardening law, or compare them all, to a tensile test",
            "Usage: zelko-mat-cli fit-cold MATERIAL.zmat --curve FILE --input load|engineering|true\n"
            "         --diameter D --gauge-length L [--length-unit mm|inch|percent]\n"
            "         [--force-unit N|kN|kgf|ton|lbf] --law LAW|all [--choose LAW]\n"
            "         [--start I|yield | --start-strain X] [--necking J] [--necking-constraint]\n"
            "         [--weighted] [--polish] [--max-iter N] [--target-error E]\n"
            "         [--method descent|least-squares|descent+least-squares]\n"
            "         [-o OUT.zmat [--export LIB.z3dlib]] [--curve-out FILE.csv] [--png FILE.png]\n"
            "         [--json]\n"
            "\n"
            "Converts and reduces the curve as the tensile screen does, fits the law and prints\n"
            "the result as the screen shows it, then the rows the fit used (start, necking,\n"
            "fracture) with their strain and stress, and stores the tensile record (and with\n"
            "--export writes the library entry with the fitted law).\n"
            "\n"
            "LAW: swift, hollomon, ludwik, kim-tuan, hockett-sherby, voce, el-magd,\n"
            "voyiadjis-abed, in any case. --law all fits every law with the same settings and\n"
            "prints one table ranked by RMSE (MPa, over the fitted points): parameters with\n"
            "their units ('*' on one held at a bound), the stress at true strains 0.1, 0.5\n"
            "and 1.0, and whether the law has a library block. With -o it stores the law\n"
            "named by --choose, else the best law with a library block; -o is required for a\n"
            "single law only.\n"
            "\n"
            "The curve file holds two or three numbers a line (the third a weight) separated\n"
            "by blanks, tabs, commas or semicolons; '#' lines are skipped. A header line that\n"
            "names the columns (displacement, force, strain, stress, weight, with units such\n"
            "as _mm, _inch, _N, _kN, _kgf, _lbf, _MPa, _pct) puts them in order and sets the\n"
            "units; a header that contradicts --input or a unit option is refused. Other\n"
            "header words are skipped and the columns taken as x, y, weight. Load input is\n"
            "displacement and force; for stress-strain input the length unit 'inch' (or\n"
            "'percent') means strains in percent.\n"
            "\n"
            "The start row is I (from 0), 'yield' (the 0.2 % offset yield point, with the\n"
            "elastic slope taken from the curve itself), or the first row whose strain reaches\n"
            "X. By default it is the yield point for load and engineering input and row 0 for\n"
            "a true curve. The necking index defaults to the point of maximum engineering\n"
            "stress.\n"
            "\n"
            "--method chooses the fit: the steepest descent (default), bounded least squares\n"
            "from several starts (the law's start, the log-log line, a search over the\n"
            "nonlinear parameters), or least squares after the descent from its end as well;\n"
            "--polish is the last. Least squares fits the plain error: with\n"
            "--necking-constraint or --weighted the descent runs alone. With a method other\n"
            "than the default a last line tells how the fit stopped and which parameters\n"
            "ended at a bound.\n"
            "\n"
            "--curve-out writes the measured true curve and the fitted law(s) as CSV; --png\n"
            "draws them with gnuplot ($ZELKO_GNUPLOT, else gnuplot on the PATH), over the\n"
            "measured range and extrapolated to true strain 1. --json prints one JSON object\n"
            "(parameters by name, errors, rows, file paths) instead of the text.\n",
            {{"--curve", "--input", "--diameter", "--gauge-length", "--length-unit", "--force-unit", "--law",
                 "--choose", "--start", "--start-strain", "--necking", "--max-iter", "--target-error", "--method", kOutput, kExport,
                 "--curve-out", "--png"},
                {"--curve", "--input", "--diameter", "--gauge-length", "--law"}, {"MATERIAL.zmat"}, 1,
                {"--necking-constraint", "--weighted", "--polish", "--json"}},
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
