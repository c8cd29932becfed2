/// @file
/// The PLY codec: PLYSerializer writes, PLYDeserializer reads.
#pragma once

#include "converters/Export.h"
#include "converters/detail/ply/PlyAsciiBody.h"
#include "converters/detail/ply/PlyLines.h"
#include "converters/detail/ply/PlyLog.h"
#include "converters/detail/ply/PlyPoints.h"
#include "converters/detail/ply/PointBytes.h"

#include <boost/shared_ptr.hpp>
#include <pcl/PCLPointCloud2.h>
#include <pcl/conversions.h>
#include <pcl/point_cloud.h>
#include <pcl/point_types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Writes point clouds as PLY: a header in text, followed at once by a binary or an ASCII body.
///
/// Holds no data; one serializer serves any number of calls from any number of threads. The text
/// never depends on a locale. Besides what the logging library throws, only std::bad_alloc leaves.
class CONVERTERS_EXPORT PLYSerializer {
public:
    /// What the log says of a cloud without points, and a line end.
    static constexpr char noPointsMessage[] =
        "PLYSerializer::SerializePlyBinary] Input point cloud has no data!";

    /// The header that describes a cloud, from "ply" to the line end of "end_header".
    ///
    /// The fields "normal_x", "normal_y", "normal_z", "rgb" and "rgba" are declared by their
    /// name alone, as floats and 8-bit colours, whatever their datatype and count; the bodies are
    /// written by datatype, so they may not match. The number of vertices is width * height modulo
    /// 2^32. Both are kept: the headers of a cloud stay the same from release to release.
    ///
    /// @param cloud   its width, height, fields and is_bigendian are read
    /// @param binary  whether a binary body follows; is_bigendian then chooses the format line
    /// @return the header; empty, after an error message, when a field has a datatype outside 1-8
    std::string GenerateHeader(const pcl::PCLPointCloud2& cloud, bool binary) const;

    /// The header of a cloud without points. It has no format line and no properties; its count of
    /// vertices, 0, is how PLYDeserializer knows an empty scene.
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
    /// @param cloud  its width, height, fields and data are read
    /// @param out    receives the body behind what it holds
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
    /// @param cloud   its width, height, fields and data are read
    /// @param stream  receives the text, byte for byte: its locale and format flags have no effect.
    ///                Its badbit is set when the text does not fit into memory.
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

    /// Warns, in the name of `function`, of a cloud without points.
    static void ReportNoPoints(const char* function) {
        converters::detail::deliverOrTerminate(0, __LINE__, function, "%s\n", noPointsMessage);
    }

    static void SerializeBinary(const pcl::PCLPointCloud2& layout,
                                const converters::detail::PointBytes& points,
                                std::vector<unsigned char>& out);
    static void SerializeASCII(const pcl::PCLPointCloud2& layout,
                               const converters::detail::PointBytes& points,
                               std::vector<unsigned char>& out);
    CONVERTERS_HIDDEN static void AppendRecords(const Fields& fields,
                                                const converters::detail::PointBytes& points,
                                                std::vector<unsigned char>& out);

    template <typename PointT>
    static pcl::PCLPointCloud2 Layout(const pcl::PointCloud<PointT>& cloud);
    template <typename PointT>
    CONVERTERS_HIDDEN static converters::detail::PointBytes
    Points(const pcl::PointCloud<PointT>& cloud, const pcl::PCLPointCloud2& layout);
};

