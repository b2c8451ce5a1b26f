#include <QApplication>

#include "app/mainframe.h"

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    CMainFrame frame;
    frame.show();
    return application.exec();
}
