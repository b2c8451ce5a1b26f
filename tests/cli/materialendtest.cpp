// Material files cut short (a failed copy, a full disk): every command still
// opens them as the screens do, and says on standard error that the file ends early.

#include "clirunner.h"

namespace zelko::clitest {
namespace {

const std::string kEndsEarly = "the file ends early; part of the material may be missing";

std::string endsEarlyWarning(const fs::path& material)
{
    return "warning: " + material.string() + ": " + kEndsEarly + "\n";
}

// The bytes of a whole material, cut where a section begins; a UTF-16 file keeps whole units.
std::string cutBefore(const std::string& whole, std::string_view section)
{
    std::string marker;
    for (const char c : section)
        marker += std::string{c, '\0'};
    const std::size_t at = whole.find(marker);
    EXPECT_NE(at, std::string::npos) << section;
    return whole.substr(0, at);
}

TEST(CutShortMaterial, EveryCommandOpensItWithAWarning)
{
    ScratchFolder scratch;
    const fs::path cut = scratch.file("cut.zmat");
    writeBytes(cut, cutBefore(readBytes(dataFile("sample/material.zmat")), "** HEAT"));

    const CliResult info = runCli({"info", cut.string()});
    EXPECT_EQ(info.status, 0);
    EXPECT_EQ(info.err, endsEarlyWarning(cut));
    // What the file holds is read as before; the missing tables are empty.
    const Json::Value json = parseJson(info.out);
    EXPECT_EQ(json["elastic"][2]["points"].size(), 2u);
    EXPECT_EQ(json["conductivity"].size(), 0u);

    const fs::path physProps = scratch.file("PhysProps.dat");
    writeBytes(physProps, "T (C)\tDensity-TOTAL\tThermal conductivity-TOTAL\tSpecific heat (J/(g K))\ta\tb\tc\td\te\tf\tg\th\n"
                          "25 7.85 46.5 0.45 0 0 0 0 0 0 0 0\n");
    const std::vector<std::vector<std::string>> commands = {
        {"import-physprops", cut.string(), physProps.string(), "-o", scratch.file("imported.zmat").string()},
        {"estimate-modulus", "--C", "0.45", "--Mn", "0.7", "--Si", "0.25", "--P", "0.02", "--S", "0.02", cut.string(),
            "-o", scratch.file("estimated.zmat").string()},
        {"new", "-o", scratch.file("unused.zmat").string()},  // opens no material: no warning
    };
    for (const auto& args : commands) {
        SCOPED_TRACE(args[0]);
        const CliResult result = runCli(args);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.err, args[0] == "new" ? "" : endsEarlyWarning(cut));
    }
    // What the commands wrote is whole again.
    for (const char* written : {"imported.zmat", "estimated.zmat"}) {
        const CliResult reopened = runCli({"info", scratch.file(written).string()});
        EXPECT_EQ(reopened.status, 0);
        EXPECT_EQ(reopened.err, "") << written;
    }
}

TEST(CutShortMaterial, ExportAndTheFitsWarnBeforeTheirOwnMessages)
{
    ScratchFolder scratch;
    const fs::path cut = scratch.file("cut.zmat");
    // The cold record's curve is whole, the thermal tables are not.
    writeBytes(cut, cutBefore(readBytes(dataFile("cold-model/material.zmat")), "** HEAT"));
    const CliResult exported = runCli({"export", cut.string(), "-o", scratch.file("out.z3dlib").string()});
    EXPECT_EQ(exported.status, 0);
    EXPECT_TRUE(exported.err.starts_with(endsEarlyWarning(cut) + "warning: " + cut.string() + ": the cold model"))
        << exported.err;
    EXPECT_TRUE(fs::exists(scratch.file("out.z3dlib")));

    const fs::path curves = scratch.file("curves.csv");
    writeBytes(curves, "900,0.1,0.1,100\n900,0.1,0.2,110\n");
    const CliResult fit = runCli({"fit-hot", cut.string(), "--curves", curves.string(), "--type", "16", "-o",
        scratch.file("hot.zmat").string()});
    EXPECT_TRUE(fit.err.starts_with(endsEarlyWarning(cut))) << fit.err;
}

TEST(CutShortMaterial, WhatTheToolWritesOpensWithoutAWord)
{
    // The golden materials are checked by the golden cases; here what the tool writes from nothing and from JSON.
    ScratchFolder scratch;
    const fs::path made = scratch.file("new.zmat"), fromJson = scratch.file("json.zmat");
    ASSERT_EQ(runCli({"new", "-o", made.string(), "--title", "T", "--elastic", "steel", "--thermal", "steel"}).status, 0);
    ASSERT_EQ(runCli({"from-json", dataFile("unicode-title/material.json").string(), "-o", fromJson.string()}).status, 0);
    for (const fs::path& written : {made, fromJson})
        EXPECT_EQ(runCli({"info", written.string()}).err, "") << written;
}

}  // namespace
}  // namespace zelko::clitest
