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

std::span<const Command> commands();

}  // namespace zelko::cli
