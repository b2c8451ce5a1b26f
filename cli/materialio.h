#pragma once
// The file part of the commands: inputs read whole, outputs saved whole or not at all.
// Every error text names the file.

#include <cstdint>
#include <optional>
#include <string>

#include "base/fileio.h"
#include "material/project.h"

namespace zelko::cli {

// A PhysProps export is a few kilobytes; the limit keeps a wrong file from being
// read into gigabytes of rows.
inline constexpr std::uintmax_t kMaxPhysPropsFileBytes = 16u * 1024u * 1024u;

struct FormatVersion {
    int major = 0;
    int minor = 0;
};

std::optional<std::string> readInput(
    const std::string& path, std::string& error, std::uintmax_t maxBytes = kMaxInputFileBytes);

// Reads a .zmat as the Open command does, into a fresh project.
[[nodiscard]] bool loadMaterial(const std::string& path, Project& project, FormatVersion& version, std::string& error);
[[nodiscard]] bool loadMaterial(const std::string& path, Project& project, std::string& error);

[[nodiscard]] bool saveText(const std::string& path, const TextWriter& text, std::string& error);
[[nodiscard]] bool saveMaterial(const std::string& path, const Project& project, std::string& error);

}  // namespace zelko::cli
