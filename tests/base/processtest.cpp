#include <gtest/gtest.h>

#include <set>
#include <string>

#include <unistd.h>

#include "base/process.h"

namespace zelko {
namespace {

ProcessResult shell(const std::string& script, std::string input = {},
                    std::chrono::milliseconds timeLimit = std::chrono::milliseconds(0), std::stop_token stop = {})
{
    return runProcess({"/bin/sh", {"-c", script}, std::move(input), timeLimit}, std::move(stop));
}

TEST(Process, FeedsItsInputAndCollectsBothOutputsAndTheExitStatus)
{
    const ProcessResult result = shell("cat; echo complaint >&2; exit 3", "line 1\nline 2\n");
    EXPECT_EQ(result.end, ProcessEnd::Exited);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.output, "line 1\nline 2\n");
    EXPECT_EQ(result.errorOutput, "complaint\n");

    // Arguments reach the program as they are: no shell splits or expands them.
    const ProcessResult printed = runProcess({"printf", {"%s|", "a b", "'$HOME'", "*"}});
    EXPECT_EQ(printed.end, ProcessEnd::Exited);
    EXPECT_EQ(printed.output, "a b|'$HOME'|*|");
}

TEST(Process, MoreThanAPipeHoldsInBothDirections)
{
    // Four megabytes each way: the feeding and the collecting must take turns.
    std::string input(4u << 20, 'x');
    for (std::size_t i = 0; i < input.size(); i += 4096)
        input[i] = static_cast<char>('a' + i / 4096 % 26);
    const ProcessResult result = shell("cat; cat >&2 </dev/null", input);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(result.output == input) << result.output.size();

    // A program that reads none of it ends normally; this process is not killed
    // by the broken pipe.
    const ProcessResult unread = shell("exit 0", input);
    EXPECT_EQ(unread.end, ProcessEnd::Exited);
    EXPECT_EQ(unread.exitCode, 0);

    // Output beyond the cap is dropped, not held.
    const ProcessResult flood = shell("head -c 20000000 /dev/zero");
    EXPECT_EQ(flood.end, ProcessEnd::Exited);
    EXPECT_EQ(flood.output.size(), kMaxProcessOutputBytes);
}

TEST(Process, MissingProgramsAndCrashes)
{
    const ProcessResult missing = runProcess({"/no/such/program", {}});
    EXPECT_EQ(missing.end, ProcessEnd::NotStarted);
    EXPECT_EQ(missing.error, "not found");
    EXPECT_EQ(runProcess({"zelko-no-such-program-on-the-path", {}}).end, ProcessEnd::NotStarted);

    EXPECT_EQ(shell("kill -9 $$").end, ProcessEnd::Crashed);
}

TEST(Process, KilledAtTheTimeLimitOrOnAStop)
{
    // The shell waits for its sleep: both are killed, or the call would wait 30 s.
    const ProcessResult late = shell("sleep 30; echo woke", {}, std::chrono::milliseconds(200));
    EXPECT_EQ(late.end, ProcessEnd::TimedOut);
    EXPECT_EQ(late.output, "");

    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(shell("sleep 30", {}, {}, stop.get_token()).end, ProcessEnd::Stopped);

    // Within the limit nothing is killed.
    EXPECT_EQ(shell("echo done", {}, std::chrono::milliseconds(20000)).output, "done\n");
}

TEST(Process, UniqueTags)
{
    std::set<std::string> tags;
    for (int i = 0; i < 100; ++i)
        tags.insert(uniqueTag());
    EXPECT_EQ(tags.size(), 100u);
    EXPECT_TRUE(tags.begin()->starts_with(std::to_string(::getpid()) + "-"));
}

}  // namespace
}  // namespace zelko
