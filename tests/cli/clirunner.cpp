#include "clirunner.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace zelko::clitest {

namespace {

std::string shellQuoted(std::string_view arg)
{
    std::string out = "'";
    for (const char c : arg)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

int exitStatus(int raw)
{
#ifdef _WIN32
    return raw;
#else
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
#endif
}

::testing::AssertionResult compareJson(const Json::Value& expected, const Json::Value& actual, const std::string& path)
{
    const auto differ = [&](const std::string& what) {
        return ::testing::AssertionFailure() << (path.empty() ? "root" : path) << ": " << what;
    };
    const auto unequal
        = [&] { return differ("expected " + expected.toStyledString() + " got " + actual.toStyledString()); };
    if (expected.isNumeric() && actual.isNumeric())
        return expected.asDouble() == actual.asDouble() ? ::testing::AssertionSuccess() : unequal();
    if (expected.type() != actual.type())
        return unequal();
    if (expected.isArray()) {
        if (expected.size() != actual.size())
            return unequal();
        for (Json::ArrayIndex i = 0; i < expected.size(); ++i)
            if (auto r = compareJson(expected[i], actual[i], path + "[" + std::to_string(i) + "]"); !r)
                return r;
        return ::testing::AssertionSuccess();
    }
    if (expected.isObject()) {
        if (expected.getMemberNames() != actual.getMemberNames())
            return unequal();
        for (const std::string& name : expected.getMemberNames())
            if (auto r = compareJson(expected[name], actual[name], path + "." + name); !r)
                return r;
        return ::testing::AssertionSuccess();
    }
    return expected == actual ? ::testing::AssertionSuccess() : unequal();
}

// Several builds may run the same test at once, so a random part keeps their files apart.
fs::path uniqueTempPath(std::string_view kind)
{
    static const std::string run = std::to_string(std::random_device {}());
    static unsigned counter = 0;
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "-" + test->name();
    std::replace(name.begin(), name.end(), '/', '-');
    return fs::temp_directory_path()
        / ("zelko-cli-" + name + "-" + run + "-" + std::string(kind) + std::to_string(counter++));
}

}  // namespace

ScratchFolder::ScratchFolder()
    : path_(uniqueTempPath("folder"))
{
    fs::remove_all(path_);
    fs::create_directories(path_);
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::vector<std::string> ScratchFolder::filesBesides(const std::vector<std::string>& expected) const
{
    std::vector<std::string> others;
    for (const auto& entry : fs::directory_iterator(path_)) {
        const std::string name = entry.path().filename().string();
        if (std::find(expected.begin(), expected.end(), name) == expected.end())
            others.push_back(name);
    }
    return others;
}

CliResult runCli(const std::vector<std::string>& args)
{
    return runCli(args, {});
}

CliResult runCli(const std::vector<std::string>& args, const fs::path& standardOutput)
{
    // Captured outside the test's folder, which must hold only what the tool wrote.
    const fs::path capture = uniqueTempPath("capture");
    std::string command = shellQuoted(ZELKO_CLI_PATH);
    for (const std::string& arg : args)
        command += " " + shellQuoted(arg);
    const std::string out = standardOutput.empty() ? capture.string() + ".out" : standardOutput.string();
    command += " >" + shellQuoted(out) + " 2>" + shellQuoted(capture.string() + ".err");
    CliResult result;
    result.status = exitStatus(std::system(command.c_str()));
    result.out = readBytes(capture.string() + ".out");
    result.err = readBytes(capture.string() + ".err");
    fs::remove(capture.string() + ".out");
    fs::remove(capture.string() + ".err");
    return result;
}

fs::path dataFile(std::string_view relative)
{
    return fs::path(ZELKO_CLI_TEST_DATA) / relative;
}

std::string readBytes(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void writeBytes(const fs::path& path, std::string_view bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

Json::Value parseJson(const std::string& text)
{
    Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, &errors)) << errors << text;
    return value;
}

::testing::AssertionResult sameBytes(std::string_view expected, std::string_view actual)
{
    const auto [e, a] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    if (e == expected.end() && a == actual.end())
        return ::testing::AssertionSuccess();
    const auto offset = static_cast<std::size_t>(e - expected.begin());
    auto failure = ::testing::AssertionFailure() << "first difference at byte offset " << offset << " (expected "
                                                 << expected.size() << " bytes, got " << actual.size() << ")";
    if (e != expected.end() && a != actual.end())
        failure << ": expected 0x" << std::hex << (static_cast<unsigned>(*e) & 0xFF) << ", got 0x"
                << (static_cast<unsigned>(*a) & 0xFF);
    return failure;
}

::testing::AssertionResult sameJson(const Json::Value& expected, const Json::Value& actual)
{
    return compareJson(expected, actual, {});
}

::testing::AssertionResult isOneErrorLine(const CliResult& result, std::string_view mention)
{
    const bool oneLine = std::count(result.err.begin(), result.err.end(), '\n') == 1 && result.err.ends_with('\n');
    if (result.status == 1 && result.out.empty() && oneLine && result.err.starts_with("error: ")
        && result.err.find(mention) != std::string::npos)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "status " << result.status << ", stdout [" << result.out << "], stderr ["
                                         << result.err << "], wanted one error line naming \"" << mention << "\"";
}

}  // namespace zelko::clitest
