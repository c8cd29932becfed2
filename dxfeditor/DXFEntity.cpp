#include "dxfeditor/DXFEntity.h"

#include <utility>

DXFEntity::~DXFEntity() = default;

void DXFEntity::setAttributes(std::shared_ptr<DXFAttributes> attributes) {
    m_attributes = std::move(attributes);
}
