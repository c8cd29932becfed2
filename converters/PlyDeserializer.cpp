#include "converters/PlySerializerDeserializer.h"
#include "converters/detail/PlyHeaderLine.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <stdexcept>

using converters::detail::deliver;
using converters::detail::deliverOrTerminate;
using converters::detail::isBlank;
using converters::detail::PlyAsciiLine;
using converters::detail::PlyHeaderLine;
using converters::detail::sizeOfDatatype;
using converters::detail::takeLine;
using converters::detail::textOf;

namespace {

/// Number of a line or position as printf's %i takes it.
int forPrint(std::uint64_t number) {
    return static_cast<int>(number);
}

/// The datatype of a property's type word; 0 for an unknown one. "float64" is unknown: files in use
/// name this type "double" or "double64".
std::uint8_t datatypeOf(std::string_view word) {
    using Field = pcl::PCLPointField;
    static constexpr std::pair<std::string_view, std::uint8_t> names[] = {
        {"char", Field::INT8},        {"int8", Field::INT8},       {"uchar", Field::UINT8},
        {"uint8", Field::UINT8},      {"short", Field::INT16},     {"int16", Field::INT16},
        {"ushort", Field::UINT16},    {"uint16", Field::UINT16},   {"int", Field::INT32},
        {"int32", Field::INT32},      {"uint", Field::UINT32},     {"uint32", Field::UINT32},
        {"float", Field::FLOAT32},    {"float32", Field::FLOAT32}, {"double", Field::FLOAT64},
        {"double64", Field::FLOAT64},
    };
    for (const auto& [name, datatype] : names) {
        if (word == name) {
            return datatype;
        }
    }
    return 0;
}

/// Whether `count` things of `size` bytes take no more than `limit` bytes.
bool fits(std::uint64_t count, std::uint64_t size, std::uint64_t limit) {
    return size == 0 || count <= limit / size;
}

/// The line's text behind its first word, and that word.
PlyHeaderLine beginLine(std::string_view text, std::string_view& keyword) {
    PlyHeaderLine line(text);
    line.skipBlanks();
    keyword = line.word();
    return line;
}

/// Counts line feeds, in a form that compilers turn into vector instructions.
std::uint64_t countFeeds(std::string_view text) {
    constexpr std::size_t lanes = 32;
    constexpr std::size_t roundsPerBlock = 255; // what a counter of 8 bits holds
    std::uint64_t total = 0;
    while (text.size() >= lanes) {
        const std::size_t rounds = std::min(text.size() / lanes, roundsPerBlock);
        std::array<std::uint8_t, lanes> counters{};
        for (std::size_t i = 0; i < rounds; ++i) {
            for (std::size_t lane = 0; lane < lanes; ++lane) {
                const bool isFeed = text[i * lanes + lane] == '\n';
                counters[lane] = static_cast<std::uint8_t>(counters[lane] + isFeed);
            }
        }
        total = std::accumulate(counters.begin(), counters.end(), total);
        text.remove_prefix(rounds * lanes);
    }
    return total + static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

/// Counts lines, of which the last may lack its line feed, up to a limit.
std::uint64_t countLines(std::string_view text, std::uint64_t limit) {
    if (text.empty()) {
        return 0;
    }
    const std::uint64_t lines = countFeeds(text) + (text.back() == '\n' ? 0 : 1);
    return std::min(lines, limit);
}

} // namespace

void PLYDeserializer::Init() {
    stream.str("");
    stream.clear();
    vertexCount = 0;
    writeOffset = 0;
    writePosition_ = 0;
    lineNumber = 0;
    cloud = boost::make_shared<pcl::PCLPointCloud2>();
}

bool PLYDeserializer::IsVertexCountZero(const std::vector<unsigned char>& data) const {
    std::string_view text = textOf(data);
    std::string_view lineText;
    while (takeLine(text, lineText)) {
        std::string_view word;
        PlyHeaderLine line = beginLine(lineText, word);
        if (word != "element") {
            continue;
        }
        line.skipBlanks();
        if (line.word() == "vertex") {
            line.skipBlanks();
            return line.count() == 0;
        }
    }
    return true;
}

bool PLYDeserializer::ReadHeader(const std::vector<unsigned char>& data) {
    if (data.data() == nullptr) {
        throw std::logic_error("PLYDeserializer::ReadHeader: no data");
    }
    std::string_view text = textOf(data);
    const std::size_t textSize = text.size();
    stream.str(std::string(text));
    stream.clear();
    lineNumber = 0;
    if (!cloud) {
        return false;
    }
    const bool isAccepted = ParseHeader(text, data.size(), sizeof(pcl::PointXYZI));
    stream.seekg(static_cast<std::streamoff>(textSize - text.size()));
    if (isAccepted) {
        cloud->data.resize(BlockSize());
    }
    return isAccepted;
}

/// Reads the header without making room for the data.
///
/// @param text       the file's text; left at the first byte of the body
/// @param inputSize  size of the whole file
/// @param pointSize  size of a typed point
bool PLYDeserializer::ParseHeader(std::string_view& text, std::size_t inputSize,
                                  std::size_t pointSize) {
    lineNumber = 0;
    if (!ParseMagic(text)) {
        return false;
    }
    Seen seen;
    std::string_view line;
    while (takeLine(text, line)) {
        ++lineNumber;
        std::string_view keyword;
        beginLine(line, keyword);
        if (keyword == "end_header") {
            return FinishHeader(inputSize, pointSize);
        }
        bool isAccepted = true;
        if (keyword == "format") {
            isAccepted = ParseFormat(line, seen);
        } else if (keyword == "obj_info") {
            ParseObjInfo(line);
        } else if (keyword == "element") {
            isAccepted = ParseElement(line, seen);
        } else if (keyword == "property") {
            isAccepted = ParseProperty(line, seen);
        } else {
            IgnoreLine(line);
        }
        if (!isAccepted) {
            return false;
        }
    }
    return false;
}

/// The first line. Its fourth byte is taken whatever it is: a line feed, or a carriage return that
/// one more byte follows.
bool PLYDeserializer::ParseMagic(std::string_view& text) {
    ++lineNumber;
    if (text.size() < 4 || text.substr(0, 3) != "ply") {
        return RefuseLine(__LINE__);
    }
    const bool hasReturn = text[3] == '\r';
    text.remove_prefix(std::min<std::size_t>(hasReturn ? 5 : 4, text.size()));
    return true;
}

bool PLYDeserializer::ParseFormat(std::string_view text, Seen& seen) {
    std::string_view keyword;
    PlyHeaderLine line = beginLine(text, keyword);
    const bool hasFirst = line.separator();
    line.skipBlanks();
    const std::string_view word = line.word();
    const bool hasSecond = line.separator();
    line.skipBlanks();
    const std::string_view version = line.word();
    line.skipBlanks();
    if (!line.isAtEnd() || !hasFirst || !hasSecond) {
        return RefuseLine(__LINE__);
    }
    if (word == "ascii") {
        format = PlyFormat::Ascii;
    } else if (word == "binary_big_endian") {
        format = PlyFormat::BinaryBigEndian;
    } else if (word == "binary_little_endian") {
        format = PlyFormat::BinaryLittleEndian;
    } else {
        return RefuseLine(__LINE__);
    }
    if (version != "1.0") {
        deliverOrTerminate(
            2, __LINE__, "ReadHeader",
            "[PlyDeserializer::ReadHeader] Error parsing ply, line: %i version %s is not "
            "supported\n",
            forPrint(lineNumber), std::string(version).c_str());
        return false;
    }
    // Last, when `format` has already changed: the order is part of the observable state.
    if (seen.format) {
        return RefuseLine(__LINE__);
    }
    seen.format = true;
    return true;
}

void PLYDeserializer::ParseObjInfo(std::string_view text) {
    std::string_view keyword;
    PlyHeaderLine line = beginLine(text, keyword);
    line.separator();
    line.skipBlanks();
    const std::string_view key = line.word();
    line.separator();
    line.skipBlanks();
    const std::string_view value = line.word();
    if (key == "num_cols") {
        cloud->width = static_cast<std::uint32_t>(std::stoi(std::string(value)));
    } else if (key == "num_rows") {
        cloud->height = static_cast<std::uint32_t>(std::stoi(std::string(value)));
    }
}

bool PLYDeserializer::ParseElement(std::string_view text, Seen& seen) {
    std::string_view keyword;
    PlyHeaderLine line = beginLine(text, keyword);
    const bool hasFirst = line.separator();
    line.skipBlanks();
    const std::string_view name = line.word();
    const bool hasSecond = line.separator();
    line.skipBlanks();
    const std::uint64_t count = line.count();
    line.skipBlanks();
    if (!line.isAtEnd() || !hasFirst || !hasSecond) {
        return RefuseLine(__LINE__);
    }
    if (name != "vertex") {
        deliverOrTerminate(
            2, __LINE__, "ReadHeader",
            "[PlyDeserializer::ReadHeader] Error parsing ply, line: %i element type '%s' not "
            "supported\n",
            forPrint(lineNumber), std::string(name).c_str());
        return false;
    }
    if (seen.vertex) {
        deliverOrTerminate(
            2, __LINE__, "ReadHeader",
            "[PlyDeserializer::ReadHeader] Error parsing ply, line: %i Only one set of vertices "
            "supported\n",
            forPrint(lineNumber));
        return false;
    }
    vertexCount = count;
    seen.vertex = true;
    return true;
}

bool PLYDeserializer::ParseProperty(std::string_view text, const Seen& seen) {
    std::string_view keyword;
    PlyHeaderLine line = beginLine(text, keyword);
    const bool hasFirst = line.separator();
    line.skipBlanks();
    const std::string_view type = line.word();
    if (!seen.vertex || !hasFirst) {
        return RefuseLine(__LINE__);
    }
    if (type == "list") {
        deliverOrTerminate(
            2, __LINE__, "ReadHeader",
            "[PlyDeserializer::ReadHeader] Error parsing ply, line: %i List not supported\n",
            forPrint(lineNumber));
        return false;
    }
    const bool hasSecond = line.separator();
    line.skipBlanks();
    const std::string_view name = line.word();
    if (!hasSecond) {
        return RefuseLine(__LINE__);
    }
    pcl::PCLPointField field;
    field.datatype = datatypeOf(type);
    if (field.datatype == 0) {
        return true;
    }
    field.name = name;
    field.offset = cloud->point_step;
    field.count = 1;
    cloud->fields.push_back(field);
    const auto size = static_cast<std::uint32_t>(sizeOfDatatype(field.datatype));
    cloud->point_step += size;
    // Offsets that wrapped would lead outside a record.
    return cloud->point_step >= size;
}

/// Settles width and height, and decides whether the cloud can be held before anything is
/// allocated: a count is only a claim of the file.
bool PLYDeserializer::FinishHeader(std::size_t inputSize, std::size_t pointSize) {
    if (cloud->width == 0 || cloud->height == 0) {
        cloud->height = 1;
        cloud->width = static_cast<std::uint32_t>(vertexCount);
    }
    constexpr std::uint64_t fixedLimit = std::uint64_t{64} << 20;
    constexpr std::uint64_t limitPerByte = 64;
    const std::uint64_t points = std::uint64_t{cloud->width} * cloud->height;
    return fits(std::max(vertexCount, points), cloud->point_step + pointSize,
                fixedLimit + limitPerByte * inputSize) &&
           (points == vertexCount || cloud->point_step == 0);
}

/// Reports a header line that cannot be parsed.
bool PLYDeserializer::RefuseLine(int sourceLine) const {
    deliverOrTerminate(2, sourceLine, "ReadHeader",
                       "[PlyDeserializer::ReadHeader] Error parsing ply, line: %i\n",
                       forPrint(lineNumber));
    return false;
}

void PLYDeserializer::IgnoreLine(std::string_view line) const {
    deliverOrTerminate(1, __LINE__, "ReadHeader",
                       "[PlyDeserializer::ReadHeader] Ignoring line %i : %s\n",
                       forPrint(lineNumber), std::string(line).c_str());
}

bool PLYDeserializer::ReadData(const std::vector<unsigned char>& data) {
    if (!cloud) {
        return false;
    }
    switch (format) {
    case PlyFormat::Ascii:
        return ReadAsciiData();
    case PlyFormat::BinaryLittleEndian: {
        // From the buffer: at the end of its text the stream itself gives no position.
        const auto position = static_cast<std::uint64_t>(
            std::streamoff(stream.rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in)));
        const std::size_t bodyStart = std::min<std::uint64_t>(position, data.size());
        if (!CheckBinarySize(data.size() - bodyStart, cloud->data.size())) {
            return false;
        }
        std::copy(data.begin() + static_cast<std::ptrdiff_t>(bodyStart), data.end(),
                  cloud->data.begin());
        return true;
    }
    case PlyFormat::BinaryBigEndian:
        return CheckBody(0, {});
    }
    return true;
}

