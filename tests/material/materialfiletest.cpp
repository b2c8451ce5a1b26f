#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <vector>

#include "hot/plastic_hot.h"
#include "models/roomori.h"
#include "base/fileio.h"
#include "material/libraryexport.h"
#include "material/project.h"
#include "testutil.h"

namespace zelko {
namespace {

using test::sameBytes;
using test::utf16Reader;

const std::filesystem::path kGolden = std::filesystem::path(ZELKO_TEST_DATA) / "golden";

std::string fileBytes(const std::filesystem::path& path)
{
    std::string error;
    auto bytes = readFileBytes(path, error);
    EXPECT_TRUE(bytes.has_value()) << path << ": " << error;
    return bytes.value_or("");
}

std::string materialBytes(const Project& project)
{
    TextWriter out(TextEncoding::Utf16Le);
    project.WriteMaterialFile(out);
    return out.bytes();
}

// Each folder: a material file, the same material written again, and (when the
// material has a model) its library entry.
TEST(MaterialFileGolden, ReadsAndWritesEveryCase)
{
    int cases = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kGolden)) {
        SCOPED_TRACE(entry.path().filename().string());
        ++cases;
        Project project;
        TextReader in(fileBytes(entry.path() / "material.zmat"), ReadMode::SniffBom);
        ASSERT_TRUE(project.ReadMaterialFile(in));
        EXPECT_TRUE(sameBytes(materialBytes(project), fileBytes(entry.path() / "expected.zmat")));
        if (std::filesystem::exists(entry.path() / "expected.z3dlib")) {
            ASSERT_TRUE(project.libraryModel());
            TextWriter library(TextEncoding::EightBit);
            writeLibraryEntry(project, library);
            EXPECT_TRUE(sameBytes(library.bytes(), fileBytes(entry.path() / "expected.z3dlib")));
        }
    }
    EXPECT_GE(cases, 5);
}

TEST(MaterialFile, WritesTheExampleMaterialByteForByte)
{
    Project project;
    project.title = u"SAMPLE";
    project.elastic->tables[YoungsModulus] = {{0, 210000}};
    project.elastic->tables[PoissonsRatio] = {{0, 0.3}};
    project.elastic->propertyType[Density] = 2;
    project.elastic->tables[Density] = {{20, 7850}, {1000, 7600}};
    project.elastic->tables[ThermalExpansion] = {{0, 1.2e-5}};
    project.conductivity->points = {{20, 0.045}, {1000, 0.028}};
    project.heatCapacity->points = {{20, 0.0035}};
    EXPECT_TRUE(sameBytes(materialBytes(project), fileBytes(kGolden / "sample" / "material.zmat")));
}

TEST(MaterialFile, RoundTripKeepsTablesToThePrintedPrecision)
{
    Project written;
    written.title = u"Round trip \u2103";
    written.elastic->propertyType = {2, 1, 2, 1};
    written.elastic->tables[YoungsModulus] = {{20, 210123.456}, {500, 180000.5}, {900, 120000}};
    written.elastic->tables[PoissonsRatio] = {{0, 0.299996}};
    written.elastic->tables[Density] = {};
    written.elastic->tables[ThermalExpansion] = {{0, 1.23456e-5}};
    written.conductivity->points = {{20.123456789, 0.0255}, {1300, 0.0333}};
    written.heatCapacity->points = {};

    Project read;
    TextReader in(materialBytes(written), ReadMode::SniffBom);
    ASSERT_TRUE(read.ReadMaterialFile(in));
    EXPECT_EQ(read.title, u"Round trip \u2103\n");  // the line end stays in the title
    EXPECT_EQ(read.elastic->propertyType, written.elastic->propertyType);
    ASSERT_EQ(read.elastic->tables[YoungsModulus].size(), 3u);
    EXPECT_DOUBLE_EQ(read.elastic->tables[YoungsModulus][0].value, 2.1012e5);  // five significant digits
    EXPECT_DOUBLE_EQ(read.elastic->tables[YoungsModulus][1].temperature, 500);
    EXPECT_DOUBLE_EQ(read.elastic->value(PoissonsRatio), 0.3);
    EXPECT_TRUE(read.elastic->tables[Density].empty());
    EXPECT_DOUBLE_EQ(read.elastic->value(ThermalExpansion), 1.2346e-5);
    ASSERT_EQ(read.conductivity->points.size(), 2u);
    EXPECT_DOUBLE_EQ(read.conductivity->points[0].temperature, 20.1234568);  // seven decimals
    EXPECT_TRUE(read.heatCapacity->points.empty());
    EXPECT_FALSE(read.activeModel);
}

