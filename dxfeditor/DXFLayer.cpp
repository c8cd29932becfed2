#include "dxfeditor/DXFLayer.h"

#include <utility>

DXFLayer::DXFLayer(const std::string& name, int flags) : m_name(name), m_flags(flags) {}

void DXFLayer::setAttributes(std::shared_ptr<DXFAttributes> attributes) {
    m_attributes = std::move(attributes);
}