/// Decides whether a body is complete, as ReadData does, without reading its values.
///
/// @param bodySize  size of the file behind the header
/// @param text      the text behind the header
bool PLYDeserializer::CheckBody(std::size_t bodySize, std::string_view text) {
    switch (format) {
    case PlyFormat::BinaryLittleEndian:
        return CheckBinarySize(bodySize, BlockSize());
    case PlyFormat::BinaryBigEndian:
        deliverOrTerminate(
            2, __LINE__, "ReadData",
            "[PlyDeserializer::ReadData] Error parsing ply, Binary Big Endian not implemented\n");
        return false;
    case PlyFormat::Ascii: {
        const std::uint64_t lines = countLines(text, vertexCount);
        lineNumber += lines;
        writePosition_ = lines * cloud->point_step;
        writeOffset = static_cast<std::uint32_t>(writePosition_);
        if (lines < vertexCount) {
            deliverOrTerminate(2, __LINE__, "ReadData",
                               "[PlyDeserializer::ReadData] Error parsing ply, line: %i\n",
                               forPrint(lineNumber));
            return false;
        }
    }
    }
    return true;
}

bool PLYDeserializer::CheckBinarySize(std::size_t bodySize, std::uint64_t expected) const {
    if (bodySize == expected) {
        return true;
    }
    deliverOrTerminate(2, __LINE__, "ReadData",
                       "[PlyDeserializer::ReadData] Error parsing ply, Binary Data doesn't match "
                       "expected size\n");
    return false;
}

