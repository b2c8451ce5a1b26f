#include "base/temporaryfiles.h"

#include <atomic>
#include <csignal>
#include <cstring>

#if defined(_WIN32)
#include <cstdio>
#else
#include <unistd.h>
#endif

namespace zelko {

namespace {

// A command stages a handful of outputs at once; the app a few more.
constexpr int kSlots = 32;
// Longer names are still saved, just not removed on a signal.
constexpr std::size_t kNameBytes = 4096;

struct Slot {
    std::atomic<bool> taken{false};  // claimed by a writer
    std::atomic<bool> live{false};   // name complete: the handler may remove it
    char name[kNameBytes];
};

Slot slots[kSlots];

// Only async-signal-safe calls: unlink and signal, then the signal again.
extern "C" void removeAndReraise(int signal)
{
    for (Slot& slot : slots)
        if (slot.live.load(std::memory_order_acquire)) {
#if defined(_WIN32)
            std::remove(slot.name);
#else
            ::unlink(slot.name);
#endif
        }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

int registerTemporaryFile(const std::filesystem::path& path)
{
    const std::string name = path.string();
    if (name.size() >= kNameBytes)
        return -1;
    for (int i = 0; i < kSlots; ++i) {
        bool expected = false;
        if (!slots[i].taken.compare_exchange_strong(expected, true))
            continue;
        std::memcpy(slots[i].name, name.c_str(), name.size() + 1);
        slots[i].live.store(true, std::memory_order_release);
        return i;
    }
    return -1;
}

void releaseTemporaryFile(int slot)
{
    if (slot < 0 || slot >= kSlots)
        return;
    slots[slot].live.store(false, std::memory_order_release);
    slots[slot].taken.store(false, std::memory_order_release);
}

void removeTemporaryFilesOnSignals()
{
#if defined(_WIN32)
    std::signal(SIGINT, removeAndReraise);
    std::signal(SIGTERM, removeAndReraise);
#else
    struct sigaction action {};
    action.sa_handler = removeAndReraise;
    sigemptyset(&action.sa_mask);
    // One handler at a time: a second signal waits until the first one's removal is done.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&action.sa_mask, signal);
    action.sa_flags = SA_RESETHAND;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // A signal ignored by whoever started us (nohup, a background job) stays ignored.
        struct sigaction previous {};
        if (sigaction(signal, nullptr, &previous) == 0 && previous.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
#endif
}

}  // namespace zelko
