#include <array>
#include <cmath>
#include <sstream>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

// Values in a .zmat: thermal ones with seven decimals, elastic ones with five significant digits.
constexpr double kThermalFileStep = 5e-8;
constexpr double kElasticFileRelative = 5e-5;
// estimate-modulus prints "%.10g": ten significant digits.
constexpr double kPrintedRelative = 5e-10;

const std::string kSample = dataFile("sample/material.zmat").string();

Json::Value infoOf(const fs::path& material)
{
    const CliResult result = runCli({"info", material.string()});
    EXPECT_EQ(result.status, 0) << result.err;
    return parseJson(result.out);
}

std::vector<std::array<double, 2>> printedRows(const std::string& out)
{
    std::vector<std::array<double, 2>> rows;
    std::istringstream in(out);
    for (std::array<double, 2> row; in >> row[0] >> row[1];)
        rows.push_back(row);
    return rows;
}

TEST(Export, RefusesAMaterialWithoutModelAndKeepsThePreviousFile)
{
    ScratchFolder scratch;
    const fs::path out = scratch.file("library.z3dlib");
    writeBytes(out, "previous entry");
    EXPECT_TRUE(isOneErrorLine(runCli({"export", kSample, "-o", out.string()}), kSample));
    EXPECT_EQ(readBytes(out), "previous entry");
    EXPECT_TRUE(isOneErrorLine(runCli({"export", kSample, "-o", scratch.file("new.z3dlib").string()}), kSample));
    EXPECT_EQ(scratch.filesBesides({"library.z3dlib"}), std::vector<std::string> {});
}

TEST(Export, WarnsWhenTheModelWritesNoBlock)
{
    // A record read from a .zmat has no fitted law behind it, so its library block is empty.
    ScratchFolder scratch;
    const std::string material = dataFile("cold-model/material.zmat").string();
    const CliResult result = runCli({"export", material, "-o", scratch.file("out.z3dlib").string()});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.err.starts_with("warning: " + material));
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    EXPECT_TRUE(fs::exists(scratch.file("out.z3dlib")));
}

TEST(ImportPhysProps, ReplacesBothThermalTables)
{
    ScratchFolder scratch;
    // T, density, conductivity, specific heat and eight more columns, hottest row first as JMatPro lists them.
    const std::vector<std::array<double, 4>> rows = {{300, 7.70, 40.5, 0.52}, {250, 7.72, 41.0, 0.50},
        {200, 7.75, 42.5, 0.49}, {100, 7.80, 45.0, 0.47}, {25, 7.85, 46.5, 0.45}};
    std::string text = "T (C)\tDensity-TOTAL\tThermal conductivity-TOTAL\tSpecific heat (J/(g K))";
    for (int i = 0; i < 8; ++i)
        text += "\tPhase " + std::to_string(i);
    text += "\n";
    for (const auto& r : rows)
        text += std::to_string(r[0]) + " " + std::to_string(r[1]) + " " + std::to_string(r[2]) + " "
            + std::to_string(r[3]) + " 0 0 0 0 0 0 0 0\n";
    writeBytes(scratch.file("steelPhysProps.dat"), text);
    const fs::path out = scratch.file("out.zmat");
    const CliResult result
        = runCli({"import-physprops", kSample, scratch.file("steelPhysProps.dat").string(), "-o", out.string()});
    ASSERT_EQ(result.status, 0) << result.err;

    // Every hundred degrees, then the coldest row appended last.
    const std::vector<std::array<double, 4>> selected = {rows[0], rows[2], rows[3], rows[4]};
    const Json::Value info = infoOf(out);
    ASSERT_EQ(info["conductivity"].size(), selected.size());
    ASSERT_EQ(info["heatCapacity"].size(), selected.size());
    for (Json::ArrayIndex i = 0; i < selected.size(); ++i) {
        const auto& r = selected[i];
        EXPECT_NEAR(info["conductivity"][i][0].asDouble(), r[0], kThermalFileStep);
        EXPECT_NEAR(info["conductivity"][i][1].asDouble(), r[2] / 1000, kThermalFileStep);
        EXPECT_NEAR(info["heatCapacity"][i][1].asDouble(), r[1] * r[3] / 1000, kThermalFileStep);
    }
    EXPECT_TRUE(sameJson(infoOf(kSample)["elastic"], info["elastic"]));
}

