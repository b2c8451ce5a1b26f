#include <cstdlib>
#include <fstream>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kTensile1045 = (fs::path(ZELKO_CLI_TEST_DATA) / ".." / "measured" / "tensile-steel-1045.csv").string();

fs::path newMaterial(const ScratchFolder& scratch)
{
    const fs::path material = scratch.file("steel.zmat");
    const CliResult made = runCli({"new", "-o", material.string(), "--elastic", "steel", "--thermal", "steel"});
    EXPECT_EQ(made.status, 0) << made.err;
    return material;
}

std::vector<std::string> fitArgs(const fs::path& material, const fs::path& out, const std::string& law)
{
    return {"fit-cold", material.string(), "--curve", kTensile1045, "--input", "load", "--diameter", "10",
            "--gauge-length", "75", "--law", law, "--start", "220", "-o", out.string()};
}

// The scratch folder's "exchange" as the tool's exchange folder while it lives.
struct ExchangeFolderOf {
    explicit ExchangeFolderOf(const ScratchFolder& scratch) { setenv("ZELKO_TEMP", scratch.file("exchange").c_str(), 1); }
    ~ExchangeFolderOf() { unsetenv("ZELKO_TEMP"); }
};

TEST(FitCold, FitsAMeasuredTestAndStoresTheRecordAndTheLaw)
{
    ScratchFolder scratch;
    // The Swift fit leaves its comparison table in the exchange folder: this test's own.
    const ExchangeFolderOf exchange(scratch);
    const fs::path material = newMaterial(scratch);
    const fs::path out = scratch.file("fitted.zmat"), library = scratch.file("fitted.z3dlib");
    std::vector<std::string> args = fitArgs(material, out, "swift");
    args.insert(args.end(), {"--export", library.string()});
    const CliResult fit = runCli(args);
    ASSERT_EQ(fit.status, 0) << fit.err;
    EXPECT_EQ(fit.out.rfind("Y0 = ", 0), 0u);
    EXPECT_NE(fit.out.find("\nError = "), std::string::npos);
    EXPECT_NE(fit.out.find("\nSlope at necking point = "), std::string::npos);

    const Json::Value info = parseJson(runCli({"info", out.string()}).out);
    EXPECT_EQ(info["model"]["kind"].asInt(), 0);
    EXPECT_EQ(info["model"]["inputKind"].asInt(), 0);
    EXPECT_EQ(info["model"]["points"].asInt(), 459);  // every measured point is kept
    EXPECT_EQ(info["model"]["startIndex"].asInt(), 220);
    const std::string entry = readBytes(library);
    EXPECT_NE(entry.find("*ZelkoLibrary/Material/Cold/1\r\n"), std::string::npos);  // filed under the fitted law
    EXPECT_NE(entry.find("(MPa)\r\n       1\r\n"), std::string::npos);  // the Swift block
    EXPECT_EQ(entry.find("nan"), std::string::npos);
    EXPECT_EQ(readBytes(scratch.file("exchange/ZELKO_MAT_PL1.dat")).substr(0, 4), std::string("\xFF\xFE \0", 4));
}

TEST(FitCold, MethodsOtherThanTheDescentSayHowTheFitStopped)
{
    ScratchFolder scratch;
    const fs::path material = newMaterial(scratch);
    const auto run = [&](std::vector<std::string> more) {
        std::vector<std::string> args = fitArgs(material, scratch.file("o.zmat"), "kim-tuan");
        args.insert(args.end(), more.begin(), more.end());
        return runCli(args);
    };
    const auto errorOf = [](const std::string& out) {
        return std::stod(out.substr(out.find("\nError = ") + 9));
    };
    const CliResult descent = run({});
    const CliResult fitted = run({"--method", "least-squares"});
    const CliResult polished = run({"--polish"});
    for (const CliResult* result : {&descent, &fitted, &polished})
        ASSERT_EQ(result->status, 0) << result->err;
    EXPECT_EQ(descent.out.find("Stop: "), std::string::npos);  // the described text alone
    EXPECT_NE(fitted.out.find("\nStop: converged\n"), std::string::npos);
    EXPECT_NE(polished.out.find("\nStop: "), std::string::npos);
    EXPECT_LT(errorOf(fitted.out), errorOf(descent.out) / 10.0);  // far below where the descent stops
    EXPECT_EQ(run({"--method", "descent+least-squares"}).out, polished.out);

    EXPECT_TRUE(isOneErrorLine(run({"--method", "simplex"}), "'simplex' is not one of"));
    EXPECT_TRUE(isOneErrorLine(run({"--polish", "--method", "least-squares"}), "give one of them"));
}

TEST(FitCold, LawsWithoutALibraryBlockWarnButStillExport)
{
    ScratchFolder scratch;
    const fs::path material = newMaterial(scratch);
    std::vector<std::string> args = fitArgs(material, scratch.file("o.zmat"), "voce");
    args.insert(args.end(), {"--export", scratch.file("o.z3dlib").string()});
    const CliResult fit = runCli(args);
    EXPECT_EQ(fit.status, 0);
    EXPECT_EQ(fit.err.rfind("warning: ", 0), 0u);
    EXPECT_NE(fit.out.find("V3 = "), std::string::npos);
}

