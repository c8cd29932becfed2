#pragma once

#include "converters/DrawingPath.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <vector>

namespace converters {

class SearchProgress;

/// Two ends of contours that are near, and not joined.
struct NearMiss {
    cv::Point3_<double> first;
    cv::Point3_<double> second;
    double distance;
};

/// Ends that are not joined and within this distance are near, where nobody says otherwise.
constexpr double defaultNearness = 0.1;

/// An end of an open contour.
struct ContourEnd {
    cv::Point3_<double> place;
    /// A number that the two ends of a contour have in common, and no others.
    std::size_t contour;
    /// Of the contour.
    double length;
};

/// The near misses among ends: for each the nearest one that is at least the joining distance away
/// and at most `distance`. Every pair comes once, in the order of the ends. The two ends of a
/// contour that is hardly longer than the way between them are no near miss; an end whose place is
/// not finite is near nothing.
///
/// @param joining   ends within this distance are joined; above 0
/// @param progress  is told of two steps for each end
std::vector<NearMiss> nearMissesAmong(const std::vector<ContourEnd>& ends, double distance,
                                      double joining, SearchProgress& progress);

/// The near misses among the ends of a path's open contours, in the order of its contours.
std::vector<NearMiss> nearMissesOf(const DrawingPath& path, double distance, double joining,
                                   SearchProgress& progress);

/// The same, without anybody who is told how far it is.
std::vector<NearMiss> nearMissesOf(const DrawingPath& path, double distance,
                                   double joining = defaultJoinDistance);

} // namespace converters
