#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "base/fileio.h"
#include "foldernames.h"
#include "base/temporaryfiles.h"
#include "temporaryfolder.h"

namespace zelko {
namespace {

namespace fs = std::filesystem;

#if !defined(_WIN32)

// The child stages a large save (as a big material with curves would be) and is
// stopped before its commit.
void stageAndStop(const fs::path& folder, int signal)
{
    removeTemporaryFilesOnSignals();
    PendingOutputs outputs;
    std::string error;
    const std::string large(8 * 1024 * 1024, 'm');
    if (!outputs.stage(folder / "m.zmat", large, error) || !outputs.stage(folder / "m.z3dlib", large, error))
        std::_Exit(2);
    std::raise(signal);
    std::_Exit(3);  // not reached: the signal ends the process
}

TEST(TemporaryFiles, AStoppedSaveLeavesNoTemporaryAndThePreviousFile)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        SCOPED_TRACE(signal);
        const test::TemporaryFolder temporary;
        std::string error;
        ASSERT_TRUE(saveFileAtomically(temporary.path() / "m.zmat", "previous", error)) << error;
        EXPECT_EXIT(stageAndStop(temporary.path(), signal), ::testing::KilledBySignal(signal), "");
        EXPECT_EQ(test::namesIn(temporary.path()), std::vector<std::string>{"m.zmat"});
        EXPECT_EQ(readFileBytes(temporary.path() / "m.zmat", error), "previous");
    }
}

// Saves done and dropped give their place in the list back, so the app's hundredth
// save is still looked after.
void saveManyThenStop(const fs::path& folder)
{
    removeTemporaryFilesOnSignals();
    std::string error;
    for (int i = 0; i < 100; ++i) {
        if (!saveFileAtomically(folder / ("m" + std::to_string(i % 3) + ".zmat"), "saved", error))
            std::_Exit(2);
        PendingOutputs dropped;
        if (!dropped.stage(folder / "dropped.zmat", "x", error))
            std::_Exit(2);
    }
    stageAndStop(folder, SIGTERM);
}

TEST(TemporaryFiles, TheListOutlivesManySaves)
{
    const test::TemporaryFolder temporary;
    EXPECT_EXIT(saveManyThenStop(temporary.path()), ::testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(test::namesIn(temporary.path()), (std::vector<std::string>{"m0.zmat", "m1.zmat", "m2.zmat"}));
}

#endif

}  // namespace
}  // namespace zelko
