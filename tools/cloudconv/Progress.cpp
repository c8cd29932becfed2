#include "tools/cloudconv/Progress.h"

#include "tools/cloudconv/Interrupt.h"
#include "tools/cloudconv/StandardError.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <system_error>

namespace {

constexpr auto moment = std::chrono::milliseconds(500);
constexpr auto betweenLines = std::chrono::milliseconds(200);

constexpr char clearedLine[] = "\r\x1B[K";

void print(const std::string& text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

} // namespace

Progress::Progress(bool quiet) {
    if (quiet || isatty(STDERR_FILENO) == 0) {
        return;
    }
    try {
        // The thread inherits that it gets no interrupts: they are the main thread's.
        const InterruptsHeld held;
        m_shower = std::thread([this] { show(); });
    } catch (const std::system_error&) {
        // Work that nobody sees is still done.
    }
}

Progress::~Progress() {
    end();
}

void Progress::begin(const std::string& work, std::size_t total) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_work = printable(work);
    m_total = total;
    m_done = 0;
    ++m_begun;
}

std::function<bool(double)> Progress::beginParts(const std::string& work) {
    constexpr double parts = 1000.0;
    begin(work, static_cast<std::size_t>(parts));
    return [this, number = m_begun](double done) {
        if (number == m_begun) {
            reached(static_cast<std::size_t>(done * parts));
        }
        return true;
    };
}

void Progress::end() {
    if (!m_shower.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ended = true;
    }
    m_changed.notify_all();
    m_shower.join();
}

void Progress::show() {
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto ended = [this] { return m_ended; };
    if (m_changed.wait_for(lock, moment, ended)) {
        return;
    }
    do {
        print(clearedLine + line());
    } while (!m_changed.wait_for(lock, betweenLines, ended));
    print(clearedLine);
}

std::string Progress::line() const {
    constexpr std::size_t whole = 100;
    const std::size_t done = m_done;
    if (m_total > 0) {
        // A file may be longer than it said.
        const double share =
            std::min(static_cast<double>(done) / static_cast<double>(m_total), 1.0);
        return m_work + ": " +
               std::to_string(static_cast<std::size_t>(share * static_cast<double>(whole))) + " %";
    }
    return done > 0 ? m_work + ": " + std::to_string(done) : m_work;
}
