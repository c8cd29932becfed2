#include "python/native/ProgressCall.h"

#include <utility>

namespace py = pybind11;

ProgressCall::ProgressCall(py::object function) : m_function(std::move(function)) {}

std::function<bool(double)> ProgressCall::function() {
    return [this](double done) { return report(done); };
}

void ProgressCall::raiseIfStopped() const {
    if (m_raised) {
        std::rethrow_exception(m_raised);
    }
}

bool ProgressCall::report(double done) {
    const py::gil_scoped_acquire locked;
    try {
        if (PyErr_CheckSignals() != 0) {
            throw py::error_already_set();
        }
        if (!m_function.is_none()) {
            m_function(done);
        }
    } catch (...) {
        m_raised = std::current_exception();
        return false;
    }
    return true;
}
