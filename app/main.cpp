#include <QApplication>

#include <clocale>

#include "app/mainframe.h"

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    // Qt adopts the user's locale; the engine's printf and strtod formats are
    // part of the file layouts and need the C decimal point.
    std::setlocale(LC_NUMERIC, "C");
    CMainFrame frame;
    frame.show();
    return application.exec();
}
