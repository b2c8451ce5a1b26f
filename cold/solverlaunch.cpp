// Starting the tensile-test solver: the one place the engine starts a process.
#include <cstdlib>
#include <string>

#include "cold/plastic_8.h"
#include "base/environment.h"

#ifdef _WIN32
#include <cstdlib>
#else
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

// The configured solver, else the solver on PATH, else in the installation folder.
std::filesystem::path findSolver(const Environment& environment)
{
    if (!environment.tensileSolver.empty())
        return environment.tensileSolver;
    const std::string name = formatText("Z2DTS_V%2dR%02d", 24, 2);
    const std::string& path = environment.searchPath;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find(':', start), path.size());
        const std::filesystem::path candidate = std::filesystem::path(path.substr(start, end - start)) / name;
        if (end > start && isExecutable(candidate))
            return candidate;
        start = end + 1;
    }
    const std::string& installation = environment.installationFolder;
    if (!installation.empty()) {
        for (const char* sub : {"", "bin"}) {
            const std::filesystem::path candidate = std::filesystem::path(installation) / sub / name;
            if (isExecutable(candidate))
                return candidate;
        }
    }
    return {};
}

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
    const std::filesystem::path solver = findSolver(environment);
    if (solver.empty() || !isExecutable(solver)) {
        error = formatText("the tensile solver was not found (set ZELKO_TENSILE_SOLVER or put Z2DTS_V%2dR%02d on "
                           "PATH); the job files are kept in %s",
                           24, 2, folder.string().c_str());
        return false;
    }
    const std::string jobList = (folder / (base + ".tnsslf")).string();
    const std::string log = (folder / (base + ".log")).string();
    const std::string solverPath = solver.string();
    const std::string folderPath = folder.string();
    // Detached: the child starts a new session and forks the solver, then exits,
    // so the solver outlives us and is never a zombie of ours.
    const pid_t child = ::fork();
    if (child < 0) {
        error = "the solver could not be started";
        return false;
    }
    if (child == 0) {
        ::setsid();
        if (::fork() != 0)
            ::_exit(0);
        if (::chdir(folderPath.c_str()) != 0)
            ::_exit(127);
        const int input = ::open(jobList.c_str(), O_RDONLY);
        const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (input >= 0)
            ::dup2(input, 0);
        if (output >= 0) {
            ::dup2(output, 1);
            ::dup2(output, 2);
        }
        ::execl(solverPath.c_str(), solverPath.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return true;
#endif
}

}  // namespace zelko
