// Pictures of the main form and its screens for the manual: run as
// app_screenshots FOLDER [MATERIAL.zmat [LANGID]]; each window is grabbed to a PNG.

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTableWidget>

#include "app/mainframe.h"
#include "app/matview.h"
#include "material/tselikov.h"
#include "ui/chemicalcompositiondlg.h"
#include "ui/dialogoption.h"
#include "ui/elasticdlg.h"
#include "ui/heatdlg.h"
#include "ui/listdatadlg.h"
#include "ui/uisettings.h"

namespace {

void save(QWidget& window, const QString& folder, const QString& name)
{
    window.show();
    window.adjustSize();
    QApplication::processEvents();
    window.grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
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
    return 0;
}
