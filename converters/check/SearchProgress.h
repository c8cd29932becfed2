#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace converters {

/// Tells how far a search of several stages is.
class SearchProgress {
public:
    /// Thrown when the one who was told wants the search to stop.
    struct Stopped {};

    /// @param report  called with the part that is done, 0 to 1; returns whether to go on. May be
    ///                empty
    explicit SearchProgress(std::function<bool(double)> report) : m_report(std::move(report)) {}

    /// Begins the next stage.
    ///
    /// @param end    the part of the whole search that is done behind it
    /// @param steps  of this stage
    void begin(double end, std::size_t steps) {
        m_begin = m_end;
        m_end = end;
        m_steps = steps;
        m_next = 0;
        reached(0);
    }

    /// Tells how many steps of the stage are done. Cheap enough for every one.
    ///
    /// @throws Stopped
    void reached(std::size_t step) {
        if (step < m_next || !m_report) {
            return;
        }
        constexpr std::size_t calls = 100;
        m_next = step + m_steps / calls + 1;
        const double share =
            m_steps == 0 ? 0.0 : static_cast<double>(step) / static_cast<double>(m_steps);
        if (!m_report(m_begin + (m_end - m_begin) * share)) {
            throw Stopped();
        }
    }

private:
    std::function<bool(double)> m_report;
    double m_begin = 0.0;
    double m_end = 0.0;
    std::size_t m_steps = 0;
    /// The step to be told next.
    std::size_t m_next = 0;
};

} // namespace converters
