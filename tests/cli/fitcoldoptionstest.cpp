// fit-cold as an engineer uses it: laws compared, the start at yield, columns by
// their header names, the fit to look at and to read by a script.

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kTensile1045 = (fs::path(ZELKO_CLI_TEST_DATA) / ".." / "measured" / "tensile-steel-1045.csv").string();
const std::string kTensile4130 = (fs::path(ZELKO_CLI_TEST_DATA) / ".." / "measured" / "tensile-steel-4130.csv").string();

class FitColdOptions : public ::testing::Test {
protected:
    void SetUp() override
    {
        // The Swift fit and gnuplot leave files in the exchange folder: this test's own.
        setenv("ZELKO_TEMP", scratch.file("exchange").c_str(), 1);
        const CliResult made = runCli({"new", "-o", material(), "--elastic", "steel", "--thermal", "steel"});
        ASSERT_EQ(made.status, 0) << made.err;
    }
    void TearDown() override { unsetenv("ZELKO_TEMP"); }
    std::string material() const { return scratch.file("steel.zmat").string(); }
    std::string out() const { return scratch.file("out.zmat").string(); }
    // The 1045 test as load and displacement; more options after it.
    std::vector<std::string> fit(const std::string& law, std::vector<std::string> more = {},
                                 const std::string& curve = kTensile1045) const
    {
        std::vector<std::string> args = {"fit-cold", material(), "--curve", curve, "--input", "load", "--diameter",
                                         "10", "--gauge-length", "75", "--law", law, "-o", out()};
        args.insert(args.end(), more.begin(), more.end());
        return args;
    }

    ScratchFolder scratch;
};

TEST_F(FitColdOptions, HollomonNeckingConstraintWithoutItsPointIsAnError)
{
    // From row 220 the rebuilt true curve no longer reaches the necking row the closed form reads.
    EXPECT_TRUE(isOneErrorLine(runCli(fit("hollomon", {"--start", "220", "--necking-constraint"})), "necking row 416"));
    EXPECT_FALSE(fs::exists(out()));
    const CliResult whole = runCli(fit("hollomon", {"--start", "0", "--necking-constraint"}));
    ASSERT_EQ(whole.status, 0) << whole.err;
    EXPECT_EQ(whole.out.find("K =       0.0000E+00"), std::string::npos);
}

// The values printed after "NAME =" in a law's result text.
double printedValue(const std::string& text, const std::string& name)
{
    const auto at = text.find(name + " = ");
    return at == std::string::npos ? -1.0 : std::stod(text.substr(at + name.size() + 3));
}

TEST_F(FitColdOptions, LawAllRanksEveryLawAndStoresTheBestWithABlock)
{
    const std::string library = scratch.file("out.z3dlib").string();
    const CliResult all = runCli(fit("all", {"--polish", "--export", library}));
    ASSERT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(all.out.rfind("rank law", 0), 0u);
    for (const char* law : {"swift", "hollomon", "ludwik", "kim-tuan", "hockett-sherby", "voce", "el-magd",
                            "voyiadjis-abed"})
        EXPECT_NE(all.out.find(std::string(" ") + law + " "), std::string::npos) << law;

    // The same as JSON: ranked by RMSE, and the stored law the first of them with a block.
    const Json::Value json = parseJson(runCli(fit("all", {"--polish", "--json"})).out);
    ASSERT_EQ(json["laws"].size(), 8u);
    std::string best;
    for (Json::ArrayIndex i = 0; i < json["laws"].size(); ++i) {
        const Json::Value& law = json["laws"][i];
        if (i > 0) {
            EXPECT_LE(json["laws"][i - 1]["rmse"].asDouble(), law["rmse"].asDouble());
        }
        EXPECT_EQ(law["stressAtStrain"].size(), 3u);
        EXPECT_EQ(law["stopReason"].asString(), "converged") << law["law"].asString();
        EXPECT_EQ(law["units"].size(), law["parameters"].size());
        if (best.empty() && law["libraryBlock"].asBool())
            best = law["law"].asString();
    }
    EXPECT_EQ(json["stored"].asString(), best);
    EXPECT_NE(all.out.find("stored: " + best + " (the best law with a library block)"), std::string::npos);
    const Json::Value info = parseJson(runCli({"info", out()}).out);
    EXPECT_EQ(info["model"]["kind"].asInt(), 0);

    // --choose names the stored law, in any case; a law without a block warns on export.
    const CliResult chosen = runCli(fit("all", {"--choose", "Ludwik", "--export", library}));
    ASSERT_EQ(chosen.status, 0) << chosen.err;
    EXPECT_NE(chosen.out.find("stored: ludwik\n"), std::string::npos);
    EXPECT_NE(readBytes(library).find("*ZelkoLibrary/Material/Cold/4\r\n"), std::string::npos);
    EXPECT_TRUE(isOneErrorLine(runCli(fit("swift", {"--choose", "ludwik"})), "--law all"));
    EXPECT_TRUE(isOneErrorLine(runCli(fit("all", {"--choose", "cubic"})), "--choose"));
}

