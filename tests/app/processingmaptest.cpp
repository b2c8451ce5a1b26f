// The processing map screen on the measured Gleeble series fitted with
// Hensel-Spittel: the files it writes against the engine's, gnuplot's picture in
// the plot control, and a gnuplot that is missing, dies or hangs.

#include <QtTest>

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSet>
#include <QTemporaryDir>

#include <cmath>
#include <memory>
#include <set>

#include <sys/stat.h>

#include "base/fileio.h"
#include "hot/hotmodels.h"
#include "hot/processingmap.h"
#include "material/hotchain.h"
#include "modalanswer.h"
#include "screenfiles.h"
#include "ui/processingmapdlg.h"
#include "ui/staticgnuplot.h"
#include "ui/uisettings.h"

using namespace zelko;
using zelko::test::fileBytes;
using zelko::test::measuredDataSet;
using zelko::test::testEnvironment;

namespace {

constexpr int kMapWaitMs = 30000;
// A gnuplot stuck this long is given up in the test; the screen's own limit is a minute.
constexpr std::chrono::milliseconds kShortLimit{1000};
const char* const kDataHeader = "# Temperature, Strain rate, power, instability\n";
const char* const kScriptStart = "reset\nset multiplot layout 1, 2 title \"Processing map\" font \",20\" offset 0, -2\n";

// The files' lines end in CRLF, as gnuplot on Windows reads them.
std::string withoutCr(std::string text)
{
    std::erase(text, '\r');
    return text;
}

QString exchangeFile(const char* name)
{
    return QString::fromStdString((testEnvironment().exchangeFolder / name).string());
}

// Draw pressed, and the map and gnuplot's drawing both over.
bool drawAndWait(CDLG_PROCESSINGMAP& dialog)
{
    dialog.findChild<QPushButton*>(QStringLiteral("draw"))->click();
    return QTest::qWaitFor([&] { return !dialog.mapRunning(); }, kMapWaitMs)
           && QTest::qWaitFor([&] { return !dialog.plot()->drawing(); }, kMapWaitMs);
}

bool messageShown()
{
    for (QWidget* window : QApplication::topLevelWidgets())
        if (qobject_cast<QMessageBox*>(window) && window->isVisible())
            return true;
    return false;
}

// A map's picture, not an empty page: many colours (the palettes, the labels).
int colours(const QPixmap& picture)
{
    const QImage image = picture.toImage();
    QSet<QRgb> seen;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            seen.insert(image.pixel(x, y));
    return static_cast<int>(seen.size());
}

bool showsPictureOfItsSize(const CStaticGNUPlot& plot)
{
    return !plot.picture().isNull() && plot.picture().deviceIndependentSize().toSize() == plot.size()
           && colours(plot.picture()) > 20;
}

// An executable shell script in the folder.
QString script(const QTemporaryDir& folder, const char* name, const QByteArray& body)
{
    const QString path = folder.filePath(QString::fromLatin1(name));
    std::string error;
    if (!saveFileAtomically(path.toStdString(), "#!/bin/sh\n" + body.toStdString(), error))
        return {};
    ::chmod(path.toLocal8Bit().constData(), 0755);
    return path;
}

// Gone, or ended and waiting to be reaped (the container's first process may never do it).
bool running(int pid)
{
    const std::string stat = fileBytes(QStringLiteral("/proc/%1/stat").arg(pid));
    const std::size_t state = stat.rfind(") ");
    return state != std::string::npos && stat.size() > state + 2 && stat[state + 2] != 'Z';
}

Environment withGnuplot(const QString& program)
{
    Environment environment = testEnvironment();
    environment.gnuplotProgram = program.toStdString();
    return environment;
}

}  // namespace

class ProcessingMapScreenTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(exchange_.isValid());
        qputenv("ZELKO_TEMP", exchange_.path().toLocal8Bit());
        const HotCurvesFit fitted = fitHotCurves(Project(), measuredDataSet(), HotModelId::Type17, HotFitOptions{});
        QVERIFY(fitted.material);
        model_ = std::dynamic_pointer_cast<PLASTIC_HOT>(fitted.material->activeModel);
        QVERIFY(model_);
        QVERIFY(model_->strains.size() > 3);
    }

    void init()
    {
        QVERIFY(folder_.isValid());
        std::error_code ignored;
        std::filesystem::remove_all(testEnvironment().exchangeFolder, ignored);
        std::filesystem::create_directories(testEnvironment().exchangeFolder, ignored);
    }

    // The chosen strain's map written as the engine writes it, gnuplot's picture
    // shown at the control's size, and drawn again at the size a resize gives.
    void drawingWritesTheFilesAndShowsThePicture()
    {
        CDLG_PROCESSINGMAP dialog(*model_, testEnvironment());
        dialog.show();
        auto* strains = dialog.findChild<QListWidget*>(QStringLiteral("strains"));
        QCOMPARE(strains->count(), static_cast<int>(model_->strains.size()));
        QCOMPARE(strains->item(2)->text(), QString::number(model_->strains[2]));
        strains->item(2)->setSelected(true);
        dialog.findChild<QLineEdit*>(QStringLiteral("contourStep"))->setText(QStringLiteral("5"));
        QVERIFY(dialog.plot()->picture().isNull());
        QVERIFY(drawAndWait(dialog));

        const std::string data = fileBytes(exchangeFile("processing_map.dat"));
        const std::string script = fileBytes(exchangeFile("processing_map.txt"));
        QVERIFY(withoutCr(data).starts_with(kDataHeader));
        QVERIFY(withoutCr(script).starts_with(kScriptStart));
        QVERIFY(withoutCr(script).find("set cntrparam levels incremental  0, 5, 100\n") != std::string::npos);
        std::string error;
        const auto expected = computeProcessingMap(*model_, 2, error);
        QVERIFY(expected);
        QCOMPARE(data, processingMapData(*expected, 0).bytes());
        QCOMPARE(script, processingMapScript(*model_, 5.0, exchangeFile("processing_map.dat").toStdString()).bytes());

        CStaticGNUPlot* plot = dialog.plot();
        QVERIFY2(showsPictureOfItsSize(*plot), qPrintable(QStringLiteral("%1x%2 for %3x%4")
                                                              .arg(plot->picture().width())
                                                              .arg(plot->picture().height())
                                                              .arg(plot->width())
                                                              .arg(plot->height())));
        const QSize before = plot->size();
        dialog.resize(dialog.width() - 200, dialog.height() + 150);
        QTRY_VERIFY_WITH_TIMEOUT(plot->size() != before && !plot->drawing() && showsPictureOfItsSize(*plot),
                                 kMapWaitMs);
        QVERIFY(!messageShown());
    }

    // The data set alone (no law) interpolates its curves, so its map changes
    // with the strain (a Hensel-Spittel map does not): the one selected is
    // drawn, the first when none is.
    void aDataSetWithoutLawAtTheSelectedStrain()
    {
        const PLASTIC_HOT raw = measuredDataSet();
        std::string error;
        const auto atFirst = computeProcessingMap(raw, 0, error);
        const auto atThird = computeProcessingMap(raw, 2, error);
        QVERIFY(atFirst && atThird);
        QVERIFY(processingMapData(*atFirst, 0).bytes() != processingMapData(*atThird, 0).bytes());

        CDLG_PROCESSINGMAP dialog(raw, testEnvironment());
        dialog.show();
        auto* strains = dialog.findChild<QListWidget*>(QStringLiteral("strains"));
        strains->item(2)->setSelected(true);
        QVERIFY(drawAndWait(dialog));
        QCOMPARE(fileBytes(exchangeFile("processing_map.dat")), processingMapData(*atThird, 0).bytes());
        QVERIFY(showsPictureOfItsSize(*dialog.plot()));
        strains->clearSelection();
        QVERIFY(drawAndWait(dialog));
        QCOMPARE(fileBytes(exchangeFile("processing_map.dat")), processingMapData(*atFirst, 0).bytes());
        QVERIFY(showsPictureOfItsSize(*dialog.plot()));
    }

    // A step that is no step is refused with the usual message; no strains: nothing at all.
    void refusalsWriteNothing()
    {
        CDLG_PROCESSINGMAP dialog(*model_, testEnvironment());
        dialog.show();
        auto* step = dialog.findChild<QLineEdit*>(QStringLiteral("contourStep"));
        for (const QString& text : {QStringLiteral("abc"), QStringLiteral("0"), QStringLiteral("1,5"),
                                    QStringLiteral("101")}) {
            step->setText(text);
            QString said;
            zelko::test::answerMessage(&said);
            dialog.draw();
            QTRY_COMPARE(said, QStringLiteral("Please enter a number."));
            QVERIFY(!dialog.mapRunning());
        }
        QVERIFY(!std::filesystem::exists(testEnvironment().exchangeFolder / "processing_map.dat"));

        PLASTIC_HOT none = *model_;
        none.strains.clear();
        CDLG_PROCESSINGMAP empty(none, testEnvironment());
        empty.show();
        QVERIFY(drawAndWait(empty));
        QTest::qWait(50);
        QVERIFY(!messageShown());
        QVERIFY(!std::filesystem::exists(testEnvironment().exchangeFolder / "processing_map.dat"));
        QVERIFY(empty.plot()->picture().isNull());
    }

    // Files that can't be written: silent, and the screen draws again once they can.
    void anExchangeFolderThatCannotBeMade()
    {
        CDLG_PROCESSINGMAP dialog(*model_, zelko::test::unreachableExchange(folder_.path()));
        dialog.show();
        QVERIFY(drawAndWait(dialog));
        QTest::qWait(50);
        QVERIFY(!messageShown());
        QVERIFY(dialog.plot()->picture().isNull());
        QVERIFY(dialog.findChild<QPushButton*>(QStringLiteral("draw"))->isEnabled());
    }

    // No gnuplot, or one that ends at once: the files are there, the control
    // stays empty, nothing is said and the screen takes the next command.
    void aMissingOrDyingGnuplotLeavesTheControlEmpty()
    {
        for (const QString& program : {folder_.filePath(QStringLiteral("no-gnuplot-here")), QStringLiteral("/bin/false")}) {
            CDLG_PROCESSINGMAP dialog(*model_, withGnuplot(program));
            dialog.show();
            for (int draw = 0; draw < 2; ++draw) {
                QVERIFY2(drawAndWait(dialog), qPrintable(program));
                QVERIFY(dialog.plot()->picture().isNull());
                QVERIFY(!messageShown());
                QVERIFY(dialog.findChild<QPushButton*>(QStringLiteral("draw"))->isEnabled());
            }
            QVERIFY(withoutCr(fileBytes(exchangeFile("processing_map.dat"))).starts_with(kDataHeader));
        }
    }

    // A gnuplot that dies, or hangs and is killed at the limit, is replaced by
    // a new one on the next draw.
    void aBrokenGnuplotIsReplacedOnTheNextDraw()
    {
        // First start: dies at once, or hangs (its id left behind); later starts: gnuplot.
        const QByteArray dies = "[ -e \"$0.ran\" ] && exec gnuplot \"$@\"\n: > \"$0.ran\"\nexit 1\n";
        // The hanging one waits on a child of its own, as a wrapper script would.
        const QByteArray hangs = "[ -e \"$0.ran\" ] && exec gnuplot \"$@\"\n: > \"$0.ran\"\n"
                                 "sleep 1000 &\necho $! > \"$0.pid\"\nwait\n";
        for (const auto& [name, body] : {std::pair{"dies", dies}, std::pair{"hangs", hangs}}) {
            const QString program = script(folder_, name, body);
            QVERIFY(!program.isEmpty());
            CDLG_PROCESSINGMAP dialog(*model_, withGnuplot(program));
            dialog.plot()->setTimeLimit(kShortLimit);
            dialog.show();
            QVERIFY2(drawAndWait(dialog), name);
            QVERIFY(dialog.plot()->picture().isNull());
            QVERIFY(!messageShown());
            const std::string pid = fileBytes(program + QStringLiteral(".pid"));
            if (!pid.empty()) {
                // The hung one is gone with its child, none left sleeping.
                QTRY_VERIFY_WITH_TIMEOUT(!running(std::stoi(pid)), 5000);
            }
            // The real gnuplot that follows may take longer than the short limit on a busy machine.
            dialog.plot()->setTimeLimit(zelko::kGnuplotTimeLimit);
            QVERIFY2(drawAndWait(dialog), name);
            QVERIFY2(showsPictureOfItsSize(*dialog.plot()), name);
        }
        QVERIFY(std::filesystem::exists(folder_.filePath(QStringLiteral("hangs.pid")).toStdString()));
    }

    // Cancelled while the map of the largest grid is computed: the files of the last map stay.
    void aCancelledMapLeavesTheFilesAsTheyWere()
    {
        auto large = std::static_pointer_cast<PLASTIC_HOT>(model_->clone());
        large->temperatures.clear();
        for (int t = 0; t < 30; ++t)
            large->temperatures.push_back(900.0 + 10.0 * t);
        large->strainRates.clear();
        for (int r = 0; r < 40; ++r)
            large->strainRates.push_back(0.001 * std::pow(10.0, r / 8.0));
        const std::filesystem::path folder = testEnvironment().exchangeFolder;
        std::string error;
        QVERIFY(saveFileAtomically(folder / "processing_map.dat", "the last map\n", error));
        QVERIFY(saveFileAtomically(folder / "processing_map.txt", "its script\n", error));

        CDLG_PROCESSINGMAP dialog(*large, testEnvironment());
        dialog.show();
        dialog.draw();
        QVERIFY(dialog.mapRunning());
        QVERIFY(!dialog.findChild<QPushButton*>(QStringLiteral("draw"))->isEnabled());
        dialog.findChild<QPushButton*>(QStringLiteral("cancelMap"))->click();
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.mapRunning(), 5000);
        QCOMPARE(fileBytes(exchangeFile("processing_map.dat")), std::string("the last map\n"));
        QCOMPARE(fileBytes(exchangeFile("processing_map.txt")), std::string("its script\n"));
        QVERIFY(!dialog.plot()->drawing());
        QVERIFY(dialog.plot()->picture().isNull());
        QVERIFY(dialog.findChild<QPushButton*>(QStringLiteral("draw"))->isEnabled());
    }

    void translatedWithItsOwnSection()
    {
        qputenv("ZELKO_V24R02", QByteArray(ZELKO_TEST_DATA "/../.."));
        zelko::ui::setCurrentLanguageId(1);
        CDLG_PROCESSINGMAP dialog(*model_, testEnvironment());
        zelko::ui::setCurrentLanguageId(0);
        qunsetenv("ZELKO_V24R02");
        QCOMPARE(dialog.windowTitle(), QStringLiteral("가공 지도"));
        QCOMPARE(dialog.findChild<QPushButton*>(QStringLiteral("draw"))->text(), QStringLiteral("그리기"));
        QCOMPARE(dialog.findChild<QPushButton*>(QStringLiteral("cancelMap"))->text(), QStringLiteral("취소"));
    }

private:
    std::shared_ptr<PLASTIC_HOT> model_;
    QTemporaryDir folder_;
    QTemporaryDir exchange_;
};

QTEST_MAIN(ProcessingMapScreenTest)
#include "processingmaptest.moc"
