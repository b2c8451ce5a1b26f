// zelko-mat-cli: everything the screens do to a material, as commands for scripts.

#include <exception>
#include <new>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/messages.h"
#include "base/temporaryfiles.h"
#include "base/textfile.h"

namespace {

using namespace zelko::cli;

std::string toolHelp()
{
    std::string text = "Usage: zelko-mat-cli COMMAND [ARGUMENTS]\n"
                       "\n"
                       "Prepares ZELKO material files (.zmat) and library entries (.z3dlib).\n"
                       "\n"
                       "Commands:\n";
    for (const Command& command : commands()) {
        const std::string name(command.name);
        const std::string summary(command.summary);
        text += zelko::formatText("  %-16s  %s\n", name.c_str(), summary.c_str());
    }
    text += "\n'zelko-mat-cli COMMAND --help' describes a command.\n";
    return text;
}

int run(const std::vector<std::string>& args)
{
    if (args.empty())
        return fail("no command given; 'zelko-mat-cli --help' lists the commands");
    if (args[0] == "--help" || args[0] == "-h" || args[0] == "help")
        return printResult(toolHelp());
    for (const Command& command : commands()) {
        if (command.name != args[0])
            continue;
        std::string error;
        const auto parsed = parseArguments({args.begin() + 1, args.end()}, command.arguments, error);
        if (!parsed)
            return fail(std::string(command.name) + ": " + error);
        if (parsed->help)
            return printResult(command.help);
        return command.run(*parsed);
    }
    return fail("unknown command '" + args[0] + "'; 'zelko-mat-cli --help' lists the commands");
}

}  // namespace

int main(int argc, char** argv)
{
    // A save stopped by Ctrl+C or SIGTERM leaves no temporary file behind.
    zelko::removeTemporaryFilesOnSignals();
    try {
        return run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    } catch (const std::exception& e) {
        return fail(std::string("unexpected failure: ") + e.what());
    }
}
