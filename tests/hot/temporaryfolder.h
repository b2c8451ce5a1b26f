#pragma once
// A fresh folder for each test, handed to the code as its exchange folder; the
// process's environment is never read or changed. gnuplot as installed.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <unistd.h>

#include "base/environment.h"

namespace zelko::test {

class TemporaryFolderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        // The process id keeps builds that run the same test at once apart.
        folder_ = std::filesystem::temp_directory_path()
                  / ("zelko-hot-" + std::string(info->test_suite_name()) + "-" + info->name() + "-"
                     + std::to_string(getpid()));
        std::filesystem::remove_all(folder_);
        environment_.exchangeFolder = folder_;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path folder_;
    Environment environment_;
};

}  // namespace zelko::test
