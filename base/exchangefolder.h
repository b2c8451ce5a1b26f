#pragma once
// The folder where files are exchanged with external programs (gnuplot, the
// solver) and scratch files are left; which one it is comes from Environment.

#include <filesystem>
#include <string>

namespace zelko {

// Creates the folder (every level) when missing; false with a reason when it can't.
bool ensureFolder(const std::filesystem::path& folder, std::string& error);

}  // namespace zelko
