#include <QtTest>

#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include "app/mainframe.h"
#include "app/matview.h"
#include "base/fileio.h"
#include "hot/plastic_hot.h"
#include "material/document.h"
#include "material/elasticscreen.h"
#include "material/thermaltables.h"
#include "modalanswer.h"
#include "ui/chemicalcompositiondlg.h"
#include "ui/elasticdlg.h"
#include "ui/heatdlg.h"
#include "ui/listctrlext.h"
#include "ui/listdatadlg.h"

using namespace zelko;
using zelko::test::answerMessage;
using zelko::test::buttonNamed;
using zelko::test::whenModalOpens;

namespace {

std::string fileBytes(const QString& path)
{
    std::string error;
    auto bytes = readFileBytes(std::filesystem::path(path.toStdU16String()), error);
    return bytes ? *bytes : std::string();
}

// What the elastic and thermal screens make of a new material with both steel presets.
Project steelByTheEngine(const std::u16string& title)
{
    Project material;
    material.title = title;
    ElasticScreenValues values = elasticScreenValues(*material.elastic);
    applyElasticPreset(MaterialPreset::Steel, values);
    applyElasticScreen(values, *material.elastic);
    applyThermalPreset(MaterialPreset::Steel, material.conductivity->points, material.heatCapacity->points);
    return material;
}

QWidget* control(CMATView* view, int id) { return view->findChild<QWidget*>(QString::number(id)); }

bool enabled(CMATView* view, std::initializer_list<int> ids)
{
    for (int id : ids)
        if (!control(view, id)->isEnabled())
            return false;
    return true;
}

bool disabled(CMATView* view, std::initializer_list<int> ids)
{
    for (int id : ids)
        if (control(view, id)->isEnabled())
            return false;
    return true;
}

const std::initializer_list<int> kWorking = {1005, 1000, 1001, 1002, 1006, 1003, 1004, 1046};

}  // namespace

class MainFrameTest : public QObject {
    Q_OBJECT
private slots:
    void init() { QVERIFY(folder_.isValid()); }

    void newEditSaveCloseOpenExport()
    {
        CMainFrame frame;
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        CMATView* view = frame.view();
        QCOMPARE(frame.windowTitle(), QStringLiteral("ZELKO_MAT"));
        QVERIFY(disabled(view, kWorking));

        // New unlocks everything but the composition.
        view->newMaterial();
        QVERIFY(enabled(view, {1000, 1001, 1002, 1006, 1003, 1004, 1046}));
        QVERIFY(disabled(view, {1005}));
        auto* title = static_cast<QLineEdit*>(control(view, 1006));
        QTest::keyClicks(title, QStringLiteral("AISI 1045 100%%"));

        whenModalOpens([](QWidget* modal) {
            QVERIFY(qobject_cast<CElasticDlg*>(modal));
            buttonNamed(modal, QStringLiteral("Steel"))->click();
            test::pressOk(modal);
        });
        static_cast<QPushButton*>(control(view, 1000))->click();
        whenModalOpens([](QWidget* modal) {
            QVERIFY(qobject_cast<CHeatDlg*>(modal));
            buttonNamed(modal, QStringLiteral("Steel"))->click();
            QCOMPARE(modal->findChild<QTableWidget*>(QStringLiteral("conductivityList"))->item(2, 1)->text(),
                     QStringLiteral("0.0263000"));  // a full redraw shows seven decimals
            test::pressOk(modal);
        });
        static_cast<QPushButton*>(control(view, 1002))->click();
        QVERIFY(view->document().modified());

        // Saved under another extension: the name's title with ".zmat"; "%%" stored as "%".
        QVERIFY(view->saveFile(folder_.filePath(QStringLiteral("steel.txt"))));
        const QString saved = folder_.filePath(QStringLiteral("steel.zmat"));
        QVERIFY(!QFileInfo::exists(folder_.filePath(QStringLiteral("steel.txt"))));
        QCOMPARE(fileBytes(saved), materialFileBytes(steelByTheEngine(u"AISI 1045 100%")));
        QVERIFY(!view->document().modified());
        QCOMPARE(frame.windowTitle(), QStringLiteral("ZELKO_MAT"));

        view->closeMaterial();
        QVERIFY(title->text().isEmpty());
        QVERIFY(disabled(view, kWorking));

        QVERIFY(view->openFile(saved));
        QVERIFY(enabled(view, kWorking));
        QCOMPARE(title->text(), QStringLiteral("AISI 1045 100%"));
        QCOMPARE(view->document().material().elastic->tables[0].front().value, 210000.0);

        // No flow-stress model: no library entry, and the user is told why.
        QString message;
        answerMessage(&message);
        QVERIFY(!view->exportLibrary(folder_.filePath(QStringLiteral("lib.z3dlib"))));
        QVERIFY(message.contains(QStringLiteral("no flow-stress model")));
        QVERIFY(!QFileInfo::exists(folder_.filePath(QStringLiteral("lib.z3dlib"))));
    }