TEST(ImportPhysProps, RefusesAFileWithoutTheNeededColumns)
{
    // An export made with the conductivity column switched off.
    ScratchFolder scratch;
    writeBytes(scratch.file("PhysProps.dat"), "T (C)\tDensity-TOTAL\tSpecific heat (J/(g K))\n25 7.85 0.45\n");
    const CliResult result = runCli(
        {"import-physprops", kSample, scratch.file("PhysProps.dat").string(), "-o", scratch.file("out.zmat").string()});
    EXPECT_TRUE(isOneErrorLine(result, scratch.file("PhysProps.dat").string() + ": The PhysProps file has no column"));
    EXPECT_FALSE(fs::exists(scratch.file("out.zmat")));
}

TEST(ImportPhysProps, RefusesNumbersNoTableCanHoldNamingTheLine)
{
    ScratchFolder scratch;
    const std::string header = "T (C)\tDensity-TOTAL\tThermal conductivity-TOTAL\tSpecific heat (J/(g K))\ta\tb\tc\td\te\tf\tg\th\r\n";
    const std::string good = "300\t7.70\t40.5\t0.52\t0\t0\t0\t0\t0\t0\t0\t0\r\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        // Saved on a desktop with a German number format.
        {"200\t7,75\t42,5\t0,49\t0\t0\t0\t0\t0\t0\t0\t0\r\n", "Line 3 of the PhysProps file holds \",75\" after a number: "
                                                            "the file uses decimal commas"},
        {"200\t7.75\t1e400\t0.49\t0\t0\t0\t0\t0\t0\t0\t0\r\n", "Line 3 of the PhysProps file holds a number that is not finite"},
        {"200\t7.75\tnan\t0.49\t0\t0\t0\t0\t0\t0\t0\t0\r\n", "Line 3 of the PhysProps file holds a number that is not finite (read as nan)"},
    };
    const fs::path physProps = scratch.file("steelPhysProps.dat");
    const fs::path out = scratch.file("out.zmat");
    for (const auto& [row, mention] : cases) {
        SCOPED_TRACE(row);
        writeBytes(physProps, header + good + row + good);
        const CliResult result = runCli({"import-physprops", kSample, physProps.string(), "-o", out.string()});
        EXPECT_TRUE(isOneErrorLine(result, physProps.string() + ": " + mention));
        EXPECT_FALSE(fs::exists(out));
    }
}

TEST(EstimateModulus, RefusesACompositionNoSteelHas)
{
    ScratchFolder scratch;
    const fs::path out = scratch.file("out.zmat");
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--C", "-0.45", "--Mn", "0.7", "--Si", "0.25", "--P", "0.02", "--S", "0.02"}, "carbon (C) content -0.45 wt%"},
        {{"--C", "0.45", "--Mn", "700", "--Si", "0.25", "--P", "0.02", "--S", "0.02"}, "manganese (Mn) content 700 wt%"},
        {{"--C", "0.45", "--Mn", "0.7", "--Si", "60", "--P", "0.02", "--S", "50"}, "add up to"},
        // Each content possible, but the formula gives no modulus for it.
        {{"--C", "0", "--Mn", "70", "--Si", "0", "--P", "0", "--S", "0"}, "no modulus: the manganese (Mn) content 70 wt%"},
    };
    for (const auto& [composition, mention] : cases) {
        SCOPED_TRACE(::testing::PrintToString(composition));
        std::vector<std::string> args = {"estimate-modulus"};
        args.insert(args.end(), composition.begin(), composition.end());
        EXPECT_TRUE(isOneErrorLine(runCli(args), mention));
        args.insert(args.end(), {kSample, "-o", out.string()});
        EXPECT_TRUE(isOneErrorLine(runCli(args), mention));
        EXPECT_FALSE(fs::exists(out));
    }
}

