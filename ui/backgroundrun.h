#pragma once
// A long engine computation (a fit, a map) run off the interface thread: its
// progress goes to the screen, Cancel becomes a stop request, and what it found
// is handed back on the interface thread. The window never waits for it.

#include <QObject>

#include <functional>
#include <memory>
#include <thread>

#include "base/runcontrol.h"

namespace zelko::ui {

class BackgroundRun : public QObject {
    Q_OBJECT
public:
    explicit BackgroundRun(QObject* parent = nullptr);
    // A run still going is stopped and waited for (the thread's own destructor
    // does both); nothing it found is delivered.
    ~BackgroundRun() override = default;

    // The work runs on its own thread with a control that reports progress and
    // stops on cancel(); the closure it returns runs on the interface thread
    // (the screen's part: show the result). False while another run is going.
    using Work = std::function<std::function<void()>(const RunControl& control)>;
    bool start(Work work);

    bool running() const { return running_; }
    void cancel();

signals:
    void progressed(int percent);
    void runningChanged(bool running);

private:
    void deliver(const std::function<void()>& onInterfaceThread);

    std::jthread thread_;
    bool running_ = false;
};

}  // namespace zelko::ui