TEST(FitCold, BadInputGetsOneErrorLineAndNoFile)
{
    ScratchFolder scratch;
    const fs::path material = newMaterial(scratch);
    const fs::path out = scratch.file("out.zmat");
    const fs::path curve = scratch.file("curve.txt");
    const auto withCurve = [&](const std::string& text, const std::string& mention) {
        std::ofstream(curve) << text;
        std::vector<std::string> args = fitArgs(material, out, "swift");
        args[3] = curve.string();
        args.erase(args.begin() + 12, args.begin() + 14);  // no --start
        EXPECT_TRUE(isOneErrorLine(runCli(args), mention)) << text;
        EXPECT_FALSE(fs::exists(out));
    };
    withCurve("strain,stress\n0.1,100\n0.2,abc\n", "line 3");
    withCurve("0.1 100\n", "fewer than two");
    withCurve("0.1 100\n0.2 nan\n", "line 2");
    withCurve("0.1 100 1 7\n0.2 200\n", "line 1");

    std::vector<std::string> args = fitArgs(material, out, "swift");
    args[7] = "0";  // a specimen without diameter
    EXPECT_TRUE(isOneErrorLine(runCli(args), "diameter"));
    args = fitArgs(material, out, "cubic");
    EXPECT_TRUE(isOneErrorLine(runCli(args), "--law"));
    args = fitArgs(material, out, "swift");
    args[13] = "9999";  // a start beyond the curve
    EXPECT_TRUE(isOneErrorLine(runCli(args), "--start"));
    args = fitArgs(material, out, "swift");
    args.insert(args.end(), {"--necking", "220"});  // start and necking on one point
    EXPECT_TRUE(isOneErrorLine(runCli(args), "two points"));
    EXPECT_FALSE(fs::exists(out));
}

TEST(TensileJob, WritesTheJobAndReadsAResultBack)
{
    ScratchFolder scratch;
    const fs::path material = newMaterial(scratch);
    const fs::path recorded = scratch.file("recorded.zmat");
    ASSERT_EQ(runCli(fitArgs(material, recorded, "hollomon")).status, 0);
    const fs::path job = scratch.file("job/t1045.tnsprj");
    const CliResult written = runCli({"tensile-job", recorded.string(), "--job", job.string()});
    ASSERT_EQ(written.status, 0) << written.err;
    EXPECT_TRUE(fs::exists(scratch.file("job/t1045.tnsscf")));
    EXPECT_EQ(readBytes(scratch.file("job/t1045.bat")).substr(3), "chcp 65001\r\ncall Z2DTS_V24R02.bat < t1045.tnsslf\r\n");

    const fs::path out = scratch.file("simulated.zmat");
    EXPECT_TRUE(isOneErrorLine(runCli({"tensile-result", recorded.string(), "--job", job.string(), "-o", out.string()}),
                               "There is no analysis result file."));
    writeBytes(scratch.file("job/t1045.z2dsrf"), "result");
    writeBytes(scratch.file("job/t1045.tnsspf"),
               " NCSTG IS GREATER THAN NSTG\n a\n b\n c\n p = 1 0.5\n 0\n 2\n 1 0.1 500\n 2 0.2 600\n FINISHED_MAT\n");
    const fs::path library = scratch.file("simulated.z3dlib");
    const CliResult read =
        runCli({"tensile-result", recorded.string(), "--job", job.string(), "-o", out.string(), "--export", library.string()});
    ASSERT_EQ(read.status, 0) << read.err;
    EXPECT_NE(readBytes(library).find("       2\r\n                    1.0000E-01        5.0000E+02\r\n"), std::string::npos);

    EXPECT_TRUE(isOneErrorLine(runCli({"tensile-job", material.string(), "--job", job.string()}), "no tensile record"));

    // A finished run whose curve is empty or not numbers writes nothing.
    const fs::path refused = scratch.file("refused.zmat"), refusedLibrary = scratch.file("refused.z3dlib");
    for (const char* curve : {" 0\n", " 2\n 1 0.1 500\n 2 0.2 inf\n"}) {
        writeBytes(scratch.file("job/t1045.tnsspf"),
                   std::string(" NCSTG IS GREATER THAN NSTG\n a\n b\n c\n p = 1 0.5\n 0\n") + curve + " FINISHED_MAT\n");
        EXPECT_TRUE(isOneErrorLine(runCli({"tensile-result", recorded.string(), "--job", job.string(), "-o",
                                           refused.string(), "--export", refusedLibrary.string()}),
                                   "no usable flow curve"));
        EXPECT_FALSE(fs::exists(refused));
        EXPECT_FALSE(fs::exists(refusedLibrary));
    }
}

}  // namespace
}  // namespace zelko::clitest
