#include "dxfeditor/detail/model/AttributeCache.h"

#include "dxfeditor/DXFAdapter.h"

#include <cstring>
#include <functional>
#include <string>
#include <string_view>

namespace dxfeditor {

namespace {

/// Without the handle.
std::size_t hashOf(const DL_Attributes& attributes) {
    const std::hash<std::string_view> hash;
    const auto color = static_cast<unsigned>(attributes.getColor());
    return hash(attributes.getLayer()) + 31 * hash(attributes.getLinetype()) + 7 * color;
}

/// Whether two numbers are the same to the bit: zeros of different sign are not.
bool areSame(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Whether a record has these attributes, but for the handle.
bool matches(const DXFAttributes& record, const DL_Attributes& attributes) {
    return record.color() == attributes.getColor() && record.color24() == attributes.getColor24() &&
           record.width() == attributes.getWidth() &&
           areSame(record.lineTypeScale(), attributes.getLinetypeScale()) &&
           record.layerName() == attributes.getLayer() &&
           record.lineType() == attributes.getLinetype();
}

} // namespace

std::shared_ptr<DXFAttributes> AttributeCache::recordOf(const DL_Attributes& attributes) {
    if (m_last == nullptr || !matches(*m_last, attributes)) {
        std::shared_ptr<DXFAttributes>& known = m_records[hashOf(attributes) % placeCount];
        if (known == nullptr || !matches(*known, attributes)) {
            known = DXFAdapter::makeAttributes(attributes);
        }
        m_last = known;
    }
    if (m_last->handle() != attributes.getHandle()) {
        m_last = m_last->withHandle(attributes.getHandle());
    }
    return m_last;
}

} // namespace dxfeditor
