#pragma once

#include "converters/DrawingPath.h"

#include <string>

/// All that a path holds, as bytes: two paths are the same, to the last bit, where these are.
std::string bytesOf(const converters::DrawingPath& path);
