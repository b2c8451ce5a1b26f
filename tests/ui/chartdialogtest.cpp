// The chart screens: their menu, styles and exports, driven through the menu
// and the file dialogs as a user drives them.

#include <QtTest>

#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileDialog>
#include <QImageReader>
#include <QLegend>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QXYSeries>

#include <memory>

#include "app/modalanswer.h"
#include "app/screenfiles.h"
#include "ui/chartdialog.h"
#include "ui/chartstyles.h"
#include "ui/charttensiledlg.h"
#include "ui/listctrlext.h"
#include "ui/uisettings.h"

using namespace zelko::ui;
using zelko::test::canCreateIn;
using zelko::test::filesIn;
using zelko::test::whenModalOpens;

namespace {

QAction* action(const QWidget& dialog, const QString& name) { return dialog.findChild<QAction*>(name); }

// What the file dialog offered, and the answer given to it.
struct SaveAnswer {
    explicit SaveAnswer(QString answer = {}) : path(std::move(answer)) {}
    QString path;  // empty: cancel
    QString offeredName;
    QStringList filters;
    QString suffix;
    bool shown = false;
};

void answerSaveDialog(SaveAnswer* answer)
{
    whenModalOpens([answer](QWidget* modal) {
        auto* dialog = qobject_cast<QFileDialog*>(modal);
        if (!dialog) {
            modal->close();
            return;
        }
        answer->shown = true;
        answer->offeredName = dialog->findChild<QLineEdit*>("fileNameEdit")->text();
        answer->filters = dialog->nameFilters();
        answer->suffix = dialog->defaultSuffix();
        if (answer->path.isEmpty()) {
            dialog->reject();
            return;
        }
        dialog->selectFile(answer->path);
        static_cast<QDialog*>(dialog)->accept();
    });
}

// UTF-16LE bytes of ASCII text.
QByteArray utf16(const char* ascii)
{
    QByteArray bytes;
    for (const char* c = ascii; *c; ++c)
        bytes.append(*c).append('\0');
    return bytes;
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class ChartDialogTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void menuOfTheChartScreens();
    void galleriesApplyAndCheckTheirStyle();
    void tensileChartOpensInNatureWithTheLegend();
    void translatedMenu();
    void csvOfTwoColumnsAndOneRow();
    void csvKeepsNonAsciiText();
    void csvWithoutListOrAnswerWritesNothing();
    void csvThatCannotBeWrittenEndsSilently();
    void tecplotConfirmedWritesNothing();
    void imageFormats_data();
    void imageFormats();
    void imageThroughTheMenu();
    void imageToAFolderWithoutWritePermission();
    void exitCloses();

private:
    void makeTensile();
    // A folder this process cannot create files in; root passes every
    // permission, so it gets a read-only system folder instead.
    QString unwritableFolder();

    QTemporaryDir folder_;
    std::unique_ptr<CDIALOG_GRAPH_TENSILE> dialog_;
};

void ChartDialogTest::initTestCase()
{
    QVERIFY(folder_.isValid());
    qunsetenv("ZELKO_V24R02");  // the translations beside the test
}

void ChartDialogTest::init() { setCurrentLanguageId(0); }

void ChartDialogTest::cleanup()
{
    dialog_.reset();
    QFile::setPermissions(folder_.path() + "/locked", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void ChartDialogTest::makeTensile()
{
    std::vector<ChartSeries> series{
        {"Engineering", {{0.0, 0.0}, {0.01, 400.0}, {0.05, 700.0}, {0.1, 650.0}}, SeriesRole::Measured},
        {"Swift", {{0.0, 300.0}, {0.05, 690.0}, {0.1, 760.0}}, SeriesRole::Model}};
    dialog_ = std::make_unique<CDIALOG_GRAPH_TENSILE>("Strain", "Stress [MPa]", series);
}

QString ChartDialogTest::unwritableFolder()
{
    const QString locked = folder_.path() + "/locked";
    QDir().mkpath(locked);
    QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner);
    if (!canCreateIn(locked))
        return locked;
    const QString system = QStringLiteral("/sys");
    if (!canCreateIn(system))
        return system;
    return {};
}

void ChartDialogTest::menuOfTheChartScreens()
{
    CChartDialog dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Graph"));
    QStringList titles;
    for (QAction* menu : dialog.findChild<QMenuBar*>()->actions())
        titles << menu->text();
    QCOMPARE(titles, (QStringList{"&File", "&Appearance", "&Palette", "&Advanced"}));
    QCOMPARE(action(dialog, "exportImage")->text(), QStringLiteral("Image"));
    QCOMPARE(action(dialog, "exportTecplot")->text(), QStringLiteral("Raw data (Tecplot)"));
    QCOMPARE(action(dialog, "exportCsv")->text(), QStringLiteral("Raw data (csv)"));
    QCOMPARE(action(dialog, "exit")->text(), QStringLiteral("E&xit"));
    QCOMPARE(action(dialog, "showLegend")->text(), QStringLiteral("Show &Legend"));
    QVERIFY(action(dialog, "showLegend")->isCheckable());
    // the galleries list the names in order, and the dialog keeps the split lists
    QCOMPARE(dialog.appearances(), appearanceNames());
    QCOMPARE(dialog.palettes(), paletteNames());
    QStringList palettes;
    for (const QString& name : paletteNames())
        palettes << action(dialog, "palette:" + name)->text();
    QCOMPARE(palettes, paletteNames());
    QCOMPARE(int(dialog.randomColours().size()), kRandomColourCount);
    QVERIFY(dialog.dataList() == nullptr);
}

void ChartDialogTest::galleriesApplyAndCheckTheirStyle()
{
    CChartDialog dialog;
    ChartView* chart = dialog.chartView();
    chart->addSeries("a", {{0, 0}, {1, 1}}, SeriesRole::Model);
    action(dialog, "palette:Fire")->trigger();
    QCOMPARE(chart->paletteName(), QStringLiteral("Fire"));
    QCOMPARE(chart->drawnSeries(0)->color(), paletteByResource("CHART_PALETTE_FIRE").at(0));
    QVERIFY(action(dialog, "palette:Fire")->isChecked());
    action(dialog, "appearance:Black")->trigger();
    QCOMPARE(chart->appearanceName(), QStringLiteral("Black"));
    QCOMPARE(chart->chart()->backgroundBrush().color(), appearanceByResource("CHART_APPEARANCE_BLACK")->background);
    // one checked item per gallery, following calls made in code as well
    QVERIFY(dialog.applyAppearance("Gray"));
    QVERIFY(action(dialog, "appearance:Gray")->isChecked());
    QVERIFY(!action(dialog, "appearance:Black")->isChecked());
    QVERIFY(!dialog.applyPalette("Mauve"));
    QVERIFY(action(dialog, "palette:Fire")->isChecked());
    action(dialog, "showLegend")->setChecked(false);
    QVERIFY(!chart->legendVisible());
    dialog.showLegend(true);
    QVERIFY(action(dialog, "showLegend")->isChecked());
    QVERIFY(chart->chart()->legend()->isVisible());
}

void ChartDialogTest::tensileChartOpensInNatureWithTheLegend()
{
    makeTensile();
    QCOMPARE(dialog_->objectName(), QStringLiteral("CDIALOG_GRAPH_TENSILE"));
    ChartView* chart = dialog_->chartView();
    QCOMPARE(chart->paletteName(), QStringLiteral("Nature"));
    QCOMPARE(chart->appearanceName(), QStringLiteral("Nature"));
    QVERIFY(chart->legendVisible());
    QVERIFY(action(*dialog_, "palette:Nature")->isChecked());
    QVERIFY(action(*dialog_, "appearance:Nature")->isChecked());
    QVERIFY(action(*dialog_, "showLegend")->isChecked());
    QCOMPARE(chart->xTitle(), QStringLiteral("Strain"));
    QCOMPARE(chart->yTitle(), QStringLiteral("Stress [MPa]"));
    QCOMPARE(chart->seriesCount(), 2);
    QCOMPARE(chart->seriesData(1).role, SeriesRole::Model);
    QCOMPARE(chart->seriesData(0).points.size(), 4);
    // new values replace the old ones, the user's style stays
    dialog_->applyPalette("Blue");
    dialog_->setValues("Strain", "True stress [MPa]", {{"True", {{0, 0}, {0.1, 700}}, SeriesRole::Measured}});
    QCOMPARE(chart->seriesCount(), 1);
    QCOMPARE(chart->yTitle(), QStringLiteral("True stress [MPa]"));
    QCOMPARE(chart->paletteName(), QStringLiteral("Blue"));
}

void ChartDialogTest::translatedMenu()
{
    setCurrentLanguageId(1);
    CChartDialog korean;
    QCOMPARE(korean.windowTitle(), QStringLiteral("그래프"));
    QCOMPARE(action(korean, "exportCsv")->text(), QStringLiteral("원시 데이터 (csv)"));
    QCOMPARE(korean.chartView()->resetZoomAction()->text(), QStringLiteral("확대/축소 초기화"));
    // style names are names, not words
    QCOMPARE(action(korean, "palette:Vibrant Pastel")->text(), QStringLiteral("Vibrant Pastel"));
    setCurrentLanguageId(2);
    CChartDialog japanese;
    QCOMPARE(action(japanese, "showLegend")->text(), QStringLiteral("凡例を表示(&L)"));
    QCOMPARE(japanese.findChild<QMenuBar*>()->actions().constFirst()->text(), QStringLiteral("ファイル(&F)"));
}

void ChartDialogTest::csvOfTwoColumnsAndOneRow()
{
    makeTensile();
    CListCtrlExt list(1, 2);
    list.setHorizontalHeaderLabels({"Strain", "Stress"});
    list.setItem(0, 0, new QTableWidgetItem("0.1"));
    list.setItem(0, 1, new QTableWidgetItem("250"));
    dialog_->setDataList(&list);
    SaveAnswer answer{folder_.path() + "/two.csv"};
    answerSaveDialog(&answer);
    action(*dialog_, "exportCsv")->trigger();
    QVERIFY(answer.shown);
    QCOMPARE(answer.offeredName, QStringLiteral("raw data"));
    QCOMPARE(answer.filters, QStringList{"csv file(*.csv)"});
    QCOMPARE(readAll(answer.path), QByteArray("\xff\xfe") + utf16("Strain, Stress, \r\n0.1, 250, \r\n"));
}

void ChartDialogTest::csvKeepsNonAsciiText()
{
    makeTensile();
    CListCtrlExt list(2, 1);
    list.setHorizontalHeaderLabels({QStringLiteral("응력")});
    list.setItem(0, 0, new QTableWidgetItem(QStringLiteral("ひずみ")));
    // a cell never written exports empty
    const QString path = folder_.path() + "/text.csv";
    dialog_->setDataList(&list);
    QVERIFY(dialog_->saveCsv(path));
    const QByteArray expected = QByteArray("\xff\xfe\x51\xc7\x25\xb8", 6) + utf16(", \r\n") +
                                QByteArray("\x72\x30\x5a\x30\x7f\x30", 6) + utf16(", \r\n, \r\n");
    QCOMPARE(readAll(path), expected);
}

void ChartDialogTest::csvWithoutListOrAnswerWritesNothing()
{
    makeTensile();
    const QString folder = folder_.path() + "/nolist";
    QDir().mkpath(folder);
    // without a data list the chosen file is not written
    SaveAnswer answer{folder + "/none.csv"};
    answerSaveDialog(&answer);
    action(*dialog_, "exportCsv")->trigger();
    QVERIFY(answer.shown);
    QCOMPARE(filesIn(folder), QStringList());
    // with a list, Cancel writes nothing either
    CListCtrlExt list(1, 1);
    dialog_->setDataList(&list);
    SaveAnswer cancel;
    answerSaveDialog(&cancel);
    action(*dialog_, "exportCsv")->trigger();
    QVERIFY(cancel.shown);
    QCOMPARE(filesIn(folder), QStringList());
}

void ChartDialogTest::csvThatCannotBeWrittenEndsSilently()
{
    makeTensile();
    CListCtrlExt list(1, 1);
    dialog_->setDataList(&list);
    const QString locked = unwritableFolder();
    QVERIFY2(!locked.isEmpty(), "no folder this process cannot write");
    const QStringList before = filesIn(locked);
    QString opened;
    whenModalOpens([&opened](QWidget* modal) {
        opened = modal->metaObject()->className();
        modal->close();
    });
    QVERIFY(!dialog_->saveCsv(locked + "/raw data.csv"));
    QTest::qWait(50);
    QCOMPARE(opened, QString());  // no message
    QCOMPARE(filesIn(locked), before);
    // a file already there is replaced whole
    const QString path = folder_.path() + "/again.csv";
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(1000, 'x'));
    old.close();
    QVERIFY(dialog_->saveCsv(path));
    QCOMPARE(readAll(path), QByteArray("\xff\xfe") + utf16("1, \r\n, \r\n"));
}

void ChartDialogTest::tecplotConfirmedWritesNothing()
{
    makeTensile();
    const QString folder = folder_.path() + "/tecplot";
    QDir().mkpath(folder);
    SaveAnswer answer{folder + "/raw data.dat"};
    answerSaveDialog(&answer);
    action(*dialog_, "exportTecplot")->trigger();
    QVERIFY(answer.shown);
    QCOMPARE(answer.offeredName, QStringLiteral("raw data"));
    QCOMPARE(answer.filters, QStringList{"Tecplot file(*.dat)"});
    QCOMPARE(filesIn(folder), QStringList());
}

void ChartDialogTest::imageFormats_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("png") << "chart.png" << QByteArray("png");
    QTest::newRow("jpg") << "chart.jpg" << QByteArray("jpeg");
    QTest::newRow("bmp") << "chart.bmp" << QByteArray("bmp");
    QTest::newRow("gif") << "chart.gif" << QByteArray("gif");
    QTest::newRow("upper-case extension") << "CHART.GIF" << QByteArray("gif");
    QTest::newRow("other extension: png") << "chart.img" << QByteArray("png");
}

