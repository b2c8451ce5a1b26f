#pragma once
// The folder where files are exchanged with external programs (gnuplot, the
// solver) and scratch files are left.

#include <filesystem>
#include <string>

namespace zelko {

// The process's exchange folder (Environment::fromProcess().exchangeFolder).
std::filesystem::path exchangeFolder();
bool ensureExchangeFolder(std::string& error);
// Creates the folder (every level) when missing; false with a reason when it can't.
bool ensureFolder(const std::filesystem::path& folder, std::string& error);

}  // namespace zelko
