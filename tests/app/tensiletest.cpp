// The tensile test screen driven as a user drives it, on the measured AISI 1045
// and 4130 tests: its results are checked against the engine fed the same inputs
// directly, and against the files the material and library entry become.

#include <QtTest>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>

#include <sys/stat.h>

#include "app/mainframe.h"
#include "app/matview.h"
#include "base/fileio.h"
#include "cold/coldlaws.h"
#include "cold/curvefile.h"
#include "cold/yieldpoint.h"
#include "material/document.h"
#include "material/tensilechain.h"
#include "modalanswer.h"
#include "screenfiles.h"
#include "ui/chartdialog.h"
#include "ui/chartview.h"
#include "ui/lawcomparisondlg.h"
#include "ui/listctrlext.h"
#include "ui/plasticroomadvdlg.h"
#include "ui/plasticroomdlg.h"

using namespace zelko;
using zelko::test::fileBytes;
using zelko::test::pressOk;
using zelko::test::testEnvironment;
using zelko::test::whenModalOpens;

namespace {

const QString kTensile1045 = QStringLiteral(ZELKO_TEST_DATA "/measured/tensile-steel-1045.csv");
const QString kTensile4130 = QStringLiteral(ZELKO_TEST_DATA "/measured/tensile-steel-4130.csv");


// Types into a field as the keyboard does, so the screen hears of the edit.
void typeInto(QWidget* dialog, const char* name, const QString& text)
{
    auto* field = dialog->findChild<QLineEdit*>(QString::fromLatin1(name));
    QVERIFY(field);
    field->selectAll();
    QTest::keyClicks(field, text);
}

// The fit is off the interface thread: wait for its result box and answer it.
QString fitAndRead(CPlasticRoomDlg& dialog, int position)
{
    QString text;
    bool answered = false;
    whenModalOpens(
        [&](QWidget* modal) {
            if (auto* box = qobject_cast<QMessageBox*>(modal)) {
                text = box->text();
                box->button(QMessageBox::Ok)->click();
            } else {
                modal->close();
            }
            answered = true;
        },
        &dialog);
    dialog.chooseLaw(position);
    [&] { QTRY_VERIFY_WITH_TIMEOUT(answered && !dialog.fitRunning(), 20000); }();
    return text;
}


// The engine's answer for the same test, the way fit-cold gets it: from the
// 0.2 % offset yield point, where the screen places a new curve's start.
TensileFit engineFit(const QString& curvePath, ColdLawId law)
{
    std::string error;
    TensileTest test;
    test.inputKind = LoadDisplacement;
    test.curve = *readCurveText(fileBytes(curvePath), error);
    test.diameter = 10.0;
    test.gaugeLength = 75.0;
    Project material;
    EnteredTest entered = enterTensileTest(material, std::move(test));
    TensileFitSettings settings;
    settings.startIndex = offsetYieldPoint(startSelectionCurve(*entered.record), error)->index;
    return fitTensileLaw(material, *entered.record, law, settings, testEnvironment());
}

void enterMeasuredTest(CPlasticRoomDlg& dialog, const QString& curvePath)
{
    QVERIFY(dialog.importCurve(curvePath));
    typeInto(&dialog, "diameter", QStringLiteral("10"));
    typeInto(&dialog, "gaugeLength", QStringLiteral("75"));
}

const RoomOri* recordOf(const Project& material) { return dynamic_cast<const RoomOri*>(material.activeModel.get()); }

}  // namespace

class TensileScreenTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(exchange_.isValid());
        qputenv("ZELKO_TEMP", exchange_.path().toLocal8Bit());
    }
    void init() { QVERIFY(folder_.isValid()); }

    // Raw file in, a saved material and a library entry out, through the screens alone.
    void fromRawCurveToLibraryEntry()
    {
        CMainFrame frame;
        CMATView* view = frame.view();
        view->newMaterial();
        QString result;
        whenModalOpens([&](QWidget* modal) {
            auto* tensile = qobject_cast<CPlasticRoomDlg*>(modal);
            QVERIFY(tensile);
            // Pasted as a user copies it from a spreadsheet: header line and all.
            QApplication::clipboard()->setText(QString::fromStdString(fileBytes(kTensile1045)));
            tensile->findChild<QPushButton*>(QStringLiteral("paste"))->click();
            typeInto(tensile, "diameter", QStringLiteral("10"));
            typeInto(tensile, "gaugeLength", QStringLiteral("75"));
            result = fitAndRead(*tensile, 1);
            pressOk(tensile);
        });
        view->editPlastic();

        QCOMPARE(result.toStdString(), engineFit(kTensile1045, ColdLawId::Swift).text);
        QVERIFY(result.startsWith(QStringLiteral("Y0 = ")));
        const QString saved = folder_.filePath(QStringLiteral("aisi1045.zmat"));
        const QString library = folder_.filePath(QStringLiteral("aisi1045.z3dlib"));
        QVERIFY(view->saveFile(saved));
        QVERIFY(view->exportLibrary(library));

        MaterialDocument reopened;
        std::string error;
        QVERIFY(reopened.open(std::filesystem::path(saved.toStdU16String()), error));
        const RoomOri* record = recordOf(reopened.material());
        QVERIFY(record);
        QCOMPARE(record->diameter, 10.0);
        QCOMPARE(record->gaugeLength, 75.0);
        QCOMPARE(record->curves[LoadDisplacement].size(), std::size_t{459});
        // The library entry carries the Swift block: its model id line.
        QVERIFY(fileBytes(library).find("\r\n       1\r\n") != std::string::npos);
    }

    // Every law through the list, each result the engine's own for the same test.
    void everyLawOfTheList()
    {
        Project material;
        material.setModel(std::make_shared<RoomOri>());
        for (const QString& curve : {kTensile1045, kTensile4130}) {
            CPlasticRoomDlg dialog(material, testEnvironment());
            dialog.show();
            enterMeasuredTest(dialog, curve);
            for (int position = 1; position < kColdLawListSize; ++position) {
                const ColdLawId law = *coldLawListEntry(position).law;
                QCOMPARE(fitAndRead(dialog, position).toStdString(), engineFit(curve, law).text);
                const RoomOri* record = recordOf(dialog.material());
                QVERIFY(record && record->heldModel);
                QCOMPARE(record->heldModel->modelNumber, static_cast<int>(law));
                QVERIFY(dialog.shown().measured.size() > 2);
                QCOMPARE(dialog.shown().fitted.size(), dialog.shown().measured.size());
                // The chart beside the list draws the measured curve and the law.
                auto* chart = dialog.findChild<zelko::ui::ChartView*>(QStringLiteral("chart"));
                QCOMPARE(chart->seriesCount(), 2);
                QCOMPARE(chart->seriesData(1).name, QString::fromLatin1(coldLawTitle(law)));
                QCOMPARE(chart->seriesData(1).points.size(), qsizetype(dialog.shown().fitted.size()));
            }
        }
    }

    // The points placed on the curve reach the fit; the labels say where they are.
    void placedPointsAndOptionsReachTheFit()
    {
        Project material;
        CPlasticRoomDlg dialog(material, testEnvironment());
        dialog.show();
        enterMeasuredTest(dialog, kTensile1045);
        QTRY_VERIFY(dialog.enteredRecord() != nullptr);
        auto* label = dialog.findChild<QLabel*>(QStringLiteral("pointLabel"));
        auto* slider = dialog.findChild<QSlider*>(QStringLiteral("pointSlider"));
        // Load input: the slider places the fracture point, shown over the gauge length.
        slider->setValue(400);
        const double halfDisplacement = dialog.enteredRecord()->curves[LoadDisplacement][400].x;
        QCOMPARE(label->text(), QStringLiteral("Fracture: ") + QString::asprintf("%f", halfDisplacement / 75.0));
        dialog.findChild<QRadioButton*>(QStringLiteral("placed0"))->click();  // necking
        slider->setValue(150);
        dialog.findChild<QSpinBox*>(QStringLiteral("startPoint"))->setValue(20);
        dialog.findChild<QCheckBox*>(QStringLiteral("weighted"))->setChecked(true);

        // Swift with s0 held: the fit keeps the typed start value.
        whenModalOpens(
            [](QWidget* modal) {
                auto* options = qobject_cast<CPlasticRoomAdvDlg*>(modal);
                QVERIFY(options);
                zelko::ui::CListCtrlExt* list = options->parameterList();
                QCOMPARE(list->rowCount(), 3);
                QCOMPARE(list->cellText(1, 0), QStringLiteral("s0"));
                list->item(1, 1)->setText(QStringLiteral("0.02"));
                list->item(1, 4)->setCheckState(Qt::Checked);
                pressOk(options);
            },
            &dialog);
        dialog.findChild<QPushButton*>(QStringLiteral("numericalOption"))->click();
        const QString text = fitAndRead(dialog, 1);

        const RoomOri* record = recordOf(dialog.material());
        QCOMPARE(record->startIndex, 20);
        QCOMPARE(record->neckingIndex, 150);
        QCOMPARE(record->endIndex, 400);
        QVERIFY(record->weighted);
        QCOMPARE(record->fixedParameters, 2u);
        const auto* swift = dynamic_cast<const ColdLaw*>(record->heldModel.get());
        QVERIFY(swift);
        QCOMPARE(swift->parameters[1], 0.02);
        TensileFitSettings settings;
        settings.startIndex = 20;
        settings.neckingIndex = 150;
        settings.weighted = true;
        TensileFit expected = [&] {
            std::string error;
            TensileTest test;
            test.curve = *readCurveText(fileBytes(kTensile1045), error);
            test.diameter = 10.0;
            test.gaugeLength = 75.0;
            Project withOptions;
            auto options = std::make_shared<RoomOri>();
            options->parameterBounds = swift->bounds();
            options->fixedParameters = 2u;
            withOptions.setModel(options);
            EnteredTest entered = enterTensileTest(withOptions, std::move(test));
            return fitTensileLaw(withOptions, *entered.record, ColdLawId::Swift, settings, testEnvironment());
        }();
        QCOMPARE(text.toStdString(), expected.text);

        // A point placed after the fit still reaches the record on OK.
        dialog.findChild<QRadioButton*>(QStringLiteral("placed1"))->click();  // the last point
        pressOk(&dialog);
        QCOMPARE(recordOf(dialog.material())->endIndex, 458);
        QCOMPARE(recordOf(dialog.material())->startIndex, 20);
    }

    // Every law side by side; the row chosen is fitted and kept as a law chosen from the list is.
    void compareLawsThenUseOne()
    {
        CPlasticRoomDlg dialog(Project(), testEnvironment());
        dialog.show();
        enterMeasuredTest(dialog, kTensile4130);
        QTRY_VERIFY(dialog.enteredRecord() != nullptr);
        auto* start = dialog.findChild<QSpinBox*>(QStringLiteral("startPoint"));
        std::string error;
        const int yield = offsetYieldPoint(startSelectionCurve(*dialog.enteredRecord()), error)->index;
        QCOMPARE(start->value(), yield);  // a new load curve starts at its yield point
        start->setValue(0);
        dialog.findChild<QPushButton*>(QStringLiteral("startAtYield"))->click();
        QCOMPARE(start->value(), yield);

        int rows = 0, drawn = 0;
        QStringList errors;
        QString result;
        whenModalOpens(
            [&](QWidget* modal) {
                auto* comparison = qobject_cast<CLawComparisonDlg*>(modal);
                QVERIFY(comparison);
                QTableWidget* table = comparison->table();
                rows = table->rowCount();
                drawn = comparison->chart()->seriesCount();
                for (int row = 0; row < rows; ++row) {
                    errors << table->item(row, 1)->text();
                    if (table->item(row, 0)->text() == QStringLiteral("Ludwik model (4)"))
                        table->selectRow(row);
                }
                // The chosen law is fitted as from the list: its result box follows.
                whenModalOpens(
                    [&](QWidget* box) {
                        result = qobject_cast<QMessageBox*>(box)->text();
                        qobject_cast<QMessageBox*>(box)->button(QMessageBox::Ok)->click();
                    },
                    &dialog);
                pressOk(comparison);
            },
            &dialog);
        dialog.compareLaws();
        QTRY_VERIFY_WITH_TIMEOUT(!result.isEmpty() && !dialog.fitRunning(), 30000);
        QCOMPARE(rows, kColdLawListSize - 1);
        QCOMPARE(drawn, rows + 1);  // the measured curve and every fitted law
        for (int row = 1; row < errors.size(); ++row)
            if (!errors[row].isEmpty())
                QVERIFY2(errors[row - 1].toDouble() <= errors[row].toDouble(), qPrintable(errors.join(' ')));
        QVERIFY(result.startsWith(QStringLiteral("Y = ")));
        QCOMPARE(recordOf(dialog.material())->heldModel->modelNumber, 4);
    }

    void aStoppedFitLeavesTheMaterialAsItWas()
    {
        Project material;
        CPlasticRoomDlg dialog(material, testEnvironment());
        dialog.show();
        enterMeasuredTest(dialog, kTensile1045);
        fitAndRead(dialog, 2);  // Hollomon, kept
        const Project before = dialog.material();

        whenModalOpens(
            [](QWidget* modal) {
                auto* options = qobject_cast<CPlasticRoomAdvDlg*>(modal);
                QVERIFY(options);
                options->findChild<QLineEdit*>(QStringLiteral("maxIterations"))->setText(QStringLiteral("1000000000"));
                options->findChild<QLineEdit*>(QStringLiteral("targetError"))->setText(QStringLiteral("0"));
                pressOk(options);
            },
            &dialog);
        dialog.findChild<QPushButton*>(QStringLiteral("numericalOption"))->click();
        dialog.chooseLaw(4);  // Kim Tuan, a billion iterations
        QVERIFY(dialog.fitRunning());
        QTRY_VERIFY(dialog.findChild<QProgressBar*>(QStringLiteral("progress"))->isVisible());
        QVERIFY(!dialog.findChild<QListWidget*>(QStringLiteral("laws"))->isEnabled());
        QTest::qWait(100);
        dialog.findChild<QPushButton*>(QStringLiteral("stopFit"))->click();
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.fitRunning(), 5000);
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("status"))->text().contains(QStringLiteral("stopped")));
        const RoomOri* record = recordOf(dialog.material());
        QCOMPARE(record->heldModel->modelNumber, 3);
        QCOMPARE(dynamic_cast<const ColdLaw*>(record->heldModel.get())->parameters,
                 dynamic_cast<const ColdLaw*>(recordOf(before)->heldModel.get())->parameters);
        QVERIFY(dialog.findChild<QListWidget*>(QStringLiteral("laws"))->isEnabled());
    }

    // Bad input gets a message; the material stays as it was and nothing is fitted.
    void badInputIsSaidAndChangesNothing()
    {
        Project material;
        CPlasticRoomDlg dialog(material, testEnvironment());
        dialog.show();

        QString message;
        whenModalOpens([&](QWidget* modal) {
            message = qobject_cast<QMessageBox*>(modal)->text();
            modal->close();
        }, &dialog);
        QApplication::clipboard()->setText(QStringLiteral("strain stress\n0.1 200\nabout 300\n"));
        dialog.findChild<QPushButton*>(QStringLiteral("paste"))->click();
        QTRY_VERIFY(!message.isEmpty());
        QVERIFY2(message.contains(QStringLiteral("line 3")), qPrintable(message));
        QCOMPARE(dialog.findChild<zelko::ui::CListCtrlExt*>(QStringLiteral("points"))->rowCount(), 0);

        // A zero diameter: the engine's reason, shown when the fit is asked for.
        enterMeasuredTest(dialog, kTensile1045);
        typeInto(&dialog, "diameter", QStringLiteral("0"));
        message.clear();
        whenModalOpens([&](QWidget* modal) {
            message = qobject_cast<QMessageBox*>(modal)->text();
            modal->close();
        }, &dialog);
        dialog.chooseLaw(1);
        QVERIFY(!dialog.fitRunning());
        QTRY_VERIFY(!message.isEmpty());
        QVERIFY2(message.contains(QStringLiteral("diameter")), qPrintable(message));

        // The start point on the necking point: nothing to fit, and it says so.
        typeInto(&dialog, "diameter", QStringLiteral("10"));
        QTRY_VERIFY(dialog.enteredRecord() != nullptr);
        dialog.findChild<QRadioButton*>(QStringLiteral("placed0"))->click();
        dialog.findChild<QSlider*>(QStringLiteral("pointSlider"))->setValue(30);
        dialog.findChild<QSpinBox*>(QStringLiteral("startPoint"))->setValue(30);
        dialog.chooseLaw(1);
        QVERIFY(!dialog.fitRunning());
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("status"))->text().contains(QStringLiteral("nothing to fit")));
        QVERIFY(!recordOf(dialog.material()));

        // Words in a typed cell.
        auto* points = dialog.findChild<zelko::ui::CListCtrlExt*>(QStringLiteral("points"));
        points->item(5, 1)->setText(QStringLiteral("lots"));
        emit points->contentEdited();
        QVERIFY(dialog.enteredRecord() == nullptr);
        QVERIFY(dialog.findChild<QLabel*>(QStringLiteral("status"))->text().contains(QStringLiteral("Point 6")));
    }

    void solverJobFilesAndResults()
    {
        Project material;
        CPlasticRoomDlg dialog(material, testEnvironment());
        dialog.show();
        enterMeasuredTest(dialog, kTensile1045);

        // A folder nobody may write (root writes anywhere): the job is not written and the screen says why.
        QString message;
        if (::geteuid() != 0) {
            const QString locked = folder_.filePath(QStringLiteral("locked"));
            QVERIFY(QDir().mkpath(locked));
            ::chmod(locked.toLocal8Bit().constData(), 0500);
            whenModalOpens([&](QWidget* modal) {
                message = qobject_cast<QMessageBox*>(modal)->text();
                modal->close();
            }, &dialog);
            const bool written = dialog.writeJob(locked + QStringLiteral("/job.tnsprj"));
            ::chmod(locked.toLocal8Bit().constData(), 0700);
            QVERIFY(!written);
            QVERIFY(!message.isEmpty());
        }

        // No result yet, then a result file with an unfinished progress file.
        const QString job = folder_.filePath(QStringLiteral("job/job.tnsprj"));
        message.clear();
        QVERIFY(dialog.writeJob(job));
        whenModalOpens([&](QWidget* modal) {
            message = qobject_cast<QMessageBox*>(modal)->text();
            modal->close();
        }, &dialog);
        QVERIFY(!dialog.readJobResult(job));
        QTRY_COMPARE(message, QStringLiteral("There is no analysis result file."));
        writeFileBytes(folder_.filePath(QStringLiteral("job/job.z2dsrf")), "result");
        writeFileBytes(folder_.filePath(QStringLiteral("job/job.tnsspf")), " NCSTG IS GREATER THAN NSTG\n");
        message.clear();
        whenModalOpens([&](QWidget* modal) {
            message = qobject_cast<QMessageBox*>(modal)->text();
            modal->close();
        }, &dialog);
        QVERIFY(!dialog.readJobResult(job));
        QTRY_COMPARE(message, QStringLiteral("Analysis has not been completed."));
        QVERIFY(!recordOf(dialog.material()));
    }

    // A material opened again shows its test as entered; OK without a change changes nothing.
    void aRecordShownAgainIsTheSameRecord()
    {
        Project material;
        {
            CPlasticRoomDlg first(material, testEnvironment());
            first.show();
            enterMeasuredTest(first, kTensile1045);
            fitAndRead(first, 3);
            material = first.material();
        }
        CPlasticRoomDlg again(material, testEnvironment());
        again.show();
        QCOMPARE(again.findChild<QLineEdit*>(QStringLiteral("diameter"))->text(), QStringLiteral("10"));
        QCOMPARE(again.findChild<QListWidget*>(QStringLiteral("laws"))->currentRow(), 3);  // the law it holds
        std::shared_ptr<const RoomOri> entered = again.enteredRecord();
        QVERIFY(entered);
        QCOMPARE(entered->curves[LoadDisplacement], recordOf(material)->curves[LoadDisplacement]);
        QCOMPARE(entered->curves[EngineeringCurve], recordOf(material)->curves[EngineeringCurve]);
        QCOMPARE(again.shown().fitted.size(), again.shown().measured.size());

        // The tensile chart exports the points behind its curves.
        const QString csv = folder_.filePath(QStringLiteral("curves.csv"));
        whenModalOpens(
            [&](QWidget* modal) {
                auto* chart = qobject_cast<zelko::ui::CChartDialog*>(modal);
                QVERIFY(chart);
                QVERIFY(chart->saveCsv(csv));
                chart->close();
            },
            &again);
        again.findChild<QPushButton*>(QStringLiteral("openChart"))->click();
        const std::string bytes = fileBytes(csv);
        QVERIFY(bytes.size() > 2);
        const QString text = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.data() + 2),
                                                static_cast<qsizetype>((bytes.size() - 2) / 2));
        QVERIFY(bytes.compare(0, 2, "\xFF\xFE") == 0);
        const QStringList lines = text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        QCOMPARE(lines.first(), QStringLiteral("Strain, True, Ludwik model (4), "));
        QCOMPARE(lines.size(), qsizetype(again.shown().measured.size()) + 1);
        QCOMPARE(lines[1].split(QStringLiteral(", ")).first().toDouble(), again.shown().measured.x[0]);
        pressOk(&again);
        QVERIFY(!again.materialChanged());
    }

private:
    static void writeFileBytes(const QString& path, const std::string& bytes)
    {
        std::string error;
        QVERIFY(saveFileAtomically(std::filesystem::path(path.toStdU16String()), bytes, error));
    }

    QTemporaryDir folder_;
    QTemporaryDir exchange_;
};

QTEST_MAIN(TensileScreenTest)
#include "tensiletest.moc"
