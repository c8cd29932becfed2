#pragma once

#include <pybind11/pybind11.h>

#include <exception>
#include <functional>

/// Tells a caller's function how far a reader is, and stops the reader when that function raises an
/// exception or Ctrl-C has been pressed.
class ProgressCall {
public:
    /// @param function  called with a float from 0 to 1; may be None
    explicit ProgressCall(pybind11::object function);

    /// What a reader calls; it needs no interpreter lock, and must not outlive this object.
    std::function<bool(double)> function();

    /// Raises what stopped the reader, if anything did.
    void raiseIfStopped() const;

private:
    bool report(double done);

    pybind11::object m_function;
    std::exception_ptr m_raised;
};
