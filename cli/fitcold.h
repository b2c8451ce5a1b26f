#pragma once
// fit-cold: a hardening law, or every law ranked, fitted to a tensile test.

#include "cli/arguments.h"

namespace zelko::cli {

int runFitCold(const ParsedArguments& args);

}  // namespace zelko::cli