TEST_F(FitColdOptions, ALawWithoutOutputIsRefusedAndNamesAreCaseFree)
{
    std::vector<std::string> args = fit("SWIFT");
    const CliResult upper = runCli(args);
    ASSERT_EQ(upper.status, 0) << upper.err;
    EXPECT_EQ(upper.out.rfind("Y0 = ", 0), 0u);
    args.erase(args.end() - 2, args.end());  // no -o
    EXPECT_TRUE(isOneErrorLine(runCli(args), "missing option '-o'"));
    // Comparing alone writes nothing.
    const CliResult compared = runCli({"fit-cold", material(), "--curve", kTensile4130, "--input", "load",
                                       "--diameter", "10", "--gauge-length", "75", "--law", "All"});
    EXPECT_EQ(compared.status, 0) << compared.err;
    EXPECT_EQ(compared.out.find("stored:"), std::string::npos);
}

TEST_F(FitColdOptions, StartsAtTheYieldPointAndPrintsTheRowsItUsed)
{
    const CliResult fitted = runCli(fit("swift", {"--json"}));
    ASSERT_EQ(fitted.status, 0) << fitted.err;
    const Json::Value rows = parseJson(fitted.out)["rows"];
    const int start = rows["start"]["row"].asInt();
    EXPECT_EQ(parseJson(runCli({"info", out()}).out)["model"]["startIndex"].asInt(), start);
    // Past the toe and the elastic line, before the maximum force.
    EXPECT_GT(start, 150);
    EXPECT_LT(start, rows["necking"]["row"].asInt());
    EXPECT_EQ(rows["necking"]["row"].asInt(), 416);
    EXPECT_EQ(rows["fracture"]["row"].asInt(), 458);
    EXPECT_EQ(rows["start"]["rule"].asString().rfind("0.2 % offset yield", 0), 0u);

    // "yield" asked by name is the default; the text prints the three rows after the result.
    const CliResult named = runCli(fit("swift", {"--start", "yield"}));
    ASSERT_EQ(named.status, 0) << named.err;
    EXPECT_NE(named.out.find("\n\nstart row " + std::to_string(start) + " (0.2 % offset yield"), std::string::npos);
    EXPECT_NE(named.out.find("\nnecking row 416 (maximum stress): engineering strain 0.0185"), std::string::npos);
    EXPECT_NE(named.out.find("\nfracture row 458 (last row)"), std::string::npos);

    // By strain: the first row that reaches it.
    const Json::Value byStrain = parseJson(runCli(fit("swift", {"--start-strain", "0.01", "--json"})).out)["rows"];
    EXPECT_GE(byStrain["start"]["strain"].asDouble(), 0.01);
    EXPECT_LT(byStrain["start"]["strain"].asDouble(), 0.0101);
    EXPECT_TRUE(isOneErrorLine(runCli(fit("swift", {"--start", "3", "--start-strain", "0.01"})), "give one"));
    EXPECT_TRUE(isOneErrorLine(runCli(fit("swift", {"--start-strain", "0.5"})), "no row reaches strain 0.5"));
    EXPECT_TRUE(isOneErrorLine(runCli(fit("swift", {"--start", "first"})), "or yield"));
}

TEST_F(FitColdOptions, ATrueCurveStartsAtItsFirstRow)
{
    // The measured true curve that --curve-out wrote, read back as true input (its header names it).
    const std::string written = scratch.file("written.csv").string();
    ASSERT_EQ(runCli(fit("swift", {"--curve-out", written})).status, 0);
    std::string curve = readBytes(written);
    std::string twoColumns = "true_strain,true_stress_MPa\n";
    for (std::size_t at = curve.find('\n') + 1; at < curve.size();) {
        const std::size_t end = curve.find('\n', at);
        const std::string line = curve.substr(at, end - at);
        twoColumns += line.substr(0, line.rfind(',')) + "\n";
        at = end + 1;
    }
    const fs::path trueCurve = scratch.file("true.csv");
    writeBytes(trueCurve, twoColumns);
    std::vector<std::string> args = fit("swift", {"--json"}, trueCurve.string());
    args[5] = "true";
    const CliResult fitted = runCli(args);
    ASSERT_EQ(fitted.status, 0) << fitted.err;
    const Json::Value rows = parseJson(fitted.out)["rows"];
    EXPECT_EQ(rows["start"]["row"].asInt(), 0);
    EXPECT_EQ(rows["start"]["rule"].asString(), "first row");
    EXPECT_EQ(rows["start"]["strain"].asDouble(), 0.0);
}

