#include "dxfeditor/detail/writing/DxfTextWriter.h"

#include "dxfeditor/detail/writing/RealText.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>

namespace dxfeditor {

namespace {

constexpr std::size_t longestInt = 11;

/// Writes a group code the way dxflib does: padded to three places as if negative ones had one
/// digit.
char* writeGroupCode(int gc, char* to) {
    for (int limit = 100; limit > 1 && gc < limit; limit /= 10) {
        *to++ = ' ';
    }
    to = std::to_chars(to, to + longestInt, gc).ptr;
    *to++ = '\n';
    return to;
}

/// Writes the group of a coordinate, whose code is given as its line.
char* writeCoordinate(const char (&line)[5], double value, char* to) {
    std::memcpy(to, line, 4);
    to = writeReal(value, to + 4);
    *to++ = '\n';
    return to;
}

constexpr std::size_t longestCoordinates = 3 * (4 + longestReal + 1);

/// Writes the coordinates of a POINT.
/// @param to  room for longestCoordinates characters
char* writeCoordinates(const cv::Point3_<double>& point, char* to) {
    to = writeCoordinate(" 10\n", point.x, to);
    to = writeCoordinate(" 20\n", point.y, to);
    return writeCoordinate(" 30\n", point.z, to);
}

} // namespace

// The base class gets a path that cannot be opened: its file stream stays unused.
DxfTextWriter::DxfTextWriter(DL_Codes::version dxfVersion) : DL_WriterA("", dxfVersion) {}

DxfTextWriter::~DxfTextWriter() = default;

void DxfTextWriter::append(int gc, const char* value, std::size_t length) const {
    char code[2 + longestInt + 1];
    m_text.append(code, static_cast<std::size_t>(writeGroupCode(gc, code) - code));
    m_text.append(value, length);
    m_text += '\n';
    if (!m_isApart) {
        groupWritten();
    }
}

void DxfTextWriter::dxfReal(int gc, double value) const {
    char text[longestReal];
    append(gc, text, static_cast<std::size_t>(writeReal(value, text) - text));
}

void DxfTextWriter::dxfInt(int gc, int value) const {
    char text[longestInt];
    append(gc, text,
           static_cast<std::size_t>(std::to_chars(text, text + longestInt, value).ptr - text));
}

void DxfTextWriter::dxfHex(int gc, int value) const {
    char text[longestInt] = {};
    char* const end = std::to_chars(text, text + longestInt, static_cast<unsigned>(value), 16).ptr;
    for (char* digit = text; digit != end; ++digit) {
        if (*digit >= 'a') {
            *digit = static_cast<char>(*digit - 'a' + 'A');
        }
    }
    append(gc, text, static_cast<std::size_t>(end - text));
}

void DxfTextWriter::dxfString(int gc, const char* value) const {
    const char* const text = value == nullptr ? "" : value;
    append(gc, text, std::strlen(text));
}

void DxfTextWriter::dxfString(int gc, const std::string& value) const {
    append(gc, value.data(), value.size());
}

void appendPoint(const std::string& head, const cv::Point3_<double>& point, std::string& text) {
    char coordinates[longestCoordinates];
    text += head;
    text.append(coordinates, writeCoordinates(point, coordinates));
}

/// While it lives, groups are written apart from the text so far, and nobody takes them away.
class DxfTextWriter::Apart {
public:
    explicit Apart(const DxfTextWriter& writer) : m_writer(writer) { exchange(true); }
    ~Apart() { exchange(false); }
    Apart(const Apart&) = delete;
    Apart& operator=(const Apart&) = delete;

    /// The groups written meanwhile.
    std::string text() const { return m_writer.m_text; }

private:
    void exchange(bool isApart) {
        m_writer.m_text.swap(m_text);
        m_writer.m_isApart = isApart;
    }

    const DxfTextWriter& m_writer;
    std::string m_text;
};

std::string DxfTextWriter::pointHead(const DL_Attributes& attributes) const {
    const Apart apart(*this);
    entity("POINT");
    entityAttributes(attributes);
    return apart.text();
}

void DxfTextWriter::writePoints(const DL_Attributes& attributes,
                                const std::vector<cv::Point3_<double>>& points) const {
    const std::string head = pointHead(attributes);
    const std::size_t longestPoint = head.size() + longestCoordinates;
    // Many points at a time, so that the text need not grow by each.
    const std::size_t blockSize =
        std::max(std::min(textBlockSize, points.size() * longestPoint), longestPoint);
    // As it is: a vector would be filled first.
    const std::unique_ptr<char[]> block(new char[blockSize]);
    char* const begin = block.get();
    char* const lastRoom = begin + blockSize - longestPoint;
    char* end = begin;
    for (const cv::Point3_<double>& point : points) {
        std::memcpy(end, head.data(), head.size());
        end = writeCoordinates(point, end + head.size());
        if (end > lastRoom || &point == &points.back()) {
            takeBlock(begin, static_cast<std::size_t>(end - begin));
            end = begin;
        }
    }
}

} // namespace dxfeditor
