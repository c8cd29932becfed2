#pragma once

#include <functional>

namespace converters::drawing {

/// Tells the caller how far the work is, and lets him stop it.
class Progress {
public:
    /// @param callback  may be empty; has to outlive this object
    explicit Progress(const std::function<bool(double)>& callback) : m_callback(callback) {}

    /// Of the whole work, a stage takes the part from `begin` to `end`.
    void beginStage(double begin, double end) {
        m_begin = begin;
        m_end = end;
    }

    /// @param done  the part of the stage that is done, 0 to 1
    /// @throws Refusal when the caller stops the work
    void report(double done) const;

private:
    const std::function<bool(double)>& m_callback;
    double m_begin = 0;
    double m_end = 1;
};

} // namespace converters::drawing
