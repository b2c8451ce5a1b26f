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

bool saveMaterial(PendingOutputs& outputs, const std::string& path, const MaterialDocument& document, std::string& error)
{
    std::string reason;
    if (document.save(outputs, path, reason))
        return true;
    error = fileMessage(path, reason);
    return false;
}

bool exportMaterial(PendingOutputs& outputs, const std::string& path, const MaterialDocument& document,
                    bool& wroteModelBlock, std::string& error)
{
    std::string reason;
    if (document.exportLibrary(outputs, path, wroteModelBlock, reason))
        return true;
    error = fileMessage(path, reason);
    return false;
}

bool stageColdMaterial(const std::string& path, const std::string* library, MaterialDocument& document,
                       Project edited, PendingOutputs& outputs, std::string& error)
{
    document.commit(std::move(edited));
    if (!saveMaterial(outputs, path, document, error))
        return false;
    if (library) {
        bool wroteModelBlock = false;
        if (!exportMaterial(outputs, *library, document, wroteModelBlock, error))
            return false;
        if (!wroteModelBlock)
            warn(fileMessage(*library, "the model writes no block of its own; the entry has none"));
    }
    return true;
}

int commitOutputs(PendingOutputs& outputs)
{
    std::string reason;
    std::filesystem::path failed;
    if (outputs.commit(reason, &failed))
        return 0;
    return fail(fileMessage(failed.string(), reason));
}

bool distinctOutputs(std::string_view option, const std::string& path, std::string_view otherOption,
                     const std::string* other, std::string& error)
{
    if (!other || !sameFile(path, *other))
        return true;
    error = fileMessage(*other, "'" + std::string(option) + "' and '" + std::string(otherOption) + "' name the same file");
    return false;
}

bool distinctOutputs(const ParsedArguments& args, std::span<const std::string_view> options, std::string& error)
{
    for (std::size_t i = 0; i < options.size(); ++i)
        for (std::size_t j = i + 1; j < options.size(); ++j)
            if (const std::string* first = args.option(options[i]);
                first && !distinctOutputs(options[i], *first, options[j], args.option(options[j]), error))
                return false;
    return true;
}

}  // namespace zelko::cli
