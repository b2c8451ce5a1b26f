#include <QApplication>
#include <QStringList>

#include "app/mainframe.h"
#include "base/temporaryfiles.h"

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    // A save cut short by Ctrl+C or a logout leaves no temporary file behind.
    zelko::removeTemporaryFilesOnSignals();
    QApplication::setApplicationName(QStringLiteral("ZELKO_MAT"));
    QGuiApplication::setDesktopFileName(QStringLiteral("PELD.ZELKO_MAT.24.2"));
    CMainFrame frame;
    frame.show();
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() > 1)
        frame.openFromOutside(arguments.at(1));
    return application.exec();
}
