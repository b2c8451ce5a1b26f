#include "hot/gnuplot.h"

#include <cstdlib>
#include <system_error>

#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/textfile.h"

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace zelko {

namespace {

// For the command line of std::system: each argument quoted whole.
std::string shellQuoted(const std::string& text)
{
#ifdef _WIN32
    return "\"" + text + "\"";
#else
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
#endif
}

// The exit status of the command, -1 when it did not exit normally.
int exitStatus(int raw)
{
#ifdef _WIN32
    return raw;
#else
    return raw != -1 && WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
#endif
}

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

}  // namespace

std::string gnuplotProgram()
{
    if (const char* configured = std::getenv("ZELKO_GNUPLOT"); configured && *configured)
        return configured;
    return "gnuplot";
}

std::string gnuplotQuoted(std::string_view text)
{
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}

bool renderGnuplotPng(const std::filesystem::path& script, const std::filesystem::path& png, int width, int height,
                      std::string& error)
{
    if (!ensureExchangeFolder(error))
        return false;
    const std::filesystem::path folder = exchangeFolder();
    const std::filesystem::path commands = folder / "gnuplot_render.txt";
    const std::filesystem::path picture = folder / "gnuplot_render.png";
    const std::filesystem::path log = folder / "gnuplot_render.log";
    TextWriter out(TextEncoding::EightBit);
    out.format("set terminal pngcairo size %d,%d\n", width, height);
    out.put(std::string_view("set output " + gnuplotQuoted(picture.string()) + "\n"));
    out.put(std::string_view("load " + gnuplotQuoted(script.string()) + "\n"));
    out.put(std::string_view("unset output\n"));
    std::error_code ignored;
    std::filesystem::remove(picture, ignored);
    if (!saveFileAtomically(commands, out.bytes(), error))
        return false;
    const std::string program = gnuplotProgram();
    const std::string command
        = shellQuoted(program) + " " + shellQuoted(commands.string()) + " >" + shellQuoted(log.string()) + " 2>&1";
    const int status = exitStatus(std::system(command.c_str()));
    std::string reason;
    const std::string output = readFileBytes(log, reason).value_or(std::string());
    if (status == 127) {
        error = "gnuplot not found ('" + program + "'): install gnuplot or set ZELKO_GNUPLOT to its path";
        return false;
    }
    if (status != 0) {
        const std::string complaint = lastLine(output);
        error = "gnuplot failed" + (complaint.empty() ? formatText(" (exit status %d)", status) : ": " + complaint);
        return false;
    }
    const auto bytes = readFileBytes(picture, reason);
    if (!bytes || bytes->empty()) {
        error = "gnuplot wrote no picture";
        return false;
    }
    std::filesystem::remove(picture, ignored);
    return saveFileAtomically(png, *bytes, error);
}

}  // namespace zelko
