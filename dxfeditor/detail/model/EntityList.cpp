#include "dxfeditor/detail/model/EntityList.h"

#include "dxfeditor/DXFEntity.h"

#include <algorithm>
#include <new>
#include <utility>

namespace dxfeditor {

void EntityList::add(std::shared_ptr<DXFEntity> entity) {
    const DXFEntity* const key = entity.get();
    m_slots.push_back(std::move(entity));
    if (m_index == nullptr) {
        return;
    }
    try {
        m_index->isRemoved.resize(m_slots.size());
        m_index->slotOf.emplace(key, m_slots.size() - 1);
    } catch (...) {
        m_slots.pop_back();
        throw;
    }
}

void EntityList::remove(std::shared_ptr<DXFEntity> entity) {
    constexpr long argumentAndLastSlot = 2;
    if (m_index == nullptr && !m_slots.empty() && m_slots.back() == entity &&
        entity.use_count() == argumentAndLastSlot) {
        m_slots.pop_back();
        return;
    }
    if (m_index == nullptr && !buildIndex()) {
        m_slots.erase(std::remove(m_slots.begin(), m_slots.end(), entity), m_slots.end());
        return;
    }
    const auto [first, last] = m_index->slotOf.equal_range(entity.get());
    for (auto found = first; found != last; ++found) {
        m_slots[found->second].reset();
        m_index->isRemoved[found->second] = true;
        ++m_index->removedCount;
    }
    m_index->slotOf.erase(first, last);
    if (2 * m_index->removedCount > m_slots.size()) {
        dropRemoved();
    }
}

/// @return false when there is no memory for it
bool EntityList::buildIndex() {
    try {
        auto index = std::make_unique<Index>();
        index->isRemoved.resize(m_slots.size());
        index->slotOf.reserve(m_slots.size());
        for (std::size_t slot = 0; slot < m_slots.size(); ++slot) {
            index->slotOf.emplace(m_slots[slot].get(), slot);
        }
        m_index = std::move(index);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Closes the gaps. The next removal builds the index anew, which the removals so far have paid
/// for.
void EntityList::dropRemoved() {
    std::size_t kept = 0;
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot) {
        if (!m_index->isRemoved[slot]) {
            m_slots[kept++].swap(m_slots[slot]);
        }
    }
    m_slots.resize(kept);
    m_index.reset();
}

std::list<std::shared_ptr<DXFEntity>> EntityList::copy() const {
    std::list<std::shared_ptr<DXFEntity>> entities;
    for (std::size_t slot = 0; slot < m_slots.size(); ++slot) {
        if (m_index == nullptr || !m_index->isRemoved[slot]) {
            entities.push_back(m_slots[slot]);
        }
    }
    return entities;
}

} // namespace dxfeditor
