#include "converters/detail/drawing/dxf/NameTable.h"

namespace converters::drawing {

std::uint32_t NameTable::search(std::string_view name) {
    const auto number = static_cast<std::uint32_t>(m_names.size());
    const auto [entry, isNew] = m_numbers.emplace(name, number);
    if (isNew) {
        m_names.push_back(name);
    }
    return entry->second;
}

} // namespace converters::drawing
