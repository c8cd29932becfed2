#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <string>
#include <vector>

/// Raises an exception of Python; text that is not UTF-8 is shown as \xHH.
///
/// @param type  the exception's class
[[noreturn]] void raise(PyObject* type, const std::string& text);

/// Runs a conversion without the interpreter lock and raises its reason when it fails.
///
/// @param type        class of the exception
/// @param conversion  returns why it failed, nothing when it succeeded; must not touch objects of
///                    Python
template <typename Conversion>
void convert(PyObject* type, Conversion conversion) {
    std::string reason;
    {
        const pybind11::gil_scoped_release unlocked;
        reason = conversion();
    }
    if (!reason.empty()) {
        raise(type, reason);
    }
}

/// A bytes object of the same contents, copied without the interpreter lock.
pybind11::bytes toBytes(const std::vector<unsigned char>& contents);

/// The contents of any contiguous buffer, of any item type, borrowed.
class ByteView {
public:
    /// @throws pybind11::error_already_set (BufferError, TypeError) for anything else
    explicit ByteView(const pybind11::object& source);
    ~ByteView();
    ByteView(const ByteView&) = delete;
    ByteView& operator=(const ByteView&) = delete;

    /// A copy of the bytes. Needs no interpreter lock.
    template <typename Byte>
    std::vector<Byte> copy() const {
        const auto* begin = static_cast<const Byte*>(m_buffer.buf);
        return std::vector<Byte>(begin, begin + m_buffer.len);
    }

    const void* data() const { return m_buffer.buf; }
    std::size_t size() const { return static_cast<std::size_t>(m_buffer.len); }

private:
    Py_buffer m_buffer;
};