TEST(EstimateModulus, PrintsTheThirteenRows)
{
    const CliResult zero = runCli({"estimate-modulus", "--C", "0", "--Mn", "0", "--Si", "0", "--P", "0", "--S", "0"});
    ASSERT_EQ(zero.status, 0) << zero.err;
    EXPECT_TRUE(zero.out.starts_with("20 29797.23892\n"));
    EXPECT_EQ(printedRows(zero.out).size(), 13u);

    const CliResult steel
        = runCli({"estimate-modulus", "--C", "0.45", "--Mn", "+0.7", "--Si", "0.25", "--P=0.02", "--S", "2e-2"});
    ASSERT_EQ(steel.status, 0) << steel.err;
    const auto rows = printedRows(steel.out);
    ASSERT_EQ(rows.size(), 13u);
    EXPECT_EQ(rows.back()[0], 900);
    EXPECT_NEAR(rows.back()[1], 10909.176165, 10909.176165 * kPrintedRelative);
}

TEST(EstimateModulus, StoresTheTableAsYoungsModulus)
{
    ScratchFolder scratch;
    const fs::path out = scratch.file("out.zmat");
    const CliResult result = runCli({"estimate-modulus", "--C", "0.2", "--Mn", "1", "--Si", "0.3", "--P", "0.01", "--S",
        "0.01", kSample, "-o", out.string()});
    ASSERT_EQ(result.status, 0) << result.err;
    const auto rows = printedRows(result.out);
    const Json::Value info = infoOf(out);
    const Json::Value& modulus = info["elastic"][0];
    EXPECT_EQ(modulus["form"].asInt(), 2);
    ASSERT_EQ(modulus["points"].size(), rows.size());
    for (Json::ArrayIndex i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(modulus["points"][i][0].asDouble(), rows[i][0]);
        EXPECT_NEAR(modulus["points"][i][1].asDouble(), rows[i][1], rows[i][1] * kElasticFileRelative);
    }
    const Json::Value before = infoOf(kSample);
    for (Json::ArrayIndex i = 1; i < 4; ++i)
        EXPECT_TRUE(sameJson(before["elastic"][i], info["elastic"][i]));
}

