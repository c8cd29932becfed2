#include "python/native/Column.h"

namespace py = pybind11;

namespace {

bool isDouble(const py::array& array) {
    if (array.dtype().kind() != 'f' || array.dtype().byteorder() != '=' ||
        (array.itemsize() != sizeof(float) && array.itemsize() != sizeof(double))) {
        throw py::type_error("expected an array of float32 or float64");
    }
    return array.itemsize() == sizeof(double);
}

} // namespace

Column::Column(const py::array& array)
    : m_data(static_cast<const unsigned char*>(array.data())), m_isDouble(isDouble(array)) {
    if (array.ndim() != 1 && array.ndim() != 2) {
        throw py::type_error("expected an array of one or two dimensions");
    }
    const bool grid = array.ndim() == 2;
    m_rows = grid ? static_cast<std::size_t>(array.shape(0)) : 1;
    m_columns = static_cast<std::size_t>(array.shape(grid ? 1 : 0));
    m_rowStride = grid ? array.strides(0) : 0;
    m_columnStride = array.strides(grid ? 1 : 0);

    // One long row is read without a step back at every row's end.
    const bool evenlySpaced =
        m_columns == 1 || m_rowStride == static_cast<std::ptrdiff_t>(m_columns) * m_columnStride;
    if (grid && evenlySpaced) {
        m_columnStride = m_columns == 1 ? m_rowStride : m_columnStride;
        m_columns *= m_rows;
        m_rows = 1;
    }
}
