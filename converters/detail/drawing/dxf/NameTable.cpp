#include "converters/detail/drawing/dxf/NameTable.h"

namespace converters::drawing {

NameTable::Recent NameTable::search(std::string_view name) {
    const auto known = m_numbers.find(name);
    if (known != m_numbers.end()) {
        return {known->first, known->second};
    }
    const auto number = static_cast<std::uint32_t>(m_names.size());
    const std::string_view kept = m_texts.emplace_front(name);
    m_names.push_back(kept);
    m_numbers.emplace(kept, number);
    return {kept, number};
}

} // namespace converters::drawing
