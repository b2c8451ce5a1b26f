#pragma once
// The file part of the commands over the material document: inputs read whole,
// outputs saved whole or not at all. Every error text names the file.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/fileio.h"
#include "cli/arguments.h"
#include "material/document.h"

namespace zelko::cli {

// A PhysProps export is a few kilobytes; the limit keeps a wrong file from being
// read into gigabytes of rows.
inline constexpr std::uintmax_t kMaxPhysPropsFileBytes = 16u * 1024u * 1024u;

std::optional<std::string> readInput(
    const std::string& path, std::string& error, std::uintmax_t maxBytes = kMaxInputFileBytes);

// Opens a .zmat into the document as the Open command does; what the file lacked
// (it ends early) is printed as a warning.
[[nodiscard]] bool openMaterial(const std::string& path, MaterialDocument& document, std::string& error);
// The outputs of a command are staged as it goes and put in place together at its
// end, so a command that fails leaves every output file as it was.
[[nodiscard]] bool saveMaterial(
    PendingOutputs& outputs, const std::string& path, const MaterialDocument& document, std::string& error);
// The library entry; wroteModelBlock tells whether the model had a block of its own.
[[nodiscard]] bool exportMaterial(PendingOutputs& outputs, const std::string& path, const MaterialDocument& document,
                                  bool& wroteModelBlock, std::string& error);
// Stages the edited material and, when a library path is given, its entry; an
// entry without a model block of its own is told about.
[[nodiscard]] bool stageColdMaterial(const std::string& path, const std::string* library, MaterialDocument& document,
                                     Project edited, PendingOutputs& outputs, std::string& error);
// Puts the staged outputs in place; the exit status, 1 with an error line naming the file.
int commitOutputs(PendingOutputs& outputs);
// Two output options must not name one file, however it is spelt.
[[nodiscard]] bool distinctOutputs(std::string_view option, const std::string& path, std::string_view otherOption,
                                   const std::string* other, std::string& error);

// No two of the output options given name one file.
[[nodiscard]] bool distinctOutputs(const ParsedArguments& args, std::span<const std::string_view> options,
                                   std::string& error);

}  // namespace zelko::cli
