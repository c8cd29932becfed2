#include "tools/cloudconv/Interrupt.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <utility>

namespace {

constexpr std::array<int, 3> interrupts = {SIGINT, SIGTERM, SIGHUP};

/// The files to remove. More than the program ever names at a time.
std::array<std::atomic<const char*>, 4> paths;

/// Calls only what a signal handler may call.
extern "C" void removeFilesAndEnd(int signal) {
    for (const std::atomic<const char*>& path : paths) {
        if (const char* name = path.load()) {
            unlink(name);
        }
    }
    // With the default action, so that the caller sees what ended the program.
    static_cast<void>(std::signal(signal, SIG_DFL));
    static_cast<void>(raise(signal));
}

sigset_t interruptSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : interrupts) {
        sigaddset(&set, signal);
    }
    return set;
}

} // namespace

void removeFilesWhenInterrupted() {
    for (const int signal : interrupts) {
        if (std::signal(signal, removeFilesAndEnd) == SIG_IGN) {
            static_cast<void>(std::signal(signal, SIG_IGN));
        }
    }
}

InterruptsHeld::InterruptsHeld() {
    const sigset_t set = interruptSet();
    pthread_sigmask(SIG_BLOCK, &set, &m_before);
}

InterruptsHeld::~InterruptsHeld() {
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

RemovedWhenInterrupted::RemovedWhenInterrupted(std::string path)
    : m_path(std::move(path)), m_slot(0) {
    for (; m_slot < paths.size(); ++m_slot) {
        const char* none = nullptr;
        if (paths[m_slot].compare_exchange_strong(none, m_path.c_str())) {
            return;
        }
    }
}

RemovedWhenInterrupted::~RemovedWhenInterrupted() {
    if (m_slot < paths.size()) {
        paths[m_slot] = nullptr;
    }
}
