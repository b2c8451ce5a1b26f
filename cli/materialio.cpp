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

bool loadMaterial(const std::string& path, Project& project, FormatVersion& version, std::string& error)
{
    const auto bytes = readInput(path, error);
    if (!bytes)
        return false;
    TextReader in(*bytes, ReadMode::SniffBom);
    if (!project.ReadMaterialFile(in)) {
        error = fileMessage(path, "not a material file (version line or title rejected)");
        return false;
    }
    // The reader keeps no version; take it from the first line as the reader does. A
    // line read holds at most 255 units, which never take more than 2048 bytes.
    TextReader first(std::string_view(*bytes).substr(0, 2048), ReadMode::SniffBom);
    std::u16string line;
    first.readLine(line);
    const auto tokens = split(line, u" ");
    version.major = toInt(tokens.at(2));
    version.minor = toInt(tokens.at(3));
    return true;
}

bool loadMaterial(const std::string& path, Project& project, std::string& error)
{
    FormatVersion ignored;
    return loadMaterial(path, project, ignored, error);
}

bool saveText(const std::string& path, const TextWriter& text, std::string& error)
{
    std::string reason;
    if (saveFileAtomically(path, text.bytes(), reason))
        return true;
    error = fileMessage(path, reason);
    return false;
}

bool saveMaterial(const std::string& path, const Project& project, std::string& error)
{
    TextWriter out(TextEncoding::Utf16Le);
    project.WriteMaterialFile(out);
    return saveText(path, out, error);
}

}  // namespace zelko::cli
