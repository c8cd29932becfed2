#pragma once

#include <csignal>
#include <cstddef>
#include <string>

/// Makes Ctrl-C, a hang-up and a polite kill remove the files that RemovedWhenInterrupted names
/// before they end the program. A signal that the caller of the program ignores stays ignored.
void removeFilesWhenInterrupted();

/// Holds those signals back on this thread while it lives. What was held back before stays so.
class InterruptsHeld {
public:
    InterruptsHeld();
    ~InterruptsHeld();
    InterruptsHeld(const InterruptsHeld&) = delete;
    InterruptsHeld& operator=(const InterruptsHeld&) = delete;

private:
    sigset_t m_before;
};

/// A file that must not outlive the program while this object lives. The file need not exist.
class RemovedWhenInterrupted {
public:
    explicit RemovedWhenInterrupted(std::string path);
    ~RemovedWhenInterrupted();
    RemovedWhenInterrupted(const RemovedWhenInterrupted&) = delete;
    RemovedWhenInterrupted& operator=(const RemovedWhenInterrupted&) = delete;

private:
    std::string m_path;
    std::size_t m_slot;
};
