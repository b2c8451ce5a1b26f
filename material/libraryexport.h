#pragma once
// The material as one entry of the forming system's material library (.z3dlib).

#include <optional>
#include <string>

#include "base/environment.h"
#include "material/project.h"

namespace zelko {

// Writes the entry. The caller makes sure libraryModel holds a model; the
// result is whether the model wrote a block of its own.
bool writeLibraryEntry(const Project& project, TextWriter& out);

// The library the export dialog proposes: the installation folder without its
// trailing separators plus Library/Library_Material/sample.z3dlib; nothing when
// the variable is empty.
std::optional<std::string> proposedLibraryPath(const std::string& installationFolder, char separator);

}  // namespace zelko
