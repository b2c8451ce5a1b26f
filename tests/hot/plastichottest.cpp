#include <gtest/gtest.h>

#include "hot/plastic_hot.h"
#include "testutil.h"

namespace zelko {
namespace {

PLASTIC_HOT sampleDataSet()
{
    PLASTIC_HOT hot;
    hot.modelNumber = 17;
    hot.hotFlag = true;
    hot.hasIndexColumn = true;
    hot.strainRates = {0.1, 1};
    hot.temperatures = {900, 1000, 1100};
    hot.strains = {0.1};
    hot.auxiliaryValues = {5};
    hot.curves.assign(3, std::vector<HotCurve>(2));
    // Each cell different, so a swapped index shows.
    for (std::size_t t = 0; t < 3; ++t)
        for (std::size_t r = 0; r < 2; ++r)
            hot.curves[t][r] = {{0, 0.1, 100.0 * (t + 1) + r}, {1.5, 0.2, 10.0 * (t + 1) + r}};
    return hot;
}

TEST(HotBlock, HeadFollowsTheMinorNumber)
{
    const PLASTIC_HOT hot = sampleDataSet();
    const auto head = [&](int minor) {
        TextWriter out;
        hot.writeMaterialBlock(out, 21, minor);
        const std::string text = test::textOf(out);
        return text.substr(0, text.find("       2        3"));
    };
    EXPECT_EQ(head(6), "       1       17        1\n       1\n");
    EXPECT_EQ(head(5), "       1       17\n       1\n");
    EXPECT_EQ(head(4), "      17\n       1\n");
    EXPECT_EQ(head(1), "      17\n");  // before minor 2 there is no index-column line
}

TEST(HotBlock, WritesCellsByRateThenTemperature)
{
    const PLASTIC_HOT hot = sampleDataSet();
    TextWriter out;
    hot.writeMaterialBlock(out, 21, 6);
    const std::string text = test::textOf(out);
    EXPECT_NE(text.find("       2        3        1        1\n"
                        "                    1.0000E-01\n                    1.0000E+00\n\n"
                        "                    9.0000E+02\n                    1.0000E+03\n                    1.1000E+03\n\n"
                        "                    1.0000E-01\n\n                    5.0000E+00\n\n"
                        "\tstrain-rate:        1.0000E-01\ttemperature:        9.0000E+02\n       2\n"
                        "                 0.0000000E+00        1.0000E-01        1.0000E+02\n"
                        "                 1.5000000E+00        2.0000E-01        1.0000E+01\n"
                        "\tstrain-rate:        1.0000E-01\ttemperature:        1.0000E+03\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\tstrain-rate:        1.0000E+00\ttemperature:        1.1000E+03\n       2\n"
                        "                 0.0000000E+00        1.0000E-01        3.0100E+02\n"),
              std::string::npos);
}

TEST(HotBlock, ReadsBackWhatItWrote)
{
    const PLASTIC_HOT written = sampleDataSet();
    for (const int minor : {1, 4, 6}) {
        SCOPED_TRACE(minor);
        TextWriter out;
        written.writeMaterialBlock(out, 21, minor);
        TextReader in = TextReader::fromText(out.text());
        std::u16string head;
        in.readNonBlankLine(head);  // the material reader takes the head line
        PLASTIC_HOT read;
        read.readMaterialBlock(in, 21, minor);
        EXPECT_EQ(read.hasIndexColumn, minor >= 2);
        EXPECT_EQ(read.strainRates, written.strainRates);
        EXPECT_EQ(read.temperatures, written.temperatures);
        EXPECT_EQ(read.strains, written.strains);
        EXPECT_EQ(read.auxiliaryValues, written.auxiliaryValues);
        EXPECT_EQ(read.curves, written.curves);
    }
}

TEST(HotBlock, ToleratesMissingCellsAndDamagedCounts)
{
    PLASTIC_HOT hot;
    hot.strainRates = {0.1, 1};
    hot.temperatures = {1000};  // the grid was never applied
    TextWriter out;
    hot.writeMaterialBlock(out, 21, 6);
    EXPECT_NE(test::textOf(out).find("temperature:        1.0000E+03\n       0\n"), std::string::npos);

    PLASTIC_HOT cut;
    TextReader in = TextReader::fromText(u" 0\n 2 1 0 0\n 0.1\n 1\n\n 1000\n\n\n\n\tstrain-rate: 0.1\n 3\n 0 0.1 50\n");
    cut.readMaterialBlock(in, 21, 6);
    ASSERT_EQ(cut.curves.size(), 1u);
    ASSERT_EQ(cut.curves[0].size(), 2u);
    EXPECT_EQ(cut.curves[0][0], (HotCurve{{0, 0.1, 50}, {}, {}}));
    EXPECT_TRUE(cut.curves[0][1].empty());
}

}  // namespace
}  // namespace zelko
