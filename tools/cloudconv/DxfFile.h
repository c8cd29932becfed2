#pragma once

#include "dxfeditor/DXFContour.h"
#include "dxfeditor/DXFPiece.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class DXFDocument;
class Progress;

/// What a DXF file holds.
struct DxfContents {
    /// The drawing, set up.
    std::shared_ptr<DXFDocument> document;
    std::size_t entityCount = 0;
    /// The drawing's walk, in the coordinates of the cloud, what of it is joined end to end, and of
    /// which entities that is made.
    std::vector<cv::Point3_<double>> points;
    std::vector<DXFContour> contours;
    std::vector<DXFPiece> pieces;
    /// What of the file was not read; empty when all was.
    std::string cutOff;
};

/// Reads a DXF file's bytes.
///
/// @param path      the file's name, for messages
/// @param progress  told what is done, and how far it is
/// @throws FileError for a file that is no DXF text, which to the library is an empty drawing
DxfContents readDxf(const std::string& path, const std::vector<unsigned char>& bytes,
                    Progress& progress);

/// Makes a drawing of one POINT for each point.
///
/// @param path  the name of the file to come, for messages
/// @throws FileError when that fails
std::vector<unsigned char> writeDxf(const std::string& path,
                                    const std::vector<cv::Point3_<double>>& points);
