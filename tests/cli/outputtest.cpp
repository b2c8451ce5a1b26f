// What the commands leave on disk when something goes wrong on the way out: every
// output of a command is put in place at its end, or none is.

#include <cstdlib>

#include <sys/stat.h>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kTensile1045 = (fs::path(ZELKO_CLI_TEST_DATA) / ".." / "measured" / "tensile-steel-1045.csv").string();
const std::string kHotMaterial = dataFile("hot-model/material.zmat").string();
const std::vector<std::string> kComposition = {"--C", "0.2", "--Mn", "1", "--Si", "0.3", "--P", "0.01", "--S", "0.01"};

std::string infoTitle(const fs::path& material)
{
    return parseJson(runCli({"info", material.string()}).out)["title"].asString();
}

class Outputs : public ::testing::Test {
protected:
    void SetUp() override
    {
        const CliResult made = runCli({"new", "-o", material(), "--elastic", "steel", "--thermal", "steel"});
        ASSERT_EQ(made.status, 0) << made.err;
        writeBytes(scratch.file("out.zmat"), "previous material");
    }
    std::string material() const { return scratch.file("steel.zmat").string(); }
    std::string out() const { return scratch.file("out.zmat").string(); }
    std::vector<std::string> fitCold(const std::string& output, const std::string& library) const
    {
        return {"fit-cold", material(), "--curve", kTensile1045, "--input", "load", "--diameter", "10",
                "--gauge-length", "75", "--law", "swift", "--start", "220", "-o", output, "--export", library};
    }
    // The previous -o as it was, and nothing else written.
    void expectUntouched(const std::vector<std::string>& others = {}) const
    {
        EXPECT_EQ(readBytes(out()), "previous material");
        std::vector<std::string> expected = {"steel.zmat", "out.zmat"};
        expected.insert(expected.end(), others.begin(), others.end());
        EXPECT_EQ(scratch.filesBesides(expected), std::vector<std::string>{});
    }

    ScratchFolder scratch;
};

TEST_F(Outputs, AnExportThatFailsKeepsThePreviousMaterial)
{
    // --export into a folder that was never made, after a fit that went well.
    const std::string library = scratch.file("missing/out.z3dlib").string();
    EXPECT_TRUE(isOneErrorLine(runCli(fitCold(out(), library)), library + ": cannot create a file in that folder"));
    expectUntouched();

    // A folder where the entry should go.
    fs::create_directories(scratch.file("taken.z3dlib"));
    const std::string taken = scratch.file("taken.z3dlib").string();
    EXPECT_TRUE(isOneErrorLine(runCli(fitCold(out(), taken)), taken + ": is a folder, not a file"));
    expectUntouched({"taken.z3dlib"});
}

TEST_F(Outputs, StandardOutputThatFailsKeepsThePreviousMaterial)
{
    // The printed rows or fit result go to a full disk: the command fails and writes nothing.
    std::vector<std::string> estimate = {"estimate-modulus"};
    estimate.insert(estimate.end(), kComposition.begin(), kComposition.end());
    estimate.insert(estimate.end(), {material(), "-o", out()});
    const CliResult stored = runCli(estimate, "/dev/full");
    EXPECT_EQ(stored.status, 1);
    EXPECT_EQ(stored.err, "error: cannot write to standard output\n");
    expectUntouched();

    const CliResult fitted = runCli(fitCold(out(), scratch.file("out.z3dlib").string()), "/dev/full");
    EXPECT_EQ(fitted.status, 1);
    EXPECT_EQ(fitted.err, "error: cannot write to standard output\n");
    expectUntouched();

    // With room to print, both are written.
    ASSERT_EQ(runCli(fitCold(out(), scratch.file("out.z3dlib").string())).status, 0);
    EXPECT_NE(readBytes(out()), "previous material");
    EXPECT_TRUE(fs::exists(scratch.file("out.z3dlib")));
}