template <typename PointT>
bool PLYSerializer::SerializePlyBinaryT(const pcl::PointCloud<PointT>& cloud,
                                        std::vector<unsigned char>& out) const {
    if (cloud.points.empty()) {
        ReportNoPoints("SerializePlyBinaryT");
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
        ReportNoPoints("SerializePlyASCIIT");
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

/// Storage form of a PLY body, as the "format" line of the header names it.
enum class PlyFormat : std::uint32_t {
    /// "ascii"
    Ascii = 0,
    /// "binary_big_endian": recognised, its body is not read
    BinaryBigEndian = 1,
    /// "binary_little_endian"
    BinaryLittleEndian = 2,
};

namespace converters::detail {
class PlyHeaderLine;
}

/// Why a PLY file was refused.
struct PlyRefusal {
    /// In words for a person, without a full stop; empty when nothing was refused.
    std::string reason;
    /// The line of the file that the reason is about, counted from 1; 0 when it is about none.
    std::uint64_t line = 0;
    /// What the log says of it: the errors, in order of delivery, without line ends. It tells less:
    /// some reasons have no message but that reading failed, others only their line.
    std::vector<std::string> messages;
};

/// Reads PLY files: a "vertex" element with scalar properties, in ASCII or binary little-endian.
///
/// DeserializePlyT reads a whole file into a typed cloud. The steps can also be made one by one, on
/// a `pcl::PCLPointCloud2`: Init, IsVertexCountZero, ReadHeader, ReadData, in this order. A step
/// made out of order works on what it finds; no input and no order leads outside a buffer.
///
/// A file's text ends at its first zero byte. Lines end at a line feed; a carriage return is
/// whitespace. Nothing depends on a locale. One object serves one read at a time.
class CONVERTERS_EXPORT PLYDeserializer {
public:
    PLYDeserializer() = default;

    /// The cloud being filled. Null at first. DeserializePlyT leaves its `data` empty.
    boost::shared_ptr<pcl::PCLPointCloud2> cloud;
    /// The count of the "element vertex" line.
    std::uint64_t vertexCount = 0;
    /// Next byte of the cloud's data that the ASCII body reader writes, modulo 2^32.
    std::uint32_t writeOffset = 0;
    /// The whole text, positioned behind what has been read. ReadHeader fills it, DeserializePlyT
    /// does without.
    std::istringstream stream;
    /// Number of lines read so far; the first line of the file is line 1.
    std::uint64_t lineNumber = 0;
    /// Whether DeserializePlyT has seen a file that declares no vertices. Init does not reset it.
    bool emptySceneInTeach = false;
    /// Storage form that the header declares. Init does not reset it.
    PlyFormat format = PlyFormat::BinaryLittleEndian;

    /// Makes the object ready for one read: empty stream, counters 0, a new cloud.
    void Init();

    /// Whether the file declares no vertices: the first line "element vertex ..." of its text has
    /// the count 0 or no readable count, or there is no such line. The line may stand anywhere, and
    /// nothing else is checked: a text that is no PLY file is an empty scene, too, and no error.
    /// Reads and changes no member.
    bool IsVertexCountZero(const std::vector<unsigned char>& data) const;

    /// Returns `emptySceneInTeach`.
    bool isEmptySceneInTeach() const { return emptySceneInTeach; }

    /// Reads the header: the cloud gets its fields, width, height, point_step and a zero-filled
    /// block of data for all vertices; row_step stays 0.
    ///
    /// Some details differ from the PLY format, on purpose: which files are taken, and as what,
    /// stays the same from release to release. The byte behind "ply" is not checked, nor what
    /// follows a property's name. The second name of "double" is "double64": "float64", like any
    /// unknown type, is skipped in silence. Any element but "vertex" is refused, even an empty one.
    /// "comment" is an unknown keyword and reported as such. "obj_info num_cols" and "obj_info
    /// num_rows" give width and height when both are there.
    ///
    /// @param data  the file
    /// @return false when the header is refused: after a message, or in silence when the text ends
    ///         before "end_header", when width * height is not the number of vertices although
    ///         there are properties, or when the records and their points would take more than
    ///         64 MiB and 64 bytes for each byte of `data`. Members then hold what was read so far.
    /// @throws std::invalid_argument, std::out_of_range from std::stoi for the value of "num_cols"
    ///         or "num_rows"
    /// @throws std::logic_error when `data` has no storage at all
    bool ReadHeader(const std::vector<unsigned char>& data);

    /// Reads the body behind an accepted header into the cloud's data.
    ///
    /// A binary body has to have the exact length, as the rest of `data` behind the header. An
    /// ASCII body has one vertex a line, taken by ParseVertices; what follows the last value of a
    /// line and the last vertex is ignored.
    ///
    /// @param data  the file that was given to ReadHeader
    /// @return false when the body is refused, after a message
    bool ReadData(const std::vector<unsigned char>& data);

    /// Reads one ASCII value and stores it at `writeOffset` in the cloud's data, then advances
    /// `writeOffset`. What would lie outside the data is not stored.
    ///
    /// The stored value is what stream extraction in the classic locale gives, also on failure: 0
    /// for a missing or malformed number, the nearest value for one out of range; after a failure
    /// the stream gives only zeros. 8-bit types take a single character, not a number. Beyond that,
    /// "nan", "inf" and "infinity" are read as floating values, in any letter case and with an
    /// optional sign: organised scans mark missing points with them.
    ///
    /// @param type  field datatype, 1 to 8
    /// @param line  the value, perhaps behind whitespace; whitespace behind it is taken, too
    /// @return false for an unknown datatype, after a warning; nothing is then read. What the
    ///         logging library throws leaves this function.
    bool ParseVertices(const unsigned char& type, std::istringstream& line);

    /// Reads a whole file.
    ///
    /// A file that declares no vertices succeeds, sets `emptySceneInTeach` and leaves `output` as
    /// it is. The body is decoded straight into points: neither `stream` nor the cloud's `data`
    /// are filled. All other members are as the steps leave them; row_step is that of full rows.
    ///
    /// The Point Cloud Library says which bytes of a record go where in a point. Fields that lie as
    /// far apart in the record as in the point are copied in one piece, with what lies between: of
    /// the properties "float x", "float foo", "float z" a pcl::PointXYZI gets foo as its y, since
    /// its x and z are eight bytes apart, too.
    ///
    /// @param data    the file
    /// @param output  replaced, when the read succeeds, by width * height points; fields of the
    ///                point type that the file does not declare have their default, after a warning
    ///                of that library, unless they are copied as above. Untouched on failure.
    /// @return false, after a message, when the file is refused
    /// @throws what ReadHeader throws
    template <typename PointT>
    bool DeserializePlyT(const std::vector<unsigned char>& data, pcl::PointCloud<PointT>& output) {
        return DeserializePlyT(data, output, {});
    }

    /// The same, and tells how far it is.
    ///
    /// @param data      the file
    /// @param output    as above
    /// @param progress  called with the part of the points that is made, 0 to 1, once for some
    ///                  hundred of them; may be empty. What it throws leaves this function, with
    ///                  `output` untouched.
    template <typename PointT>
    bool DeserializePlyT(const std::vector<unsigned char>& data, pcl::PointCloud<PointT>& output,
                         const std::function<void(double)>& progress);

    /// Why ReadHeader, ReadData or DeserializePlyT, whichever was called last, returned false; no
    /// reason when it returned true. Valid until the next call.
    const PlyRefusal& refusal() const { return m_refusal; }

private:
    /// Which lines a header has had so far.
    struct Seen {
        bool format = false;
        bool vertex = false;
    };
    /// A reason to refuse the file, and what the log says of it.
    struct Fault;
    using Faults = std::optional<Fault>;
    using Line = converters::detail::PlyHeaderLine;

    bool Fail(const char* text);
    CONVERTERS_HIDDEN void NeedCloud();
    CONVERTERS_HIDDEN bool Accept(Faults fault, const char* function);
    CONVERTERS_HIDDEN void Report(std::string text, const char* function);
    CONVERTERS_HIDDEN Fault BadLine(std::string reason, bool isLogged = false) const;

    bool TakeHeader(std::string_view& text, std::size_t inputSize, std::size_t pointSize);
    CONVERTERS_HIDDEN Faults ParseHeader(std::string_view& text, std::size_t inputSize,
                                         std::size_t pointSize);
    CONVERTERS_HIDDEN Faults ParseMagic(std::string_view& text);
    CONVERTERS_HIDDEN Faults ParseLine(std::string_view keyword, Line& line, Seen& seen);
    CONVERTERS_HIDDEN Faults ParseFormat(Line& line, Seen& seen);
    CONVERTERS_HIDDEN void ParseObjInfo(Line& line);
    CONVERTERS_HIDDEN Faults ParseElement(Line& line, Seen& seen);
    CONVERTERS_HIDDEN Faults ParseProperty(Line& line, const Seen& seen);
    CONVERTERS_HIDDEN Faults FinishHeader(std::size_t inputSize, std::size_t pointSize);

    bool PassBody(std::size_t bodySize, std::string_view text);
    template <typename TakeLines>
    CONVERTERS_HIDDEN Faults TakeBody(std::size_t bodySize, std::uint64_t expected,
                                      TakeLines takeLines);
    CONVERTERS_HIDDEN Faults ReadAsciiData();
    CONVERTERS_HIDDEN bool ParseValue(std::uint8_t type, converters::detail::PlyAsciiLine& line);
    CONVERTERS_HIDDEN void Store(const unsigned char* value, std::size_t size);
    template <typename PointT>
    auto MakePoints(const unsigned char* body, std::string_view text,
                    const std::function<void(double)>& progress) const;

    std::uint64_t BlockSize() const { return cloud->point_step * vertexCount; }

    /// The whole of which `writeOffset` is the low part: a body may have more than 4 GiB, while the
    /// member that callers see and may move has always had 32 bits.
    std::uint64_t m_writePosition = 0;
    PlyRefusal m_refusal;
};

template <typename PointT>
bool PLYDeserializer::DeserializePlyT(const std::vector<unsigned char>& data,
                                      pcl::PointCloud<PointT>& output,
                                      const std::function<void(double)>& progress) {
    m_refusal = {};
    if (data.empty()) {
        m_refusal.reason = "the file is empty";
        return Fail("No Input data!");
    }
    Init();
    if (IsVertexCountZero(data)) {
        emptySceneInTeach = true;
        return true;
    }
    std::string_view text = converters::detail::textOf(data);
    const std::size_t textSize = text.size();
    if (!TakeHeader(text, data.size(), sizeof(PointT))) {
        return Fail("Reading Header Failed!");
    }
    const std::size_t bodyStart = textSize - text.size();
    if (!PassBody(data.size() - bodyStart, text)) {
        return Fail("Reading Data Failed!");
    }
    cloud->row_step = cloud->point_step * cloud->width;
    auto points = MakePoints<PointT>(data.data() + bodyStart, text, progress);
    output.header = cloud->header;
    output.width = cloud->width;
    output.height = cloud->height;
    output.is_dense = cloud->is_dense == 1;
    output.points.swap(points);
    return true;
}

/// The points that conversion by pcl::fromPCLPointCloud2 would give; PassBody has accepted the
/// body. row_step plays no part: records follow one another without gaps.
template <typename PointT>
auto PLYDeserializer::MakePoints(const unsigned char* body, std::string_view text,
                                 const std::function<void(double)>& progress) const {
    using namespace converters::detail;
    pcl::MsgFieldMap mapping;
    pcl::createMapping<PointT>(cloud->fields, mapping);
    const std::size_t count = std::size_t{cloud->width} * cloud->height;
    const std::size_t recordSize = cloud->point_step;
    std::size_t made = 0;
    const auto tell = [&](std::size_t size) {
        if (progress) {
            progress(static_cast<double>(made) / static_cast<double>(count));
        }
        made += size;
    };
    if (format != PlyFormat::Ascii) {
        return makePoints<PointT>(count, recordSize, mapping, [&](std::size_t size) {
            tell(size);
            return std::exchange(body, body + size * recordSize);
        });
    }
    PlyAsciiBody lines(cloud->fields, text);
    std::vector<unsigned char> records(recordSize * std::min(count, pointsPerBlock));
    return makePoints<PointT>(count, recordSize, mapping, [&](std::size_t size) {
        tell(size);
        lines.read(records.data(), size);
        return static_cast<const unsigned char*>(records.data());
    });
}