    void aCancelledScreenLeavesTheMaterialAsItWas()
    {
        CMainFrame frame;
        CMATView* view = frame.view();
        QVERIFY(view->openFile(QStringLiteral(ZELKO_TEST_DATA "/golden/cold-record/material.zmat")));
        const std::string before = materialFileBytes(view->document().material());
        whenModalOpens([](QWidget* modal) {
            auto* field = modal->findChild<QLineEdit*>(QStringLiteral("value0"));
            field->setText(QStringLiteral("1"));
            buttonNamed(modal, QStringLiteral("Aluminum"))->click();
            test::pressCancel(modal);
        });
        view->editElastic();
        whenModalOpens([](QWidget* modal) {
            buttonNamed(modal, QStringLiteral("Aluminum"))->click();
            test::pressCancel(modal);
        });
        view->editThermal();
        QCOMPARE(materialFileBytes(view->document().material()), before);
        QVERIFY(!view->document().modified());

        // A field that is not a number keeps the screen open and changes nothing.
        QString message;
        whenModalOpens([&message](QWidget* modal) {
            modal->findChild<QLineEdit*>(QStringLiteral("value1"))->setText(QStringLiteral("0,3"));
            answerMessage(&message);
            test::pressOk(modal);
            QVERIFY(modal->isVisible());
            test::pressCancel(modal);
        });
        view->editElastic();
        QCOMPARE(message, QStringLiteral("Please enter a number."));
        QCOMPARE(materialFileBytes(view->document().material()), before);
    }

    void thermalPointsAndImport()
    {
        CHeatDlg screen({{20.0, 0.05}}, {}, nullptr);
        auto* temperature = screen.findChild<QLineEdit*>(QStringLiteral("temperature0"));
        auto* value = screen.findChild<QLineEdit*>(QStringLiteral("value0"));
        auto* list = screen.findChild<QTableWidget*>(QStringLiteral("conductivityList"));
        temperature->setText(QStringLiteral("500"));
        value->setText(QStringLiteral("0.04"));
        screen.findChild<QPushButton*>(QStringLiteral("add0"))->click();
        QCOMPARE(screen.conductivity(), (PropertyTable{{20.0, 0.05}, {500.0, 0.04}}));
        QCOMPARE(list->item(1, 0)->text(), QStringLiteral("500.00000000"));  // one-at-a-time rows: eight decimals

        // Modify onto another row's temperature: the described message, nothing changed.
        list->selectRow(1);
        QCOMPARE(temperature->text(), QStringLiteral("500"));  // the row copied into the fields
        temperature->setText(QStringLiteral("20"));
        QString message;
        answerMessage(&message);
        screen.findChild<QPushButton*>(QStringLiteral("modify0"))->click();
        QCOMPARE(message, QString::fromUtf8("20.0 ℃는 이미 존재합니다."));
        QCOMPARE(screen.conductivity().size(), std::size_t{2});

        list->selectRow(0);
        screen.findChild<QPushButton*>(QStringLiteral("remove0"))->click();
        QCOMPARE(screen.conductivity(), (PropertyTable{{500.0, 0.04}}));

        // A PhysProps export with decimal commas is refused with its line; the tables stay.
        const QString bad = folder_.filePath(QStringLiteral("commaPhysProps.dat"));
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("T (C)\tThermal conductivity-TOTAL\tDensity-TOTAL\tSpecific heat (J/(g K))\tA\tB\tC\tD\tE\tF\tG\tH\n"
                   "100,0\t30,1\t7,8\t0,5\t0\t0\t0\t0\t0\t0\t0\t0\n");
        file.close();
        answerMessage(&message);
        QVERIFY(!screen.importDataFile(bad));
        QVERIFY(message.contains(QStringLiteral("Line 2")));
        QCOMPARE(screen.conductivity(), (PropertyTable{{500.0, 0.04}}));
    }

    void pastedRowsFollowTheRuleOfAdd()
    {
        CHeatDlg screen({}, {{20.0, 0.005}}, nullptr);
        auto* grid = screen.findChild<zelko::ui::CListCtrlExt*>(QStringLiteral("conductivityList"));
        QVERIFY(grid);
        // As a spreadsheet copies it: a header, a repeated temperature, out of order.
        QVERIFY(grid->pasteText(QStringLiteral("T\tk\n100\t0.03\n20\t0.02\n100\t0.5\n")));
        QCOMPARE(screen.conductivity(), (PropertyTable{{20.0, 0.02}, {100.0, 0.03}}));
        QCOMPARE(grid->rowCount(), 2);
        QCOMPARE(screen.heatCapacity(), (PropertyTable{{20.0, 0.005}}));
    }