TEST(EstimateModulus, RefusesNumbersThatDoNotParseWhole)
{
    for (const char* text : {"abc", "1.2x", "nan", "inf", "", "1e999", "0x10", " 1", "+-1"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(isOneErrorLine(
            runCli({"estimate-modulus", "--C", "0", "--Mn", text, "--Si", "0", "--P", "0", "--S", "0"}), "--Mn"));
    }
}

TEST(New, AppliesTheTitleAndThePresetsAsTheScreensDo)
{
    ScratchFolder scratch;
    const fs::path out = scratch.file("new.zmat");
    const CliResult result
        = runCli({"new", "-o", out.string(), "--title", "C45 100%% %d", "--elastic", "steel", "--thermal", "aluminum"});
    ASSERT_EQ(result.status, 0) << result.err;
    const Json::Value info = infoOf(out);
    // Save passes the title through a format routine: only "%%" changes.
    EXPECT_EQ(info["title"].asString(), "C45 100% %d\n");
    EXPECT_EQ(info["elastic"][0]["points"][0][1].asDouble(), 210000);
    EXPECT_EQ(info["elastic"][2]["points"][0][1].asDouble(), 7850);
    ASSERT_EQ(info["conductivity"].size(), 8u);
    EXPECT_NEAR(info["conductivity"][0][1].asDouble(), 0.10532, kThermalFileStep);

    const fs::path plain = scratch.file("plain.zmat");
    ASSERT_EQ(runCli({"new", "-o", plain.string()}).status, 0);
    const Json::Value empty = infoOf(plain);
    EXPECT_EQ(empty["title"].asString(), "\n");
    EXPECT_EQ(empty["elastic"][0]["points"][0][1].asDouble(), 0);
    EXPECT_EQ(empty["heatCapacity"].size(), 0u);
}

TEST(Usage, MistakesGiveOneErrorLineAndNoFile)
{
    ScratchFolder scratch;
    const std::string out = scratch.file("out").string();
    const std::string json = dataFile("sample/material.json").string();
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{}, "no command"},
        {{"frobnicate"}, "frobnicate"},
        {{"info"}, "MATERIAL.zmat"},
        {{"info", kSample, "extra"}, "extra"},
        {{"export", kSample}, "-o"},
        {{"export", kSample, "-o"}, "-o"},
        {{"from-json", json, "-o", out, "--bogus", "1"}, "--bogus"},
        {{"new", "-o", out, "-o", out}, "-o"},
        {{"new", "-o", out, "--elastic", "copper"}, "--elastic"},
        {{"new", "-o", out, "--title", "two\nlines"}, "--title"},
        {{"estimate-modulus", "--C", "0", "--Mn", "0", "--Si", "0", "--P", "0"}, "--S"},
        {{"estimate-modulus", "--C", "0", "--Mn", "0", "--Si", "0", "--P", "0", "--S", "0", kSample}, "-o"},
        {{"estimate-modulus", "--C", "0", "--Mn", "0", "--Si", "0", "--P", "0", "--S", "0", "-o", out}, "MATERIAL"},
        {{"from-json", json, "-o", scratch.file("no-such-folder/out.zmat").string()}, "no-such-folder"},
    };
    for (const auto& [args, mention] : cases) {
        SCOPED_TRACE(::testing::PrintToString(args));
        EXPECT_TRUE(isOneErrorLine(runCli(args), mention));
        EXPECT_EQ(scratch.filesBesides({}), std::vector<std::string> {});
    }
}

TEST(Usage, EveryCommandExplainsItself)
{
    const std::string overview = runCli({"--help"}).out;
    for (const std::string command : {"info", "from-json", "new", "export", "import-physprops", "estimate-modulus"}) {
        const CliResult result = runCli({command, "--help"});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.out.starts_with("Usage: zelko-mat-cli " + command)) << result.out;
        EXPECT_NE(overview.find("  " + command + " "), std::string::npos);
    }
}

