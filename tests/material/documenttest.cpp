#include <gtest/gtest.h>

#include <filesystem>
#include <typeinfo>

#include "base/fileio.h"
#include "cold/coldlaw.h"
#include "hot/plastic_hot.h"
#include "material/document.h"
#include "material/modelregistry.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

using test::sameBytes;

const std::filesystem::path kGolden = std::filesystem::path(ZELKO_TEST_DATA) / "golden";

// Everything a material holds that leaves the program: its file and its entry.
struct Snapshot {
    std::string file;
    std::string entry;
};

Snapshot snapshotOf(const Project& material)
{
    return {materialFileBytes(material), material.libraryModel() ? libraryEntryBytes(material).bytes : ""};
}

void expectSame(const Project& actual, const Snapshot& expected)
{
    const Snapshot now = snapshotOf(actual);
    EXPECT_TRUE(sameBytes(now.file, expected.file));
    EXPECT_TRUE(sameBytes(now.entry, expected.entry));
}

// A tensile record holding a fitted Swift law, as the tensile screen leaves it.
Project fittedColdMaterial()
{
    Project material;
    material.title = u"AISI 1045";
    material.elastic->setTable(YoungsModulus, {{20.0, 210000.0}});
    material.conductivity->points = {{20.0, 0.05}, {500.0, 0.04}};
    auto record = std::make_shared<RoomOri>();
    record->modelNumber = 1;
    record->inputKind = TrueCurve;
    record->curves[TrueCurve] = {{0.01, 400.0}, {0.05, 480.0}, {0.1, 520.0}};
    auto law = std::dynamic_pointer_cast<ColdLaw>(createModel({ColdModel, 1}));
    static_cast<RoomOri&>(*law) = *record;
    law->parameters = {700.0, 0.01, 0.2};
    law->fitError = 3.5;
    record->heldModel = law;
    material.setModel(record);
    return material;
}

TEST(MaterialValue, ACopyOwnsEveryPartAndKeepsTheExportedLawTiedToItsRecord)
{
    const Project original = fittedColdMaterial();
    const Snapshot before = snapshotOf(original);
    ASSERT_EQ(original.libraryModel(), original.activeModel->heldModel);

    Project copy = original;
    expectSame(copy, before);
    EXPECT_NE(copy.elastic, original.elastic);
    EXPECT_NE(copy.conductivity, original.conductivity);
    EXPECT_NE(copy.activeModel, original.activeModel);
    // The copy exports its own copy of the law, not the original's.
    EXPECT_EQ(copy.libraryModel(), copy.activeModel->heldModel);
    EXPECT_NE(copy.libraryModel(), original.libraryModel());

    copy.title = u"changed";
    copy.elastic->setTable(YoungsModulus, {{20.0, 1.0}});
    copy.conductivity->points.clear();
    dynamic_cast<RoomOri&>(*copy.activeModel).curves[TrueCurve].clear();
    dynamic_cast<ColdLaw&>(*copy.libraryModel()).parameters[0] = 1.0;
    expectSame(original, before);
}

TEST(MaterialValue, EveryModelClonesIntoItsOwnClassWithItsData)
{
    for (const ModelId id : knownModelIds()) {
        SCOPED_TRACE(testing::Message() << "kind " << id.kind << " model " << id.number);
        const std::shared_ptr<Plastic> model = createModel(id);
        ASSERT_TRUE(model);
        EXPECT_EQ(model->modelKind, id.kind);
        EXPECT_EQ(model->modelNumber, id.number);
        model->referenceValue = 12.5;
        model->heldModel = createModel({ColdModel, 3});
        if (auto* hot = dynamic_cast<PLASTIC_HOT*>(model.get())) {
            hot->temperatures = {900.0, 1000.0};
            hot->strainRates = {0.1};
            hot->strains = {0.2};
            hot->curves = {{HotCurve{{0.0, 0.2, 120.0}}}, {HotCurve{{0.0, 0.2, 90.0}}}};
        } else {
            dynamic_cast<RoomOri&>(*model).curves[TrueCurve] = {{0.1, 300.0}};
        }

        const std::shared_ptr<Plastic> copy = model->clone();
        ASSERT_TRUE(copy);
        EXPECT_EQ(typeid(*copy), typeid(*model));
        EXPECT_NE(copy, model);
        EXPECT_EQ(copy->referenceValue, 12.5);
        ASSERT_TRUE(copy->heldModel);
        EXPECT_NE(copy->heldModel, model->heldModel);
        EXPECT_EQ(typeid(*copy->heldModel), typeid(*model->heldModel));

        TextWriter a, b, libraryA(TextEncoding::EightBit), libraryB(TextEncoding::EightBit);
        model->writeMaterialBlock(a, FORMAT_MAJOR, FORMAT_MINOR);
        copy->writeMaterialBlock(b, FORMAT_MAJOR, FORMAT_MINOR);
        EXPECT_TRUE(sameBytes(b.bytes(), a.bytes()));
        EXPECT_EQ(model->writeLibraryBlock(libraryA, 6), copy->writeLibraryBlock(libraryB, 6));
        EXPECT_TRUE(sameBytes(libraryB.bytes(), libraryA.bytes()));
    }
    EXPECT_FALSE(createModel({HotModel, 2}));
    EXPECT_FALSE(createModel({ColdModel, 17}));
}

