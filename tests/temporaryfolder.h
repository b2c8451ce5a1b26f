#pragma once
// A folder of its own for each test that writes files, handed to the code as its
// exchange folder: no test shares $ZELKO_TEMP or its default with another, and the
// process's environment is never read or changed.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

#include <unistd.h>

#include "base/environment.h"

namespace zelko::test {

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        static std::atomic<int> made{0};
        // The process id keeps builds that run the same test at once apart.
        path_ = std::filesystem::temp_directory_path()
                / ("zelko-test-" + std::to_string(::getpid()) + "-" + std::to_string(made++));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    // An environment whose exchange folder is this one (gnuplot and PATH as installed).
    Environment environment() const
    {
        Environment environment;
        environment.exchangeFolder = path_;
        return environment;
    }

private:
    std::filesystem::path path_;
};

// The same as a fixture, for code that must make the folder itself: folder_ is
// named for each test but not made; environment_ points at it.
class TemporaryFolderTest : public ::testing::Test {
protected:
    void SetUp() override { std::filesystem::remove_all(folder_); }

    TemporaryFolder temporary_;
    const std::filesystem::path& folder_ = temporary_.path();
    Environment environment_ = temporary_.environment();
};

}  // namespace zelko::test