TEST(BadInput, JsonThatIsNoMaterialIsRefused)
{
    ScratchFolder scratch;
    const std::string out = scratch.file("out.zmat").string();
    const std::string elastic
        = R"([{"form":1,"points":[]},{"form":1,"points":[]},{"form":1,"points":[]},{"form":1,"points":[]}])";
    const auto material = [&](const std::string& title, const std::string& elasticText, const std::string& extra = "") {
        return R"({"title":)" + title + R"(,"elastic":)" + elasticText + R"(,"conductivity":[],"heatCapacity":[])"
            + extra + "}";
    };
    const std::vector<std::pair<std::string, std::string>> cases = {
        {R"({"title": "A", )", "Line 1"},  // a file cut short by a failed copy
        {std::string("\x89PNG\r\n\x1a\n\0\0", 10), "Line 1"},  // the wrong file picked
        {"", "Line 1"},  // an empty file
        {std::string(100000, '['), "not valid JSON"},  // nesting beyond the parser's limit
        {"[]", "JSON object"},  // a list of materials
        {material("5", elastic), "title"},
        {material(R"("A")", elastic, R"(,"titel":"B")"), "titel"},  // a misspelt member
        {material(R"("A")", elastic, R"(,"model":{"kind":0})"), "model"},  // info's output of a fitted material
        {material(R"("A")", elastic, R"(,"version":"21.6")"), "version"},
        {material(R"("A")", elastic, R"(,"title":"B")"), "Duplicate key"},
        {material('"' + std::string(256, 'x') + '"', elastic), "title"},
        {material(R"("A\n** HEAT")", elastic), "title"},  // a line end inside the title
        {material(R"("A\u0000")", elastic), "title"},
        {material(R"("A")", "[]"), "elastic"},
        {material(R"("A")", R"([1,2,3,4])"), "elastic[0]"},
        {material(R"("A")", R"([{"form":"1","points":[]},1,2,3])"), "elastic[0].form"},
        {material(R"("A")", R"([{"form":3,"points":[]},1,2,3])"), "elastic[0].form"},
        {material(R"("A")", R"([{"form":1,"points":[[0,1],[20,2]]},1,2,3])"), "elastic[0].points"},
        {material(R"("A")", R"([{"form":2,"points":[[20]]},1,2,3])"), "elastic[0].points[0]"},
        {material(R"("A")", R"([{"form":2,"points":[[20,"7850"]]},1,2,3])"), "elastic[0].points[0][1]"},
        {material(R"("A")", R"([{"form":2},1,2,3])"), "points"},
        {R"({"title":"A","elastic":)" + elastic + R"(,"conductivity":[[20,true]],"heatCapacity":[]})",
            "conductivity[0][1]"},
        {R"({"title":"A","elastic":)" + elastic + R"(,"conductivity":[]})", "heatCapacity"},
    };
    const fs::path input = scratch.file("material.json");
    for (const auto& [text, mention] : cases) {
        SCOPED_TRACE(text.substr(0, 200));
        writeBytes(input, text);
        const CliResult result = runCli({"from-json", input.string(), "-o", out});
        EXPECT_TRUE(isOneErrorLine(result, input.string() + ": "));
        EXPECT_TRUE(isOneErrorLine(result, mention));
        EXPECT_FALSE(fs::exists(out));
    }
    // The longest title a file line holds is fine.
    writeBytes(input, material('"' + std::string(255, 'x') + '"', elastic));
    EXPECT_EQ(runCli({"from-json", input.string(), "-o", out}).status, 0);
}

TEST(BadInput, DamagedMaterialFilesAreRefusedByEveryCommand)
{
    const auto utf16File = [](std::string_view ascii) {
        std::string bytes = "\xFF\xFE";
        for (const char c : ascii)
            bytes += std::string {c, '\0'};
        return bytes;
    };
    ScratchFolder scratch;
    const std::string sample = readBytes(kSample);
    std::string binary;
    for (int i = 0; i < 4096; ++i)
        binary.push_back(static_cast<char>((i * 7919) % 251));
    const std::vector<std::pair<std::string, std::string>> files = {
        {"truncated.zmat", sample.substr(0, 12)},  // a copy cut inside the version line
        {"binary.zmat", binary}, {"empty.zmat", ""},
        {"newer.zmat",
            utf16File("** VER.        22        6\r\n*Title\r\nA\r\n")},  // from a later version of the program
    };
    for (const auto& [name, bytes] : files)
        writeBytes(scratch.file(name), bytes);
    const std::string out = scratch.file("out").string();
    writeBytes(scratch.file("physProps.dat"), "T (C)\n");
    for (const std::string& material : {scratch.file("truncated.zmat").string(), scratch.file("binary.zmat").string(),
             scratch.file("empty.zmat").string(), scratch.file("newer.zmat").string(),
             scratch.file("missing.zmat").string(), scratch.file("").string()}) {
        SCOPED_TRACE(material);
        EXPECT_TRUE(isOneErrorLine(runCli({"info", material}), material));
        EXPECT_TRUE(isOneErrorLine(runCli({"export", material, "-o", out}), material));
        EXPECT_TRUE(isOneErrorLine(
            runCli({"import-physprops", material, scratch.file("physProps.dat").string(), "-o", out}), material));
        EXPECT_TRUE(isOneErrorLine(runCli({"estimate-modulus", "--C", "0", "--Mn", "0", "--Si", "0", "--P", "0", "--S",
                                       "0", material, "-o", out}),
            material));
        EXPECT_FALSE(fs::exists(out));
    }
}

}  // namespace
}  // namespace zelko::clitest
