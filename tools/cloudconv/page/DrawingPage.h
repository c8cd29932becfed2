#pragma once

#include "converters/DrawingPath.h"

#include <opencv2/core/types.hpp>

#include <string>
#include <vector>

/// Something that one should look at before a robot follows a drawing's path.
struct PageFinding {
    /// In words for a person, UTF-8: "near miss: the ends at (0, 6.998) and (0, 7) lie 0.002
    /// apart".
    std::string text;
    /// Where it is, in the coordinates of the path; a ring is drawn around these. May be empty.
    std::vector<cv::Point3_<double>> places;
};

/// What a page of a drawing shows.
struct DrawingPage {
    /// Of the page, printable UTF-8: the file's name.
    std::string title;
    /// What is drawn, from above: at (x, y). May be one without entities and layers, and may have
    /// points that cannot be shown (nan), which are left out. Has to outlive this.
    const converters::DrawingPath& path;
    std::vector<PageFinding> findings = {};
    /// What else there is to say, UTF-8; besides the path's own notes.
    std::vector<std::string> notes = {};
};

/// Points and entities that a page takes; browsers do not open more within reasonable time.
constexpr std::size_t mostPointsOfDrawingPage = 10'000'000;

/// Makes the page of a drawing: its contours, to be looked at and to be walked.
///
/// @return the bytes of an HTML file that holds all it needs
/// @throws std::bad_alloc
/// @throws std::length_error when the path has more points or entities than a page takes
std::vector<unsigned char> drawingPage(const DrawingPage& page);