    void compositionEstimateBecomesTheModulusTable()
    {
        CMainFrame frame;
        CMATView* view = frame.view();
        QVERIFY(view->openFile(QStringLiteral(ZELKO_TEST_DATA "/golden/cold-record/material.zmat")));
        QVERIFY(enabled(view, {1005}));
        whenModalOpens([](QWidget* modal) {
            QVERIFY(qobject_cast<CDlgChemicalComposition*>(modal));
            const char* typed[] = {"0.45", "0.7", "0.25", "0.02", "0.02"};
            for (int i = 0; i < 5; ++i)
                modal->findChild<QLineEdit*>(QStringLiteral("content%1").arg(i))->setText(QString::fromLatin1(typed[i]));
            test::pressOk(modal);
            whenModalOpens([](QWidget* list) {
                QVERIFY(qobject_cast<CDlgListData*>(list));
                QCOMPARE(list->findChild<QTableWidget*>()->rowCount(), 13);
                QCOMPARE(list->findChild<QTableWidget*>()->item(12, 2)->text(), QStringLiteral("10909.2"));
                test::pressOk(list);
            }, modal);
        });
        view->editComposition();
        const ELASTIC& elastic = *view->document().material().elastic;
        QCOMPARE(elastic.propertyType[0], 2);
        QCOMPARE(elastic.tables[0].size(), std::size_t{13});
        QVERIFY(std::abs(elastic.tables[0][12].value - 10909.176165) < 1e-6);
    }

    void unsavedChangesAreNeverDroppedSilently()
    {
        CMainFrame frame;
        CMATView* view = frame.view();
        view->newMaterial();
        QTest::keyClicks(static_cast<QLineEdit*>(control(view, 1006)), QStringLiteral("draft"));
        QVERIFY(view->document().modified());
        QString question;
        answerMessage(&question, QMessageBox::Cancel);
        QVERIFY(!view->maySetMaterialAside());
        QVERIFY(question.contains(QStringLiteral("not saved")));
        QVERIFY(view->materialOpen());

        // A refused file says why and leaves the open material as it was.
        const QString junk = folder_.filePath(QStringLiteral("junk.zmat"));
        QFile file(junk);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("not a material\n");
        file.close();
        answerMessage(&question, QMessageBox::Discard);
        QString refusal;
        whenModalOpens([&refusal](QWidget*) { answerMessage(&refusal); });
        QVERIFY(!frame.openFromOutside(junk));
        QVERIFY(refusal.contains(QStringLiteral("not a material file")));
        QVERIFY(!view->materialOpen());
    }

    void oddTitlesAndFilesOfAnotherKind()
    {
        CMainFrame frame;
        CMATView* view = frame.view();
        QString message;
        answerMessage(&message);
        QVERIFY(!frame.openFromOutside(folder_.filePath(QStringLiteral("notes.txt"))));
        QVERIFY(message.contains(QStringLiteral("neither a material")));
        QVERIFY(!view->materialOpen());

        // A pasted novel: the file keeps the first 255 characters; "%s" and "%n" stay as typed.
        view->newMaterial();
        auto* title = static_cast<QLineEdit*>(control(view, 1006));
        title->setText(QStringLiteral("%s%n") + QString(10000, QLatin1Char('x')));
        emit title->textEdited(title->text());
        const QString saved = folder_.filePath(QStringLiteral("long.zmat"));
        QVERIFY(view->saveFile(saved));
        MaterialDocument reopened;
        std::string error;
        QVERIFY(reopened.open(std::filesystem::path(saved.toStdU16String()), error));
        // 255 characters fill the reader's line, so the line end is not part of the title read.
        QCOMPARE(reopened.material().title, u"%s%n" + std::u16string(251, u'x'));
    }

    void plasticNeedsAModelOfItsKind()
    {
        CMainFrame frame;
        CMATView* view = frame.view();
        QVERIFY(view->openFile(QStringLiteral(ZELKO_TEST_DATA "/golden/hot-record/material.zmat")));
        QVERIFY(static_cast<QRadioButton*>(control(view, 1004))->isChecked());
        static_cast<QRadioButton*>(control(view, 1003))->click();
        QString message;
        answerMessage(&message);
        view->editPlastic();
        QCOMPARE(message, QStringLiteral("Failed to cast a pointer!!!"));
    }

private:
    QTemporaryDir folder_;
};

QTEST_MAIN(MainFrameTest)
#include "mainframetest.moc"
