#pragma once

#include "converters/DrawingPath.h"
#include "tools/cloudconv/DxfFile.h"

/// The walk of a drawing as a path, for what shows either: its contours in the plane of the
/// drawing, in order. Without layers and entities, which the walk does not tell; curves are the
/// lines that the walk makes of them, but a circle by itself is an arc, whose points stop a step
/// short of its start.
///
/// @param unit  what a drawing unit is
converters::DrawingPath pathOfWalk(const DxfContents& drawing, converters::LengthUnit unit);
