#pragma once

#include "converters/Export.h"
#include "converters/ReadResult.h"

#include <opencv2/core/types.hpp>
#include <pcl/PCLPointCloud2.h>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Scans: point clouds in PLY files of any program.
///
/// readScan() takes every PLY file that holds points: text or binary of either byte order, any
/// scalar types, lists, and elements before and behind the vertices. It gives each point as the
/// file has it, or refuses the file with the reason; it fills in no number but an intensity of 0
/// where the file has none. fromPly() is another thing: the rules that existing programs rely on.
/// ScanReader reads the same files in blocks, ScanWriter writes them.
namespace converters {

/// The types of numbers in a PLY file. The first eight have the numbers of pcl::PCLPointField.
enum class ScalarType : std::uint8_t {
    int8 = 1,
    uint8 = 2,
    int16 = 3,
    uint16 = 4,
    int32 = 5,
    uint32 = 6,
    float32 = 7,
    float64 = 8,
    /// Not in the format's own list, but written by some programs.
    int64 = 9,
    uint64 = 10
};

/// Bytes of a number of the type: 1, 2, 4 or 8.
CONVERTERS_EXPORT std::size_t sizeOf(ScalarType type);

/// The type as PLY headers spell it: "uchar", "float". A string of static duration.
CONVERTERS_EXPORT const char* nameOf(ScalarType type);

/// How the numbers of a PLY file are stored.
enum class ScanFormat : std::uint8_t { ascii, binaryLittleEndian, binaryBigEndian };

/// The format as PLY headers spell it: "binary_little_endian". A string of static duration.
CONVERTERS_EXPORT const char* nameOf(ScanFormat format);

/// What becomes of a property of the vertices.
enum class ScanPropertyUse : std::uint8_t {
    x,
    y,
    z,
    intensity,
    /// Kept under its name and type.
    kept,
    /// Read over: a property that a pcl::PointXYZI has no place for, a list, a second property of
    /// the same name, a property of another element.
    dropped
};

/// A property, as the header declares it.
struct ScanProperty {
    /// As the header has it.
    std::string name;
    /// Of the value; of a list that of its items.
    ScalarType type;
    /// Of the number in front of a list's items; nothing for a single value.
    std::optional<ScalarType> countType;
    /// What became of it.
    ScanPropertyUse use = ScanPropertyUse::dropped;
};

/// An element, as the header declares it.
struct ScanElement {
    /// As the header has it.
    std::string name;
    /// How many records it declares.
    std::uint64_t count;
    /// In the order of the header.
    std::vector<ScanProperty> properties;
};

/// What was found in the file, and what became of it.
struct ScanReport {
    /// How its numbers are stored.
    ScanFormat format = ScanFormat::ascii;
    /// In the order of the file. All but the vertices are stepped over.
    std::vector<ScanElement> elements;
    /// Index into `elements`: the vertices.
    std::size_t vertexElement = 0;
    /// Number of points.
    std::uint64_t points = 0;
    /// The file's "obj_info num_cols" where its product with "num_rows" is the number of points;
    /// else the number of points.
    std::uint64_t width = 0;
    /// Number of rows: "num_rows", else 1.
    std::uint64_t height = 0;
    /// Texts of the lines "comment" and "obj_info", in the order of the file.
    std::vector<std::string> comments;
    /// Texts of the lines "obj_info".
    std::vector<std::string> objInfo;
    /// Whether a property is used as intensity; without one, all intensities are 0.
    bool hasIntensity = false;
    /// What was taken off the coordinates: result = file - shift.
    cv::Point3_<double> shift{0, 0, 0};
    /// Points with a coordinate that is nan or infinite. They are among the points.
    std::uint64_t pointsWithoutPlace = 0;
    /// The most that a coordinate differs from that of the file (less the shift) for having become
    /// a 32-bit float.
    double largestLoss = 0;
    /// Bytes behind the last element, blanks and line ends of a text not counted.
    std::uint64_t bytesBehind = 0;
    /// What a person should know, in words: "12 bytes behind the last element were left out".
    std::vector<std::string> notes;
};

/// What became of reading a scan.
struct ScanResult : ReadResult {
    /// After a failure, what was known by then.
    ScanReport report;
};

/// How a scan is read.
struct ScanOptions {
    /// Name of the property to take as intensity, of any scalar type. Empty: the first of
    /// intensity, scalar_intensity, reflectance, scalar_reflectance, remission and
    /// scalar_remission that is there, in any letter case.
    std::string intensity;
    /// Taken off the coordinates in double precision, before they become floats; finite.
    std::optional<cv::Point3_<double>> shift;
    /// Without a `shift`: chooses one by the median of the first 65,536 points that have a place.
    /// Each axis on which one of these lies so far off that a float is more than a tenth of a
    /// millimetre wrong, in metres (2,048 and more), is shifted by the median in whole hundreds.
    /// Properties that a float holds exactly need no shift.
    bool automaticShift = false;
    /// Called now and then, on the caller's thread, with the part of the file that is read, 0 to 1
    /// (0 where its size is not known); false stops the work, which is then a failure.
    std::function<bool(double done)> progress;
};

/// Reads a scan: position and intensity of each vertex.
///
/// @param bytes    the file, read during the call only
/// @param size     how many bytes
/// @param cloud    replaced by the points, in the order of the file; width and height are those of
///                 the report, is_dense says that every point has a place. Untouched when the
///                 result is a failure.
/// @param options  how it is read
/// @return success, also of a file that declares 0 vertices. A failure, with its reason, for
///         what is no PLY file, a header that contradicts itself or the format, vertices without
///         x, y or z, a file cut short (behind the vertices, too), text that is no number or is
///         out of the range of its type, options out of range, more than 4,294,967,295 points,
///         and when `progress` stops it.
///         docs/formats.md has the rules.
/// @throws std::bad_alloc when the points do not fit into memory; `cloud` is untouched. No more
///         memory is asked for than the points of a file of this size can take.
CONVERTERS_EXPORT ScanResult readScan(const void* bytes, std::size_t size,
                                      pcl::PointCloud<pcl::PointXYZI>& cloud,
                                      const ScanOptions& options = {});

/// Reads a scan with all its scalar properties.
///
/// The fields have the names and types of the file, in its order, without gaps; the values have the
/// byte order of the processor. Coordinates stay of their type, but whole numbers that are shifted
/// become float64; int64 and uint64, which a field cannot have, become float64, too.
///
/// @param bytes    as above
/// @param size     as above
/// @param cloud    replaced by the points, as above
/// @param options  as above
/// @return as above
CONVERTERS_EXPORT ScanResult readScan(const void* bytes, std::size_t size,
                                      pcl::PCLPointCloud2& cloud, const ScanOptions& options = {});

/// Reads a scan from a file, a pipe or a device.
///
/// @param file     its path
/// @param cloud    as above
/// @param options  as above
/// @return as above; a failure also when it cannot be read
CONVERTERS_EXPORT ScanResult readScan(const std::filesystem::path& file,
                                      pcl::PointCloud<pcl::PointXYZI>& cloud,
                                      const ScanOptions& options = {});

/// Reads a scan with all its scalar properties from a file, a pipe or a device.
///
/// @param file     its path
/// @param cloud    as above
/// @param options  as above
/// @return as above
CONVERTERS_EXPORT ScanResult readScan(const std::filesystem::path& file, pcl::PCLPointCloud2& cloud,
                                      const ScanOptions& options = {});

} // namespace converters
