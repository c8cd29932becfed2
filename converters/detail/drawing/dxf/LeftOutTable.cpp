#include "converters/detail/drawing/dxf/LeftOutTable.h"

#include "converters/detail/drawing/dxf/Saturating.h"

namespace converters::drawing {

void LeftOutTable::add(std::uint32_t kind, std::uint32_t layer, LeftOutReason reason,
                       std::uint64_t number) {
    const auto isAsked = [&](const Entry& entry) {
        return entry.kind == kind && entry.layer == layer && entry.reason == reason;
    };
    if (m_entries.empty() || !isAsked(m_entries[m_last])) {
        const auto [known, isNew] = m_numbers.emplace(Key{kind, layer, reason}, m_entries.size());
        if (isNew) {
            m_entries.push_back({kind, layer, reason, 0});
        }
        m_last = known->second;
    }
    m_entries[m_last].number = saturatingSum(m_entries[m_last].number, number);
}

} // namespace converters::drawing
