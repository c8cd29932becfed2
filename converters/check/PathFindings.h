#pragma once

#include "converters/DrawingPath.h"
#include "converters/check/Finding.h"

#include <functional>
#include <string>
#include <vector>

namespace converters {

/// What is found in a path.
struct PathFindings {
    /// By kind, and in the order of the path.
    std::vector<Finding> findings;
    /// What is no finding, and yet to be known: annotation that was left out, say, or that there is
    /// nothing to follow.
    std::vector<std::string> notes;
};

/// How contours are to be followed, to be looked at: in the order in which they are drawn, without
/// additional points on lines.
PathOptions optionsForChecking(PathOptions options);

/// What a user must know of a drawing before something follows its path.
///
/// - near misses: ends of open contours that are not joined and lie apart by no more than
///   `distance`. Of the ends near an end, the nearest;
/// - duplicates: entities that equal an earlier one, of any kind and in either direction;
/// - entities without extent;
/// - geometry that was left out; annotation, and layers that nobody asked for, are notes;
/// - open contours that touch themselves, and closed ones that cross themselves, seen from above;
/// - a drawing that names no unit.
///
/// The cost grows as n log n with the points; it ends with a note where contours are so tangled
/// that it would not.
///
/// @param path      read with optionsForChecking()
/// @param options   those that it was read with
/// @param distance  in units of the path
/// @param progress  called with the part that is done, 0 to 1; returning false stops the search,
///                  which has found nothing then. May be empty
PathFindings findingsOf(const DrawingPath& path, const PathOptions& options, double distance,
                        std::function<bool(double)> progress = {});

} // namespace converters
