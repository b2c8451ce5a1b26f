#include "cli/materialio.h"

#include "cli/messages.h"

namespace zelko::cli {

std::optional<std::string> readInput(const std::string& path, std::string& error, std::uintmax_t maxBytes)
{
    std::string reason;
    auto bytes = readFileBytes(path, reason, maxBytes);
    if (!bytes)
        error = fileMessage(path, reason);
    return bytes;
}

bool openMaterial(const std::string& path, MaterialDocument& document, std::string& error)
{
    std::string reason;
    if (document.open(path, reason)) {
        // A file cut short still opens, as on the screens, but the user hears of it.
        for (const std::string& warning : document.warnings())
            warn(fileMessage(path, warning));
        return true;
    }
    error = fileMessage(path, reason);
    return false;
}

bool saveMaterial(const std::string& path, const MaterialDocument& document, std::string& error)
{
    std::string reason;
    if (document.save(path, reason))
        return true;
    error = fileMessage(path, reason);
    return false;
}

bool exportMaterial(const std::string& path, const MaterialDocument& document, bool& wroteModelBlock, std::string& error)
{
    std::string reason;
    if (document.exportLibrary(path, wroteModelBlock, reason))
        return true;
    error = fileMessage(path, reason);
    return false;
}

}  // namespace zelko::cli
