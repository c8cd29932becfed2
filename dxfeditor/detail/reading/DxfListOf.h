#pragma once

#include "dxfeditor/detail/reading/DxfCountedList.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace dxfeditor {

/// A list of an entity as dxflib reads it: it has as many elements as the entity states, and begins
/// anew with each statement; without one, as many as come.
template <typename Element>
class DxfListOf {
public:
    /// No statement, no elements.
    void clear() {
        m_stated.reset();
        m_values = 0;
        m_elements.clear();
    }

    /// The entity states a count.
    void begin(std::string_view count) {
        clear();
        m_stated = dxfInteger(count);
    }

    /// The next element begins. One beyond the count is not added: its values go into the last one.
    /// @return whether it was added
    bool add(const Element& element) {
        m_values = std::min(m_values + 1, static_cast<int>(greatestDxfCount));
        const auto size = static_cast<int>(m_elements.size());
        const bool hasRoom = size < m_values && (!m_stated || size < *m_stated);
        if (hasRoom) {
            m_elements.push_back(element);
        }
        return hasRoom;
    }

    /// Sets a value of the last element. Values before the first one go nowhere.
    void set(double Element::*member, double value) {
        if (!m_elements.empty()) {
            m_elements.back().*member = value;
        }
    }

    /// The count stated, or the number of elements that came where that is less.
    int count() const { return m_stated ? std::min(*m_stated, m_values) : m_values; }

    /// Whether no element is missing that was stated.
    bool isFull() const { return !m_stated || (*m_stated >= 0 && *m_stated <= m_values); }

    const std::vector<Element>& elements() const { return m_elements; }
    std::vector<Element>& elements() { return m_elements; }

private:
    std::optional<int> m_stated;
    /// Elements that came.
    int m_values = 0;
    std::vector<Element> m_elements;
};

} // namespace dxfeditor
