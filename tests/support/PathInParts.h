#pragma once

#include "converters/PathReader.h"

#include <cstddef>

/// Reads a path a few contours at a time and puts these together: what readPath() gives at once.
///
/// @param points  of each part, as PathReader::read() has it
/// @param counts  whether the points to come are counted before each part, too
/// @param path    replaced by the whole; untouched when the result is a failure
/// @return a failure, too, when the parts are not as long as they were to be, or the points not as
///         many as were counted
converters::ReadResult readInParts(converters::PathReader reader, std::size_t points,
                                   converters::DrawingPath& path, bool counts = true);
