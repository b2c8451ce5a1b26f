// Time from the process's start to the main window's first paint, as a user
// waits for it. Prints milliseconds; bench/appstartup.sh runs it a few times.

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

#include <unistd.h>

#include "app/mainframe.h"

namespace {

// Milliseconds since the process started, from /proc (Linux).
double sinceProcessStart()
{
    std::ifstream stat("/proc/self/stat");
    std::string field;
    for (int i = 0; i < 22 && stat >> field; ++i) {
    }
    const double startTicks = std::stod(field);
    timespec boot{};
    clock_gettime(CLOCK_BOOTTIME, &boot);
    const double nowMs = boot.tv_sec * 1000.0 + boot.tv_nsec / 1e6;
    return nowMs - startTicks * 1000.0 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

class FirstPaint : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && !seen) {
            seen = true;
            std::printf("first paint after %.0f ms\n", sinceProcessStart());
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        }
        return false;
    }
    bool seen = false;
};

}  // namespace

int main(int argc, char* argv[])
{
    const double atMain = sinceProcessStart();
    QApplication application(argc, argv);
    const double atApplication = sinceProcessStart();
    CMainFrame frame;
    std::printf("main at %.0f ms, application at %.0f ms, frame at %.0f ms; ", atMain, atApplication,
                sinceProcessStart());
    FirstPaint watcher;
    frame.installEventFilter(&watcher);
    frame.show();
    return application.exec();
}
