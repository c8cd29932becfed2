#include "python/native/Conversion.h"

#include <cstring>

namespace py = pybind11;

void raise(PyObject* type, const std::string& text) {
    const auto message = py::reinterpret_steal<py::object>(PyUnicode_DecodeUTF8(
        text.data(), static_cast<Py_ssize_t>(text.size()), "backslashreplace"));
    if (message) {
        PyErr_SetObject(type, message.ptr());
    }
    throw py::error_already_set();
}

py::bytes toBytes(const std::vector<unsigned char>& contents) {
    auto result = py::reinterpret_steal<py::bytes>(
        PyBytes_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(contents.size())));
    if (!result) {
        throw py::error_already_set();
    }
    if (!contents.empty()) {
        char* target = PyBytes_AS_STRING(result.ptr());
        // Nobody else has seen the object yet.
        const py::gil_scoped_release unlocked;
        std::memcpy(target, contents.data(), contents.size());
    }
    return result;
}

ByteView::ByteView(const py::object& source) {
    if (PyObject_GetBuffer(source.ptr(), &m_buffer, PyBUF_SIMPLE) != 0) {
        throw py::error_already_set();
    }
}

ByteView::~ByteView() {
    PyBuffer_Release(&m_buffer);
}
