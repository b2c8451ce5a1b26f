#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "base/fileio.h"
#include "cold/curvefile.h"
#include "hot/plastic_hot.h"
#include "material/document.h"
#include "material/tensilechain.h"
#include "material/tensileview.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

// The measured AISI 1045 test (tests/data/measured), load in N against
// displacement in mm, as the tensile screen takes it in.
TensileTest steel1045()
{
    std::string error;
    const auto bytes = readFileBytes(ZELKO_TEST_DATA "/measured/tensile-steel-1045.csv", error);
    TensileTest test;
    test.inputKind = LoadDisplacement;
    test.curve = readCurveText(bytes.value_or(""), error).value_or(Curve{});
    test.diameter = 10.0;
    test.gaugeLength = 75.0;
    return test;
}

// The start index of the 1045 case in tests/data/cold-fits: past the toe of the curve.
constexpr int kStart1045 = 220;

Project coldMaterial()
{
    Project material;
    material.title = u"AISI 1045";
    return material;
}

TEST(TensileChain, FitsIntoANewMaterialWithTheLawItExports)
{
    const test::TemporaryFolder folder;
    const Project material = coldMaterial();
    const std::string before = materialFileBytes(material);
    const EnteredTest entered = enterTensileTest(material, steel1045());
    ASSERT_TRUE(entered.record) << entered.error;
    EXPECT_FALSE(entered.record->curves[EngineeringCurve].empty());

    TensileFitSettings settings;
    settings.startIndex = kStart1045;
    const TensileFit fit = fitTensileLaw(material, *entered.record, ColdLawId::Swift, settings, folder.environment());
    ASSERT_TRUE(fit.material) << fit.error;
    EXPECT_EQ(materialFileBytes(material), before);
    EXPECT_NE(fit.text.find("Error"), std::string::npos);

    const auto* record = dynamic_cast<const RoomOri*>(fit.material->activeModel.get());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->startIndex, kStart1045);
    EXPECT_EQ(record->neckingIndex, maximumStressIndex(record->curves[EngineeringCurve]));
    EXPECT_FALSE(record->curves[TrueCurve].empty());
    // The fitted law is the record's held model itself: a long true curve is not held a third time.
    EXPECT_EQ(fit.law.get(), record->heldModel.get());
    // The record writes the law's block through its held model.
    TextWriter direct, forwarded;
    fit.law->writeLibraryBlock(direct, 6);
    EXPECT_TRUE(record->forwardWriteLibraryBlock(forwarded, 6));
    EXPECT_EQ(direct.text(), forwarded.text());
    ASSERT_TRUE(fit.material->libraryModel());
    EXPECT_EQ(fit.material->libraryModel()->modelNumber, 1);
    EXPECT_TRUE(libraryEntryBytes(*fit.material).hasModelBlock);
    // The Swift fit leaves its comparison table in the exchange folder it was given.
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "ZELKO_MAT_PL1.dat"));
}

TEST(TensileChain, HollomonNeckingConstraintWithoutItsPointFitsNothing)
{
    const test::TemporaryFolder folder;
    const Project material = coldMaterial();
    const EnteredTest entered = enterTensileTest(material, steel1045());
    ASSERT_TRUE(entered.record) << entered.error;
    TensileFitSettings settings;
    settings.neckingConstraint = true;
    // From a later start the rebuilt true curve ends before the necking row: no K = n = 0 law.
    settings.startIndex = kStart1045;
    const TensileFit late = fitTensileLaw(material, *entered.record, ColdLawId::Hollomon, settings, folder.environment());
    EXPECT_FALSE(late.material);
    EXPECT_NE(late.error.find("necking row 416"), std::string::npos) << late.error;
    // From row 0 the point exists and the closed form gives a law.
    settings.startIndex = 0;
    const TensileFit whole = fitTensileLaw(material, *entered.record, ColdLawId::Hollomon, settings, folder.environment());
    ASSERT_TRUE(whole.material) << whole.error;
    ASSERT_TRUE(whole.law);
    EXPECT_GT(whole.law->parameters[0], 0.0);
    EXPECT_GT(whole.law->parameters[1], 0.0);
}

TEST(TensileChain, ACallerDoneWithItsCurveHandsItOverWithoutACopy)
{
    // A curve file is read into room for its lines once, not grown by doubling.
    std::string text = "displacement_mm,force_N\n";
    for (int i = 0; i < 1000; ++i)
        text += formatText("%g,%g\n", 0.001 * i, 10.0 * i);
    std::string error;
    const std::optional<Curve> read = readCurveText(text, error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->size(), 1000u);
    EXPECT_LE(read->capacity(), 1002u);

    const test::TemporaryFolder folder;
    const Project material = coldMaterial();
    TensileTest test = steel1045();
    const CurvePoint* points = test.curve.data();
    EnteredTest entered = enterTensileTest(material, std::move(test));
    ASSERT_TRUE(entered.record) << entered.error;
    EXPECT_EQ(entered.record->curves[LoadDisplacement].data(), points);

    // Fitted from a record given up, the same material as from one kept.
    TensileFitSettings settings;
    settings.startIndex = kStart1045;
    const TensileFit kept = fitTensileLaw(material, *entered.record, ColdLawId::Hollomon, settings, folder.environment());
    const TensileFit moved
        = fitTensileLaw(material, std::move(*entered.record), ColdLawId::Hollomon, settings, folder.environment());
    ASSERT_TRUE(kept.material && moved.material) << kept.error << moved.error;
    const auto* record = dynamic_cast<const RoomOri*>(moved.material->activeModel.get());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->curves[LoadDisplacement].data(), points);
    EXPECT_TRUE(test::sameBytes(materialFileBytes(*moved.material), materialFileBytes(*kept.material)));
    EXPECT_TRUE(test::sameBytes(libraryEntryBytes(*moved.material).bytes, libraryEntryBytes(*kept.material).bytes));
    EXPECT_EQ(moved.text, kept.text);
}

