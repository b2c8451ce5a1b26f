// Pictures of the main form and its screens for the manual: run as
// app_screenshots FOLDER [MATERIAL.zmat [LANGID]]; each window is grabbed to a PNG.

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include "app/mainframe.h"
#include "app/matview.h"
#include "material/tselikov.h"
#include "ui/chemicalcompositiondlg.h"
#include "ui/dialogoption.h"
#include "ui/elasticdlg.h"
#include "ui/heatdlg.h"
#include "ui/hotcompdlg.h"
#include "ui/hotmicrosdlg.h"
#include "ui/zenerhollomondlg.h"
#include "ui/plasticroomdlg.h"
#include "ui/processingmapdlg.h"
#include "ui/staticgnuplot.h"
#include "ui/listdatadlg.h"
#include "ui/uisettings.h"

namespace {

void save(QWidget& window, const QString& folder, const QString& name, bool fitToContents = true)
{
    window.show();
    if (fitToContents)
        window.adjustSize();
    QApplication::processEvents();
    window.grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

// The next modal window besides owner is grabbed (after prepare, when given), then closed.
void saveNextModal(const QString& folder, const QString& name, bool& seen, QWidget* owner,
                   std::function<void(QDialog*)> prepare = {})
{
    QTimer::singleShot(20, [folder, name, &seen, owner, prepare] {
        auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!modal || modal == owner) {
            saveNextModal(folder, name, seen, owner, prepare);
            return;
        }
        if (prepare)
            prepare(modal);
        save(*modal, folder, name, qobject_cast<QMessageBox*>(modal) != nullptr);
        modal->reject();
        seen = true;
    });
}

void waitFor(const std::function<bool()>& done)
{
    while (!done())
        QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
}

// The tensile screen on a measured test (steel "1045" or "4130"): entered, then fitted with
// Swift's law; the 1045 pictures are named "tensile-...", the others "tensile-<steel>-...".
void saveTensileScreens(const zelko::Project& material, const zelko::Environment& environment, const QString& folder,
                        const QString& steel)
{
    const QString prefix = steel == QLatin1String("1045") ? QStringLiteral("tensile-")
                                                          : QStringLiteral("tensile-%1-").arg(steel);
    CPlasticRoomDlg tensile(material, environment);
    tensile.importCurve(QStringLiteral(ZELKO_TEST_DATA "/measured/tensile-steel-%1.csv").arg(steel));
    tensile.findChild<QLineEdit*>(QStringLiteral("diameter"))->setText(QStringLiteral("10"));
    tensile.findChild<QLineEdit*>(QStringLiteral("gaugeLength"))->setText(QStringLiteral("75"));
    emit tensile.findChild<QLineEdit*>(QStringLiteral("gaugeLength"))->textEdited(QStringLiteral("75"));
    tensile.show();
    waitFor([&] { return tensile.enteredRecord() != nullptr; });
    save(tensile, folder, prefix + QStringLiteral("entered"), false);
    bool seen = false;
    saveNextModal(folder, prefix + QStringLiteral("result"), seen, &tensile);
    tensile.chooseLaw(1);
    waitFor([&] { return seen && !tensile.fitRunning(); });
    save(tensile, folder, prefix + QStringLiteral("fitted"), false);
    seen = false;
    saveNextModal(folder, prefix + QStringLiteral("chart"), seen, &tensile);
    tensile.findChild<QPushButton*>(QStringLiteral("openChart"))->click();
    seen = false;
    saveNextModal(folder, prefix + QStringLiteral("compare"), seen, &tensile);
    tensile.compareLaws();
    waitFor([&] { return seen && !tensile.fitRunning(); });
    seen = false;
    saveNextModal(folder, prefix + QStringLiteral("options"), seen, &tensile);
    tensile.findChild<QPushButton*>(QStringLiteral("numericalOption"))->click();
    seen = false;
    saveNextModal(folder, prefix + QStringLiteral("fracture"), seen, &tensile);
    tensile.findChild<QPushButton*>(QStringLiteral("fractureCriteria"))->click();
    // The material opened again: its record, curve and law as the screen shows them.
    CPlasticRoomDlg reopened(tensile.material(), environment);
    reopened.show();
    waitFor([&] { return reopened.enteredRecord() != nullptr; });
    save(reopened, folder, prefix + QStringLiteral("reopened"), false);
}

// The hot screen on the measured Gleeble series, Hensel-Spittel fitted.
void saveHotScreens(const zelko::Project& material, const zelko::Environment& environment, const QString& folder)
{
    CHotCompDlg hot(material, environment);
    hot.importCsv(QStringLiteral(ZELKO_TEST_DATA "/measured/hot-compression-medium-carbon-steel.csv"));
    hot.show();
    hot.fit();
    waitFor([&] { return !hot.fitRunning(); });
    save(hot, folder, QStringLiteral("hot-fitted"), false);
    bool seen = false;
    saveNextModal(folder, QStringLiteral("hot-chart"), seen, &hot);
    hot.showChart();
    seen = false;
    saveNextModal(folder, QStringLiteral("hot-advanced"), seen, &hot);
    hot.findChild<QPushButton*>(QStringLiteral("advanced"))->click();
    hot.findChild<QComboBox*>(QStringLiteral("model"))->setCurrentIndex(2);
    seen = false;
    saveNextModal(folder, QStringLiteral("hot-zener-hollomon"), seen, &hot, [](QDialog* modal) {
        auto* screen = static_cast<zelko::ui::CDialogZenerHollomon*>(modal);
        screen->fit();
        waitFor([&] { return !screen->fitRunning(); });
    });
    hot.editParameters();
    hot.findChild<QComboBox*>(QStringLiteral("model"))->setCurrentIndex(3);
    seen = false;
    saveNextModal(folder, QStringLiteral("hot-model70"), seen, &hot);
    hot.editParameters();
    // The processing map of the measured curves as gnuplot draws it (an empty
    // plot without gnuplot). The fitted law's efficiency varies by well under
    // one contour step on this series, so its map shows no lines.
    CDLG_PROCESSINGMAP map(hot.dataSet(), environment);
    map.show();
    map.draw();
    waitFor([&] { return !map.mapRunning() && !map.plot()->drawing(); });
    save(map, folder, QStringLiteral("processing-map"), false);
    // The peaks and steady states, three cells at 1150 °C marked on the chart.
    CDIALOG_HOT_MICROS peaks(hot.dataSet());
    peaks.show();
    peaks.table()->clearSelection();
    peaks.table()->setSelectionMode(QAbstractItemView::MultiSelection);
    for (const int row : {12, 13, 14})
        peaks.table()->selectRow(row);
    peaks.table()->setSelectionMode(QAbstractItemView::ExtendedSelection);
    save(peaks, folder, QStringLiteral("hot-peaks"), false);
}

}  // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc < 2)
        return 2;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(folder);
    CMainFrame frame;
    if (argc > 3) {
        // As the Options command switches: the form and the screens opened after it.
        zelko::ui::setCurrentLanguageId(QString::fromLocal8Bit(argv[3]).toInt());
        frame.view()->translateWindow(&frame, QStringLiteral("Main"));
    }
    save(frame, folder, QStringLiteral("main-closed"));
    if (argc > 2 && argv[2][0] != '\0')
        frame.view()->openFile(QString::fromLocal8Bit(argv[2]));
    else
        frame.view()->newMaterial();
    save(frame, folder, QStringLiteral("main-open"));

    const zelko::Project& material = frame.view()->document().material();
    zelko::ChemicalComposition composition{0.45, 0.7, 0.25, 0.02, 0.02};
    CElasticDlg elastic(*material.elastic, composition);
    save(elastic, folder, QStringLiteral("elastic"));
    CHeatDlg heat(material.conductivity->points, material.heatCapacity->points);
    heat.findChild<QPushButton*>(QStringLiteral("steel"))->click();
    save(heat, folder, QStringLiteral("thermal"));
    CDlgChemicalComposition chemistry(composition);
    save(chemistry, folder, QStringLiteral("composition"));
    CDlgListData list(0, {}, composition);
    list.runMethod(0);
    save(list, folder, QStringLiteral("list-data"));
    CDialogOption options(zelko::ui::currentLanguageId());
    save(options, folder, QStringLiteral("options"));
    const zelko::Environment environment = frame.view()->document().environment();
    // As the user meets them: the screens are translated when they open.
    saveTensileScreens(zelko::Project(), environment, folder, QStringLiteral("1045"));
    saveTensileScreens(zelko::Project(), environment, folder, QStringLiteral("4130"));
    saveHotScreens(zelko::Project(), environment, folder);
    return 0;
}
