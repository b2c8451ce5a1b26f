#include <vector>

#include "cli/commands.h"

namespace zelko::cli {

std::span<const Command> commands()
{
    static const std::vector<Command> kAll = [] {
        std::vector<Command> all;
        for (const auto group : {materialCommands(), coldCommands(), hotCommands()})
            all.insert(all.end(), group.begin(), group.end());
        return all;
    }();
    return kAll;
}

}  // namespace zelko::cli
