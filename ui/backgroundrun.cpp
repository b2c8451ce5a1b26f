#include "ui/backgroundrun.h"

#include <QMetaObject>

#include <atomic>

namespace zelko::ui {

BackgroundRun::BackgroundRun(QObject* parent) : QObject(parent) {}

bool BackgroundRun::start(Work work)
{
    if (running_)
        return false;
    if (thread_.joinable())
        thread_.join();
    running_ = true;
    emit runningChanged(true);
    emit progressed(0);
    // Progress reports come often and mostly repeat; only a change is sent on.
    auto last = std::make_shared<std::atomic<int>>(-1);
    thread_ = std::jthread([this, work = std::move(work), last](std::stop_token stop) {
        RunControl control;
        control.stop = stop;
        control.progress = [this, last](int percent) {
            if (last->exchange(percent) != percent)
                QMetaObject::invokeMethod(this, [this, percent] { emit progressed(percent); }, Qt::QueuedConnection);
        };
        std::function<void()> result = work(control);
        QMetaObject::invokeMethod(this, [this, result = std::move(result)] { deliver(result); }, Qt::QueuedConnection);
    });
    return true;
}

void BackgroundRun::cancel()
{
    if (thread_.joinable())
        thread_.request_stop();
}

void BackgroundRun::deliver(const std::function<void()>& onInterfaceThread)
{
    if (thread_.joinable())
        thread_.join();
    running_ = false;
    emit runningChanged(false);
    if (onInterfaceThread)
        onInterfaceThread();
}

}  // namespace zelko::ui
