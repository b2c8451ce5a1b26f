#pragma once
// Runs the built zelko-mat-cli and inspects what it printed and left behind.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <json/json.h>

namespace zelko::clitest {

namespace fs = std::filesystem;

struct CliResult {
    int status = -1;  // -1: killed by a signal
    std::string out;
    std::string err;
};

// A fresh folder per test, removed afterwards.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    fs::path file(std::string_view name) const { return path_ / name; }
    // Files other than the ones named: leftovers of a failed save.
    std::vector<std::string> filesBesides(const std::vector<std::string>& expected) const;

private:
    fs::path path_;
};

CliResult runCli(const std::vector<std::string>& args);
// With standard output sent to the file given (e.g. /dev/full, a disk that is full); out stays empty.
CliResult runCli(const std::vector<std::string>& args, const fs::path& standardOutput);
fs::path dataFile(std::string_view relative);  // under tests/data/cli
std::string readBytes(const fs::path& path);
void writeBytes(const fs::path& path, std::string_view bytes);
Json::Value parseJson(const std::string& text);

// Whole buffers; on a difference, its first offset.
::testing::AssertionResult sameBytes(std::string_view expected, std::string_view actual);
// Numbers compare by value, so 20 and 20.0 are the same; the first difference is named by its path.
::testing::AssertionResult sameJson(const Json::Value& expected, const Json::Value& actual);
// Exit 1, nothing on standard output, one line "error: ..." that mentions the given text.
::testing::AssertionResult isOneErrorLine(const CliResult& result, std::string_view mention);

}  // namespace zelko::clitest
