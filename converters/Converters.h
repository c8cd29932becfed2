#pragma once

#include "converters/Export.h"

#include <opencv2/core/types.hpp>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <filesystem>
#include <string>
#include <vector>

/// Conversion between point clouds in memory and the bytes of PLY and DXF files.
namespace converters {

/// Directory of the transient drawing that toDxf writes:
/// "/var/tmp/melgrav/tarnowell3/temp_dxf_files". Set when the library is loaded; the directory
/// itself is created on first need and stays.
extern CONVERTERS_EXPORT const std::filesystem::path tmpDxfPath;

/// Reads a whole file.
///
/// @param path  the file
/// @param out   receives the file's bytes; cleared first, also when the file cannot be read
/// @return false when the file cannot be opened or read (a directory, for example); `out` is then
///         empty and nothing is logged
/// @throws std::bad_alloc when the bytes do not fit into memory
CONVERTERS_EXPORT bool from_file(const std::string& path, std::vector<unsigned char>& out);

/// Makes a DXF drawing (release R12) with one POINT on layer "0" for each point, in order.
///
/// Coordinates are written as they are, rounded to sixteen decimals; nan and infinities as the
/// words "nan", "-nan", "inf" and "-inf", which fromDxf, for one, reads as 0. The text does not
/// depend on the locale.
///
/// The drawing passes through the file "tmp<process id>.dxf" in tmpDxfPath, a directory that is
/// created on first need and stays. What is left over under that name is removed first. One call
/// at a time in a process: calls that overlap share the file, and callers must prevent it. Other
/// processes do not disturb.
///
/// @param points  the points; none give a drawing without entities
/// @param out     replaced by the bytes of the drawing; empty when the result is false
/// @return true when `out` is the complete drawing of these points, and the file is removed. False
///         when the file cannot be created (after a message; so, too, when what is in its place
///         cannot be removed), when a byte of it cannot be written (what was written is removed),
///         when somebody puts another file in its place meanwhile, or when it cannot be read back
///         (it stays).
/// @throws std::filesystem::filesystem_error when the directory cannot be queried or created, or
///         the file cannot be removed
/// @throws std::bad_alloc when the drawing does not fit into memory; `out` is then empty
CONVERTERS_EXPORT bool toDxf(const std::vector<cv::Point3_<double>>& points,
                             std::vector<unsigned char>& out);

/// The same, and tells why.
///
/// @param points  as above
/// @param out     as above
/// @param reason  replaced by what the log says when the file cannot be created; by nothing when
///                the drawing is complete, or fails otherwise
CONVERTERS_EXPORT bool toDxf(const std::vector<cv::Point3_<double>>& points,
                             std::vector<unsigned char>& out, std::string& reason);

/// Makes the drawing of the cloud's points, as the other toDxf does; the file is the same.
///
/// @param cloud  its points, missing ones (nan) included; its width, height and is_dense do not
///               matter
/// @param out    replaced by the bytes of the drawing; empty when the result is false
/// @return as the other toDxf; it throws the same, too
CONVERTERS_EXPORT bool toDxf(const pcl::PointCloud<pcl::PointXYZ>& cloud,
                             std::vector<unsigned char>& out);

/// Makes a binary little-endian PLY file of x, y, z and intensity as 32-bit floats.
///
/// @param cloud  the points, missing ones (nan) included. Its width and height go into the file's
///               "obj_info" lines and their product says how many points are written; both 0 stand
///               for one row of all points. A product that is not the number of points cuts the
///               memory of the points into that many equal records: what is written is then no
///               point of the cloud.
/// @param out    replaced by the file. For a cloud without points, a header that declares no
///               vertices is put in front of what `out` holds, which stays.
/// @return false for a cloud without points, after a message
/// @throws std::bad_alloc when the file does not fit into memory; `out` is then incomplete
CONVERTERS_EXPORT bool toPlyBinary(const pcl::PointCloud<pcl::PointXYZI>& cloud,
                                   std::vector<unsigned char>& out);

/// Makes an ASCII PLY file of x, y, z and intensity, each with six significant digits; nan, -nan,
/// inf and -inf as these words. The text does not depend on the locale.
///
/// @param cloud  as for toPlyBinary
/// @param out    replaced by the file; left as it is for a cloud without points. Its capacity may
///               exceed its size.
/// @return false for a cloud without points, after a message
/// @throws std::bad_alloc when the file does not fit into memory; `out` is then incomplete
CONVERTERS_EXPORT bool toPlyAscii(const pcl::PointCloud<pcl::PointXYZI>& cloud,
                                  std::vector<unsigned char>& out);

/// What became of a PLY file.
struct PlyReadResult {
    /// Whether the file was accepted.
    bool success;
    /// Whether the file declares no vertices, or is no PLY file with a vertex element at all. It is
    /// accepted then.
    bool emptySceneInTeach;
};

/// Reads a PLY file, ASCII or binary little-endian, with one "vertex" element of scalar properties.
///
/// @param data   the file
/// @param cloud  replaced by the points of a complete read; untouched when the file is refused or
///               declares no vertices. x, y, z and intensity are taken from 32-bit float properties
///               of these names. One that the file does not declare is 0, after a warning of the
///               Point Cloud Library, unless another property is copied there: see
///               PLYDeserializer::DeserializePlyT. Width and height come from the file's "obj_info"
///               lines, or are the number of points and 1; is_dense is false.
/// @return whether the file was accepted, else after a message, and whether it is an empty scene
/// @throws std::invalid_argument, std::out_of_range for "obj_info num_cols" or "num_rows" with a
///         value that is no 32-bit integer; `cloud` is untouched
/// @throws std::bad_alloc when the points do not fit into memory; `cloud` is untouched
CONVERTERS_EXPORT PlyReadResult fromPly(const std::vector<unsigned char>& data,
                                        pcl::PointCloud<pcl::PointXYZI>& cloud);

/// Reads a DXF file: its points, lines, circles, arcs, polylines and splines outside blocks,
/// sampled into one ordered walk of points as DXFDocument::getPoints() describes.
///
/// The numbers have a decimal point whatever the locale. If the global C++ locale is not the
/// classic one, the classic one is global during the call, for all threads.
///
/// @param data    the file, up to its first NUL. What cannot be read of a broken file is passed
///                over; a file that is no DXF text at all gives no points.
/// @param points  replaced by the walk; untouched when the result is false
/// @return false when `data` is empty
/// @throws std::bad_alloc when the drawing or its points do not fit into memory; `points` is
///         untouched
CONVERTERS_EXPORT bool fromDxf(const std::vector<char>& data,
                               std::vector<cv::Point3_<double>>& points);

/// The same, with each coordinate rounded to the nearest 32-bit float, beyond their range to
/// infinity.
///
/// @param data   the file, up to its first NUL
/// @param cloud  its points are replaced; its width and height become 0 although it holds points,
///               so a caller that needs them sets them. Untouched when the result is false.
/// @return false when `data` is empty
/// @throws std::bad_alloc when the drawing or its points do not fit into memory; `cloud` is
///         untouched
CONVERTERS_EXPORT bool fromDxf(const std::vector<char>& data,
                               pcl::PointCloud<pcl::PointXYZ>& cloud);

} // namespace converters
