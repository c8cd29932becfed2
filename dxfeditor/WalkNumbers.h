#pragma once

namespace dxfeditor {

/// Ends of entities closer than this, in drawing units, are one point of the walk.
constexpr double joinDistance = 0.001;

} // namespace dxfeditor
