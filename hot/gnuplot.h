#pragma once
// Running gnuplot (the environment's program) as a child process that reads
// its commands from standard input and draws into a picture of its own.

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/environment.h"
#include "base/runcontrol.h"

namespace zelko {

// A map draws in well under a second; a gnuplot that takes this long is stuck.
inline constexpr std::chrono::milliseconds kGnuplotTimeLimit{60000};

// Text as a gnuplot single-quoted string, quotes included ('' stands for ').
std::string gnuplotQuoted(std::string_view text);

struct PngRequest {
    std::filesystem::path script;  // what gnuplot loads
    std::filesystem::path png;     // written whole or not at all
    int width = 0;
    int height = 0;
    std::chrono::milliseconds timeLimit = kGnuplotTimeLimit;
};

enum class RenderEnd { Drawn, Failed, TimedOut, Cancelled };

// Draws the script into the PNG. gnuplot draws first into a picture of its own
// in the exchange folder (a name no other render uses), which is then moved.
// Anything but Drawn comes with a reason in error (gnuplot missing, its
// complaint, the time limit); gnuplot is killed at the time limit or on a stop.
RenderEnd renderGnuplotPng(const PngRequest& request, const Environment& environment, const RunControl& control,
                           std::string& error);

}  // namespace zelko
