#pragma once

#include "tests/support/HostileDrawings.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// The groups of a DXF file: code and value.
using DxfGroupList = std::vector<std::pair<int, std::string>>;

/// The groups of a text of alternate lines.
DxfGroupList groupsOf(const std::string& text);

/// The same drawing as binary DXF, with group codes of two bytes.
std::string binaryDrawingOf(const DxfGroupList& groups);

/// A whole drawing as text, from the groups of its parts.
std::string drawingOf(const std::string& entities, const std::string& blocks = "",
                      const std::string& layers = "");

/// The groups of a block of this name.
std::string blockOf(const std::string& name, const std::string& contents);

/// The groups of an INSERT, `more` of them at its end.
std::string insertOf(const std::string& name, const std::string& more = "");

/// A drawing with every kind of entity that a path is made of, in blocks, too.
std::string drawingOfEverything();

/// Drawings of any size that are expensive for a reader that is not careful. All are read, with
/// success; when no more than `mostHostilePathEntities` are allowed, some are refused instead.
const std::vector<HostileDrawing>& hostilePathDrawings();

constexpr std::size_t mostHostilePathEntities = 10'000;
