#pragma once

#include <cstddef>
#include <functional>
#include <limits>

namespace base {

/// Tells how far a stage of some work is, some hundred times: cheap enough for every step of it.
class StageProgress {
public:
    /// Nobody listens.
    StageProgress() = default;

    /// @param listener  called with the part of the whole work that is done, 0 to 1; may be empty,
    ///                  and has to outlive this object
    /// @param begin     the part that is done before the stage
    /// @param end       the part that is done behind it
    StageProgress(const std::function<void(double)>& listener, double begin, double end)
        : m_listener(listener ? &listener : nullptr), m_begin(begin), m_end(end) {}

    /// That of a part of the stage, from `begin` to `end` of it, 0 to 1.
    StageProgress part(double begin, double end) const {
        StageProgress part = *this;
        part.m_begin = m_begin + begin * (m_end - m_begin);
        part.m_end = m_begin + end * (m_end - m_begin);
        return part;
    }

    /// @param steps  of the stage
    void begin(std::size_t steps) {
        m_steps = steps;
        m_next = m_listener == nullptr ? std::numeric_limits<std::size_t>::max() : 0;
    }

    /// @param done  steps that are done, not more than there are
    void reached(std::size_t done) {
        if (done >= m_next) {
            tell(done);
        }
    }

private:
    void tell(std::size_t done) {
        constexpr std::size_t calls = 200;
        m_next = done + m_steps / calls + 1;
        const double part =
            m_steps == 0 ? 0.0 : static_cast<double>(done) / static_cast<double>(m_steps);
        (*m_listener)(m_begin + part * (m_end - m_begin));
    }

    const std::function<void(double)>* m_listener = nullptr;
    double m_begin = 0.0;
    double m_end = 1.0;
    std::size_t m_steps = 0;
    /// The first step to tell of.
    std::size_t m_next = std::numeric_limits<std::size_t>::max();
};

} // namespace base