TEST(MaterialFile, RejectsVersionsItDoesNotKnowAndChangesNothing)
{
    const char* rejected[] = {
        "** VER.        22        6\n*Title\nX\n",  // major too new
        "** VER.        21        7\n*Title\nX\n",  // minor too new
        "** VER. 21\n*Title\nX\n",                  // fewer than four tokens
        "** VER.        21        6\nX\n",          // no title keyword
        "** VER.        21        5\n*Title \nX\n", // the keyword must match whole
        "",
    };
    for (const char* text : rejected) {
        SCOPED_TRACE(text);
        Project project;
        project.title = u"kept";
        project.conductivity->points = {{1, 2}};
        TextReader in = utf16Reader(std::string(text) + "** HEAT\n 0\n 0\n");
        EXPECT_FALSE(project.ReadMaterialFile(in));
        EXPECT_EQ(project.title, u"kept");
        EXPECT_EQ(project.conductivity->points.size(), 1u);
    }
}

TEST(MaterialFile, FindsTheTitleKeywordAfterBlankLinesAndSkipsEmptyLinesAfterTheTitle)
{
    Project project;
    TextReader in = utf16Reader("** VER. 21 6\n\n  \n*Title\nT\n\n** HEAT\n 1\n 20 0.5\n 0\n");
    ASSERT_TRUE(project.ReadMaterialFile(in));
    EXPECT_EQ(project.title, u"T\n");
    ASSERT_EQ(project.conductivity->points.size(), 1u);
    EXPECT_EQ(project.conductivity->points[0], (TablePoint{20, 0.5}));
}

TEST(MaterialFile, CutsALongTitleAt255Characters)
{
    Project project;
    TextReader in = utf16Reader("** VER. 21 6\n*Title\n" + std::string(300, 'T') + "\n");
    ASSERT_TRUE(project.ReadMaterialFile(in));
    EXPECT_EQ(project.title, std::u16string(255, u'T'));
}

TEST(MaterialFile, ModelSectionInstallsOneSharedObjectOrKeepsThePrevious)
{
    Project project;
    const std::string head = "** VER. 21 6\n*Title\nT\n** PLASTIC\n";
    TextReader cold = utf16Reader(head + "     0     3\n 1 2 0 1\n 75 10\n 2 1\n 0.1 400\n 0 5\n 100 0.5\n");
    ASSERT_TRUE(project.ReadMaterialFile(cold));
    ASSERT_TRUE(project.activeModel);
    EXPECT_EQ(project.activeModel, project.libraryModel());  // one object, two handles
    const auto* record = dynamic_cast<RoomOri*>(project.activeModel.get());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->modelNumber, 3);
    EXPECT_EQ(record->forceUnit, 2);
    EXPECT_TRUE(record->weighted);
    EXPECT_DOUBLE_EQ(record->gaugeLength, 75);
    EXPECT_DOUBLE_EQ(record->diameter, 10);
    ASSERT_EQ(record->curves[TrueCurve].size(), 1u);
    EXPECT_EQ(record->curves[TrueCurve][0].y, 400);
    EXPECT_EQ(record->endIndex, 5);
    EXPECT_EQ(record->maxIterations, 100);

    const std::shared_ptr<Plastic> before = project.activeModel;
    for (const char* section : {"NULL\n", "     7    3\n"}) {  // no model; a kind that doesn't exist
        SCOPED_TRACE(section);
        TextReader in = utf16Reader(head + section + "\n** HEAT\n 0\n 0\n");
        ASSERT_TRUE(project.ReadMaterialFile(in));
        EXPECT_EQ(project.activeModel, before);
        EXPECT_EQ(project.libraryModel(), before);
    }

    TextReader hot = utf16Reader(head + "       1       161        1\n       0\n 0 0 0 0\n");
    ASSERT_TRUE(project.ReadMaterialFile(hot));
    const auto* hotModel = dynamic_cast<PLASTIC_HOT*>(project.activeModel.get());
    ASSERT_NE(hotModel, nullptr);
    EXPECT_EQ(hotModel->modelNumber, 161);
    EXPECT_TRUE(hotModel->hasThreeColumns());
    EXPECT_EQ(project.libraryModel(), project.activeModel);
}

