// fit-hot and processing-map as an engineer uses them: the error of each test
// cell, the fit to look at, and the map by strain value, for a script as JSON.

#include <algorithm>
#include <cstdlib>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kMeasured =
    (fs::path(ZELKO_CLI_TEST_DATA) / ".." / "measured" / "hot-compression-medium-carbon-steel.csv").string();

std::size_t lineCount(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

class HotOptions : public ::testing::Test {
protected:
    void SetUp() override
    {
        setenv("ZELKO_TEMP", scratch.file("exchange").c_str(), 1);
        const CliResult made = runCli({"new", "-o", material(), "--title", "Gleeble series"});
        ASSERT_EQ(made.status, 0) << made.err;
    }
    void TearDown() override { unsetenv("ZELKO_TEMP"); }
    std::string material() const { return scratch.file("m.zmat").string(); }
    std::string file(std::string_view name) const { return scratch.file(name).string(); }
    CliResult fit(const std::string& type, std::vector<std::string> more = {}) const
    {
        std::vector<std::string> args = {"fit-hot", material(), "--curves", kMeasured, "--type", type, "-o",
                                         file(type + ".zmat")};
        args.insert(args.end(), more.begin(), more.end());
        return runCli(args);
    }
    ScratchFolder scratch;
};

TEST_F(HotOptions, ErrorsPerTemperatureAndRateShowWhatTheAverageHides)
{
    const CliResult plain = fit("17");
    ASSERT_EQ(plain.status, 0) << plain.err;
    // The slowest rate at the highest temperature is far worse than the average.
    EXPECT_NE(plain.err.find("warning: the worst cell, temperature 1250 and strain rate 0.001, has AARE"),
              std::string::npos)
        << plain.err;

    const CliResult listed = fit("17", {"--cell-errors"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(listed.out.rfind(plain.out, 0), 0u);  // the report first, as it was
    EXPECT_EQ(listed.err.find("worst cell"), std::string::npos);
    const std::string table = listed.out.substr(plain.out.size());
    EXPECT_EQ(lineCount(table), 1u + 2u + 30u);  // a blank line, two heads, 5 temperatures x 6 rates

    const Json::Value json = parseJson(fit("17", {"--json"}).out);
    ASSERT_EQ(json["cells"].size(), 30u);
    const double average = std::stod(plain.out.substr(plain.out.find("AARE = ") + 7));
    EXPECT_NEAR(json["aare"].asDouble(), average, 1e-4 * average);
    double worst = 0.0, relative = 0.0, points = 0.0;
    for (const Json::Value& cell : json["cells"]) {
        worst = std::max(worst, cell["aare"].asDouble());
        relative += cell["aare"].asDouble() * cell["points"].asDouble();
        points += cell["points"].asDouble();
    }
    EXPECT_NEAR(relative / points, json["aare"].asDouble(), 1e-9 * average);
    EXPECT_GT(worst, 3.0 * average);
    EXPECT_EQ(json["cells"][24]["temperature"].asDouble(), 1250.0);
    EXPECT_EQ(json["cells"][24]["strainRate"].asDouble(), 0.001);
    EXPECT_EQ(json["cells"][24]["aare"].asDouble(), worst);
    EXPECT_EQ(json["parameters"].size(), 10u);
    EXPECT_TRUE(json["parameters"].isMember("m9"));
    EXPECT_EQ(json["files"]["material"].asString(), file("17.zmat"));
}

TEST_F(HotOptions, ZenerHollomonConstantsBySampleStrain)
{
    const CliResult fitted = fit("50", {"--json"});
    ASSERT_EQ(fitted.status, 0) << fitted.err;
    const Json::Value json = parseJson(fitted.out);
    ASSERT_EQ(json["orders"].size(), 14u);  // 0.05 to 0.7
    EXPECT_DOUBLE_EQ(json["orders"][0]["strain"].asDouble(), 0.05);
    for (const Json::Value& order : json["orders"]) {
        // An activation energy of hot-worked steel lies between 200 and 600 kJ/mol.
        EXPECT_GT(order["Q"].asDouble(), 2e5);
        EXPECT_LT(order["Q"].asDouble(), 6e5);
        EXPECT_GT(order["alpha"].asDouble(), 0.0);
    }
    EXPECT_FALSE(json.isMember("parameters"));
}

TEST_F(HotOptions, CurvesAndPictureOfTheFit)
{
    const CliResult fitted = fit("161", {"--curve-out", file("curves.csv"), "--png", file("fit.png")});
    ASSERT_EQ(fitted.status, 0) << fitted.err;
    const std::string csv = readBytes(file("curves.csv"));
    EXPECT_EQ(csv.rfind("temperature,strain_rate,strain,measured_stress_MPa,model_stress_MPa\n", 0), 0u);
    EXPECT_EQ(lineCount(csv), lineCount(readBytes(kMeasured)));  // every measured point, the header for the header
    EXPECT_EQ(readBytes(file("fit.png")).substr(0, 8), std::string("\x89PNG\r\n\x1A\n"));
    EXPECT_TRUE(isOneErrorLine(fit("161", {"--png", file("161.zmat")}), "name the same file"));
}

TEST_F(HotOptions, ProcessingMapByStrainValue)
{
    ASSERT_EQ(fit("161").status, 0);
    const std::string fitted = file("161.zmat");
    const auto map = [&](std::vector<std::string> more) {
        std::vector<std::string> args = {"processing-map", fitted, "--contour-step", "5"};
        args.insert(args.end(), more.begin(), more.end());
        return runCli(args);
    };
    // The sample strains run 0.05 to 0.7 every 0.05: 0.33 is nearest to 0.35, index 6.
    const CliResult near = map({"--strain", "0.33", "--png", file("map.png")});
    ASSERT_EQ(near.status, 0) << near.err;
    EXPECT_TRUE(near.out.ends_with(file("map.png") + "\nsample strain 0.35 (index 6)\n")) << near.out;
    EXPECT_EQ(readBytes(file("map.png")).substr(0, 8), std::string("\x89PNG\r\n\x1A\n"));
    const Json::Value json = parseJson(map({"--strain", "0.5", "--json"}).out);
    EXPECT_EQ(json["strainIndex"].asInt(), 9);
    EXPECT_EQ(json["model"].asInt(), 161);
    EXPECT_TRUE(json["unstable"].asBool());
    EXPECT_LT(json["efficiencyMin"].asDouble(), json["efficiencyMax"].asDouble());
    EXPECT_TRUE(fs::exists(json["files"]["data"].asString()));

    EXPECT_TRUE(isOneErrorLine(map({"--strain-index", "14"}), "the sample strains are 0: 0.05, 1: 0.1,"));
    EXPECT_TRUE(isOneErrorLine(map({"--strain-index", "1", "--strain", "0.1"}), "give one of"));
    EXPECT_TRUE(isOneErrorLine(map({}), "missing option '--strain-index' or '--strain'"));
}

TEST_F(HotOptions, AMapWithoutInstabilityOrDomainsSaysSo)
{
    // Hensel-Spittel's rate sensitivity hardly varies: a flat efficiency, nothing unstable.
    ASSERT_EQ(fit("17").status, 0);
    const CliResult flat = runCli({"processing-map", file("17.zmat"), "--strain", "0.3", "--contour-step", "5"});
    ASSERT_EQ(flat.status, 0) << flat.err;
    EXPECT_NE(flat.err.find("warning: the map at strain 0.3 has no unstable region\n"), std::string::npos);
    EXPECT_NE(flat.err.find("warning: the efficiency at strain 0.3 is flat"), std::string::npos);
    // The per-cell law has both.
    ASSERT_EQ(fit("161").status, 0);
    const CliResult varied = runCli({"processing-map", file("161.zmat"), "--strain", "0.5", "--contour-step", "5"});
    ASSERT_EQ(varied.status, 0) << varied.err;
    EXPECT_EQ(varied.err, "");
}

}  // namespace
}  // namespace zelko::clitest
