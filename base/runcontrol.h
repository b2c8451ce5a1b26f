#pragma once
// How a long computation talks to whoever started it: progress from 0 to 100
// and a request to stop. Screens run fits off their own thread and stop them
// from it; the command-line tool passes a control that never stops.

#include <functional>
#include <stop_token>

namespace zelko {

struct RunControl {
    std::function<void(int percent)> progress;
    std::stop_token stop;

    void report(int percent) const
    {
        if (progress)
            progress(percent);
    }
    bool stopRequested() const { return stop.stop_requested(); }
};

}  // namespace zelko
