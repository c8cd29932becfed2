#pragma once

#include <opencv2/core/types.hpp>

#include <vector>

class DXFDocument;

/// A run of points.
using PlainRun = std::vector<cv::Point3_<double>>;

/// The runs of a drawing, one an entity, computed in the plainest way.
std::vector<PlainRun> plainRuns(const DXFDocument& document);

/// Joins runs by going through all of them after every join: quadratic, but plainly what it should
/// be. The result is one run for each contour.
std::vector<PlainRun> plainStitching(std::vector<PlainRun> pool);

/// What DXFDocument::getPoints() is to return.
PlainRun plainPoints(const DXFDocument& document);
