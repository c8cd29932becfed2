#pragma once

#include <pybind11/numpy.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

/// One number of every point, read in place from a caller's array of any strides.
///
/// Points are counted row by row. Borrows the array's memory: the array must live as long, but the
/// interpreter lock is not needed to read.
class Column {
public:
    /// @param array  one or two dimensions of float32 or float64 in the machine's byte order,
    ///               which may be unaligned
    /// @throws pybind11::type_error for any other array
    explicit Column(const pybind11::array& array);

    /// Number of points.
    std::size_t size() const { return m_rows * m_columns; }

    /// Calls store(point, value) for `count` points from `first` on; they must be there.
    template <typename Store>
    void read(std::size_t first, std::size_t count, Store store) const {
        if (m_isDouble) {
            readAs<double>(first, count, store);
        } else {
            readAs<float>(first, count, store);
        }
    }

private:
    template <typename Number, typename Store>
    void readAs(std::size_t first, std::size_t count, Store store) const {
        const std::size_t end = first + count;
        for (std::size_t point = first; point < end;) {
            const std::size_t row = point / m_columns;
            const std::size_t column = point % m_columns;
            const std::size_t rowEnd = std::min(end, (row + 1) * m_columns);
            std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(row) * m_rowStride +
                                    static_cast<std::ptrdiff_t>(column) * m_columnStride;
            for (; point < rowEnd; ++point, offset += m_columnStride) {
                Number value;
                std::memcpy(&value, m_data + offset, sizeof value);
                store(point, value);
            }
        }
    }

    const unsigned char* m_data;
    bool m_isDouble;
    std::size_t m_rows;
    std::size_t m_columns;
    // In bytes; may be zero or negative.
    std::ptrdiff_t m_rowStride;
    std::ptrdiff_t m_columnStride;
};
