#include "cli/messages.h"

#include <cstdio>

namespace zelko::cli {

namespace {

// File names and texts taken from the input may hold line ends; the message must
// stay one line.
std::string oneLine(std::string_view text)
{
    std::string line(text);
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == '\x7F')
            c = '?';
    return line;
}

void printLine(std::string_view prefix, std::string_view message)
{
    const std::string line = std::string(prefix) + oneLine(message) + "\n";
    std::fflush(stdout);  // what was printed before stays before the message
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

}  // namespace

int fail(std::string_view message)
{
    printLine("error: ", message);
    return 1;
}

void warn(std::string_view message)
{
    printLine("warning: ", message);
}

int printResult(std::string_view text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !written)
        return fail("cannot write to standard output");
    return 0;
}

std::string fileMessage(std::string_view path, std::string_view message)
{
    return std::string(path) + ": " + std::string(message);
}

}  // namespace zelko::cli
