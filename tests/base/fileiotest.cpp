#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>
#endif

#include "base/fileio.h"
#include "foldernames.h"
#include "testutil.h"

namespace zelko {
namespace {

namespace fs = std::filesystem;

TEST(FileIo, FailedSaveKeepsThePreviousFile)
{
    const auto folder = std::filesystem::temp_directory_path() / "zelko-fileio-test";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const auto path = folder / "m.zmat";
    std::string error;
    ASSERT_TRUE(saveFileAtomically(path, "first", error)) << error;
    ASSERT_TRUE(saveFileAtomically(path, "second", error)) << error;
    EXPECT_EQ(*readFileBytes(path, error), "second");
    // A save into a folder that doesn't exist fails and leaves nothing behind.
    EXPECT_FALSE(saveFileAtomically(folder / "missing" / "m.zmat", "x", error));
    EXPECT_FALSE(error.empty());
    // A save over a folder fails; the folder stays.
    std::filesystem::create_directories(folder / "taken");
    EXPECT_FALSE(saveFileAtomically(folder / "taken", "x", error));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "taken"));
    EXPECT_EQ(test::namesIn(folder), (std::vector<std::string>{"m.zmat", "taken"}));
    EXPECT_FALSE(readFileBytes(folder / "nothing", error).has_value());
    EXPECT_FALSE(readFileBytes(path, error, 3).has_value());  // over the size limit
    std::filesystem::remove_all(folder);
}

#if !defined(_WIN32)
// The process may write no file beyond a limit, like a disk that fills up in the
// middle of a save: a write past it fails (instead of raising SIGXFSZ).
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : previousHandler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &previous_);
        rlimit limited = previous_;
        limited.rlim_cur = std::min(bytes, previous_.rlim_max);
        applied_ = setrlimit(RLIMIT_FSIZE, &limited) == 0;
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &previous_);
        std::signal(SIGXFSZ, previousHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    bool applied() const { return applied_; }

private:
    void (*previousHandler_)(int);
    rlimit previous_{};
    bool applied_ = false;
};

TEST(FileIo, ASaveThatFailsHalfwayLeavesThePreviousFileAndNoTemporary)
{
    const fs::path folder = fs::temp_directory_path() / "zelko-fileio-halfway";
    fs::remove_all(folder);
    fs::create_directories(folder);
    const fs::path path = folder / "m.zmat";
    const std::string previous("\xFF\xFEp\0r\0e\0v\0\r\0\n\0", 14);  // a UTF-16 file, NULs and all
    std::string error;
    ASSERT_TRUE(saveFileAtomically(path, previous, error)) << error;

    const std::string larger(256 * 1024, 'n');
    bool saved = true;
    {
        const FileSizeLimit limit(4096);
        ASSERT_TRUE(limit.applied());
        saved = saveFileAtomically(path, larger, error);
    }
    EXPECT_FALSE(saved);
    EXPECT_EQ(error, "cannot write the file (disk full?)");
    const auto kept = readFileBytes(path, error);
    ASSERT_TRUE(kept.has_value()) << error;
    EXPECT_TRUE(test::sameBytes(*kept, previous));
    EXPECT_EQ(test::namesIn(folder), std::vector<std::string>{"m.zmat"});

    // With room again the same save goes through whole.
    ASSERT_TRUE(saveFileAtomically(path, larger, error)) << error;
    EXPECT_TRUE(test::sameBytes(*readFileBytes(path, error), larger));
    EXPECT_EQ(test::namesIn(folder), std::vector<std::string>{"m.zmat"});
    fs::remove_all(folder);
}

TEST(FileIo, AStreamedOutputThatFailsHalfwayIsWithdrawn)
{
    const fs::path folder = fs::temp_directory_path() / "zelko-fileio-stream";
    fs::remove_all(folder);
    fs::create_directories(folder);
    const fs::path path = folder / "m.zmat";
    std::string error;
    ASSERT_TRUE(saveFileAtomically(path, "previous", error)) << error;
    const std::string piece(64 * 1024, 's');
    const auto stream = [&](PendingOutputs& outputs) {
        if (!outputs.beginStream(path, error))
            return false;
        for (int i = 0; i < 4; ++i)
            outputs.write(piece);
        return outputs.endStream(error);
    };
    {
        PendingOutputs outputs;
        bool ended = true;
        {
            const FileSizeLimit limit(4096);
            ASSERT_TRUE(limit.applied());
            ended = stream(outputs);
        }
        EXPECT_FALSE(ended);
        EXPECT_EQ(error, "cannot write the file (disk full?)");
        ASSERT_TRUE(outputs.commit(error)) << error;  // nothing is left to put in place
    }
    EXPECT_EQ(*readFileBytes(path, error), "previous");
    EXPECT_EQ(test::namesIn(folder), std::vector<std::string>{"m.zmat"});

    PendingOutputs outputs;
    ASSERT_TRUE(stream(outputs)) << error;
    ASSERT_TRUE(outputs.commit(error)) << error;
    EXPECT_EQ(readFileBytes(path, error)->size(), 4 * piece.size());
    EXPECT_EQ(test::namesIn(folder), std::vector<std::string>{"m.zmat"});
    fs::remove_all(folder);
}

// The reader may only use memory for what it keeps: this much beyond what the
// process already has, far below the file's size.
constexpr rlim_t kReadHeadroomBytes = 96u * 1024u * 1024u;

rlim_t addressSpaceInUse()
{
    std::ifstream statm("/proc/self/statm");
    rlim_t pages = 0;
    statm >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void readUnderAMemoryLimit(const fs::path& path)
{
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = std::min(addressSpaceInUse() + kReadHeadroomBytes, limit.rlim_max);
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        std::_Exit(2);
    std::string error;
    const auto bytes = readFileBytes(path, error);
    std::_Exit(!bytes && error == "file too large" ? 0 : 1);
}

TEST(FileIo, AFileOverTheLimitIsRefusedBeforeItIsRead)
{
    // A 300 MB file picked by mistake; sparse, so it costs no disk.
    const fs::path folder = fs::temp_directory_path() / ("zelko-fileio-large-" + std::to_string(::getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);
    const fs::path path = folder / "huge.zmat";
    std::ofstream(path).put('x');
    fs::resize_file(path, 300u * 1024u * 1024u);
    EXPECT_EXIT(readUnderAMemoryLimit(path), ::testing::ExitedWithCode(0), "");
    fs::remove_all(folder);
}

#if defined(__linux__)
TEST(FileIo, TheLimitHoldsForFilesThatReportNoSize)
{
    // /proc files say they are empty and are not.
    std::string error;
    ASSERT_EQ(fs::file_size("/proc/self/status"), 0u);
    EXPECT_FALSE(readFileBytes("/proc/self/status", error, 100).has_value());
    EXPECT_EQ(error, "file too large");
    const auto whole = readFileBytes("/proc/self/status", error);
    ASSERT_TRUE(whole.has_value()) << error;
    EXPECT_GT(whole->size(), 100u);
}
#endif
#endif

}  // namespace
}  // namespace zelko