TEST_F(Outputs, OutputAndExportMayNotNameOneFile)
{
    fs::create_directories(scratch.file("sub"));
    fs::create_symlink("out.zmat", scratch.file("link.zmat"));
    const std::vector<std::string> sameFile = {out(), scratch.file("sub/../out.zmat").string(),
                                               scratch.file("link.zmat").string()};
    for (const std::string& library : sameFile) {
        SCOPED_TRACE(library);
        EXPECT_TRUE(isOneErrorLine(runCli(fitCold(out(), library)), "'-o' and '--export' name the same file"));
        EXPECT_TRUE(isOneErrorLine(
            runCli({"fit-hot", material(), "--curves", "c.csv", "--type", "17", "-o", out(), "--export", library}),
            "'-o' and '--export' name the same file"));
        EXPECT_TRUE(isOneErrorLine(
            runCli({"tensile-result", material(), "--job", "j.tnsprj", "-o", out(), "--export", library}),
            "'-o' and '--export' name the same file"));
        expectUntouched({"sub", "link.zmat"});
    }
    // A file not there yet, named two ways.
    const std::string fresh = scratch.file("fresh.zmat").string();
    EXPECT_TRUE(isOneErrorLine(runCli(fitCold(fresh, scratch.file("sub/../fresh.zmat").string())), "same file"));
    expectUntouched({"sub", "link.zmat"});
}

TEST_F(Outputs, TheOutputIsWrittenWhereItsNamePoints)
{
    // A material kept elsewhere and linked into the working folder, private to its owner.
    fs::create_directories(scratch.file("store"));
    writeBytes(scratch.file("store/kept.zmat"), "previous");
    ASSERT_EQ(::chmod(scratch.file("store/kept.zmat").c_str(), 0600), 0);
    fs::create_symlink("store/kept.zmat", scratch.file("kept.zmat"));
    ASSERT_EQ(runCli({"new", "-o", scratch.file("kept.zmat").string()}).status, 0);
    EXPECT_TRUE(fs::is_symlink(scratch.file("kept.zmat")));
    EXPECT_EQ(fs::status(scratch.file("store/kept.zmat")).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(infoTitle(scratch.file("kept.zmat")), "\n");

    // A named pipe a script reads from is no place for a material.
    ASSERT_EQ(::mkfifo(scratch.file("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(isOneErrorLine(runCli({"new", "-o", scratch.file("pipe").string()}),
                               scratch.file("pipe").string() + ": is not a regular file"));
    EXPECT_TRUE(fs::is_fifo(scratch.file("pipe")));

    // Names as long as the filesystem takes, and one longer.
    const fs::path longest = scratch.file(std::string(249, 'n') + ".zmat");
    ASSERT_EQ(runCli({"new", "-o", longest.string()}).status, 0);
    const fs::path tooLong = scratch.file(std::string(300, 'n') + ".zmat");
    EXPECT_TRUE(isOneErrorLine(runCli({"new", "-o", tooLong.string()}), "the file name is too long"));
    expectUntouched({"store", "kept.zmat", "pipe", longest.filename().string()});
}

TEST_F(Outputs, ExchangeFolderTroubleNamesTheFolder)
{
    // $ZELKO_TEMP set to a file by mistake.
    writeBytes(scratch.file("exchange"), "not a folder");
    setenv("ZELKO_TEMP", scratch.file("exchange").c_str(), 1);
    const CliResult noFolder = runCli({"processing-map", kHotMaterial, "--strain-index", "0", "--contour-step", "5"});
    EXPECT_TRUE(isOneErrorLine(noFolder, "cannot create the folder " + scratch.file("exchange").string()));
    EXPECT_EQ(noFolder.err.find(kHotMaterial), std::string::npos) << noFolder.err;

    // A folder where the map's data file goes.
    fs::remove(scratch.file("exchange"));
    fs::create_directories(scratch.file("exchange/processing_map.dat"));
    const CliResult taken = runCli({"processing-map", kHotMaterial, "--strain-index", "0", "--contour-step", "5"});
    unsetenv("ZELKO_TEMP");
    EXPECT_TRUE(isOneErrorLine(
        taken, scratch.file("exchange/processing_map.dat").string() + ": is a folder, not a file"));
    EXPECT_FALSE(fs::exists(scratch.file("exchange/processing_map.txt")));
}

}  // namespace
}  // namespace zelko::clitest