TEST(MaterialDocument, AnEditIsACopyThatIsCommittedWholeOrDropped)
{
    MaterialDocument document;
    document.commit(fittedColdMaterial());
    const Snapshot committed = snapshotOf(document.material());

    {
        // A screen edits its copy and is cancelled.
        Project edit = document.copy();
        edit.title = u"edited";
        edit.heatCapacity->points.push_back({100.0, 4.0});
        dynamic_cast<RoomOri&>(*edit.activeModel).diameter = 99.0;
        dynamic_cast<ColdLaw&>(*edit.libraryModel()).fitError = 0.0;
    }
    expectSame(document.material(), committed);

    Project edit = document.copy();
    edit.title = u"edited";
    document.commit(std::move(edit));
    EXPECT_EQ(document.material().title, u"edited");
    EXPECT_TRUE(document.modified());

    ASSERT_TRUE(document.canUndo());
    document.undo();
    expectSame(document.material(), committed);
    ASSERT_TRUE(document.canRedo());
    document.redo();
    EXPECT_EQ(document.material().title, u"edited");
    EXPECT_FALSE(document.canRedo());
}

TEST(MaterialDocument, ARunOfTitleKeystrokesIsOneStepAndCloseForgetsEverything)
{
    MaterialDocument document;
    document.commit(fittedColdMaterial());
    const Snapshot beforeTyping = snapshotOf(document.material());
    for (const char16_t* typed : {u"A", u"AI", u"AIS", u"AISI"})
        document.setTitle(typed);
    EXPECT_EQ(document.material().title, u"AISI");
    document.undo();
    expectSame(document.material(), beforeTyping);  // the whole run at once
    document.redo();
    EXPECT_EQ(document.material().title, u"AISI");

    // A commit in between starts a new run.
    Project edit = document.copy();
    edit.conductivity->points.clear();
    document.commit(std::move(edit));
    document.setTitle(u"AISI 1045");
    document.undo();
    EXPECT_EQ(document.material().title, u"AISI");
    EXPECT_TRUE(document.material().conductivity->points.empty());

    document.close();
    expectSame(document.material(), snapshotOf(Project()));
    EXPECT_FALSE(document.modified());
    EXPECT_FALSE(document.canUndo());
    EXPECT_FALSE(document.canRedo());
}

TEST(MaterialDocument, OpensWithTheFileVersionAndARejectedFileChangesNothing)
{
    const test::TemporaryFolder temporary;
    const auto& folder = temporary.path();
    MaterialDocument document;
    std::string error;
    ASSERT_TRUE(document.open(kGolden / "minor5-cold" / "material.zmat", error)) << error;
    EXPECT_EQ(document.version().major, 21);
    EXPECT_EQ(document.version().minor, 5);
    EXPECT_FALSE(document.modified());
    const Snapshot opened = snapshotOf(document.material());

    // A newer layout than this program writes is refused before anything is read.
    TextWriter newer(TextEncoding::Utf16Le);
    newer.put(std::string_view("** VER.  22 0\n*Title\nnewer\n"));
    ASSERT_TRUE(saveFileAtomically(folder / "newer.zmat", newer.bytes(), error));
    EXPECT_FALSE(document.open(folder / "newer.zmat", error));
    EXPECT_EQ(error, "not a material file (version line or title rejected)");
    EXPECT_FALSE(document.open(folder / "missing.zmat", error));
    expectSame(document.material(), opened);
    EXPECT_EQ(document.version().minor, 5);

    // Saved and opened again: the same bytes, in the writer's layout.
    ASSERT_TRUE(document.save(folder / "again.zmat", error)) << error;
    MaterialDocument reopened;
    ASSERT_TRUE(reopened.open(folder / "again.zmat", error)) << error;
    EXPECT_EQ(reopened.version().minor, FORMAT_MINOR);
    expectSame(reopened.material(), snapshotOf(document.material()));
}

