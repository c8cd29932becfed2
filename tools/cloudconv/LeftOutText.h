#pragma once

#include "converters/DrawingPath.h"

#include <string>
#include <vector>

/// What a path does not hold, in one line: "24 TEXT, 2 HATCH (annotation); 12 LINE (on a frozen
/// layer: aux)". Entities of a kind and reason are counted together, and by layer where the layer
/// is the reason, or with the number of layers when these are many: "9 LINE (on a frozen layer: 21
/// layers)". Empty when nothing was left out.
std::string leftOutText(const std::vector<converters::LeftOut>& leftOut);
