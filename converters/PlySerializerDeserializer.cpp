#include "converters/PlySerializerDeserializer.h"

#include "converters/detail/NumberFormat.h"

#include <algorithm>
#include <charconv>
#include <cstring>

using converters::detail::deliver;
using converters::detail::deliverOrTerminate;
using converters::detail::PointBytes;

namespace {

using Bytes = std::vector<unsigned char>;

/// What the serializer needs to know about a field for every point.
struct Column {
    explicit Column(const pcl::PCLPointField& field)
        : datatype(field.datatype), offset(field.offset), elementSize(sizeOf(field.datatype)),
          writesCount(isSigned(field.count) && field.count > 1),
          elements(isSigned(field.count) ? std::max(field.count, 1u) : 0),
          isColour(isColourText(field)) {}

    /// Position of an element in the bytes of its point.
    std::size_t position(std::size_t element) const { return offset + element * elementSize; }

    unsigned datatype;
    std::size_t offset;
    /// In bytes; 0 for an unknown datatype.
    std::size_t elementSize;
    bool writesCount;
    /// 1 for a count of 0; none for a count that is negative as a signed number.
    std::size_t elements;
    /// Whether the text form is that of a packed colour.
    bool isColour;

private:
    static bool isSigned(std::uint32_t count) { return count <= INT32_MAX; }

    static std::size_t sizeOf(unsigned datatype) {
        constexpr std::size_t sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8};
        return datatype < std::size(sizes) ? sizes[datatype] : 0;
    }

    /// Unlike in the header, the name only needs to contain the word, but the datatype counts.
    static bool isColourText(const pcl::PCLPointField& field) {
        const char* word = field.datatype == pcl::PCLPointField::FLOAT32  ? "rgb"
                           : field.datatype == pcl::PCLPointField::UINT32 ? "rgba"
                                                                          : nullptr;
        return word != nullptr && field.name.find(word) != std::string::npos;
    }
};

std::vector<Column> columnsOf(const std::vector<pcl::PCLPointField>& fields) {
    return {fields.begin(), fields.end()};
}

/// Copies an element of each point in [first, last) into its record.
template <std::size_t size>
void copyElements(const PointBytes& points, std::size_t first, std::size_t last,
                  std::size_t position, unsigned char* record, std::size_t recordSize) {
    const unsigned char* element = points.data + first * points.stride + position;
    for (std::size_t i = first; i < last; ++i) {
        std::memcpy(record, element, size);
        element += points.stride;
        record += recordSize;
    }
}

/// Copies a field of each point in [first, last) into its record; what is not inside the data is
/// left as it is. Of a field with several elements the last one is stored: they share one place.
void copyColumn(const Column& column, const PointBytes& points, std::size_t first, std::size_t last,
                unsigned char* record, std::size_t recordSize) {
    if (column.elements == 0) {
        return;
    }
    const std::size_t position = column.position(column.elements - 1);
    last = std::min(last, points.countWithElement(position, column.elementSize));
    if (first >= last) {
        return;
    }
    switch (column.elementSize) {
    case 1:
        return copyElements<1>(points, first, last, position, record, recordSize);
    case 2:
        return copyElements<2>(points, first, last, position, record, recordSize);
    case 4:
        return copyElements<4>(points, first, last, position, record, recordSize);
    case 8:
        return copyElements<8>(points, first, last, position, record, recordSize);
    default:
        return;
    }
}

/// Appends the records of all points, in blocks that stay in the cache: the output is written once.
void appendRecords(const std::vector<Column>& columns, const PointBytes& points,
                   std::size_t recordSize, Bytes& out) {
    constexpr std::size_t pointsPerBlock = 256;
    Bytes block(recordSize * std::min(pointsPerBlock, points.count));
    out.reserve(out.size() + recordSize * points.count);
    for (std::size_t first = 0; first < points.count; first += pointsPerBlock) {
        const std::size_t last = std::min(first + pointsPerBlock, points.count);
        std::fill(block.begin(), block.end(), static_cast<unsigned char>(0));
        unsigned char* record = block.data();
        for (const Column& column : columns) {
            copyColumn(column, points, first, last, record, recordSize);
            record += column.elementSize;
        }
        out.insert(out.end(), block.data(), block.data() + (last - first) * recordSize);
    }
}

void warnOfBinaryDatatype(const Column& column) noexcept {
    deliverOrTerminate(
        1, __LINE__, "AppendContentBinary",
        "[PlySerializer::appendContentBinary] Incorrect field data type specified (%d)!\n",
        static_cast<int>(column.datatype));
}

