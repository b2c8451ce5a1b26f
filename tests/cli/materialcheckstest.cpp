// info names what it prints; from-json refuses what no material can be.

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kSampleJson = readBytes(dataFile("sample/material.json"));

// The sample with one piece of its text replaced.
std::string sampleWith(const std::string& from, const std::string& to)
{
    std::string text = kSampleJson;
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(MaterialChecks, InfoNamesTheElasticPropertiesAndFromJsonTakesThemBack)
{
    ScratchFolder scratch;
    const std::string material = dataFile("sample/material.zmat").string();
    const CliResult named = runCli({"info", material, "--names"});
    ASSERT_EQ(named.status, 0) << named.err;
    const Json::Value json = parseJson(named.out);
    EXPECT_EQ(json["elastic"][0]["name"].asString(), "Young's modulus");
    EXPECT_EQ(json["elastic"][1]["name"].asString(), "Poisson's ratio");
    EXPECT_EQ(json["elastic"][2]["name"].asString(), "density");
    EXPECT_EQ(json["elastic"][3]["name"].asString(), "thermal expansion");
    // Without the option the layout stays as scripts know it.
    EXPECT_FALSE(parseJson(runCli({"info", material}).out)["elastic"][0].isMember("name"));

    // Named, the JSON writes the same material back.
    writeBytes(scratch.file("named.json"), named.out);
    const fs::path out = scratch.file("out.zmat");
    const CliResult back = runCli({"from-json", scratch.file("named.json").string(), "-o", out.string()});
    ASSERT_EQ(back.status, 0) << back.err;
    EXPECT_TRUE(sameBytes(readBytes(dataFile("sample/resaved.zmat")), readBytes(out)));

    // A name at the wrong place is a property mixed up.
    writeBytes(scratch.file("mixed.json"),
               sampleWith("{\"form\": 1, \"points\": [[0, 210000]]}",
                          "{\"name\": \"density\", \"form\": 1, \"points\": [[0, 210000]]}"));
    EXPECT_TRUE(isOneErrorLine(runCli({"from-json", scratch.file("mixed.json").string(), "-o", out.string()}),
                               "elastic[0].name: expected \"Young's modulus\""));
}

TEST(MaterialChecks, FromJsonRefusesTablesNoMaterialHas)
{
    ScratchFolder scratch;
    const fs::path out = scratch.file("out.zmat");
    const struct {
        std::string from, to, mention;
    } cases[] = {
        // Typed in the wrong order, typed twice.
        {"[[20, 7850], [1000, 7600]]", "[[1000, 7600], [20, 7850]]",
         "elastic[2].points[1][0]: temperature 20 does not follow 1000"},
        {"[[20, 0.045], [1000, 0.028]]", "[[20, 0.045], [20, 0.028]]", "conductivity[1][0]: temperature 20"},
        // A sign lost, a ratio in percent, a zero where a value was forgotten.
        {"[[0, 210000]]", "[[0, -210000]]", "elastic[0].points[0][1]: -210000 is not above 0"},
        {"[[0, 0.3]]", "[[0, 30]]", "elastic[1].points[0][1]: Poisson's ratio 30 is outside 0 to 0.5"},
        {"[[20, 7850], [1000, 7600]]", "[[20, 7850], [1000, 0]]", "elastic[2].points[1][1]: 0 is not above 0"},
        {"[[20, 0.045], [1000, 0.028]]", "[[20, 0.045], [1000, -0.028]]", "conductivity[1][1]"},
        {"[[20, 0.0035]]", "[[20, -0.0035]]", "heatCapacity[0][1]"},
    };
    for (const auto& c : cases) {
        writeBytes(scratch.file("m.json"), sampleWith(c.from, c.to));
        EXPECT_TRUE(isOneErrorLine(runCli({"from-json", scratch.file("m.json").string(), "-o", out.string()}), c.mention))
            << c.mention;
        EXPECT_FALSE(fs::exists(out));
    }
    // A negative expansion is a real material (invar below room temperature); it stays allowed.
    writeBytes(scratch.file("m.json"), sampleWith("[[0, 1.2e-5]]", "[[0, -1e-7]]"));
    EXPECT_EQ(runCli({"from-json", scratch.file("m.json").string(), "-o", out.string()}).status, 0);
}

}  // namespace
}  // namespace zelko::clitest
