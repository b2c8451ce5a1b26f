#pragma once
// A fresh exchange folder ($ZELKO_TEMP) for each test; gnuplot as installed.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace zelko::test {

class ExchangeFolderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        // The process id keeps builds that run the same test at once apart.
        folder_ = std::filesystem::temp_directory_path()
                  / ("zelko-hot-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + "-"
                     + std::to_string(getpid()));
        std::filesystem::remove_all(folder_);
        setenv("ZELKO_TEMP", folder_.c_str(), 1);
    }
    void TearDown() override
    {
        unsetenv("ZELKO_TEMP");
        unsetenv("ZELKO_GNUPLOT");
        std::filesystem::remove_all(folder_);
    }
    std::filesystem::path folder_;
};

}  // namespace zelko::test
