#pragma once
// Where the program meets its surroundings: the folders and programs that
// environment variables name. Read once by whoever starts the work (the
// document, the command-line tool, a test) and passed down, so no engine
// function depends on the process's variables.

#include <filesystem>
#include <string>

namespace zelko {

struct Environment {
    std::filesystem::path exchangeFolder;  // files shared with gnuplot and the solver
    std::string installationFolder;        // the forming system's installation; may be empty
    std::string gnuplotProgram = "gnuplot";
    std::string tensileSolver;             // empty: searched on PATH and in the installation
    std::string searchPath;                // PATH

    // $ZELKO_TEMP, $ZELKO_V24R02, $ZELKO_GNUPLOT, $ZELKO_TENSILE_SOLVER and $PATH as the
    // process has them, with the defaults of this platform.
    static Environment fromProcess();
};

// "ZELKO_V24R02": the variable naming the forming system's installation.
std::string installationVariableName();

// The exchange folder when $ZELKO_TEMP is unset: C:\temp\ZELKO on Windows, else
// <system temp>/ZELKO.
std::filesystem::path defaultExchangeFolder();

}  // namespace zelko
