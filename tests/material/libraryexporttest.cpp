#include <gtest/gtest.h>

#include "hot/plastic_hot.h"
#include "models/roomori.h"
#include "base/fileio.h"
#include "material/libraryexport.h"
#include "testutil.h"

namespace zelko {
namespace {

using test::sameBytes;

// A fitted law stands in for the cold laws: it writes a block of its own.
class LawWithBlock : public RoomOri {
public:
    bool writeLibraryBlock(TextWriter& out, int version) const override
    {
        out.format("%8d\n%8d\n", modelNumber, version);
        return true;
    }
};

std::string entryOf(const Project& project, bool* wroteModel = nullptr)
{
    TextWriter out(TextEncoding::EightBit);
    const bool wrote = writeLibraryEntry(project, out);
    if (wroteModel)
        *wroteModel = wrote;
    return out.bytes();
}

std::string crlf(std::string text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\n')
            out.push_back('\r');
        out.push_back(c);
    }
    return out;
}

TEST(LibraryExport, WritesTheWholeEntryByteForByte)
{
    Project project;
    auto law = std::make_shared<LawWithBlock>();
    law->modelNumber = 3;
    project.setModel(law);
    project.elastic->propertyType = {1, 1, 2, 1};
    project.elastic->tables[YoungsModulus] = {{0, 210000}};
    project.elastic->tables[PoissonsRatio] = {{0, 0.3}};
    project.elastic->tables[Density] = {{20, 7850}, {1000, 7600}};
    // Thermal expansion left empty: a constant with no point writes 0.
    project.conductivity->points = {{20, 0.045}, {1000, 0.028}};

    bool wroteModel = false;
    const std::string entry = entryOf(project, &wroteModel);
    EXPECT_TRUE(wroteModel);
    const std::string rule(80, '*');
    EXPECT_TRUE(sameBytes(entry, crlf(rule + "\n*MaterialLibrary\n" + rule + "\n"
                                          "*ZelkoLibrary/Material/Cold/3\n\n"
                                          "*Version\n      1\n"
                                          "*Unit                                                       (MPa)\n"
                                          "      2\n"
                                          "*YoungsModulus                                              (MPa)\n"
                                          "       1\n               2.1000E+05\n"
                                          "*PoissonsRatio                                              (   )\n"
                                          "       1\n               3.0000E-01\n"
                                          "*Density                                                    (kgm/mm^3)\n"
                                          "       2\n       2\n"
                                          "               2.0000E+01        7.8500E+03\n"
                                          "               1.0000E+03        7.6000E+03\n"
                                          "*CoefficientofThermalExpansion                              (1/C)\n"
                                          "       1\n               0.0000E+00\n"
                                          "*PlasticityModel                                            (MPa)\n"
                                          "       3\n       6\n"
                                          "*ThermalConductivity                                        (C,W/(mm*C))\n"
                                          "      2\n      2.0000E+01  4.5000E-02\n      1.0000E+03  2.8000E-02\n"
                                          "*VolumetricHeatCapacity                                     (C,(W*s)/(mm^3*C))\n"
                                          "      0\n")));
}

TEST(LibraryExport, HeaderFilesTheModelUnderItsKindAndNumber)
{
    Project project;
    auto hot = std::make_shared<PLASTIC_HOT>();
    hot->modelNumber = 161;
    project.setModel(hot);
    bool wroteModel = true;
    const std::string entry = entryOf(project, &wroteModel);
    EXPECT_NE(entry.find("\r\n*ZelkoLibrary/Material/Hot/161\r\n\r\n*Version\r\n"), std::string::npos);
    EXPECT_FALSE(wroteModel);  // the bare data set has no block
    // The keyword line is followed straight by the next one.
    EXPECT_NE(entry.find("(MPa)\r\n*ThermalConductivity"), std::string::npos);
}

TEST(LibraryExport, EmptyFormTwoTableWritesFormAndZeroCountInEightColumns)
{
    Project project;
    project.setModel(std::make_shared<RoomOri>());
    project.elastic->propertyType[PoissonsRatio] = 2;
    EXPECT_NE(entryOf(project).find("(   )\r\n       2\r\n       0\r\n*Density"), std::string::npos);
}

TEST(LibraryExport, ElasticOldLayoutTestsTheModulusTableForEveryProperty)
{
    ELASTIC elastic;
    elastic.tables[PoissonsRatio] = {{0, 0.3}};
    TextWriter out(TextEncoding::EightBit);
    elastic.writeLibraryBlock(out, 4);
    // Young's modulus is empty, so every property writes 0, Poisson's ratio included.
    EXPECT_EQ(test::textOf(out), std::string(elasticLibraryKeyword(0)) + "      1\n      0.0000E+00\n" +
                                     elasticLibraryKeyword(1) + "      1\n      0.0000E+00\n" +
                                     elasticLibraryKeyword(2) + "      1\n      0.0000E+00\n" +
                                     elasticLibraryKeyword(3) + "      1\n      0.0000E+00\n");
    elastic.tables[YoungsModulus] = {{20, 2.1e5}, {500, 1.8e5}};
    TextWriter again(TextEncoding::EightBit);
    elastic.writeLibraryBlock(again, 4);
    EXPECT_NE(test::textOf(again).find("(MPa)\n      1\n      2.1000E+05\n"), std::string::npos);
    EXPECT_NE(test::textOf(again).find("(   )\n      1\n      3.0000E-01\n"), std::string::npos);
}

TEST(LibraryExport, ExportingTwiceLeavesOneEntry)
{
    Project project;
    project.setModel(std::make_shared<RoomOri>());
    const auto path = std::filesystem::temp_directory_path() / "zelko-export-twice.z3dlib";
    std::string error;
    ASSERT_TRUE(saveFileAtomically(path, entryOf(project), error));
    ASSERT_TRUE(saveFileAtomically(path, entryOf(project), error));
    EXPECT_EQ(*readFileBytes(path, error), entryOf(project));
    std::filesystem::remove(path);
}

TEST(LibraryPath, ProposedFromTheInstallationVariable)
{
    EXPECT_EQ(installationVariableName(), "ZELKO_V24R02");
    EXPECT_FALSE(proposedLibraryPath("", '/').has_value());
    EXPECT_EQ(*proposedLibraryPath("/opt/zelko//", '/'), "/opt/zelko/Library/Library_Material/sample.z3dlib");
    EXPECT_EQ(*proposedLibraryPath("C:\\ZELKO\\\\", '\\'), "C:\\ZELKO\\Library\\Library_Material\\sample.z3dlib");
}

}  // namespace
}  // namespace zelko