void ChartDialogTest::imageFormats()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, format);
    makeTensile();
    dialog_->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
    const QString path = folder_.path() + '/' + name;
    QVERIFY(dialog_->saveImage(path));
    // the format as the file's content tells it, whatever its extension
    QCOMPARE(QImageReader::imageFormat(path), format);
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(image.size(), dialog_->chartView()->viewport()->size());
    // the picture is the chart: its background in the corner (lossy formats nearly)
    const QColor corner = image.pixelColor(2, 2);
    const QColor background = appearanceByResource("CHART_APPEARANCE_NATURE")->background;
    QVERIFY2(std::abs(corner.red() - background.red()) <= 6 && std::abs(corner.green() - background.green()) <= 6
                 && std::abs(corner.blue() - background.blue()) <= 6,
             qPrintable(corner.name()));
}

void ChartDialogTest::imageThroughTheMenu()
{
    makeTensile();
    dialog_->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
    // a name typed without extension gets the default one
    SaveAnswer answer{folder_.path() + "/typed"};
    answerSaveDialog(&answer);
    action(*dialog_, "exportImage")->trigger();
    QVERIFY(answer.shown);
    QCOMPARE(answer.offeredName, QStringLiteral("image"));
    QCOMPARE(answer.suffix, QStringLiteral("png"));
    QCOMPARE(answer.filters, (QStringList{"PNG Files(*.png)", "GIF Files(*.gif)", "JPG Files(*.jpg)",
                                          "Bitmap Files(*.bmp)", "All files (*.*)"}));
    QImageReader reader(folder_.path() + "/typed.png");
    QCOMPARE(reader.read().size(), dialog_->chartView()->viewport()->size());
    // Cancel writes nothing
    SaveAnswer cancel;
    const QStringList before = filesIn(folder_.path());
    answerSaveDialog(&cancel);
    action(*dialog_, "exportImage")->trigger();
    QVERIFY(cancel.shown);
    QCOMPARE(filesIn(folder_.path()), before);
}

void ChartDialogTest::imageToAFolderWithoutWritePermission()
{
    makeTensile();
    dialog_->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
    const QString locked = unwritableFolder();
    QVERIFY2(!locked.isEmpty(), "no folder this process cannot write");
    const QStringList before = filesIn(locked);
    for (const char* name : {"/image.png", "/image.gif"}) {
        QString message;
        zelko::test::answerMessage(&message);
        QVERIFY(!dialog_->saveImage(locked + name));
        QVERIFY2(message.startsWith("The image could not be saved."), qPrintable(message));
        QVERIFY(message.contains(locked + name));
        QCOMPARE(filesIn(locked), before);
    }
}

void ChartDialogTest::exitCloses()
{
    makeTensile();
    dialog_->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
    action(*dialog_, "exit")->trigger();
    QVERIFY(!dialog_->isVisible());
    QCOMPARE(dialog_->result(), int(QDialog::Rejected));
}

QTEST_MAIN(ChartDialogTest)
#include "chartdialogtest.moc"
