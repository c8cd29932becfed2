#pragma once

#include "converters/DrawingPath.h"

#include <string>
#include <vector>

/// The path of a drawing that is read with success.
converters::DrawingPath pathOf(const std::string& file,
                               const converters::PathOptions& options = {});

/// Why a drawing is refused; empty when it is not.
std::string refusalOf(const std::string& file, const converters::PathOptions& options = {});

/// The points of one contour.
std::vector<cv::Point3_<double>> pointsOf(const converters::DrawingPath& path, std::size_t contour);

/// A contour in a line: its corners where it has nothing but straight pieces, "(0, 0) (1, 0)"; z
/// only where it is not 0; "closed" in front of one that is.
std::string describe(const converters::DrawingPath& path, std::size_t contour);

/// All contours, one a line.
std::string describe(const converters::DrawingPath& path);

/// What is left out, "2 TEXT on walls: annotation", one a line.
std::string leftOut(const converters::DrawingPath& path);

/// What has to hold for any path: ranges that fit together, closed contours that end at their
/// start, pieces whose curves lead from one end to the other. Empty when all does.
std::string faultOf(const converters::DrawingPath& path);
