// zelko-mat-cli's hot commands, run as the user runs them. The golden folder
// tests/data/hot-cli/type16 holds a material, and the library entry and report
// that fit-hot makes of it with the measured Gleeble series (its K and n checked
// against an independent least-squares fit of ln σ on ln ε).

#include <cstdlib>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kMeasured = ZELKO_MEASURED_DATA "/hot-compression-medium-carbon-steel.csv";

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> out;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
        out.push_back(text.substr(start, end - start));
    return out;
}

class HotCli : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("ZELKO_TEMP", scratch.file("exchange").c_str(), 1);
        const CliResult made = runCli({"new", "-o", material(), "--elastic", "steel", "--thermal", "steel"});
        ASSERT_EQ(made.status, 0) << made.err;
    }
    void TearDown() override
    {
        unsetenv("ZELKO_TEMP");
        unsetenv("ZELKO_GNUPLOT");
    }
    std::string material() const { return scratch.file("m.zmat").string(); }
    std::string file(std::string_view name) const { return scratch.file(name).string(); }
    std::string curves(std::string_view text) const
    {
        writeBytes(scratch.file("curves.csv"), text);
        return file("curves.csv");
    }
    CliResult fit(const std::string& curvesPath, std::string_view type, std::vector<std::string> more = {}) const
    {
        std::vector<std::string> args = {"fit-hot", material(), "--curves", curvesPath, "--type", std::string(type),
                                         "-o", file("out.zmat")};
        args.insert(args.end(), more.begin(), more.end());
        return runCli(args);
    }
    ScratchFolder scratch;
};

TEST_F(HotCli, HenselSpittelOnTheMeasuredSeries)
{
    const CliResult result = fit(kMeasured, "17", {"--export", file("lib.z3dlib")});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto report = lines(result.out);
    ASSERT_EQ(report.size(), 11u);
    EXPECT_TRUE(report[0].starts_with(" AARE = ") && report[0].ends_with(" %"));
    EXPECT_TRUE(report[10].starts_with(" m9 = "));

    const Json::Value info = parseJson(runCli({"info", file("out.zmat")}).out);
    EXPECT_EQ(info["model"]["kind"].asInt(), 1);
    EXPECT_EQ(info["model"]["number"].asInt(), 17);
    EXPECT_EQ(info["model"]["temperatures"].size(), 5u);
    EXPECT_EQ(info["model"]["strains"].size(), 14u);
    EXPECT_EQ(info["model"]["strains"][13].asDouble(), 0.7);

    const std::string library = readBytes(scratch.file("lib.z3dlib"));
    EXPECT_NE(library.find("*ZelkoLibrary/Material/Hot/17\r\n\r\n"), std::string::npos);
    const auto block = library.substr(library.find("      17\r\n"));
    const auto parameters = lines(block).at(3);
    EXPECT_EQ(parameters.size(), 24u + 8 * 16u + 1);  // nine values and the "\r"
}

TEST_F(HotCli, HenselSpittelByLeastSquaresSaysHowItStopped)
{
    const auto aareOf = [](const std::string& line) { return std::stod(line.substr(line.find('=') + 1)); };
    const CliResult descent = fit(kMeasured, "17");
    const CliResult stress = fit(kMeasured, "17", {"--method", "least-squares"});
    const CliResult logarithm = fit(kMeasured, "17", {"--method=least-squares", "--objective", "relative"});
    for (const CliResult* result : {&descent, &stress, &logarithm})
        ASSERT_EQ(result->status, 0) << result->err;
    const auto stressReport = lines(stress.out);
    ASSERT_GE(stressReport.size(), 12u);
    EXPECT_EQ(stressReport[11], " stop: converged at a bound");
    EXPECT_TRUE(stressReport.back().starts_with(" at a bound: "));
    // The fit for AARE gives the lowest AARE; both beat the descent.
    const double byDescent = aareOf(lines(descent.out)[0]);
    const double byStress = aareOf(stressReport[0]);
    const double byLogarithm = aareOf(lines(logarithm.out)[0]);
    EXPECT_LT(byLogarithm, byStress);
    EXPECT_LT(byStress, byDescent);
}

TEST_F(HotCli, MethodAndObjectiveRefuseWhatTheyCannotDo)
{
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "17", {"--method", "newton"}), "'newton' is not one of"));
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "17", {"--objective", "squared"}), "neither absolute nor relative"));
    // The descent fits the stress error alone.
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "17", {"--objective", "relative"}), "relative needs --method"));
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "164", {"--method", "least-squares"}), "the choice is for type 17"));
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "17", {"--weighting", "by-rate"}), "neither equal nor balanced"));
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "17", {"--target-percent", "100"}), "from 0 up to 100"));
    EXPECT_TRUE(isOneErrorLine(fit(kMeasured, "17", {"--target-percent", "half"}), "--target-percent"));
    EXPECT_FALSE(fs::exists(scratch.file("out.zmat")));
}

TEST_F(HotCli, BalancedRatesAndATargetReachTheFit)
{
    // Balanced least squares is the screen's best for AARE short of ln σ; a target ends the descent early.
    const CliResult balanced = fit(kMeasured, "17", {"--method", "least-squares", "--weighting", "balanced"});
    const CliResult equal = fit(kMeasured, "17", {"--method", "least-squares"});
    ASSERT_EQ(balanced.status, 0) << balanced.err;
    EXPECT_LT(std::stod(lines(balanced.out)[0].substr(8)), std::stod(lines(equal.out)[0].substr(8)));
    const CliResult early = fit(kMeasured, "17", {"--target-percent", "50"});
    ASSERT_EQ(early.status, 0) << early.err;
    EXPECT_NE(early.err.find("error below the target share of the start's"), std::string::npos) << early.err;
}

