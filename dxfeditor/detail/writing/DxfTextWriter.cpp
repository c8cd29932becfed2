#include "dxfeditor/detail/writing/DxfTextWriter.h"

#include "dxfeditor/detail/writing/RealText.h"

#include <charconv>
#include <cstring>

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

} // namespace

// The base class gets a path that cannot be opened: its file stream stays unused.
DxfTextWriter::DxfTextWriter(DL_Codes::version dxfVersion) : DL_WriterA("", dxfVersion) {}

DxfTextWriter::~DxfTextWriter() = default;

void DxfTextWriter::append(int gc, const char* value, std::size_t length) const {
    char code[2 + longestInt + 1];
    m_text.append(code, static_cast<std::size_t>(writeGroupCode(gc, code) - code));
    m_text.append(value, length);
    m_text += '\n';
    groupWritten();
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
    char coordinates[3 * (4 + longestReal + 1)];
    char* end = writeCoordinate(" 10\n", point.x, coordinates);
    end = writeCoordinate(" 20\n", point.y, end);
    end = writeCoordinate(" 30\n", point.z, end);
    text += head;
    text.append(coordinates, static_cast<std::size_t>(end - coordinates));
}

void DxfTextWriter::writePoints(const std::string& head,
                                const std::vector<cv::Point3_<double>>& points) const {
    for (const cv::Point3_<double>& point : points) {
        appendPoint(head, point, m_text);
        groupWritten();
    }
}

} // namespace dxfeditor
