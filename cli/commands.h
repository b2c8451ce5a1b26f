#pragma once
// The commands of zelko-mat-cli: their arguments, their help and what they do.

#include <span>
#include <string_view>

#include "cli/arguments.h"

namespace zelko::cli {

struct Command {
    std::string_view name;
    std::string_view summary;  // one line in the tool's own help
    std::string_view help;  // usage and description
    ArgumentSpec arguments;
    int (*run)(const ParsedArguments&);  // the exit status
};

// Every command of the tool, in the order its help lists them.
std::span<const Command> commands();

// The groups, each defined beside what it drives.
std::span<const Command> materialCommands();  // commands.cpp
std::span<const Command> coldCommands();      // coldcommands.cpp
std::span<const Command> hotCommands();       // hotcommands.cpp

}  // namespace zelko::cli