TEST(MaterialFile, OldLayoutsDecideTheModelKindTheirOwnWay)
{
    struct Case {
        int minor;
        const char* modelLine;
        int kind;
        int number;
    };
    const Case cases[] = {
        {4, "      50\n", HotModel, 50},  {4, "     168\n", HotModel, 168}, {4, "     169\n", ColdModel, 169},
        {4, "       1\n", ColdModel, 1},  {5, " 1 17 1\n", HotModel, 17},  {5, " 0 4\n", ColdModel, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.modelLine);
        Project project;
        const std::string title = c.minor >= 5 ? "*Title\nT\n" : "T\n";
        TextReader in = utf16Reader("** VER. 21 " + std::to_string(c.minor) + "\n" + title + "** PLASTIC\n" +
                                    c.modelLine + "\n** HEAT\n 0\n 0\n");
        ASSERT_TRUE(project.ReadMaterialFile(in));
        ASSERT_TRUE(project.activeModel);
        EXPECT_EQ(project.activeModel->modelKind, c.kind);
        EXPECT_EQ(project.activeModel->modelNumber, c.number);
        if (auto* hot = dynamic_cast<PLASTIC_HOT*>(project.activeModel.get())) {
            EXPECT_FALSE(hot->hasThreeColumns());
        }  // only the current layout carries the flag
    }
}

TEST(MaterialFile, ElasticSectionRules)
{
    Project project;
    project.elastic->tables[ThermalExpansion] = {{0, 9}};
    // A form-2 point line with one number ends the section: the properties after it keep their tables.
    TextReader in = utf16Reader(
        "** VER. 21 6\n*Title\nT\n** ELASTIC\n 2\n 3\n 20 1\n\n 100 2\n 300\n 1\n 0.3\n 1\n 7\n 1\n 8\n");
    ASSERT_TRUE(project.ReadMaterialFile(in));
    EXPECT_EQ(project.elastic->tables[YoungsModulus], (PropertyTable{{20, 1}, {100, 2}}));
    EXPECT_EQ(project.elastic->tables[ThermalExpansion], (PropertyTable{{0, 9}}));

    // Oldest layout: the four constants are appended to what the tables held.
    Project old;
    old.elastic->tables[Density] = {{20, 1}};
    TextReader oldIn = utf16Reader("** VER. 21 3\nT\n** ELASTIC\nsome, header, line\n\n1 2 3\n4,5,6,7\n");
    ASSERT_TRUE(old.ReadMaterialFile(oldIn));
    EXPECT_EQ(old.elastic->tables[Density], (PropertyTable{{20, 1}, {0, 6}}));
    EXPECT_EQ(old.elastic->tables[YoungsModulus], (PropertyTable{{0, 4}}));
}

TEST(MaterialFile, HostileCountsNeitherAllocateNorHang)
{
    const auto start = std::chrono::steady_clock::now();
    Project project;
    TextReader in = utf16Reader(
        // Every line with two tokens is a point until one has fewer.
        "** VER. 21 6\n*Title\nT\n** ELASTIC\n 2\n 1000000000\n 20 1\n 30 2\n 7\n"
        "** PLASTIC\n 0 1\n 0 0 0 0\n 1 1\n 0 2000000000\n 1 2\n"
        "** PLASTIC\n 1 16 0\n 0\n 2000000000 2000000000 2000000000 2000000000\n 1\n"
        // The token reader takes what follows as points, so the second table finds nothing.
        "** HEAT\n 2147483647\n 1 2\n");
    ASSERT_TRUE(project.ReadMaterialFile(in));
    EXPECT_EQ(project.elastic->tables[YoungsModulus], (PropertyTable{{20, 1}, {30, 2}}));
    // The record's huge count took the whole allowance, so the table gets none.
    EXPECT_TRUE(project.conductivity->points.empty());
    EXPECT_TRUE(project.heatCapacity->points.empty());
    const auto* hot = dynamic_cast<PLASTIC_HOT*>(project.activeModel.get());
    ASSERT_NE(hot, nullptr);
    EXPECT_TRUE(hot->strainRates.empty());  // a grid the file can't hold drops the block
    EXPECT_TRUE(hot->curves.empty());
    materialBytes(project);            // and what was read can be written

    // Every section claims from one allowance for the whole file: repeating a
    // section with a huge count cannot multiply what the reader allocates.
    std::string repeated = "** VER. 21 6\n*Title\nT\n";
    for (int i = 0; i < 2000; ++i)
        repeated += "** HEAT\n 999999999 999999999\n** PLASTIC\n 0 1\n 0 0 0 0\n 1 1\n 0 999999999\n";
    Project repeatedProject;
    TextReader repeatedIn = utf16Reader(repeated);
    ASSERT_TRUE(repeatedProject.ReadMaterialFile(repeatedIn));
    EXPECT_LT(materialBytes(repeatedProject).size(), 20u * repeated.size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// Whether the reader accepted the bytes and found them cut short.
struct ReadOutcome {
    bool accepted = false;
    bool endedEarly = false;
};

ReadOutcome readOutcome(std::string_view bytes, Project& project)
{
    TextReader in(bytes, ReadMode::SniffBom);
    ReadOutcome outcome;
    outcome.endedEarly = true;  // so a reader that forgets to report can't pass
    outcome.accepted = project.ReadMaterialFile(in, nullptr, &outcome.endedEarly);
    return outcome;
}

ReadOutcome readOutcome(std::string_view bytes)
{
    Project project;
    return readOutcome(bytes, project);
}

std::vector<std::filesystem::path> everyMaterialFileOfTheTests()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(ZELKO_TEST_DATA))
        if (entry.path().extension() == ".zmat")
            files.push_back(entry.path());
    return files;
}

