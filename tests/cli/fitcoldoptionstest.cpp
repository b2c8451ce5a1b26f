// fit-cold as an engineer uses it: laws compared, the start at yield, columns by
// their header names, the fit to look at and to read by a script.

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
        const CliResult made = runCli({"new", "-o", material(), "--elastic", "steel", "--thermal", "steel"});
        ASSERT_EQ(made.status, 0) << made.err;
    }
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

}  // namespace
}  // namespace zelko::clitest