TEST(TensileChain, AStoppedFitLeavesTheDocumentAsItWas)
{
    const test::TemporaryFolder folder;
    MaterialDocument document(folder.environment());
    document.commit(coldMaterial());
    const std::string before = materialFileBytes(document.material());

    const EnteredTest entered = enterTensileTest(document.material(), steel1045());
    ASSERT_TRUE(entered.record);
    TensileFitSettings settings;
    settings.startIndex = kStart1045;
    settings.maxIterations = 100'000'000;
    settings.targetError = 0.0;
    std::stop_source stop;
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        stop.request_stop();
    });
    const TensileFit fit = fitTensileLaw(document.material(), *entered.record, ColdLawId::KimTuan, settings,
                                         document.environment(), {{}, stop.get_token()});
    stopper.join();
    EXPECT_TRUE(fit.cancelled);
    EXPECT_FALSE(fit.material);
    EXPECT_EQ(materialFileBytes(document.material()), before);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "ZELKO_MAT_PL1.dat"));
}

TEST(TensileChain, RefusesAHotMaterialAndAJobWithoutResult)
{
    Project hot;
    hot.setModel(std::make_shared<PLASTIC_HOT>());
    EXPECT_EQ(tensileRecordRefusal(hot), "the material holds a hot flow-stress model, not a tensile record");
    EXPECT_FALSE(enterTensileTest(hot, steel1045()).record);
    std::string error;
    EXPECT_FALSE(tensileJobRecord(hot, error));
    EXPECT_FALSE(tensileJobRecord(coldMaterial(), error));
    EXPECT_EQ(error, "the material holds no tensile record");

    const test::TemporaryFolder folder;
    const Project material = coldMaterial();
    const EnteredTest entered = enterTensileTest(material, steel1045());
    ASSERT_TRUE(entered.record);
    const TensileResult result = readTensileJobResult(material, *entered.record, folder.path() / "run1.tnsprj");
    EXPECT_FALSE(result.material);
    EXPECT_EQ(result.status, TensileResultStatus::NoResultFile);
}

TEST(TensileChain, AJobResultWithoutAUsableCurveGivesNoMaterial)
{
    const test::TemporaryFolder folder;
    const Project material = coldMaterial();
    const EnteredTest entered = enterTensileTest(material, steel1045());
    ASSERT_TRUE(entered.record);
    std::string error;
    ASSERT_TRUE(saveFileAtomically(folder.path() / "run1.z2dsrf", "result", error));
    // The solver finished but its last stage printed nan for the stress.
    ASSERT_TRUE(saveFileAtomically(folder.path() / "run1.tnsspf",
                                   " NCSTG IS GREATER THAN NSTG\n a\n b\n c\n p = 1 0.5\n 0\n 2\n 1 0.1 500\n"
                                   " 2 0.2 nan\n FINISHED_MAT\n",
                                   error));
    const TensileResult result = readTensileJobResult(material, *entered.record, folder.path() / "run1.tnsprj");
    EXPECT_FALSE(result.material);
    EXPECT_EQ(result.status, TensileResultStatus::NoUsableCurve);
}

}  // namespace
}  // namespace zelko

namespace zelko {
namespace {

// The screen draws the law over the measured curve in either form; taken back to
// engineering terms the law must still lie on the measured points it was fitted to.
TEST(TensileView, TheLawLiesOnTheMeasuredCurveInEitherForm)
{
    const test::TemporaryFolder folder;
    const Project material = coldMaterial();
    const EnteredTest entered = enterTensileTest(material, steel1045());
    ASSERT_TRUE(entered.record) << entered.error;
    TensileFitSettings settings;
    settings.startIndex = kStart1045;
    settings.method = FitMethod::LeastSquares;  // within a MPa of the curve
    const TensileFit fit = fitTensileLaw(material, *entered.record, ColdLawId::VoceGeneral, settings,
                                         folder.environment());
    ASSERT_TRUE(fit.material) << fit.error;
    const auto& record = dynamic_cast<const RoomOri&>(*fit.material->activeModel);

    for (const CurveForm form : {CurveForm::True, CurveForm::Engineering}) {
        SCOPED_TRACE(form == CurveForm::True ? "true" : "engineering");
        const ChartPoints law = lawPoints(*fit.law, record, form);
        const ChartPoints measured = measuredPoints(record, form);
        const std::size_t offset = form == CurveForm::True ? 0 : static_cast<std::size_t>(kStart1045);
        ASSERT_EQ(law.size(), static_cast<std::size_t>(record.neckingIndex - kStart1045 + 1));
        ASSERT_LE(offset + law.size(), measured.size());
        double worst = 0.0;
        for (std::size_t i = 0; i < law.size(); ++i) {
            EXPECT_EQ(law.x[i], measured.x[offset + i]);
            worst = std::max(worst, std::abs(law.y[i] - measured.y[offset + i]));
        }
        EXPECT_LT(worst, 5.0);  // MPa; the law's RMSE is below 1
    }
}

}  // namespace
}  // namespace zelko