TEST(MaterialFileEnd, WholeFilesNeverEndEarly)
{
    const auto files = everyMaterialFileOfTheTests();
    EXPECT_GE(files.size(), 15u);
    for (const auto& file : files) {
        SCOPED_TRACE(file.string());
        Project project;
        const ReadOutcome outcome = readOutcome(fileBytes(file), project);
        ASSERT_TRUE(outcome.accepted);
        EXPECT_FALSE(outcome.endedEarly);
        // Nor does what the writer makes of it.
        EXPECT_FALSE(readOutcome(materialBytes(project)).endedEarly);
    }
    // The writer's smallest file: no model, empty tables.
    EXPECT_FALSE(readOutcome(materialBytes(Project())).endedEarly);
    // Hand-made files may skip sections and end on blank lines; the HEAT section is what a whole file ends with.
    EXPECT_FALSE(readOutcome(test::utf16File("** VER. 21 6\n*Title\nT\n** HEAT\n 1\n 20 0.5\n 0\n\n  \n")).endedEarly);
    EXPECT_FALSE(readOutcome(test::utf16File("** VER. 21 6\n*Title\nT\n** HEAT\n 0\n 0\n   ")).endedEarly);
}

TEST(MaterialFileEnd, EveryCutOfAWholeFileIsNoticed)
{
    // A copy that failed part way, at any byte: rejected when too little is left
    // to know the file, else read as far as it goes and reported.
    std::size_t read = 0;
    for (const auto& file : everyMaterialFileOfTheTests()) {
        const std::string whole = fileBytes(file);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const ReadOutcome outcome = readOutcome(std::string_view(whole).substr(0, size));
            if (outcome.accepted) {
                ++read;
                EXPECT_TRUE(outcome.endedEarly) << file << " cut to " << size << " bytes";
            }
        }
    }
    EXPECT_GT(read, 10000u);  // the loop really read the cuts
}

