// A terminal's Ctrl+C or a batch system's SIGTERM arriving while the tool writes a
// large material: the temporary file goes, the previous output stays.

#include "clirunner.h"

#if defined(__linux__)
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;
#endif

namespace zelko::clitest {
namespace {

#if defined(__linux__)

// A true curve long enough that its material takes a while to write (about 36 MB).
void writeLongCurve(const fs::path& path)
{
    std::string text;
    constexpr int kPoints = 600000;
    text.reserve(kPoints * 24);
    char line[64];
    for (int i = 0; i < kPoints; ++i) {
        const double strain = 0.3 * i / kPoints;
        std::snprintf(line, sizeof line, "%.9f %.6f\n", strain, 500.0 + 800.0 * strain);
        text += line;
    }
    writeBytes(path, text);
}

struct StopOutcome {
    bool sawTemporary = false;
    int signal = 0;  // the signal that ended the tool, 0 if it exited
};

// Starts the tool and sends it the signal the moment a temporary file appears in the folder.
StopOutcome stopWhileSaving(const fs::path& folder, const std::vector<std::string>& args, int signal)
{
    StopOutcome outcome;
    const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (watch < 0 || inotify_add_watch(watch, folder.c_str(), IN_CREATE) < 0) {
        ADD_FAILURE() << "inotify is not available";
        return outcome;
    }
    std::vector<std::string> argv{ZELKO_CLI_PATH};
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char*> pointers;
    for (std::string& arg : argv)
        pointers.push_back(arg.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    const int spawned = posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        ADD_FAILURE() << "cannot start the tool";
        ::close(watch);
        return outcome;
    }

    alignas(inotify_event) char events[4096];
    int status = 0;
    while (!outcome.sawTemporary && ::waitpid(child, &status, WNOHANG) == 0) {
        pollfd ready{watch, POLLIN, 0};
        if (::poll(&ready, 1, 20) <= 0)
            continue;
        const ssize_t length = ::read(watch, events, sizeof events);
        for (ssize_t at = 0; at < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events + at);
            if (event->len > 0 && std::string_view(event->name).ends_with(".tmp")) {
                outcome.sawTemporary = true;
                ::kill(child, signal);
                ::waitpid(child, &status, 0);
                break;
            }
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    ::close(watch);
    if (WIFSIGNALED(status))
        outcome.signal = WTERMSIG(status);
    return outcome;
}

TEST(StoppedSave, ASignalDuringTheWriteLeavesThePreviousFileAndNoTemporary)
{
    ScratchFolder inputs;
    const fs::path curve = inputs.file("long.txt");
    writeLongCurve(curve);
    const fs::path material = inputs.file("m.zmat");
    ASSERT_EQ(runCli({"new", "-o", material.string(), "--title", "long"}).status, 0);

    for (const int signal : {SIGTERM, SIGINT}) {
        SCOPED_TRACE(signal);
        ScratchFolder outputs;
        const fs::path out = outputs.file("out.zmat");
        writeBytes(out, "previous");
        const StopOutcome outcome = stopWhileSaving(
            outputs.file(""), {"fit-cold", material.string(), "--curve", curve.string(), "--input", "true",
                               "--diameter", "6", "--gauge-length", "30", "--law", "hollomon", "--max-iter", "10",
                               "-o", out.string()},
            signal);
        ASSERT_TRUE(outcome.sawTemporary) << "the tool ended before it began to write";
        if (outcome.signal == 0)
            GTEST_SKIP() << "the write was over before the signal arrived";
        EXPECT_EQ(outcome.signal, signal);
        EXPECT_EQ(outputs.filesBesides({"out.zmat"}), std::vector<std::string>{});
        EXPECT_EQ(readBytes(out), "previous");
    }
}

#endif

}  // namespace
}  // namespace zelko::clitest
