#pragma once
// The folder where files are exchanged with external programs (gnuplot, the
// solver) and scratch files are left: $ZELKO_TEMP, else C:\temp\ZELKO on Windows,
// else <system temp>/ZELKO.

#include <filesystem>
#include <optional>
#include <string>

namespace zelko {

std::filesystem::path exchangeFolder();
// Creates the folder (every level) when missing; false with a reason when it can't.
bool ensureExchangeFolder(std::string& error);

}  // namespace zelko
