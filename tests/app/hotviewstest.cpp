// The views over the hot data set: the chart with its error table, Model 70's
// parameter grid and the Zener-Hollomon grid, each reached from the hot screen
// and checked against the engine and the files the material becomes.

#include <QtTest>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTableWidget>
#include <QTreeWidget>
#include <QDir>

#include <cmath>

#include "app/mainframe.h"
#include "app/matview.h"
#include "base/textfile.h"
#include "hot/hotcsv.h"
#include "hot/hotmodels.h"
#include "hot/celltypes.h"
#include "hot/plastic_70.h"
#include "material/document.h"
#include "material/hotchain.h"
#include "hot/zenerhollomon.h"
#include "material/hotview.h"
#include "hotmaterial.h"
#include "modalanswer.h"
#include "screenfiles.h"
#include "ui/hotchartdlg.h"
#include "ui/hotcompdlg.h"
#include "ui/hotmicrosdlg.h"
#include "ui/processingmapdlg.h"
#include "ui/staticgnuplot.h"
#include "ui/listctrlext.h"
#include "ui/model70dlg.h"
#include "ui/zenerhollomondlg.h"

using namespace zelko;
using zelko::test::fileBytes;
using zelko::test::kGleeble;
using zelko::test::measuredDataSet;
using zelko::test::pressOk;
using zelko::test::testEnvironment;
using zelko::test::whenModalOpens;
using zelko::ui::CDIALOG_GRAPH2D;

namespace {


std::shared_ptr<const PLASTIC_HOT> henselSpittel()
{
    static const auto fitted = fitHotModel(measuredDataSet(), HotModelId::Type17, {}).model;
    return fitted;
}

QStringList seriesNames(const CDIALOG_GRAPH2D& chart)
{
    QStringList names;
    for (int i = 0; i < chart.chartView()->seriesCount(); ++i)
        names << chart.chartView()->seriesData(i).name;
    return names;
}

}  // namespace

class HotViewsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(exchange_.isValid());
        qputenv("ZELKO_TEMP", exchange_.path().toLocal8Bit());
    }

    // The lists choose the series, the switches the axis and what is drawn.
    void chartFollowsTheLists()
    {
        CDIALOG_GRAPH2D chart(henselSpittel());
        // At first: every temperature at the slowest rate, measured and model.
        const QStringList first = seriesNames(chart);
        QCOMPARE(first.size(), 10);
        QCOMPARE(first[0], QStringLiteral("T:1050, R:0.001"));
        QCOMPARE(first[1], first[0]);
        QCOMPARE(chart.chartView()->seriesData(1).role, zelko::ui::SeriesRole::Model);
        QCOMPARE(chart.chartView()->xTitle(), QStringLiteral("Strain"));

        chart.selectRows(CDIALOG_GRAPH2D::List::Temperatures, {4});
        chart.selectRows(CDIALOG_GRAPH2D::List::StrainRates, {0, 5});
        QCOMPARE(seriesNames(chart), (QStringList{"T:1250, R:0.001", "T:1250, R:0.001", "T:1250, R:5",
                                                  "T:1250, R:5"}));
        chart.findChild<QCheckBox*>(QStringLiteral("model"))->setChecked(false);
        QCOMPARE(chart.chartView()->seriesCount(), 2);
        QVERIFY(!chart.chartView()->logarithmicX());

        chart.findChild<QRadioButton*>(QStringLiteral("againstRate"))->setChecked(true);
        QCOMPARE(chart.chartView()->xTitle(), QStringLiteral("Strain rate (1/s)"));
        QVERIFY(chart.chartView()->logarithmicX());
        const auto& rate = chart.chartView()->seriesData(0);
        QVERIFY(rate.name.startsWith(QStringLiteral("T:1250, E:")));
        QCOMPARE(rate.points.size(), 6);
        QCOMPARE(rate.points.first().x(), 0.001);
        chart.findChild<QCheckBox*>(QStringLiteral("logRate"))->setChecked(false);
        QVERIFY(!chart.chartView()->logarithmicX());
        chart.selectRows(CDIALOG_GRAPH2D::List::Strains, {});
        QCOMPARE(chart.chartView()->seriesCount(), 0);
    }

    // The table is the engine's, its marks drawn, and its CSV export is the table.
    void errorTableAndItsExport()
    {
        CDIALOG_GRAPH2D chart(henselSpittel());
        const FitErrorTable expected = fitErrorTable(*henselSpittel());
        const zelko::ui::CListCtrlExt* table = chart.errorTable();
        QCOMPARE(table->rowCount(), static_cast<int>(expected.rows.size()));
        QCOMPARE(table->rowCount(), static_cast<int>(henselSpittel()->strains.size() * 5 + 2));
        QCOMPARE(table->cellText(table->rowCount() - 2, 0), QStringLiteral("Mean"));
        QCOMPARE(table->cellText(table->rowCount() - 1, 0), QStringLiteral("Standard deviation"));
        // The mean AARE is the mean of the rows shown.
        double sum = 0.0;
        for (int row = 0; row < table->rowCount() - 2; ++row)
            sum += table->cellText(row, 3).toDouble();
        QVERIFY(std::fabs(table->cellText(table->rowCount() - 2, 3).toDouble() - sum / (table->rowCount() - 2)) <
                1e-4 * sum);
        // Each check cell below 100 is red, and only those in that column.
        const int check = static_cast<int>(expected.checkColumn);
        int red = 0;
        for (int row = 0; row < table->rowCount() - 2; ++row) {
            const bool low = table->cellText(row, check).toDouble() < 100.0;
            QCOMPARE(table->item(row, check)->background().color() == QColor(255, 0, 0), low);
            red += low;
        }
        QVERIFY(red > 0);
        QCOMPARE(chart.cellMarks(), expected.marks);

        const QString csv = exchange_.filePath(QStringLiteral("errors.csv"));
        QVERIFY(chart.saveCsv(csv));
        const std::string bytes = fileBytes(csv);
        const std::u16string text(reinterpret_cast<const char16_t*>(bytes.data() + 2), (bytes.size() - 2) / 2);
        QVERIFY(QString::fromStdU16String(text).startsWith(QStringLiteral("No., Strain, Temperature, AARE (%), ")));
        QCOMPARE(QString::fromStdU16String(text).count(QStringLiteral("\r\n")), table->rowCount() + 1);
    }

    // From the hot screen: Model 70's grid stores edits by its item table, and the
    // library entry carries them.
    void model70FromTheScreenToTheLibrary()
    {
        CMainFrame frame;
        CMATView* view = zelko::test::newHotMaterial(frame);
        QString note;
        whenModalOpens([&](QWidget* modal) {
            auto* hot = qobject_cast<CHotCompDlg*>(modal);
            QVERIFY(hot->importCsv(kGleeble));
            auto* parameters = hot->findChild<QPushButton*>(QStringLiteral("parameters"));
            QVERIFY(!parameters->isEnabled());
            hot->findChild<QComboBox*>(QStringLiteral("model"))->setCurrentIndex(3);
            QVERIFY(parameters->isEnabled());
            whenModalOpens(
                [&](QWidget* inner) {
                    auto* grid = qobject_cast<zelko::ui::CDIALOG_INPUT_MATR70*>(inner);
                    QVERIFY(grid);
                    QCOMPARE(grid->item(7)->text(0), QStringLiteral("Beta11"));
                    QCOMPARE(grid->item(7)->parent()->text(0), QStringLiteral("Beta1"));
                    QCOMPARE(grid->item(7)->parent()->parent()->text(0), QStringLiteral("Stress1"));
                    QVERIFY(grid->editItem(0, QStringLiteral("150")));
                    QVERIFY(grid->note().isEmpty());
                    QVERIFY(grid->editItem(7, QStringLiteral("2.5")));
                    note = grid->note();
                    QVERIFY(grid->editItem(27, QStringLiteral("7")));
                    pressOk(grid);
                },
                hot);
            hot->editParameters();
            pressOk(hot);
        });
        view->editPlastic();
        QCOMPARE(note, QStringLiteral("The value of Beta11 is stored in P4, the parameter g2 shows."));

        const auto* model = dynamic_cast<const PLASTIC_70*>(view->document().material().activeModel.get());
        QVERIFY(model);
        QCOMPARE(model->modelParameters[0], 150.0);
        QCOMPARE(model->modelParameters[4], 2.5);
        QCOMPARE(model->modelParameters[7], 0.0);
        QCOMPARE(model->modelParameters[24], 7.0);
        QCOMPARE(model->modelParameters[27], 0.0);
        QCOMPARE(model->temperatures.size(), std::size_t{5});

        const QString library = exchange_.filePath(QStringLiteral("model70.z3dlib"));
        QVERIFY(view->exportLibrary(library));
        const std::string bytes = fileBytes(library);
        const std::string block = formatText("%8d\r\n%30.4E\r\n%30.4E\r\n%30.4E\r\n%30.4E\r\n%30.4E\r\n", 70, 150.0,
                                             0.0, 0.0, 0.0, 2.5);
        QVERIFY2(bytes.find(block) != std::string::npos, bytes.c_str());
    }

    // Raw curves to a saved material, its library entry and its processing map, through the screens alone.
    void fromRawCurvesToMaterialLibraryAndMap()
    {
        CMainFrame frame;
        CMATView* view = zelko::test::newHotMaterial(frame);
        QSize picture;
        QString mapNote;
        int peakRows = 0;
        whenModalOpens([&](QWidget* modal) {
            auto* hot = qobject_cast<CHotCompDlg*>(modal);
            QVERIFY(hot->importCsv(kGleeble));
            hot->fit();
            QTRY_VERIFY_WITH_TIMEOUT(!hot->fitRunning(), 30000);
            whenModalOpens(
                [&](QWidget* inner) {
                    auto* map = qobject_cast<CDLG_PROCESSINGMAP*>(inner);
                    QVERIFY(map);
                    map->draw();
                    QTRY_VERIFY_WITH_TIMEOUT(!map->mapRunning() && !map->plot()->drawing(), 30000);
                    picture = map->plot()->picture().size();
                    mapNote = map->note();
                    map->reject();
                },
                hot);
            hot->findChild<QPushButton*>(QStringLiteral("processingMap"))->click();
            whenModalOpens(
                [&](QWidget* inner) {
                    auto* peaks = qobject_cast<CDIALOG_HOT_MICROS*>(inner);
                    QVERIFY(peaks);
                    peakRows = peaks->findChild<QTableWidget*>()->rowCount();
                    peaks->reject();
                },
                hot);
            hot->findChild<QPushButton*>(QStringLiteral("peakSteady"))->click();
            pressOk(hot);
        });
        view->editPlastic();
        QVERIFY(!picture.isEmpty());
        // Hensel-Spittel's rate sensitivity does not change with rate: a flat power map, and the screen says so.
        QVERIFY2(mapNote.contains(QStringLiteral("No contour level")), qPrintable(mapNote));
        QCOMPARE(peakRows, 30);
        const QDir exchange(exchange_.path());
        QVERIFY(fileBytes(exchange.filePath(QStringLiteral("processing_map.dat")))
                    .starts_with("# Temperature, Strain rate, power, instability\r\n"));
        QVERIFY(fileBytes(exchange.filePath(QStringLiteral("processing_map.txt"))).starts_with("reset\r\n"));

        const QString saved = exchange_.filePath(QStringLiteral("gleeble.zmat"));
        const QString library = exchange_.filePath(QStringLiteral("gleeble.z3dlib"));
        QVERIFY(view->saveFile(saved));
        QVERIFY(view->exportLibrary(library));
        QCOMPARE(view->document().material().activeModel->modelNumber, 17);
        QVERIFY(fileBytes(library).find("\r\n      17\r\n") != std::string::npos);
    }

    // "Raw data" picks the per-cell table (type 16): every cell fitted, the library entry one line a cell.
    void perCellTypeThroughTheScreen()
    {
        CHotCompDlg hot(Project(), testEnvironment());
        QVERIFY(hot.importCsv(kGleeble));
        hot.findChild<QComboBox*>(QStringLiteral("model"))->setCurrentIndex(0);
        QCOMPARE(hot.findChild<QComboBox*>(QStringLiteral("type"))->currentIndex(), 0);
        hot.fit();
        QTRY_VERIFY_WITH_TIMEOUT(!hot.fitRunning(), 30000);
        const auto* fitted = dynamic_cast<const PLASTIC_16*>(hot.material().activeModel.get());
        QVERIFY(fitted);
        const HotCurvesFit expected = fitHotCurves(Project(), measuredDataSet(), HotModelId::Type16, {});
        const auto& engine = dynamic_cast<const PLASTIC_16&>(*expected.material->activeModel);
        QCOMPARE(fitted->cellCoefficients, engine.cellCoefficients);

        MaterialDocument document;
        document.commit(hot.material());
        const QString library = exchange_.filePath(QStringLiteral("type16.z3dlib"));
        bool withBlock = false;
        std::string error;
        QVERIFY(document.exportLibrary(std::filesystem::path(library.toStdU16String()), withBlock, error));
        QVERIFY(withBlock);
        const std::string bytes = fileBytes(library);
        const std::size_t head = bytes.find("\r\n      16\r\n");
        QVERIFY(head != std::string::npos);
        // The counts line, then a line for each of the 5 × 6 cells.
        QVERIFY(bytes.find(formatText("%8d %8d %8d\r\n", 30, 6, 5), head) != std::string::npos);
        const std::string firstCell = formatText("%30.4E %17.4E %17.4E %17.4E\r\n", 0.001, 1050.0,
                                                 engine.cellCoefficients[0][0][0], engine.cellCoefficients[0][0][1]);
        QVERIFY2(bytes.find(firstCell, head) != std::string::npos, firstCell.c_str());
    }

    // The Zener-Hollomon grid: one row an order, fitted off the interface thread or typed.
    void zenerHollomonGrid()
    {
        CHotCompDlg hot(Project(), testEnvironment());
        QVERIFY(hot.importCsv(kGleeble));
        hot.findChild<QComboBox*>(QStringLiteral("model"))->setCurrentIndex(2);
        QCOMPARE(hot.findChild<QComboBox*>(QStringLiteral("type"))->currentIndex(), 12);
        QString report;
        whenModalOpens(
            [&](QWidget* inner) {
                auto* screen = qobject_cast<zelko::ui::CDialogZenerHollomon*>(inner);
                QVERIFY(screen);
                zelko::ui::CListCtrlExt* grid = screen->grid();
                QCOMPARE(grid->rowCount(), static_cast<int>(hot.dataSet().strains.size()));
                QStringList headers;
                for (int c = 0; c < grid->columnCount(); ++c) {
                    headers << grid->horizontalHeaderItem(c)->text();
                    QCOMPARE(grid->columnWidth(c), 80);
                }
                QCOMPARE(headers, (QStringList{"Order", "alpha", "n", "Q", "lnA"}));
                QVERIFY(grid->cellText(0, 1).isEmpty());
                screen->fit();
                QTRY_VERIFY_WITH_TIMEOUT(!screen->fitRunning(), 30000);
                const HotFit expected = fitHotModel(hot.dataSet(), HotModelId::ZenerHollomon, {});
                const auto& orders = dynamic_cast<const PLASTIC_Zener_Hollomon&>(*expected.model).orders;
                QCOMPARE(grid->cellText(2, 2), QString::fromStdString(formatText("%g", orders[2].n)));
                // A typed constant goes into its order.
                grid->setCurrentCell(0, 1);
                QVERIFY(grid->pasteText(QStringLiteral("0.0125")));
                QCOMPARE(screen->model().orders[0].alpha, 0.0125);
                report = screen->findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText();
                pressOk(screen);
            },
            &hot);
        hot.editParameters();
        QVERIFY(report.contains(QStringLiteral("AARE")));
        const auto* model = dynamic_cast<const PLASTIC_Zener_Hollomon*>(hot.material().activeModel.get());
        QVERIFY(model);
        QCOMPARE(model->orders[0].alpha, 0.0125);
        QVERIFY(model->evaluate(0.3, 1.0, 1100.0) > 0.0);
        QVERIFY(hot.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
    }

    // The advanced screen's method and objective reach the fit.
    void advancedMethodReachesTheFit()
    {
        CHotCompDlg hot(Project(), testEnvironment());
        QVERIFY(hot.importCsv(kGleeble));
        whenModalOpens(
            [](QWidget* inner) {
                auto* method = inner->findChild<QComboBox*>(QStringLiteral("method"));
                auto* objective = inner->findChild<QComboBox*>(QStringLiteral("objective"));
                QVERIFY(!objective->isEnabled());
                method->setCurrentIndex(1);
                QVERIFY(objective->isEnabled());
                objective->setCurrentIndex(1);
                pressOk(inner);
            },
            &hot);
        hot.findChild<QPushButton*>(QStringLiteral("advanced"))->click();
        hot.fit();
        QTRY_VERIFY_WITH_TIMEOUT(!hot.fitRunning(), 30000);
        HotFitOptions options;
        options.method = FitMethod::LeastSquares;
        options.objective = HotObjective::Relative;
        const HotFit expected = fitHotModel(hot.dataSet(), HotModelId::Type17, options);
        QCOMPARE(hot.findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText().toStdString(),
                 expected.result.report);

        // The descent again, stress levels balanced and stopped at half the start's error; the
        // screen shows what it was given ("%.3f").
        QString shownTarget;
        whenModalOpens(
            [&](QWidget* inner) {
                inner->findChild<QComboBox*>(QStringLiteral("method"))->setCurrentIndex(0);
                inner->findChild<QComboBox*>(QStringLiteral("weighting"))->setCurrentIndex(1);
                auto* target = inner->findChild<QLineEdit*>(QStringLiteral("targetPercent"));
                shownTarget = target->text();
                target->setText(QStringLiteral("50"));
                pressOk(inner);
            },
            &hot);
        hot.findChild<QPushButton*>(QStringLiteral("advanced"))->click();
        QCOMPARE(shownTarget, QStringLiteral("0.000"));
        hot.fit();
        QTRY_VERIFY_WITH_TIMEOUT(!hot.fitRunning(), 30000);
        HotFitOptions descent;
        descent.weighting = HotWeighting::BalancedByStress;
        descent.targetFraction = 0.5;
        QCOMPARE(hot.findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText().toStdString(),
                 fitHotModel(hot.dataSet(), HotModelId::Type17, descent).result.report);
    }

private:
    QTemporaryDir exchange_;
};

QTEST_MAIN(HotViewsTest)
#include "hotviewstest.moc"
