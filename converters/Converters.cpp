#include "converters/Converters.h"

#include "base/FileReader.h"
#include "base/TransientFile.h"
#include "converters/PlySerializerDeserializer.h"
#include "converters/mpaths.h"
#include "dxfeditor/DXFAdapter.h"
#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFDraw.h"
#include "dxfeditor/DXFPointVector.h"
#include "dxfeditor/DXFReader.h"
#include "universal_log_interface/universal_log_interface.h"

#include <unistd.h>

#include <cstdint>
#include <memory>
#include <utility>

// The logging interface is here for this unit's copy of the switch's name: every unit that reports
// has one.

namespace converters {

const std::filesystem::path tmpDxfPath = std::filesystem::path(mpaths::getTMP_DIRECTORY()) /=
    "temp_dxf_files";

namespace {

std::vector<cv::Point3_<double>> widened(const pcl::PointCloud<pcl::PointXYZ>& cloud) {
    std::vector<cv::Point3_<double>> points;
    points.reserve(cloud.points.size());
    for (const pcl::PointXYZ& point : cloud.points) {
        points.emplace_back(point.x, point.y, point.z);
    }
    return points;
}

/// Writes the drawing that holds the points alone, and lets go of them.
/// @param file    descriptor to write to
/// @param path    the file's name in a message
/// @param reason  replaced by that message
/// @return true when every byte of it was written
bool saveDrawing(int file, const std::string& path, std::shared_ptr<DXFPointVector> points,
                 std::string& reason) {
    DXFDraw draw(path);
    draw.setupFile();
    draw.entities.push_back(points);
    // 1 is a valid 24-bit colour, nearly black. R12 has no group for it: it is not written.
    points->setAttributes(
        DXFAdapter::makeAttributes(DL_Attributes("0", 7, 1, 10, "CONTINUOUS", -1)));
    if (draw.document.addEntity(std::move(points))) {
        draw.document.setup();
    }
    const bool isComplete = draw.writer.saveTo(file, path);
    reason = draw.writer.whyNotOpened();
    return isComplete;
}

bool writeAndReadBack(std::shared_ptr<DXFPointVector> points, std::vector<unsigned char>& out,
                      std::string& reason) {
    reason.clear();
    if (!std::filesystem::exists(tmpDxfPath)) {
        std::filesystem::create_directories(tmpDxfPath);
    }
    std::filesystem::path path = tmpDxfPath;
    path /= "tmp" + std::to_string(getpid()) + ".dxf";

    base::TransientFile file(path);
    // Also for a file that could not be created, which the writer reports.
    if (!saveDrawing(file.descriptor(), path.string(), std::move(points), reason) ||
        !file.isInPlace()) {
        return false;
    }
    if (!from_file(file.openPath().string(), out)) {
        file.keep();
        return false;
    }
    if (!file.isInPlace()) {
        out.clear();
        return false;
    }
    file.remove();
    return true;
}

} // namespace

bool from_file(const std::string& path, std::vector<unsigned char>& out) {
    return base::readFile(path, out);
}

bool toDxf(const std::vector<cv::Point3_<double>>& points, std::vector<unsigned char>& out) {
    std::string reason;
    return toDxf(points, out, reason);
}

bool toDxf(const std::vector<cv::Point3_<double>>& points, std::vector<unsigned char>& out,
           std::string& reason) {
    out.clear();
    return writeAndReadBack(DXFAdapter::makePointVector(points), out, reason);
}

bool toDxf(const pcl::PointCloud<pcl::PointXYZ>& cloud, std::vector<unsigned char>& out) {
    out.clear();
    std::string reason;
    return writeAndReadBack(DXFAdapter::makePointVector(widened(cloud)), out, reason);
}

bool toPlyBinary(const pcl::PointCloud<pcl::PointXYZI>& cloud, std::vector<unsigned char>& out) {
    return PLYSerializer().SerializePlyBinaryT(cloud, out);
}

bool toPlyAscii(const pcl::PointCloud<pcl::PointXYZI>& cloud, std::vector<unsigned char>& out) {
    return PLYSerializer().SerializePlyASCIIT(cloud, out);
}

PlyReadResult fromPly(const std::vector<unsigned char>& data,
                      pcl::PointCloud<pcl::PointXYZI>& cloud) {
    PLYDeserializer deserializer;
    const bool success = deserializer.DeserializePlyT(data, cloud);
    return {success, deserializer.isEmptySceneInTeach()};
}

bool fromDxf(const std::vector<char>& data, std::vector<cv::Point3_<double>>& points) {
    DXFDocument document;
    if (!DXFReader(document).load(data.data(), data.size())) {
        return false;
    }
    document.setup();
    points = document.getPoints();
    return true;
}

bool fromDxf(const std::vector<char>& data, pcl::PointCloud<pcl::PointXYZ>& cloud) {
    std::vector<cv::Point3_<double>> points;
    if (!fromDxf(data, points)) {
        return false;
    }
    // What may fail comes before the cloud is touched.
    decltype(cloud.points) room;
    if (cloud.points.capacity() < points.size()) {
        room.reserve(points.size());
        cloud.points.swap(room);
    }
    cloud.clear();
    // Past the cloud's own push_back, which would set its width and height.
    for (const cv::Point3_<double>& point : points) {
        cloud.points.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y),
                                  static_cast<float>(point.z));
    }
    return true;
}

} // namespace converters