TEST(MaterialFileEnd, CutShortFilesReadAsBeforeAndAreReported)
{
    const std::string head = "** VER. 21 6\n*Title\nT\n** ELASTIC\n 1\n 210000\n 1\n 0.3\n 1\n 7850\n 1\n 1.2e-5\n";
    const std::string wholeHeat = "** HEAT\n 2\n 20 0.5\n 1000 0.6\n 1\n 20 0.004\n";
    ASSERT_FALSE(readOutcome(test::utf16File(head + "** PLASTIC\nNULL\n" + wholeHeat)).endedEarly);

    // The HEAT section never reached: the copy stopped after the model.
    Project noHeat;
    noHeat.conductivity->points = {{1, 2}};
    const ReadOutcome stoppedBeforeHeat = readOutcome(test::utf16File(head + "** PLASTIC\nNULL\n"), noHeat);
    EXPECT_TRUE(stoppedBeforeHeat.accepted);
    EXPECT_TRUE(stoppedBeforeHeat.endedEarly);
    EXPECT_EQ(noHeat.conductivity->points, (PropertyTable{{1, 2}}));  // an absent section keeps what was there
    EXPECT_DOUBLE_EQ(noHeat.elastic->value(Density), 7850);

    // A count that promises more points than the file holds: the missing ones are zero.
    Project shortTable;
    EXPECT_TRUE(readOutcome(test::utf16File(head + "** HEAT\n 2\n 20 0.5\n 1000 0.6\n 3\n 20 0.004\n"), shortTable)
                    .endedEarly);
    EXPECT_EQ(shortTable.heatCapacity->points, (PropertyTable{{20, 0.004}, {0, 0}, {0, 0}}));

    // The model's number line missing: the file ends right after the PLASTIC header.
    EXPECT_TRUE(readOutcome(test::utf16File(head + "** PLASTIC\n\n")).endedEarly);
    // A cold record whose curve stops part way.
    Project cutCurve;
    EXPECT_TRUE(readOutcome(test::utf16File(head + "** PLASTIC\n 0 3\n 1 2 0 1\n 75 10\n 2 3\n 0.1 400\n 0.2"), cutCurve)
                    .endedEarly);
    const auto* record = dynamic_cast<RoomOri*>(cutCurve.activeModel.get());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->curves[TrueCurve], (Curve{{0.1, 400}, {0.2, 0}, {0, 0}}));
    // A hot record whose curves stop before the grid is full.
    EXPECT_TRUE(readOutcome(test::utf16File(head + "** PLASTIC\n 1 17 0\n 0\n 1 2 1 0\n 0.1\n\n 900\n 1000\n\n 0.2\n\n\n"
                                                   "\tstrain-rate: 0.1\ttemperature: 900\n 1\n 0 0.2 50\n"))
                    .endedEarly);
    // The elastic section stopping inside a table, and the title with nothing after it.
    EXPECT_TRUE(readOutcome(test::utf16File("** VER. 21 6\n*Title\nT\n** ELASTIC\n 2\n 3\n 20 1\n")).endedEarly);
    EXPECT_TRUE(readOutcome(test::utf16File("** VER. 21 6\n*Title\nT\n")).endedEarly);

    // Cut inside the last number: every number is there, but the last line has lost its end.
    Project cutNumber;
    EXPECT_TRUE(readOutcome(test::utf16File(head + wholeHeat.substr(0, wholeHeat.size() - 3)), cutNumber).endedEarly);
    EXPECT_EQ(cutNumber.heatCapacity->points, (PropertyTable{{20, 0.0}}));
    // Cut between the CR and the LF of the last line end (8-bit and UTF-16 files alike).
    const std::string utf16 = test::utf16File(head + wholeHeat);
    EXPECT_TRUE(readOutcome(std::string_view(utf16).substr(0, utf16.size() - 2)).endedEarly);
    EXPECT_TRUE(readOutcome(std::string_view(utf16).substr(0, utf16.size() - 1)).endedEarly);
    std::string eightBit = head + wholeHeat;
    eightBit.replace(eightBit.size() - 1, 1, "\r");
    EXPECT_TRUE(readOutcome(eightBit).endedEarly);
}

TEST(MaterialFile, LibraryFileReaderLeavesTheMaterialAsItWas)
{
    Project project;
    project.title = u"kept";
    TextReader in("*Unit (N)\n1\n*PlasticityModel (MPa)\n17\n", ReadMode::EightBit);
    EXPECT_TRUE(project.ReadLibraryFile(in));
    EXPECT_EQ(project.title, u"kept");
    EXPECT_FALSE(project.activeModel);
    EXPECT_FALSE(project.libraryModel());
}

TEST(MaterialTitle, SaveHonoursOnlyDoublePercent)
{
    EXPECT_EQ(titleFromViewText(u"100%% C45 %d %s"), u"100% C45 %d %s");
    EXPECT_EQ(titleFromViewText(std::u16string(400, u'x')).size(), 255u);
}

TEST(MaterialTitle, CutKeepsWholeCharacters)
{
    // A title of emoji (two UTF-16 units each): the 255th unit is the first half of
    // a pair, so the cut falls before the pair.
    std::u16string emoji;
    for (int i = 0; i < 200; ++i)
        emoji += u"\U0001F600";
    EXPECT_EQ(titleFromViewText(emoji), emoji.substr(0, 254));
    // One letter before them: the 255th unit ends a pair and is kept.
    EXPECT_EQ(titleFromViewText(u"x" + emoji), (u"x" + emoji).substr(0, 255));
    // "%%" read as "%" moves the cut as well.
    EXPECT_EQ(titleFromViewText(u"%%%%" + emoji), (u"%%" + emoji).substr(0, 254));
}

}  // namespace
}  // namespace zelko
