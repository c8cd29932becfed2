#include "dxfeditor/detail/reading/DxfCountedList.h"

#include <algorithm>

namespace dxfeditor {

namespace {

/// The least bytes that a group needs: two digits, a line end, no value, a line end.
constexpr std::size_t leastGroupSize = 4;

const char* endOf(std::string_view text) {
    return text.data() + text.size();
}

} // namespace

DxfCountedList::DxfCountedList(const DxfListCodes& codes, std::string_view entity)
    : m_codes(codes) {
    DxfGroups groups(entity);
    for (DxfGroup group; groups.next(group);) {
        if (group.code == codes.count) {
            m_count = group;
            m_values = 0;
        } else if (group.code == codes.first) {
            ++m_values;
        }
    }
    m_values = std::min(m_values, greatestDxfCount);
}

bool DxfCountedList::takes(const DxfGroup& group) const {
    if (!m_codes.members.contains(group.code)) {
        return group.code != m_codes.count;
    }
    return !m_count || group.value.data() > m_count->value.data();
}

int DxfCountedList::stated() const {
    return m_count ? dxfInteger(m_count->value) : static_cast<int>(m_values);
}

int DxfCountedList::count() const {
    return std::min(stated(), static_cast<int>(m_values));
}

int DxfCountedList::count(const char* textEnd, std::size_t& padding) const {
    if (!m_codes.padded || stated() <= count()) {
        return count();
    }
    // The last group of a text needs no line end, hence the one byte more.
    const auto bytesLeft = static_cast<std::size_t>(textEnd - endOf(m_count->value)) + 1;
    const std::size_t most = std::min(bytesLeft / leastGroupSize, greatestDxfCount);
    const std::size_t bounded =
        std::max(std::min(static_cast<std::size_t>(stated()), most), m_values);
    const std::size_t promised = std::min(bounded - m_values, padding);
    padding -= promised;
    return static_cast<int>(m_values + promised);
}

} // namespace dxfeditor
