#pragma once
// Running another program (gnuplot, the solver) as a child process: its
// standard input fed from memory, its output collected, a time limit, and a
// stop request that kills it at once. No shell is involved, so no argument is
// ever interpreted.

#include <chrono>
#include <cstddef>
#include <stop_token>
#include <string>
#include <vector>

namespace zelko {

// A program that floods its output is not allowed to fill the memory with it.
inline constexpr std::size_t kMaxProcessOutputBytes = 16u * 1024u * 1024u;

struct ProcessRequest {
    std::string program;                     // a path, or a name looked up on PATH
    std::vector<std::string> arguments;      // without the program itself
    std::string input;                       // its standard input, closed after this
    std::chrono::milliseconds timeLimit{0};  // 0: no limit
};

enum class ProcessEnd {
    Exited,      // exitCode holds its exit status
    NotStarted,  // error says why (not found, not executable)
    Crashed,     // ended by a signal nobody here sent
    TimedOut,    // killed at the time limit
    Stopped,     // killed on a stop request
};

struct ProcessResult {
    ProcessEnd end = ProcessEnd::NotStarted;
    int exitCode = -1;
    std::string output;       // standard output, at most kMaxProcessOutputBytes
    std::string errorOutput;  // standard error, likewise
    std::string error;        // why it did not start
};

// Runs the program to its end, or kills it (and whatever it started) at the
// time limit or as soon as a stop is requested.
ProcessResult runProcess(const ProcessRequest& request, std::stop_token stop = {});

// "<process id>-<counter>": for scratch file names that no other operation,
// of this process or another, uses at the same time.
std::string uniqueTag();

}  // namespace zelko
