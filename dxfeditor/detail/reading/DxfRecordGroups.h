#pragma once

#include "dxfeditor/detail/reading/DxfGroupSet.h"

namespace dxfeditor {

// The groups that dxflib makes records of, object by object.

/// Attributes, of every object.
inline constexpr DxfGroupSet attributeGroups = {5, 6, 8, 39, 48, 62, 67, 370, 420};
/// Attributes, extrusion and elevation, of every object.
inline constexpr DxfGroupSet commonGroups = attributeGroups | DxfGroupSet{30, 210, 220, 230};

inline constexpr DxfGroupSet layerGroups = commonGroups | DxfGroupSet{2, 70};
inline constexpr DxfGroupSet lineTypeGroups = commonGroups | DxfGroupSet{2, 3, 40, 70, 73};
inline constexpr DxfGroupSet blockGroups = commonGroups | DxfGroupSet{2, 10, 20, 70};
inline constexpr DxfGroupSet pointGroups = commonGroups | DxfGroupSet{10, 20};
inline constexpr DxfGroupSet lineGroups = pointGroups | DxfGroupSet{11, 21, 31};
inline constexpr DxfGroupSet circleGroups = pointGroups | DxfGroupSet{40};
inline constexpr DxfGroupSet arcGroups = circleGroups | DxfGroupSet{50, 51};
inline constexpr DxfGroupSet polylineGroups = commonGroups | DxfGroupSet{38, 70, 71, 72};
inline constexpr DxfGroupSet vertexGroups = pointGroups | DxfGroupSet{42, 70};
inline constexpr DxfGroupSet lwPolylineGroups = polylineGroups | vertexGroups;
inline constexpr DxfGroupSet splineGroups =
    lineGroups | DxfGroupSet{12, 13, 22, 23, 32, 33, 40, 41, 70, 71};

} // namespace dxfeditor
