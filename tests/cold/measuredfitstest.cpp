// Every law in every mode (plain, necking-constrained, weighted, polished) on the
// measured tensile tests of tests/data/measured (lucasguesserts/mechanical_testing,
// MIT licence): the result texts the screen shows, byte for byte. One folder per
// test under tests/data/cold-fits holds the case (curve, specimen, start index; the
// necking point is the largest engineering stress) and the expected texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/fileio.h"
#include "bench/coldcurves.h"
#include "cold/coldfit.h"
#include "testutil.h"

namespace zelko {
namespace {

namespace fs = std::filesystem;

const fs::path kCases = fs::path(ZELKO_TEST_DATA) / "cold-fits";

struct FitCase {
    std::string curve;
    double diameter = 0.0;
    double gaugeLength = 0.0;
    int start = 0;
};

std::string fileText(const fs::path& path)
{
    std::string error;
    const auto bytes = readFileBytes(path, error);
    EXPECT_TRUE(bytes) << error;
    return bytes.value_or("");
}

FitCase readCase(const fs::path& folder)
{
    FitCase c;
    std::istringstream in(fileText(folder / "case.txt"));
    std::string key;
    while (in >> key) {
        if (key == "curve")
            in >> c.curve;
        else if (key == "diameter")
            in >> c.diameter;
        else if (key == "gauge-length")
            in >> c.gaugeLength;
        else if (key == "start")
            in >> c.start;
        else
            ADD_FAILURE() << "unknown key " << key;
    }
    return c;
}

RoomOri recordOf(const FitCase& c)
{
    return bench::measuredTensileRecord((fs::path(ZELKO_TEST_DATA) / c.curve).string(), c.start, c.diameter,
                                        c.gaugeLength);
}

std::string allFits(const RoomOri& record)
{
    const char* const modes[] = {"plain", "necking-constrained", "weighted", "polished"};
    std::string text;
    for (const ColdLawId id : kColdLaws)
        for (int mode = 0; mode < 4; ++mode) {
            RoomOri r = record;
            r.neckingConstraint = mode == 1;
            r.weighted = mode == 2;
            const ColdFitResult result
                = fitColdLaw(r, id, {}, mode == 3 ? FitMethod::DescentThenLeastSquares : FitMethod::Descent);
            text += formatText("== %s, %s\n", coldLawTitle(id), modes[mode]);
            text += (result.law ? result.text : result.message) + "\n";
        }
    return text;
}

class MeasuredFits : public ::testing::TestWithParam<std::string> {};

TEST_P(MeasuredFits, GiveTheirRecordedTexts)
{
    const fs::path folder = kCases / GetParam();
    const std::string actual = allFits(recordOf(readCase(folder)));
    const std::string expected = fileText(folder / "expected.txt");
    const auto same = test::sameBytes(actual, expected);
    if (!same) {
        // The whole text, to compare by eye.
        const fs::path written = fs::temp_directory_path() / ("zelko-cold-fits-" + GetParam() + ".txt");
        std::ofstream(written, std::ios::binary) << actual;
        ADD_FAILURE() << "actual texts in " << written;
    }
    EXPECT_TRUE(same);
}

std::vector<std::string> caseNames()
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kCases))
        if (entry.is_directory())
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(ColdFits, MeasuredFits, ::testing::ValuesIn(caseNames()),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
}  // namespace zelko
