#pragma once

#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

/// What a PLY file holds.
struct PlyContents {
    /// Empty when the file declares no vertices.
    pcl::PointCloud<pcl::PointXYZI> cloud;
    /// Properties of the file that the cloud has no place for, in file order.
    std::vector<std::string> droppedProperties;
    /// False when the file has no property "intensity" of type float; the cloud's are 0 then.
    bool hasIntensity = true;
};

/// Whether a point of a scan has a place: neither nan nor infinite.
inline bool hasPlace(const pcl::PointXYZI& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

/// Reads a PLY file's bytes.
///
/// The library takes a text without vertices for an empty scene, whatever else it says. Here a file
/// is empty only when it is a PLY file and declares so; and one whose x, y or z is missing or not
/// of type float is refused, where the library would leave the coordinate 0.
///
/// @param path      the file's name, for messages
/// @param progress  called with the part that is done, 0 to 1
/// @throws FileError for an empty file, and with what the library logs of any other
PlyContents readPly(const std::string& path, const std::vector<unsigned char>& bytes,
                    const std::function<void(double)>& progress);

/// Makes a PLY file. A cloud without points gives a header that declares the same properties as
/// any other and no vertices.
std::vector<unsigned char> writePly(const pcl::PointCloud<pcl::PointXYZI>& cloud, bool ascii);
