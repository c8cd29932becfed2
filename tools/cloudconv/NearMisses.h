#pragma once

#include "converters/DrawingPath.h"
#include "tools/cloudconv/Contours.h"

#include <opencv2/core/types.hpp>

#include <vector>

/// Two ends of a drawing's walk that are near, and not joined.
struct NearMiss {
    cv::Point3_<double> first;
    cv::Point3_<double> second;
    double distance;
};

/// Ends within this distance are joined.
constexpr double joiningDistance = 0.001;

/// Ends that are not joined and within this distance are near, where nobody says otherwise.
constexpr double defaultNearness = 0.1;

/// The near misses among the ends of open contours: for each end the nearest one that is at least
/// the joining distance away and at most `distance`. Every pair comes once, in the order of the
/// walk.
std::vector<NearMiss> nearMissesOf(const DxfContents& drawing, const std::vector<Contour>& contours,
                                   double distance);

/// The same among the ends of a path's open contours, in the order of its contours. The two ends of
/// a contour that is hardly longer than the way between them are no near miss.
///
/// @param joining  ends within this distance are joined; above 0
std::vector<NearMiss> nearMissesOf(const converters::DrawingPath& path, double distance,
                                   double joining = joiningDistance);
