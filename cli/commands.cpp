#include "cli/commands.h"

#include <optional>
#include <vector>

#include "cli/materialio.h"
#include "cli/materialjson.h"
#include "base/messages.h"
#include "cli/messages.h"
#include "material/tselikov.h"
#include "material/elasticscreen.h"
#include "material/libraryexport.h"
#include "material/physprops.h"
#include "material/thermaltables.h"

namespace zelko::cli {

namespace {

constexpr std::string_view kOutput = "-o";

bool parsePreset(
    const ParsedArguments& args, std::string_view name, std::optional<MaterialPreset>& preset, std::string& error)
{
    const std::string* text = args.option(name);
    if (!text)
        return true;
    if (*text == "steel")
        preset = MaterialPreset::Steel;
    else if (*text == "aluminum")
        preset = MaterialPreset::Aluminum;
    else {
        error = "option '" + std::string(name) + "': '" + *text + "' is neither steel nor aluminum";
        return false;
    }
    return true;
}

// Saves the material to the file of -o; the exit status.
int saveOutput(const ParsedArguments& args, const MaterialDocument& document)
{
    PendingOutputs outputs;
    std::string error;
    if (!saveMaterial(outputs, *args.option(kOutput), document, error))
        return fail(error);
    return commitOutputs(outputs);
}

int runInfo(const ParsedArguments& args)
{
    MaterialDocument document;
    std::string error;
    if (!openMaterial(args.positionals[0], document, error))
        return fail(error);
    const FileVersion version = document.version();
    return printResult(
        jsonText(materialToJson(document.material(), version.major, version.minor, args.flag("--names"))));
}

int runFromJson(const ParsedArguments& args)
{
    const std::string& path = args.positionals[0];
    std::string error;
    const auto text = readInput(path, error, kMaxMaterialJsonBytes);
    if (!text)
        return fail(error);
    std::optional<Project> project = materialFromJson(*text, error);
    if (!project)
        return fail(fileMessage(path, error));
    MaterialDocument document;
    document.commit(std::move(*project));
    return saveOutput(args, document);
}

int runNew(const ParsedArguments& args)
{
    MaterialDocument document;
    Project project = document.copy();
    std::string error;
    if (const std::string* title = args.option("--title")) {
        const std::u16string text = utf8ToUtf16(*title);
        if (utf16ToUtf8(text) != *title)
            return fail("option '--title': not valid UTF-8");
        // The screen's title field holds one line.
        if (title->find_first_of("\r\n") != std::string::npos)
            return fail("option '--title': a title is one line");
        project.title = titleFromViewText(text);
    }
    std::optional<MaterialPreset> elastic;
    std::optional<MaterialPreset> thermal;
    if (!parsePreset(args, "--elastic", elastic, error) || !parsePreset(args, "--thermal", thermal, error))
        return fail(error);
    if (elastic) {
        ElasticScreenValues values = elasticScreenValues(*project.elastic);
        applyElasticPreset(*elastic, values);
        applyElasticScreen(values, *project.elastic);
    }
    if (thermal)
        applyThermalPreset(*thermal, project.conductivity->points, project.heatCapacity->points);
    document.commit(std::move(project));
    return saveOutput(args, document);
}

int runExport(const ParsedArguments& args)
{
    const std::string& path = args.positionals[0];
    MaterialDocument document;
    std::string error;
    if (!openMaterial(path, document, error))
        return fail(error);
    const std::shared_ptr<Plastic> model = document.material().libraryModel();
    if (!model)
        return fail(fileMessage(path, messageText(MessageCode::NoFlowStressModel)));
    PendingOutputs outputs;
    bool wroteModelBlock = false;
    if (!exportMaterial(outputs, *args.option(kOutput), document, wroteModelBlock, error))
        return fail(error);
    if (const int status = commitOutputs(outputs); status != 0)
        return status;
    if (!wroteModelBlock)
        warn(fileMessage(path, missingModelBlockWarning(*model)));
    return 0;
}

int runImportPhysProps(const ParsedArguments& args)
{
    const std::string& physPropsPath = args.positionals[1];
    MaterialDocument document;
    std::string error;
    if (!openMaterial(args.positionals[0], document, error))
        return fail(error);
    const auto bytes = readInput(physPropsPath, error, kMaxPhysPropsFileBytes);
    if (!bytes)
        return fail(error);
    PhysPropsImport imported = importPhysProps(*bytes);
    if (!imported.ok)
        return fail(fileMessage(physPropsPath, imported.message));
    Project project = document.copy();
    project.conductivity->points = std::move(imported.conductivity);
    project.heatCapacity->points = std::move(imported.heatCapacity);
    document.commit(std::move(project));
    return saveOutput(args, document);
}

int runEstimateModulus(const ParsedArguments& args)
{
    ChemicalComposition composition;
    std::string error;
    if (!numberOption(args, "--C", composition.carbon, error)
        || !numberOption(args, "--Mn", composition.manganese, error)
        || !numberOption(args, "--Si", composition.silicon, error)
        || !numberOption(args, "--P", composition.phosphorus, error)
        || !numberOption(args, "--S", composition.sulfur, error))
        return fail(error);
    const bool storing = !args.positionals.empty();
    if (storing && !args.option(kOutput))
        return fail("missing option '-o' for the material with the estimate");
    if (!storing && args.option(kOutput))
        return fail("option '-o' needs a MATERIAL.zmat to store the estimate in");

    const ModulusEstimate estimate = tselikovYoungsModulus(composition);
    if (!estimate.ok)
        return fail(estimate.message);
    const PropertyTable& table = estimate.table;
    // The file is put in place only once the rows are printed.
    PendingOutputs outputs;
    if (storing) {
        MaterialDocument document;
        if (!openMaterial(args.positionals[0], document, error))
            return fail(error);
        Project project = document.copy();
        project.elastic->propertyType[YoungsModulus] = 2;
        project.elastic->setTable(YoungsModulus, table);
        document.commit(std::move(project));
        if (!saveMaterial(outputs, *args.option(kOutput), document, error))
            return fail(error);
    }
    std::string rows;
    for (const TablePoint& p : table)
        rows += formatText("%.10g %.10g\n", p.temperature, p.value);
    if (const int status = printResult(rows); status != 0)
        return status;
    return commitOutputs(outputs);
}

}  // namespace

std::span<const Command> materialCommands()
{
    static const std::vector<Command> kCommands = {
        {"info", "print a material as JSON",
            "Usage: zelko-mat-cli info MATERIAL.zmat [--names]\n"
            "\n"
            "Prints the material as one JSON object: title (as held, line end included),\n"
            "version [major, minor] of the file, elastic (four {\"form\", \"points\"} objects:\n"
            "Young's modulus, Poisson's ratio, density, thermal expansion), model (null, or\n"
            "its kind, number and record data), conductivity and heatCapacity ([[T, V], ...]).\n"
            "With --names each elastic object also says which property it is (\"name\").\n",
            {{}, {}, {"MATERIAL.zmat"}, 1, {"--names"}}, runInfo},
        {"from-json", "write a material from its JSON form",
            "Usage: zelko-mat-cli from-json MATERIAL.json -o OUT.zmat\n"
            "\n"
            "Writes the material a JSON object describes, in the layout 'info' prints: title,\n"
            "elastic, conductivity and heatCapacity are required; version, when given, must\n"
            "be [major, minor] and is not used (the file is written in the current layout);\n"
            "model must be null or absent. The title is written as held, so a title ending\n"
            "in a line end is followed by an empty line. A title longer than 255 UTF-16\n"
            "units is an error. Temperatures must rise in every table; Young's modulus,\n"
            "density, conductivity and heat capacity must be above 0 and Poisson's ratio\n"
            "from 0 to below 0.5. An elastic object may carry the \"name\" 'info --names'\n"
            "prints.\n",
            {{kOutput}, {kOutput}, {"MATERIAL.json"}, 1}, runFromJson},
        {"new", "write a new material, optionally from the presets",
            "Usage: zelko-mat-cli new -o OUT.zmat [--title TEXT] [--elastic steel|aluminum]\n"
            "                        [--thermal steel|aluminum]\n"
            "\n"
            "Writes a new material. The title is stored as the Save command stores it (\"%%\"\n"
            "becomes \"%\", at most 255 characters); the presets are those of the elastic and\n"
            "thermal screens.\n",
            {{kOutput, "--title", "--elastic", "--thermal"}, {kOutput}, {}, 0}, runNew},
        {"export", "write the material's library entry",
            "Usage: zelko-mat-cli export MATERIAL.zmat -o OUT.z3dlib\n"
            "\n"
            "Writes the material as one entry of the forming system's material library. A\n"
            "material without a flow-stress model is refused; a model that writes no block\n"
            "of its own gives a warning, and the entry is written without one.\n",
            {{kOutput}, {kOutput}, {"MATERIAL.zmat"}, 1}, runExport},
        {"import-physprops", "replace the thermal tables from a JMatPro PhysProps export",
            "Usage: zelko-mat-cli import-physprops MATERIAL.zmat PHYSPROPS.dat -o OUT.zmat\n"
            "\n"
            "Replaces the conductivity and heat-capacity tables by those of a JMatPro\n"
            "\"*PhysProps.dat\" export, as the thermal screen does, and writes the material.\n",
            {{kOutput}, {kOutput}, {"MATERIAL.zmat", "PHYSPROPS.dat"}, 2}, runImportPhysProps},
        {"estimate-modulus", "estimate Young's modulus of a steel from its composition",
            "Usage: zelko-mat-cli estimate-modulus --C x --Mn x --Si x --P x --S x\n"
            "                                     [MATERIAL.zmat -o OUT.zmat]\n"
            "\n"
            "Prints Young's modulus (MPa) at 20 to 900 C by the Tselikov method from the\n"
            "contents in wt%, one \"T E\" pair a line. With a material, also stores the table\n"
            "as its Young's modulus (against temperature) and writes it to OUT.zmat.\n",
            {{"--C", "--Mn", "--Si", "--P", "--S", kOutput}, {"--C", "--Mn", "--Si", "--P", "--S"}, {"MATERIAL.zmat"},
                0},
            runEstimateModulus},
    };
    return kCommands;
}

}  // namespace zelko::cli
