// Starting the tensile-test solver: the one place the engine starts a process.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "cold/plastic_8.h"
#include "base/environment.h"

#ifdef _WIN32
#include <cstdlib>
#else
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace zelko {

namespace {

bool isExecutable(const std::filesystem::path& path)
{
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        return false;
#ifdef _WIN32
    return true;
#else
    return ::access(path.c_str(), X_OK) == 0;
#endif
}

// The configured solver, else the solver on PATH, else in the installation
// folder; a solver that is there but can't be run is returned when there is no
// other, so the user hears why it can't be run rather than that it is missing.
std::filesystem::path findSolver(const Environment& environment)
{
    if (!environment.tensileSolver.empty())
        return environment.tensileSolver;
    const std::string name = formatText("Z2DTS_V%2dR%02d", 24, 2);
    std::vector<std::filesystem::path> candidates;
    const std::string& path = environment.searchPath;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find(':', start), path.size());
        if (end > start)
            candidates.push_back(std::filesystem::path(path.substr(start, end - start)) / name);
        start = end + 1;
    }
    const std::string& installation = environment.installationFolder;
    if (!installation.empty())
        for (const char* sub : {"", "bin"})
            candidates.push_back(std::filesystem::path(installation) / sub / name);
    for (const std::filesystem::path& candidate : candidates)
        if (isExecutable(candidate))
            return candidate;
    std::error_code ec;
    for (const std::filesystem::path& candidate : candidates)
        if (std::filesystem::exists(candidate, ec))
            return candidate;
    return {};
}

#ifndef _WIN32
// What the detached child reports back when it fails before the solver runs.
struct StartFailure {
    int stage = 0;  // 1: fork, 2: the job's folder, 3: exec
    int number = 0;
};

// Why the solver at path can't be run, or empty when it can be tried.
std::string unrunnableReason(const std::filesystem::path& solver)
{
    std::error_code ec;
    if (std::filesystem::is_directory(solver, ec))
        return "it is a folder";
    if (::access(solver.c_str(), X_OK) != 0)
        return errno == EACCES ? "it is not executable (permission denied)" : std::strerror(errno);
    return {};
}
#endif

}  // namespace

bool startTensileSolver(const std::filesystem::path& jobFile, const Environment& environment, std::string& error)
{
    const std::filesystem::path folder = jobFile.parent_path().empty() ? std::filesystem::path(".") : jobFile.parent_path();
    const std::string base = jobFile.stem().string();
#ifdef _WIN32
    const std::string command = "start \"\" /D \"" + folder.string() + "\" \"" + base + ".bat\"";
    if (std::system(command.c_str()) != 0) {
        error = "the solver's batch file could not be started";
        return false;
    }
    return true;
#else
    const std::filesystem::path found = findSolver(environment);
    std::error_code ec;
    if (found.empty() || !std::filesystem::exists(found, ec)) {
        error = formatText("the tensile solver was not found (set ZELKO_TENSILE_SOLVER or put Z2DTS_V%2dR%02d on "
                           "PATH); the job files are kept in %s",
                           24, 2, folder.string().c_str());
        return false;
    }
    if (const std::string reason = unrunnableReason(found); !reason.empty()) {
        error = formatText("the tensile solver %s cannot be run: %s; the job files are kept in %s",
                           found.string().c_str(), reason.c_str(), folder.string().c_str());
        return false;
    }
    // The child changes into the job's folder: a relative solver path must not move with it.
    const std::string solverPath = std::filesystem::absolute(found, ec).string();
    const std::string folderPath = folder.string();
    // Opened here rather than in the child: a log that can't be written must never
    // leave the solver writing into our own output (a pipe would wait for it).
    const std::string jobList = (folder / (base + ".tnsslf")).string();
    const std::string log = (folder / (base + ".log")).string();
    const int input = ::open(jobList.c_str(), O_RDONLY | O_CLOEXEC);
    if (input < 0) {
        error = formatText("the solver's job list %s cannot be read (%s); the solver was not started", jobList.c_str(),
                           std::strerror(errno));
        return false;
    }
    const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (output < 0) {
        error = formatText("the solver's log %s cannot be written (%s); the solver was not started", log.c_str(),
                           std::strerror(errno));
        ::close(input);
        return false;
    }
    // The child writes why it failed here; a successful exec closes it unwritten.
    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) {
        ::close(input);
        ::close(output);
        error = "the solver could not be started";
        return false;
    }
    // Detached: the child starts a new session and forks the solver, then exits,
    // so the solver outlives us and is never a zombie of ours.
    const pid_t child = ::fork();
    if (child == 0) {
        const auto failAt = [&](int stage) {
            const StartFailure failure{stage, errno};
            [[maybe_unused]] const ssize_t written = ::write(report[1], &failure, sizeof failure);
            ::_exit(127);
        };
        ::setsid();
        const pid_t solver = ::fork();
        if (solver < 0)
            failAt(1);
        if (solver > 0)
            ::_exit(0);
        if (::chdir(folderPath.c_str()) != 0)
            failAt(2);
        if (::dup2(input, 0) < 0 || ::dup2(output, 1) < 0 || ::dup2(output, 2) < 0)
            failAt(3);
        ::execl(solverPath.c_str(), solverPath.c_str(), static_cast<char*>(nullptr));
        failAt(3);
    }
    const int forkError = errno;
    ::close(report[1]);
    ::close(input);
    ::close(output);
    if (child < 0) {
        ::close(report[0]);
        error = formatText("the solver could not be started (%s)", std::strerror(forkError));
        return false;
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    StartFailure failure;
    ssize_t got = 0;
    do
        got = ::read(report[0], &failure, sizeof failure);
    while (got < 0 && errno == EINTR);
    ::close(report[0]);
    if (got != static_cast<ssize_t>(sizeof failure))
        return true;
    if (failure.stage == 2)
        error = formatText("the solver could not enter the job's folder %s (%s)", folderPath.c_str(),
                           std::strerror(failure.number));
    else if (failure.stage == 3)
        error = formatText("the tensile solver %s cannot be run: %s; the job files are kept in %s", solverPath.c_str(),
                           std::strerror(failure.number), folderPath.c_str());
    else
        error = formatText("the solver could not be started (%s)", std::strerror(failure.number));
    return false;
#endif
}

}  // namespace zelko