/// A line of text under construction.
class Line {
public:
    /// Room for an element and its blank; `advanceTo` says how much of it was used.
    char* room() {
        if (text_.size() - used_ < maxElementLength) {
            text_.resize(2 * text_.size());
        }
        return text_.data() + used_;
    }
    void advanceTo(const char* end) { used_ = static_cast<std::size_t>(end - text_.data()); }
    void clear() { used_ = 0; }
    const char* data() const { return text_.data(); }
    std::size_t size() const { return used_; }

private:
    static constexpr std::size_t maxElementLength = 64;

    std::vector<char> text_ = std::vector<char>(16 * maxElementLength);
    std::size_t used_ = 0;
};

template <typename T>
T valueOf(const unsigned char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename T>
char* writeInteger(char* out, T value) {
    constexpr std::ptrdiff_t maxLength = 11;
    return std::to_chars(out, out + maxLength, value).ptr;
}

/// The bytes of a packed colour at the given bit positions, separated by blanks.
char* writeColours(char* out, std::uint32_t packed, std::initializer_list<int> shifts) {
    for (const int shift : shifts) {
        out = writeInteger(out, packed >> shift & 0xFF);
        *out++ = ' ';
    }
    return out - 1;
}

/// Writes one element of a known datatype.
char* writeElement(char* out, const Column& column, const unsigned char* bytes) {
    using Field = pcl::PCLPointField;
    switch (column.datatype) {
    case Field::INT8: // without its sign: readers of these files know 8-bit values as unsigned
    case Field::UINT8:
        return writeInteger(out, static_cast<unsigned>(*bytes));
    case Field::INT16:
        return writeInteger(out, valueOf<std::int16_t>(bytes));
    case Field::UINT16:
        return writeInteger(out, valueOf<std::uint16_t>(bytes));
    case Field::INT32:
        return writeInteger(out, valueOf<std::int32_t>(bytes));
    case Field::UINT32:
        if (column.isColour) {
            return writeColours(out, valueOf<std::uint32_t>(bytes), {16, 8, 0, 24});
        }
        return writeInteger(out, valueOf<std::uint32_t>(bytes));
    case Field::FLOAT32:
        if (column.isColour) {
            return writeColours(out, valueOf<std::uint32_t>(bytes), {16, 8, 0});
        }
        return converters::detail::writeGeneral(out, static_cast<double>(valueOf<float>(bytes)));
    default:
        return converters::detail::writeGeneral(out, valueOf<double>(bytes));
    }
}

/// Appends all elements of a field to the line, each but the line's last followed by a blank.
void appendElements(const Column& column, const PointBytes& points, std::size_t point, bool isLast,
                    Line& line) {
    constexpr unsigned char zeros[8] = {};
    for (std::size_t k = 0; k < column.elements; ++k) {
        char* end = line.room();
        if (column.elementSize == 0) {
            deliver(1, __LINE__, "WriteDataASCII",
                    "[PLYSerializer::writeDataASCII] Incorrect field data type specified (%d)!\n",
                    static_cast<int>(column.datatype));
        } else {
            const auto* bytes = points.element(point, column.position(k), column.elementSize);
            end = writeElement(end, column, bytes != nullptr ? bytes : zeros);
        }
        if (!isLast || k + 1 < column.elements) {
            *end++ = ' ';
        }
        line.advanceTo(end);
    }
}

/// Writes the line of every point through `write(const char* text, std::size_t length)`. The counts
/// of fields with several elements go out before the line that is being built, so they stand ahead
/// of all its values: readers of these files expect them there.
template <typename Write>
void writeLines(const std::vector<Column>& columns, const PointBytes& points, Write write) {
    Line line;
    for (std::size_t i = 0; i < points.count; ++i) {
        line.clear();
        for (const Column& column : columns) {
            if (column.writesCount) {
                char count[16];
                char* end = writeInteger(count, column.elements);
                *end++ = ' ';
                write(count, static_cast<std::size_t>(end - count));
            }
            appendElements(column, points, i, &column == &columns.back(), line);
        }
        char* end = line.room();
        *end++ = '\n';
        line.advanceTo(end);
        write(line.data(), line.size());
    }
}

const char* typeWord(unsigned datatype) {
    constexpr const char* words[] = {nullptr, " char ", " uchar ", " short ", " ushort ",
                                     " int ", " uint ", " float ", " double "};
    return datatype < std::size(words) ? words[datatype] : nullptr;
}

/// The property lines of a field; empty for an unknown datatype.
std::string propertyOf(const pcl::PCLPointField& field) {
    static constexpr std::pair<const char*, const char*> named[] = {
        {"normal_x", "\nproperty float nx"},
        {"normal_y", "\nproperty float ny"},
        {"normal_z", "\nproperty float nz"},
        {"rgb", "\nproperty uchar red\nproperty uchar green\nproperty uchar blue"},
        {"rgba", "\nproperty uchar red\nproperty uchar green\nproperty uchar blue"
                 "\nproperty uchar alpha"},
    };
    for (const auto& [name, text] : named) {
        if (field.name == name) {
            return text;
        }
    }
    const char* type = typeWord(field.datatype);
    if (type == nullptr) {
        return {};
    }
    return std::string("\nproperty") + (field.count == 1 ? "" : " list uint") + type + field.name;
}

const char* formatLine(bool binary, bool bigEndian) {
    if (!binary) {
        return "\nformat ascii 1.0";
    }
    return bigEndian ? "\nformat binary_big_endian 1.0" : "\nformat binary_little_endian 1.0";
}

std::string sizeLines(std::uint32_t width, std::uint32_t height) {
    return "\ncomment ply generated by tarnowell\nobj_info num_cols " + std::to_string(width) +
           "\nobj_info num_rows " + std::to_string(height) + "\nelement vertex " +
           std::to_string(height * width);
}

/// Empties `out` and gives it room. What is too small is freed first, not kept beside the new.
void restart(Bytes& out, const std::string& header, std::size_t bodySize) {
    out.clear();
    if (out.capacity() < header.size() + bodySize) {
        Bytes().swap(out);
        out.reserve(header.size() + bodySize);
    }
    out.insert(out.end(), header.begin(), header.end());
}

} // namespace

