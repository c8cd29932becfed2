#pragma once

#include "converters/Export.h"
#include "converters/detail/PlyLog.h"
#include "converters/detail/PointBytes.h"

#include <pcl/PCLPointCloud2.h>
#include <pcl/conversions.h>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

/// Writes point clouds as PLY: a header in text, followed at once by a binary or an ASCII body.
///
/// Holds no data; one serializer serves any number of calls from any number of threads. The text
/// never depends on a locale. Besides what the logging library throws, only std::bad_alloc leaves.
class CONVERTERS_EXPORT PLYSerializer {
public:
    /// The header that describes a cloud, from "ply" to the line end of "end_header".
    ///
    /// The fields "normal_x", "normal_y", "normal_z", "rgb" and "rgba" are declared by their
    /// name alone, as floats and 8-bit colours, whatever their datatype and count; the bodies are
    /// written by datatype, so they may not match. The number of vertices is width * height modulo
    /// 2^32. Readers of these files rely on both.
    ///
    /// @param cloud   its width, height, fields and is_bigendian are read
    /// @param binary  whether a binary body follows; is_bigendian then chooses the format line
    /// @return the header; empty, after an error message, when a field has a datatype outside 1-8
    std::string GenerateHeader(const pcl::PCLPointCloud2& cloud, bool binary) const;

    /// The header of a cloud without points. It has no format line and no properties: that is how
    /// readers know an empty scene.
    std::string GenerateEmptyHeader() const;

    /// Appends the binary body of a cloud: one packed record per point, fields in their order.
    ///
    /// A record has room for one element of each field: of a field with several, the last one is
    /// stored, although the header declares a list. Bytes are copied as they lie in `data`, also
    /// when the cloud is marked big-endian. Point i starts at i * (size of data / number of
    /// points); an element that is not inside `data` is written as zero bytes. A field of unknown
    /// datatype is left out, with a warning for the field and for each of its elements. The process
    /// ends when the logging library throws.
    ///
    /// @param out  receives the body behind what it holds
    void AppendContentBinary(const pcl::PCLPointCloud2& cloud,
                             std::vector<unsigned char>& out) const;

    /// Writes the ASCII body of a cloud: one line per point, values separated by a blank.
    ///
    /// The counts of fields with several elements stand at the start of the line, ahead of all
    /// values. INT8 is written as an unsigned number. A FLOAT32 field with "rgb" in its name, and a
    /// UINT32 field with "rgba", are written as separate colours. Floating values have six
    /// significant digits. An element that is not inside `data` is written as 0. An element of
    /// unknown datatype is left out with a warning, its separating blank stays. What the logging
    /// library throws leaves this function.
    ///
    /// @param stream  receives the text, byte for byte: its locale and format flags have no effect
    void WriteDataASCII(const pcl::PCLPointCloud2& cloud, std::ostringstream& stream) const;

    /// Makes a whole binary PLY file: header and body.
    ///
    /// @param cloud  the points; width and height go into the header, where both 0 stands for one
    ///               row of all points
    /// @param out    replaced by the file; for a cloud without points the empty header is put in
    ///               front of what it holds
    /// @return false, after a message, for a cloud without points
    template <typename PointT>
    bool SerializePlyBinaryT(const pcl::PointCloud<PointT>& cloud,
                             std::vector<unsigned char>& out) const;

    /// Makes a whole ASCII PLY file: header and body.
    ///
    /// @param cloud  as for SerializePlyBinaryT
    /// @param out    replaced by the file; untouched for a cloud without points, unlike in binary
    /// @return false, after a message, for a cloud without points
    template <typename PointT>
    bool SerializePlyASCIIT(const pcl::PointCloud<PointT>& cloud,
                            std::vector<unsigned char>& out) const;

private:
    using Fields = std::vector<pcl::PCLPointField>;

    static void SerializeBinary(const pcl::PCLPointCloud2& layout,
                                const converters::detail::PointBytes& points,
                                std::vector<unsigned char>& out);
    static void SerializeASCII(const pcl::PCLPointCloud2& layout,
                               const converters::detail::PointBytes& points,
                               std::vector<unsigned char>& out);
    static void AppendRecords(const Fields& fields, const converters::detail::PointBytes& points,
                              std::vector<unsigned char>& out);

    template <typename PointT>
    static pcl::PCLPointCloud2 Layout(const pcl::PointCloud<PointT>& cloud);
    template <typename PointT>
    static converters::detail::PointBytes Points(const pcl::PointCloud<PointT>& cloud,
                                                 const pcl::PCLPointCloud2& layout);
};

template <typename PointT>
bool PLYSerializer::SerializePlyBinaryT(const pcl::PointCloud<PointT>& cloud,
                                        std::vector<unsigned char>& out) const {
    if (cloud.points.empty()) {
        converters::detail::deliverOrTerminate(
            0, __LINE__, "SerializePlyBinaryT",
            "PLYSerializer::SerializePlyBinary] Input point cloud has no data!\n");
        const std::string header = GenerateEmptyHeader();
        out.insert(out.begin(), header.begin(), header.end());
        return false;
    }
    const pcl::PCLPointCloud2 layout = Layout(cloud);
    SerializeBinary(layout, Points(cloud, layout), out);
    return true;
}

template <typename PointT>
bool PLYSerializer::SerializePlyASCIIT(const pcl::PointCloud<PointT>& cloud,
                                       std::vector<unsigned char>& out) const {
    if (cloud.points.empty()) {
        converters::detail::deliverOrTerminate(
            0, __LINE__, "SerializePlyASCIIT",
            "PLYSerializer::SerializePlyBinary] Input point cloud has no data!\n");
        return false;
    }
    const pcl::PCLPointCloud2 layout = Layout(cloud);
    SerializeASCII(layout, Points(cloud, layout), out);
    return true;
}

/// The cloud as pcl::toPCLPointCloud2 makes it, without the points: a second copy of them would be
/// wasted, and the conversion aborts when width * height is not their number.
template <typename PointT>
pcl::PCLPointCloud2 PLYSerializer::Layout(const pcl::PointCloud<PointT>& cloud) {
    pcl::PCLPointCloud2 layout;
    pcl::toPCLPointCloud2(pcl::PointCloud<PointT>(), layout);
    const bool oneRow = cloud.width == 0 && cloud.height == 0;
    layout.width = oneRow ? static_cast<std::uint32_t>(cloud.points.size()) : cloud.width;
    layout.height = oneRow ? 1 : cloud.height;
    return layout;
}

template <typename PointT>
converters::detail::PointBytes PLYSerializer::Points(const pcl::PointCloud<PointT>& cloud,
                                                     const pcl::PCLPointCloud2& layout) {
    return {layout.width, layout.height,
            reinterpret_cast<const unsigned char*>(cloud.points.data()),
            cloud.points.size() * sizeof(PointT)};
}
