// Every folder under tests/data/cli is one material and what the tool must make of it:
//   material.zmat   the material file (required)
//   material.json   from-json of it writes material.zmat exactly
//   info.json       what info prints for material.zmat
//   resaved.zmat    what from-json writes from info's output, where that differs from
//                   material.zmat (a title read with its line end gains an empty line)
//   library.z3dlib  what export writes

#include <algorithm>

#include "clirunner.h"

namespace zelko::clitest {
namespace {

std::vector<std::string> goldenCases()
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dataFile("")))
        if (entry.is_directory())
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class GoldenCase : public ::testing::TestWithParam<std::string> {
protected:
    fs::path golden(std::string_view name) const { return dataFile(GetParam()) / name; }

    // from-json over info's output; the file it wrote.
    std::string resave(const fs::path& material, const ScratchFolder& scratch, const std::string& name)
    {
        const CliResult info = runCli({"info", material.string()});
        EXPECT_EQ(info.status, 0) << info.err;
        writeBytes(scratch.file(name + ".json"), info.out);
        const CliResult written
            = runCli({"from-json", scratch.file(name + ".json").string(), "-o", scratch.file(name + ".zmat").string()});
        EXPECT_EQ(written.status, 0) << written.err;
        return readBytes(scratch.file(name + ".zmat"));
    }
};

TEST_P(GoldenCase, MatchesItsGoldenFiles)
{
    ScratchFolder scratch;
    const fs::path material = golden("material.zmat");
    ASSERT_TRUE(fs::exists(material));

    if (fs::exists(golden("material.json"))) {
        SCOPED_TRACE("from-json");
        const fs::path out = scratch.file("from-json.zmat");
        const CliResult result = runCli({"from-json", golden("material.json").string(), "-o", out.string()});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(sameBytes(readBytes(material), readBytes(out)));
    }

    if (fs::exists(golden("info.json"))) {
        SCOPED_TRACE("info");
        const CliResult result = runCli({"info", material.string()});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.err, "");  // a whole file opens without a warning
        EXPECT_TRUE(result.out.ends_with("}\n"));
        const Json::Value expected = parseJson(readBytes(golden("info.json")));
        EXPECT_TRUE(sameJson(expected, parseJson(result.out)));

        if (expected["model"].isNull()) {
            SCOPED_TRACE("round trip through info and from-json");
            const fs::path resaved = fs::exists(golden("resaved.zmat")) ? golden("resaved.zmat") : material;
            const std::string once = resave(material, scratch, "once");
            EXPECT_TRUE(sameBytes(readBytes(resaved), once));
            EXPECT_TRUE(sameBytes(once, resave(scratch.file("once.zmat"), scratch, "twice")));
        }
    }

    if (fs::exists(golden("library.z3dlib"))) {
        SCOPED_TRACE("export");
        const fs::path out = scratch.file("library.z3dlib");
        const CliResult result = runCli({"export", material.string(), "-o", out.string()});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(result.out.empty());
        EXPECT_TRUE(sameBytes(readBytes(golden("library.z3dlib")), readBytes(out)));
    }
}

INSTANTIATE_TEST_SUITE_P(Cli, GoldenCase, ::testing::ValuesIn(goldenCases()), [](const auto& info) {
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

}  // namespace
}  // namespace zelko::clitest
