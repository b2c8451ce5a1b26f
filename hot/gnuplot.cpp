#include "hot/gnuplot.h"

#include <system_error>
#include <vector>

#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/process.h"
#include "base/textfile.h"
#include "hot/plastic_hot.h"

namespace zelko {

namespace {

// gnuplot's complaint is its last line ("line 12: undefined variable: x").
std::string lastLine(const std::string& text)
{
    const std::vector<std::string> lines = split(std::string_view(text), "\r\n");
    for (auto it = lines.rbegin(); it != lines.rend(); ++it) {
        const auto start = it->find_first_not_of(" \t");
        if (start != std::string::npos)
            return it->substr(start);
    }
    return {};
}

// Removes the file when the render ends, however it ends.
struct ScratchFile {
    std::filesystem::path path;
    ~ScratchFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

}  // namespace

std::string gnuplotQuoted(std::string_view text)
{
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}

RenderEnd renderGnuplotPng(const PngRequest& request, const Environment& environment, const RunControl& control,
                           std::string& error)
{
    if (!ensureFolder(environment.exchangeFolder, error))
        return RenderEnd::Failed;
    const ScratchFile picture{environment.exchangeFolder / ("gnuplot_render-" + uniqueTag() + ".png")};
    const std::string commands = formatText("set terminal pngcairo size %d,%d\n", request.width, request.height)
                                 + "set output " + gnuplotQuoted(picture.path.string()) + "\n"
                                 + "load " + gnuplotQuoted(request.script.string()) + "\n" + "unset output\n";

    ProcessRequest run;
    run.program = environment.gnuplotProgram;
    run.input = commands;
    run.timeLimit = request.timeLimit;
    const ProcessResult result = runProcess(run, control.stop);
    switch (result.end) {
    case ProcessEnd::NotStarted:
        error = "gnuplot not found ('" + run.program + "'): install gnuplot or set ZELKO_GNUPLOT to its path";
        if (result.error != "not found")
            error = "gnuplot could not be started ('" + run.program + "'): " + result.error;
        return RenderEnd::Failed;
    case ProcessEnd::TimedOut:
        error = formatText("gnuplot did not finish within %g s and was stopped",
                           static_cast<double>(request.timeLimit.count()) / 1000.0);
        return RenderEnd::TimedOut;
    case ProcessEnd::Stopped:
        error = std::string(kRunCancelled);
        return RenderEnd::Cancelled;
    case ProcessEnd::Crashed:
        error = "gnuplot crashed";
        return RenderEnd::Failed;
    case ProcessEnd::Exited:
        break;
    }
    if (result.exitCode != 0) {
        const std::string complaint = lastLine(result.errorOutput.empty() ? result.output : result.errorOutput);
        error = "gnuplot failed"
                + (complaint.empty() ? formatText(" (exit status %d)", result.exitCode) : ": " + complaint);
        return RenderEnd::Failed;
    }
    // A picture beyond what we read whole is refused by its size, not taken for none.
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(picture.path, ec);
    if (!ec && size > kMaxInputFileBytes) {
        error = formatText("gnuplot's picture is too large (%.0f MB, more than %.0f MB): ask for a smaller picture",
                           static_cast<double>(size) / 1048576.0, static_cast<double>(kMaxInputFileBytes) / 1048576.0);
        return RenderEnd::Failed;
    }
    std::string reason;
    const auto bytes = readFileBytes(picture.path, reason);
    if (!bytes || bytes->empty()) {
        error = "gnuplot wrote no picture";
        return RenderEnd::Failed;
    }
    return saveFileAtomically(request.png, *bytes, error) ? RenderEnd::Drawn : RenderEnd::Failed;
}

}  // namespace zelko
