#include "cli/commands.h"

namespace zelko::cli {

std::span<const Command> coldCommands() { return {}; }

}  // namespace zelko::cli