TEST(MaterialDocument, RefusesToSaveAMaterialTooLargeToOpenAgain)
{
    const test::TemporaryFolder temporary;
    const auto path = temporary.path() / "kept.zmat";
    MaterialDocument document;
    std::string error;
    ASSERT_TRUE(document.save(path, error)) << error;
    const auto saved = readFileBytes(path, error);
    ASSERT_TRUE(saved) << error;

    // A tensile test logged at a high rate: 4.5 million points, 60 bytes each in
    // the file, beyond what the reader takes.
    Project huge = document.copy();
    auto record = std::make_shared<RoomOri>();
    record->inputKind = EngineeringCurve;
    record->curves[EngineeringCurve].assign(4'500'000, CurvePoint{0.1, 200.0});
    huge.setModel(record);
    document.commit(std::move(huge));
    EXPECT_FALSE(document.save(path, error));
    EXPECT_TRUE(error.starts_with("the material would be too large to read back (257 MB, more than the 256 MB a "
                                  "material file may hold)"))
        << error;
    EXPECT_EQ(readFileBytes(path, error), saved);  // the previous file stays
    EXPECT_TRUE(document.modified());
}

TEST(MaterialDocument, OpensAFileCutShortAndSaysSo)
{
    const test::TemporaryFolder temporary;
    const auto& folder = temporary.path();
    std::string error;
    const auto whole = readFileBytes(kGolden / "cold-record" / "material.zmat", error);
    ASSERT_TRUE(whole) << error;
    // A copy to a full USB stick: the curve's last points and the thermal tables are gone.
    const std::string cut = whole->substr(0, whole->size() * 3 / 4);
    ASSERT_TRUE(saveFileAtomically(folder / "cut.zmat", cut, error)) << error;

    MaterialDocument document;
    ASSERT_TRUE(document.open(folder / "cut.zmat", error)) << error;
    EXPECT_EQ(document.warnings(), std::vector<std::string>{"the file ends early; part of the material may be missing"});
    // Read as far as it goes, exactly as the bytes read without a document.
    Project read;
    FileVersion version;
    std::vector<std::string> warnings;
    ASSERT_TRUE(readMaterialBytes(cut, read, version, &warnings));
    EXPECT_EQ(warnings, document.warnings());
    expectSame(document.material(), snapshotOf(read));

    // A rejected file leaves the material and what was said about it; a whole file clears it.
    EXPECT_FALSE(document.open(folder / "missing.zmat", error));
    EXPECT_EQ(document.warnings().size(), 1u);
    ASSERT_TRUE(document.open(kGolden / "cold-record" / "material.zmat", error)) << error;
    EXPECT_TRUE(document.warnings().empty());
    ASSERT_TRUE(readMaterialBytes(*whole, read, version, &warnings));
    EXPECT_TRUE(warnings.empty());
}

TEST(MaterialDocument, ExportsTheFittedLawAndRefusesAMaterialWithoutModel)
{
    const test::TemporaryFolder temporary;
    const auto& folder = temporary.path();
    MaterialDocument document;
    std::string error;
    bool wroteBlock = true;
    EXPECT_FALSE(document.exportLibrary(folder / "none.z3dlib", wroteBlock, error));
    EXPECT_EQ(error, "the material has no flow-stress model, so it has no library entry");
    EXPECT_FALSE(std::filesystem::exists(folder / "none.z3dlib"));

    document.commit(fittedColdMaterial());
    ASSERT_TRUE(document.exportLibrary(folder / "swift.z3dlib", wroteBlock, error)) << error;
    EXPECT_TRUE(wroteBlock);
    const auto bytes = readFileBytes(folder / "swift.z3dlib", error);
    ASSERT_TRUE(bytes);
    EXPECT_TRUE(sameBytes(*bytes, libraryEntryBytes(document.material()).bytes));
    EXPECT_NE(bytes->find("*ZelkoLibrary/Material/Cold/1\r\n"), std::string::npos);

    // A record without a fitted law exports itself, which has no block.
    Project bare = document.copy();
    bare.activeModel->heldModel.reset();
    document.commit(std::move(bare));
    ASSERT_TRUE(document.exportLibrary(folder / "record.z3dlib", wroteBlock, error)) << error;
    EXPECT_FALSE(wroteBlock);
    EXPECT_EQ(missingModelBlockWarning(*document.material().libraryModel()),
              "the cold model 1 wrote no block; the entry's model section is empty");
}

}  // namespace
}  // namespace zelko
