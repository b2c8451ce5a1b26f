#include <gtest/gtest.h>

#include "models/roomori.h"
#include "testutil.h"

namespace zelko {
namespace {

RoomOri sampleRecord()
{
    RoomOri record;
    record.modelNumber = 1;
    record.lengthUnit = 1;
    record.forceUnit = 4;
    record.recordFlag = true;
    record.weighted = true;
    record.inputKind = EngineeringCurve;
    record.diameter = 10;
    record.gaugeLength = 75;
    record.curves[EngineeringCurve] = {{0.001, 200, 1}, {0.05, 450.5, 2}};
    record.curves[TrueCurve] = {{9, 9}};  // another kind's list is not part of the record
    record.startIndex = 1;
    record.endIndex = 2;
    record.maxIterations = 500;
    record.targetError = 0.25;
    return record;
}

TEST(TensileRecord, WritesEachVersionBranch)
{
    const RoomOri record = sampleRecord();
    const std::string body = "                    7.5000E+01           1.0000E+01\n"
                             "     1         2\n"
                             "    1.0000E-03    2.0000E+02\n"
                             "    5.0000E-02    4.5050E+02\n"
                             "     1      2\n"
                             "   500  2.5000E-01\n";
    TextWriter current;
    record.writeMaterialBlock(current, 21, 6);
    EXPECT_EQ(test::textOf(current), "     0     1\n     1     4     1     1\n" + body);
    TextWriter oldMinor;  // minor 4 and below: no model line
    record.writeMaterialBlock(oldMinor, 21, 4);
    EXPECT_EQ(test::textOf(oldMinor), "     1     4     1     1\n" + body);
    TextWriter oldMajor;  // before major 21: no weighting flag
    record.writeMaterialBlock(oldMajor, 20, 5);
    EXPECT_EQ(test::textOf(oldMajor), "     0     1\n     1     4     1\n" + body);
}

TEST(TensileRecord, ReadsWhatItWroteInEveryVersion)
{
    const RoomOri written = sampleRecord();
    for (const int major : {20, 21}) {
        SCOPED_TRACE(major);
        TextWriter out;
        written.writeMaterialBlock(out, major, 4);
        RoomOri read;
        TextReader in = TextReader::fromText(out.text());
        read.readMaterialBlock(in, major, 4);
        EXPECT_EQ(read.lengthUnit, 1);
        EXPECT_EQ(read.forceUnit, 4);
        EXPECT_TRUE(read.recordFlag);
        EXPECT_EQ(read.weighted, major >= 21);
        EXPECT_EQ(read.inputKind, EngineeringCurve);
        EXPECT_EQ(read.diameter, 10);
        EXPECT_EQ(read.gaugeLength, 75);
        // Points keep four decimals of exponent form; weights are not written.
        EXPECT_EQ(read.curves[EngineeringCurve], (Curve{{0.001, 200}, {0.05, 450.5}}));
        EXPECT_TRUE(read.curves[TrueCurve].empty());
        EXPECT_EQ(read.startIndex, 1);
        EXPECT_EQ(read.endIndex, 2);
        EXPECT_EQ(read.maxIterations, 500);
        EXPECT_EQ(read.targetError, 0.25);
    }
}

TEST(TensileRecord, DamagedRecordsReadWhatTheyCan)
{
    // Cut after one point: the missing point stays zero, the later items keep their defaults.
    RoomOri cut;
    TextReader in = TextReader::fromText(u" 0 0 0 0\n 75 10\n 2 3\n 0.1 300\n");
    cut.readMaterialBlock(in, 21, 6);
    EXPECT_EQ(cut.curves[TrueCurve], (Curve{{0.1, 300}, {0, 0}, {0, 0}}));
    EXPECT_EQ(cut.maxIterations, 10000);
    EXPECT_EQ(cut.targetError, 1.0);

    // An input kind with no list reads no points and still writes.
    RoomOri odd;
    TextReader oddIn = TextReader::fromText(u" 0 0 0 0\n 75 10\n 9 3\n");
    odd.readMaterialBlock(oddIn, 21, 6);
    TextWriter out;
    odd.writeMaterialBlock(out, 21, 6);
    EXPECT_NE(test::textOf(out).find("     9         0\n"), std::string::npos);
}

TEST(TensileRecord, CopiesLeaveTheFittedLawBehind)
{
    RoomOri record = sampleRecord();
    record.heldModel = std::make_shared<RoomOri>();
    const RoomOri copy = record;
    EXPECT_FALSE(copy.heldModel);
    EXPECT_EQ(copy.curves, record.curves);
    EXPECT_EQ(copy.modelNumber, 1);
    TextWriter out;
    EXPECT_FALSE(copy.forwardWriteLibraryBlock(out, 6));
    EXPECT_FALSE(record.forwardWriteLibraryBlock(out, 6));  // the held record has no block either
    EXPECT_TRUE(out.text().empty());
}

}  // namespace
}  // namespace zelko
