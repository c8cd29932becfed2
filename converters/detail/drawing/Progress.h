#pragma once

#include <functional>

namespace converters::drawing {

/// Tells the caller how far the work is, and lets him stop it.
class Progress {
public:
    /// @param callback  may be empty; has to outlive this object
    explicit Progress(const std::function<bool(double)>& callback) : m_callback(callback) {}

    /// That of a stage, which takes this part of the work.
    Progress part(double begin, double end) const {
        Progress stage(m_callback);
        stage.m_begin = m_begin + begin * (m_end - m_begin);
        stage.m_end = m_begin + end * (m_end - m_begin);
        return stage;
    }

    /// @param done  the part that is done, 0 to 1
    /// @throws Refusal when the caller stops the work
    void report(double done) const;

private:
    const std::function<bool(double)>& m_callback;
    double m_begin = 0;
    double m_end = 1;
};

} // namespace converters::drawing