bool PLYDeserializer::ReadAsciiData() {
    std::string text;
    for (std::uint64_t i = 0; i < vertexCount; ++i) {
        bool isRead = static_cast<bool>(std::getline(stream, text));
        if (isRead) {
            ++lineNumber;
            PlyAsciiLine line(text);
            isRead =
                std::all_of(cloud->fields.begin(), cloud->fields.end(),
                            [&](const auto& field) { return ParseValue(field.datatype, line); });
        }
        if (!isRead) {
            deliverOrTerminate(2, __LINE__, "ReadData",
                               "[PlyDeserializer::ReadData] Error parsing ply, line: %i\n",
                               forPrint(lineNumber));
            return false;
        }
    }
    return true;
}

bool PLYDeserializer::ParseVertices(const unsigned char& type, std::istringstream& line) {
    // Taken from the buffer: extraction by the stream itself would follow the stream's locale and
    // know no nan.
    const bool isGood = line.good();
    const auto start =
        std::streamoff(line.rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in));
    const std::string text = line.str();
    const auto position = std::min(static_cast<std::size_t>(start), text.size());
    const std::string_view rest = std::string_view(text).substr(position);
    PlyAsciiLine values(isGood ? rest : std::string_view());
    if (!ParseValue(type, values)) {
        return false;
    }
    values.skipBlanks();
    std::ios_base::iostate state = line.rdstate();
    if (isGood) {
        const std::size_t taken = rest.size() - values.rest().size();
        line.rdbuf()->pubseekpos(start + static_cast<std::streamoff>(taken), std::ios_base::in);
        state |= values.rest().empty() ? std::ios_base::eofbit : std::ios_base::goodbit;
    }
    line.clear(state | (values.hasFailed() ? std::ios_base::failbit : std::ios_base::goodbit));
    return true;
}

/// Takes one value of a line and stores it.
bool PLYDeserializer::ParseValue(std::uint8_t type, PlyAsciiLine& line) {
    const std::size_t size = sizeOfDatatype(type);
    if (size == 0) {
        deliver(1, __LINE__, "ParseVertices",
                "[PlyDeserializer::ParseVertices] Unsupported type\n");
        return false;
    }
    unsigned char value[8];
    line.read(type, value);
    Store(value, size);
    return true;
}

/// Stores a value at `writeOffset`, if it lies inside the cloud's data, and advances.
void PLYDeserializer::Store(const unsigned char* value, std::size_t size) {
    // A caller may have moved the offset; otherwise the position also counts what does not fit into
    // its 32 bits.
    if (static_cast<std::uint32_t>(writePosition_) != writeOffset) {
        writePosition_ = writeOffset;
    }
    if (cloud && size <= cloud->data.size() && writePosition_ <= cloud->data.size() - size) {
        std::memcpy(cloud->data.data() + writePosition_, value, size);
    }
    writePosition_ += size;
    writeOffset = static_cast<std::uint32_t>(writePosition_);
}