TEST_F(HotCli, PowerLawTypeMatchesItsGoldenFiles)
{
    const fs::path golden = dataFile("type16");
    const CliResult result = runCli({"fit-hot", (golden / "material.zmat").string(), "--curves", kMeasured, "--type",
                                     "16", "--strains", "0.1,0.3,0.5", "-o", file("out.zmat"), "--export",
                                     file("lib.z3dlib")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(sameBytes(readBytes(golden / "report.txt"), result.out));
    EXPECT_TRUE(sameBytes(readBytes(golden / "library.z3dlib"), readBytes(scratch.file("lib.z3dlib"))));
}

TEST_F(HotCli, BadInputIsOneErrorLineAndNoFile)
{
    const std::string good = "1000,0.1,0.1,100\n1000,1,0.1,130\n1000,0.1,0.2,110\n1000,1,0.2,140\n";
    const struct {
        std::string csv;
        std::vector<std::string> options;
        std::string mention;
    } cases[] = {
        {good, {"--type", "162"}, "162 model is not supported"},
        {good, {"--type", "99"}, "option '--type': '99'"},
        {"t,r,e,s\n1000,0.1,0.1,100\n1000,0.1,x,100\n", {}, "curves.csv: line 3: the strain 'x' is not a number"},
        {"1000,0.1,0.1,NaN\n", {}, "curves.csv: line 1: the stress 'NaN' is not a finite number"},
        {"1000,0.1,0.1,100\n1100,0.1,0.1,90\n", {}, "The strain-rate group need at least two number of items"},
        {good, {"--strains", "0.1,0.2,0.3,0.4,0.5,0.6,0.7,0.8,0.9,1,1.1,1.2,1.3,1.4,1.5,1.6"},
         "The maximum number of strain is 15."},
        {good, {"--strains", "0.1,zero"}, "option '--strains': 'zero' is not a number"},
        {good, {"--strain-measure", "log"}, "option '--strain-measure'"},
        {good, {"--strain-offset", "-0.1"}, "option '--strain-offset'"},
        {good, {"--max-iter", "0"}, "option '--max-iter'"},
        {good + "1100,0.1,0.1,90\n", {"--type", "161"}, "no curve for temperature 1100 and strain rate 1"},
        {"1000,0.1,0.1,-100\n1000,1,0.1,0\n", {"--type", "17"}, "curves.csv: no stress to fit"},
        // Absurd but finite values: K would overflow in one cell.
        {"1000,0.1,0.1,100\n1000,0.1,0.2,1e308\n1000,1,0.1,1\n1000,1,0.2,2\n", {"--type", "16"},
         "curves.csv: no fit at T = 1000, strain rate = 0.1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mention);
        std::vector<std::string> options = c.options;
        const bool typed = std::find(options.begin(), options.end(), "--type") != options.end();
        const CliResult result = fit(curves(c.csv), typed ? options[1] : "17",
                                     typed ? std::vector<std::string>(options.begin() + 2, options.end()) : options);
        EXPECT_TRUE(isOneErrorLine(result, c.mention));
        EXPECT_EQ(scratch.filesBesides({"m.zmat", "curves.csv"}), std::vector<std::string>{});
    }
}

TEST_F(HotCli, AGlobalLawWarnsAboutAnEmptyCell)
{
    const CliResult result
        = fit(curves("1000,0.1,0.1,100\n1000,1,0.1,130\n1000,0.1,0.2,110\n1000,1,0.2,140\n1100,0.1,0.1,90\n"
                     "1100,0.1,0.2,95\n"),
              "17", {"--strains", "0.1,0.2"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find("warning: "), std::string::npos);
    EXPECT_NE(result.err.find("2 of 8 stress-table entries left out"), std::string::npos) << result.err;
    EXPECT_TRUE(fs::exists(scratch.file("out.zmat")));
}

TEST_F(HotCli, ProcessingMapFilesAndPicture)
{
    ASSERT_EQ(fit(kMeasured, "161").status, 0);
    const std::string out = file("out.zmat");
    const CliResult result = runCli({"processing-map", out, "--strain-index", "6", "--contour-step", "5", "--png",
                                     file("map.png")});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto written = lines(result.out);
    ASSERT_EQ(written.size(), 3u);
    EXPECT_EQ(written[0], file("exchange") + "/processing_map.dat");
    EXPECT_EQ(written[1], file("exchange") + "/processing_map.txt");
    EXPECT_EQ(readBytes(scratch.file("map.png")).substr(0, 8), "\x89PNG\r\n\x1a\n");
    const std::string data = readBytes(scratch.file("exchange") / "processing_map.dat");
    EXPECT_EQ(std::count(data.begin(), data.end(), '\n'), 1 + 200 * (250 + 1));  // 4 x 50 temperatures, 5 x 50 rates

    EXPECT_TRUE(isOneErrorLine(runCli({"processing-map", out, "--strain-index", "14", "--contour-step", "5"}),
                               "option '--strain-index': '14' is not a whole number from 0 to 13"));
    EXPECT_TRUE(isOneErrorLine(runCli({"processing-map", out, "--strain-index", "1", "--contour-step", "0"}),
                               "option '--contour-step'"));
    EXPECT_TRUE(isOneErrorLine(runCli({"processing-map", material(), "--strain-index", "0", "--contour-step", "5"}),
                               "has no hot data set"));
    setenv("ZELKO_GNUPLOT", file("no-gnuplot").c_str(), 1);
    EXPECT_TRUE(isOneErrorLine(runCli({"processing-map", out, "--strain-index", "1", "--contour-step", "5", "--png",
                                       file("other.png")}),
                               "gnuplot not found"));
    EXPECT_FALSE(fs::exists(scratch.file("other.png")));
}

}  // namespace
}  // namespace zelko::clitest
