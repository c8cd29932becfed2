#pragma once

#include "tools/cloudconv/ContourKind.h"
#include "tools/cloudconv/DxfFile.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <vector>

/// A stretch of the walk: the points from `begin` up to, not including, `end`.
struct Contour {
    ContourKind kind;
    std::size_t begin;
    std::size_t end;
    /// Of the walk along it, in drawing units; 0 for points.
    double length;
    /// Whether these are POINTs that follow one another in the drawing, whose (x, y, z) is
    /// (x, y, -z) in the walk. What else there is has its (x, y) at (x, 0, y).
    bool isOfPoints;
};

/// Whether a point of the walk has a place: neither nan nor infinite.
bool hasPlace(const cv::Point3_<double>& point);

/// How far apart two points of the walk are.
double distanceOf(const cv::Point3_<double>& a, const cv::Point3_<double>& b);

/// The contours of a drawing, in the order of its walk.
std::vector<Contour> contoursOf(const DxfContents& drawing);
