#include "app/mainframe.h"

#include <QLabel>

CMainFrame::CMainFrame(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("ZELKO_MAT"));
    auto* placeholder = new QLabel(tr("No material open."), this);
    placeholder->setAlignment(Qt::AlignCenter);
    setCentralWidget(placeholder);
    resize(640, 420);
}