std::string PLYSerializer::GenerateHeader(const pcl::PCLPointCloud2& cloud, bool binary) const {
    std::string header = "ply";
    header += formatLine(binary, cloud.is_bigendian != 0);
    header += sizeLines(cloud.width, cloud.height);
    for (const pcl::PCLPointField& field : cloud.fields) {
        const std::string property = propertyOf(field);
        if (property.empty()) {
            deliver(2, __LINE__, "GenerateHeader",
                    "[PLYSerializer::generateHeader] unknown data field type!");
            return {};
        }
        header += property;
    }
    return header + "\nend_header\n";
}

std::string PLYSerializer::GenerateEmptyHeader() const {
    return "ply" + sizeLines(0, 0) + "\nend_header\n";
}

void PLYSerializer::AppendContentBinary(const pcl::PCLPointCloud2& cloud, Bytes& out) const {
    AppendRecords(cloud.fields, PointBytes(cloud), out);
}

void PLYSerializer::AppendRecords(const Fields& fields, const PointBytes& points, Bytes& out) {
    const std::vector<Column> columns = columnsOf(fields);
    std::vector<Column> unknown;
    std::size_t recordSize = 0;
    for (const Column& column : columns) {
        recordSize += column.elementSize;
        if (column.elementSize == 0) {
            warnOfBinaryDatatype(column);
            unknown.push_back(column);
        }
    }
    appendRecords(columns, points, recordSize, out);
    for (std::size_t i = 0; !unknown.empty() && i < points.count; ++i) {
        for (const Column& column : unknown) {
            for (std::size_t k = 0; k < column.elements; ++k) {
                warnOfBinaryDatatype(column);
            }
        }
    }
}

void PLYSerializer::WriteDataASCII(const pcl::PCLPointCloud2& cloud,
                                   std::ostringstream& stream) const {
    writeLines(columnsOf(cloud.fields), PointBytes(cloud),
               [&stream](const char* text, std::size_t length) {
                   stream.write(text, static_cast<std::streamsize>(length));
               });
}

void PLYSerializer::SerializeBinary(const pcl::PCLPointCloud2& layout, const PointBytes& points,
                                    Bytes& out) {
    restart(out, PLYSerializer().GenerateHeader(layout, true), points.size);
    AppendRecords(layout.fields, points, out);
}

void PLYSerializer::SerializeASCII(const pcl::PCLPointCloud2& layout, const PointBytes& points,
                                   Bytes& out) {
    restart(out, PLYSerializer().GenerateHeader(layout, false), points.size);
    writeLines(columnsOf(layout.fields), points, [&out](const char* text, std::size_t length) {
        out.insert(out.end(), text, text + length);
    });
}
