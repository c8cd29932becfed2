#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

/// Shows on standard error what the program is doing, when that is a terminal and it takes longer
/// than a moment. One line, which is gone in the end.
class Progress {
public:
    /// @param quiet  show nothing
    explicit Progress(bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Begins the next piece of work.
    ///
    /// @param work   what is done: "reading scan.ply"
    /// @param total  how much there is to do; 0 when that is not known
    void begin(const std::string& work, std::size_t total = 0);

    /// Begins work of which somebody tells the part that is done.
    ///
    /// @return to be called with that part, 0 to 1, as long as this lives; it returns true, and
    ///         shows nothing once other work has begun
    std::function<bool(double)> beginParts(const std::string& work);

    /// One more of the steps that there are in total is done.
    void step() { m_done.fetch_add(1, std::memory_order_relaxed); }

    /// Whether anybody sees it: only then is it worth counting what there is to do.
    bool isShown() const { return m_shower.joinable(); }

    /// How much of it is done. Cheap enough for every entity.
    void reached(std::size_t done) { m_done.store(done, std::memory_order_relaxed); }

    /// Clears the line. Nothing is shown afterwards.
    void end();

private:
    void show();
    std::string line() const;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_work;
    std::size_t m_total = 0;
    std::size_t m_begun = 0;
    std::atomic<std::size_t> m_done = 0;
    bool m_ended = false;
    std::thread m_shower;
};
