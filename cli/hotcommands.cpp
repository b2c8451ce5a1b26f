#include "cli/commands.h"

namespace zelko::cli {

std::span<const Command> hotCommands() { return {}; }

}  // namespace zelko::cli
