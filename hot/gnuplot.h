#pragma once
// Running gnuplot: $ZELKO_GNUPLOT, else "gnuplot" on the PATH.

#include <filesystem>
#include <string>
#include <string_view>

namespace zelko {

std::string gnuplotProgram();

// Text as a gnuplot single-quoted string, quotes included ('' stands for ').
std::string gnuplotQuoted(std::string_view text);

// Draws a gnuplot script into a PNG of the given size, written whole or not at
// all. False with a reason when gnuplot is missing or reports an error.
bool renderGnuplotPng(const std::filesystem::path& script, const std::filesystem::path& png, int width, int height,
                      std::string& error);

}  // namespace zelko
