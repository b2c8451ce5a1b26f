#include <gtest/gtest.h>

#include "material/elasticscreen.h"
#include "material/project.h"
#include "testutil.h"

namespace zelko {
namespace {

TEST(ElasticScreen, ATableLoadedFromFileSurvivesApplyAsFormOne)
{
    ELASTIC elastic;
    elastic.propertyType[YoungsModulus] = 2;
    elastic.tables[YoungsModulus] = {{20, 210000}, {500, 180000}, {900, 120000}};
    elastic.tables[PoissonsRatio] = {{0, 0.3}};

    ElasticScreenValues values = elasticScreenValues(elastic);
    EXPECT_EQ(values.formIndex, (std::array<int, 4>{1, 0, 0, 0}));
    EXPECT_DOUBLE_EQ(values.value[PoissonsRatio], 0.3);
    applyElasticScreen(values, elastic);

    EXPECT_EQ(elastic.propertyType, (std::array<std::int32_t, 4>{1, 1, 1, 1}));
    EXPECT_EQ(elastic.tables[YoungsModulus].size(), 3u);
    EXPECT_EQ(elastic.tables[Density], (PropertyTable{{0, 0}}));
    TextWriter out;
    elastic.writeMaterialBlock(out, YoungsModulus);  // form 1 writes the first point's value
    EXPECT_EQ(test::textOf(out), "       1\n               2.1000E+05\n");
}

TEST(ElasticScreen, PresetsFillTheFieldsOnly)
{
    ELASTIC elastic;
    elastic.propertyType[Density] = 2;
    elastic.tables[Density] = {{20, 1}, {30, 2}};
    ElasticScreenValues values = elasticScreenValues(elastic);
    applyElasticPreset(MaterialPreset::Aluminum, values);
    EXPECT_EQ(values.value, (std::array<double, 4>{72400, 0.33, 2790, 2.36e-05}));
    EXPECT_EQ(values.formIndex[Density], 1);
    applyElasticPreset(MaterialPreset::Steel, values);
    applyElasticScreen(values, elastic);
    EXPECT_EQ(elastic.tables[YoungsModulus], (PropertyTable{{0, 210000}}));
    EXPECT_EQ(elastic.tables[ThermalExpansion], (PropertyTable{{0, 1.2e-05}}));
    EXPECT_EQ(elastic.tables[Density], (PropertyTable{{20, 1}, {30, 2}}));  // the table selection keeps its points
}

TEST(ElasticBlock, WritesEachFormInItsOwnLayout)
{
    ELASTIC elastic;
    elastic.propertyType = {1, 2, 3, 1};
    elastic.tables[PoissonsRatio] = {{-20, 0.3}};
    elastic.tables[Density] = {{20, 7850}};
    TextWriter out;
    for (int i = 0; i < 4; ++i)
        elastic.writeMaterialBlock(out, i);
    EXPECT_EQ(test::textOf(out), "       1\n               0.0000E+00\n"  // empty constant writes 0
                                 "       2\n       1\n              -2.0000E+01        3.0000E-01\n"
                                 "       3\n"  // an unknown form writes nothing more
                                 "       1\n               0.0000E+00\n");
    EXPECT_THROW(elastic.value(4), std::out_of_range);
    EXPECT_THROW(elastic.setTable(-1, {}), std::out_of_range);
}

TEST(ElasticBlock, LibraryReaderIsInertOnAFreshStream)
{
    ELASTIC elastic;
    TextReader in("*YoungsModulus (MPa)\n 2\n 1\n 20 5\n", ReadMode::EightBit);
    EXPECT_TRUE(elastic.readLibraryBlock(in));
    EXPECT_TRUE(elastic.tables[YoungsModulus].empty());
    EXPECT_EQ(elastic.propertyType[YoungsModulus], 1);
}

TEST(ElasticBlock, ATableCountReservesNoMoreThanTheFileAllows)
{
    // A damaged count before a long tail: the table may take a quarter of the
    // file's characters in points, never a point per character.
    const std::string tail(400000, ' ');
    for (const char* count : {" 1000000000\n", " 2147483647\n"}) {
        ELASTIC elastic;
        TextReader in(std::string(" 2\n") + count + " 20 1\n 30 2\n 7\n" + tail, ReadMode::EightBit);
        const std::size_t allowance = std::max<std::size_t>(4096, in.remaining() / 4);
        elastic.readMaterialBlock(in, 6);
        EXPECT_EQ(elastic.tables[YoungsModulus], (PropertyTable{{20, 1}, {30, 2}}));
        EXPECT_LE(elastic.tables[YoungsModulus].capacity(), allowance);
    }
}

}  // namespace
}  // namespace zelko
