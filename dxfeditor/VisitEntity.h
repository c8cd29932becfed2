#pragma once

#include "dxfeditor/DXFArc.h"
#include "dxfeditor/DXFCircle.h"
#include "dxfeditor/DXFEntity.h"
#include "dxfeditor/DXFLine.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFPolyline.h"
#include "dxfeditor/DXFSpline.h"

#include <type_traits>
#include <typeinfo>

namespace dxfeditor {

/// The entity as a `Kind`, as constant as it is; null when it is of another class.
template <typename Kind, typename Entity>
auto entityAs(Entity& entity) {
    using Wanted = std::conditional_t<std::is_const_v<Entity>, const Kind, Kind>;
    // Nearly all entities are of the very class, which is told much faster. Others may derive from
    // several: only the cast knows where in them the wanted one lies.
    const std::type_info& type = typeid(entity);
    return type == typeid(Kind) ? &static_cast<Wanted&>(entity) : dynamic_cast<Wanted*>(&entity);
}

/// Calls the visitor with an entity as the class that its type code names: a `DXFLine&` for
/// DXFEntityType::Line, constant when the entity is. A visitor has to take all seven kinds.
///
///     double length = 0.0;
///     visitEntity(entity, [&](const auto& kind) {
///         if constexpr (std::is_same_v<decltype(kind), const DXFLine&>) {
///             length = cv::norm(kind.getP2() - kind.getP1());
///         }
///     });
///
/// @return whether the visitor was called: false when the code is none of DXFEntityType, or the
///         entity is not of the class that its code names
template <typename Entity, typename Visitor>
bool visitEntity(Entity& entity, Visitor&& visitor) {
    const auto visitAs = [&](auto* kind) {
        if (kind != nullptr) {
            visitor(*kind);
        }
        return kind != nullptr;
    };
    switch (entity.type()) {
    case DXFEntityType::Polyline:
        return visitAs(entityAs<DXFPolyline>(entity));
    case DXFEntityType::Point:
        return visitAs(entityAs<DXFPoint>(entity));
    case DXFEntityType::PointVector:
        return visitAs(entityAs<DXFPointVector>(entity));
    case DXFEntityType::Circle:
        return visitAs(entityAs<DXFCircle>(entity));
    case DXFEntityType::Arc:
        return visitAs(entityAs<DXFArc>(entity));
    case DXFEntityType::Line:
        return visitAs(entityAs<DXFLine>(entity));
    case DXFEntityType::Spline:
        return visitAs(entityAs<DXFSpline>(entity));
    }
    return false;
}

} // namespace dxfeditor