TEST_F(FitColdOptions, ColumnsFollowTheirHeaderNames)
{
    // The 1045 test with force first and in kN: the same law as from the file as measured.
    std::ifstream in(kTensile1045);
    std::string line, swapped = "force_kN;displacement_mm\n";
    std::getline(in, line);
    while (std::getline(in, line)) {
        const auto comma = line.find(',');
        swapped += std::to_string(std::stod(line.substr(comma + 1)) / 1000.0) + ";" + line.substr(0, comma) + "\n";
    }
    const fs::path curve = scratch.file("swapped.csv");
    writeBytes(curve, swapped);
    const CliResult measured = runCli(fit("hollomon"));
    const CliResult reordered = runCli(fit("hollomon", {}, curve.string()));
    ASSERT_EQ(reordered.status, 0) << reordered.err;
    EXPECT_NEAR(printedValue(reordered.out, "K"), printedValue(measured.out, "K"), 1e-3 * printedValue(measured.out, "K"));
    EXPECT_NEAR(printedValue(reordered.out, "n"), printedValue(measured.out, "n"), 1e-3);

    // A header that says something else than the options is refused.
    fs::remove(out());
    EXPECT_TRUE(isOneErrorLine(runCli(fit("hollomon", {"--force-unit", "N"}, curve.string())), "another unit"));
    writeBytes(curve, "strain,stress_MPa\n0.001,200\n0.002,400\n0.003,450\n");
    EXPECT_TRUE(isOneErrorLine(runCli(fit("hollomon", {}, curve.string())), "but --input is load"));
    EXPECT_FALSE(fs::exists(out()));
}

TEST_F(FitColdOptions, CurvesAndPictureAreWrittenBesideTheMaterial)
{
    const std::string csv = scratch.file("curves.csv").string(), png = scratch.file("fit.png").string();
    const CliResult fitted = runCli(fit("voce", {"--curve-out", csv, "--png", png, "--json"}));
    ASSERT_EQ(fitted.status, 0) << fitted.err;
    const Json::Value json = parseJson(fitted.out);
    EXPECT_EQ(json["files"]["curves"].asString(), csv);
    EXPECT_EQ(json["files"]["png"].asString(), png);
    EXPECT_EQ(json["files"]["material"].asString(), out());
    const std::string curves = readBytes(csv);
    EXPECT_EQ(curves.rfind("true_strain,measured_stress_MPa,voce_MPa\n", 0), 0u);
    // One line per fitted point, from the start row to the necking row.
    const int rows = json["rows"]["necking"]["row"].asInt() - json["rows"]["start"]["row"].asInt() + 1;
    EXPECT_EQ(std::count(curves.begin(), curves.end(), '\n'), rows + 1);
    EXPECT_EQ(readBytes(png).substr(0, 8), std::string("\x89PNG\r\n\x1A\n"));

    // Without gnuplot nothing is written, not even the material.
    const std::string again = scratch.file("again.zmat").string();
    setenv("ZELKO_GNUPLOT", scratch.file("no-gnuplot").c_str(), 1);
    std::vector<std::string> args = fit("voce", {"--png", scratch.file("none.png").string()});
    args[13] = again;
    EXPECT_TRUE(isOneErrorLine(runCli(args), "gnuplot"));
    unsetenv("ZELKO_GNUPLOT");
    EXPECT_FALSE(fs::exists(again));
    EXPECT_FALSE(fs::exists(scratch.file("none.png")));
    EXPECT_TRUE(isOneErrorLine(runCli(fit("voce", {"--curve-out", out()})), "name the same file"));
}

TEST_F(FitColdOptions, JsonHoldsTheParametersOfTheText)
{
    const CliResult text = runCli(fit("ludwik"));
    const CliResult json = runCli(fit("ludwik", {"--json"}));
    ASSERT_EQ(json.status, 0) << json.err;
    const Json::Value law = parseJson(json.out);
    EXPECT_EQ(law["law"].asString(), "ludwik");
    EXPECT_EQ(law["model"].asInt(), 4);
    EXPECT_EQ(law["units"]["K"].asString(), "MPa");
    EXPECT_EQ(law["units"]["n"].asString(), "-");
    EXPECT_NEAR(law["parameters"]["K"].asDouble(), printedValue(text.out, "K"), 1e-4 * printedValue(text.out, "K"));
    EXPECT_NEAR(law["lawError"].asDouble(), printedValue(text.out, "Error"), 1e-4 * printedValue(text.out, "Error"));
    EXPECT_EQ(law["text"].asString() + "\n", text.out.substr(0, text.out.find("\n\nstart row") + 1));
    EXPECT_TRUE(law["libraryBlock"].asBool());
}

}  // namespace
}  // namespace zelko::clitest
