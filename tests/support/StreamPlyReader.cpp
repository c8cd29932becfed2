#include "tests/support/StreamPlyReader.h"

#include "tests/support/PlyBytes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <map>

namespace {

bool isWhitespace(char c) {
    return std::isspace(c, std::locale::classic());
}

/// Whether the word is nan, inf or infinity; `kind` is then its first three letters, small.
bool isSpecialWord(std::string word, std::string& kind) {
    std::transform(word.begin(), word.end(), word.begin(),
                   [](char c) { return std::tolower(c, std::locale::classic()); });
    if (!word.empty() && (word[0] == '-' || word[0] == '+')) {
        word.erase(0, 1);
    }
    kind = word.substr(0, 3);
    if (word == "nan" || word == "inf" || word == "infinity") {
        return true;
    }
    if (kind != "nan" || word[3] != '(' || word.back() != ')') {
        return false;
    }
    const std::string inside = word.substr(4, word.size() - 5);
    return inside.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") == std::string::npos;
}

/// The stream's next word; the stream stays where it is.
std::string peekWord(std::istringstream& line) {
    const auto position = line.tellg();
    std::string word;
    line >> word;
    line.clear();
    line.seekg(position);
    return word;
}

template <typename Value>
void readValue(std::istringstream& line, std::string& record) {
    Value value = 0;
    if constexpr (std::is_floating_point_v<Value>) {
        std::string kind;
        if (const std::string word = line.good() ? peekWord(line) : ""; isSpecialWord(word, kind)) {
            std::string skipped;
            line >> skipped;
            value = kind == "nan" ? std::numeric_limits<Value>::quiet_NaN()
                                  : std::numeric_limits<Value>::infinity();
            value = std::copysign(value, word[0] == '-' ? Value(-1) : Value(1));
            appendBytes(record, value);
            return;
        }
    }
    line >> value;
    appendBytes(record, value);
}

} // namespace

std::vector<unsigned char> readRecordByStream(const std::vector<std::uint8_t>& datatypes,
                                              const std::string& text) {
    using Reader = void (*)(std::istringstream&, std::string&);
    static constexpr Reader readers[] = {
        nullptr,
        readValue<char>,
        readValue<char>,
        readValue<std::int16_t>,
        readValue<std::uint16_t>,
        readValue<std::int32_t>,
        readValue<std::uint32_t>,
        readValue<float>,
        readValue<double>,
    };
    std::istringstream line(text);
    line.imbue(std::locale::classic());
    std::string record;
    for (const std::uint8_t datatype : datatypes) {
        readers[datatype](line, record);
        line >> std::ws;
    }
    return bytesOf(record);
}

bool StreamPlyReader::refuse(int level, const std::string& text) {
    messages.push_back({level, "converters/PlySerializerDeserializer", "ReadHeader",
                        "[PlyDeserializer::ReadHeader] " + text + "\n"});
    return false;
}

bool StreamPlyReader::readHeader(const std::string& text) {
    std::istringstream stream(text);
    char magic[4] = {};
    stream.read(magic, 4);
    if (magic[3] == '\r') {
        stream.ignore(1);
    }
    lineNumber = 1;
    const std::string error = "Error parsing ply, line: ";
    if (text.size() < 4 || std::string(magic, 3) != "ply") {
        return refuse(2, error + "1");
    }
    std::string lineText;
    while (std::getline(stream, lineText)) {
        ++lineNumber;
        position = stream.eof() ? text.size() : static_cast<std::size_t>(stream.tellg());
        std::istringstream line(lineText);
        line.imbue(std::locale::classic());
        line >> std::noskipws >> std::ws;
        std::string keyword;
        line >> keyword;
        bool isAccepted = true;
        if (keyword == "format") {
            isAccepted = readFormat(line);
        } else if (keyword == "obj_info") {
            readObjInfo(line);
        } else if (keyword == "element") {
            isAccepted = readElement(line);
        } else if (keyword == "property") {
            isAccepted = readProperty(line);
        } else if (keyword == "end_header") {
            return finish(text.size());
        } else {
            refuse(1, "Ignoring line " + std::to_string(lineNumber) + " : " + lineText);
        }
        if (!isAccepted) {
            return false;
        }
    }
    return false;
}

bool StreamPlyReader::readFormat(std::istringstream& line) {
    const std::string error = "Error parsing ply, line: " + std::to_string(lineNumber);
    char first = 0;
    char second = 0;
    std::string word;
    std::string version;
    line >> first >> std::ws >> word >> second >> std::ws >> version >> std::ws;
    if (!line.eof() || !isWhitespace(first) || !isWhitespace(second)) {
        return refuse(2, error);
    }
    const std::vector<std::string> words = {"ascii", "binary_big_endian", "binary_little_endian"};
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end()) {
        return refuse(2, error);
    }
    format = static_cast<int>(found - words.begin());
    if (version != "1.0") {
        return refuse(2, error + " version " + version + " is not supported");
    }
    if (m_hasFormat) {
        return refuse(2, error);
    }
    m_hasFormat = true;
    return true;
}

void StreamPlyReader::readObjInfo(std::istringstream& line) {
    char separator = 0;
    std::string key;
    std::string value;
    line >> separator >> std::ws >> key >> separator >> std::ws >> value >> std::ws;
    if (key == "num_cols") {
        cloud.width = static_cast<std::uint32_t>(std::stoi(value));
    } else if (key == "num_rows") {
        cloud.height = static_cast<std::uint32_t>(std::stoi(value));
    }
}

bool StreamPlyReader::readElement(std::istringstream& line) {
    const std::string error = "Error parsing ply, line: " + std::to_string(lineNumber);
    char first = 0;
    char second = 0;
    std::string name;
    std::uint64_t count = 0;
    line >> first >> std::ws >> name >> second >> std::ws >> count >> std::ws;
    if (!line.eof() || !isWhitespace(first) || !isWhitespace(second)) {
        return refuse(2, error);
    }
    if (name != "vertex") {
        return refuse(2, error + " element type '" + name + "' not supported");
    }
    if (m_hasVertex) {
        return refuse(2, error + " Only one set of vertices supported");
    }
    vertexCount = count;
    m_hasVertex = true;
    return true;
}

bool StreamPlyReader::readProperty(std::istringstream& line) {
    static const std::map<std::string, std::pair<std::uint8_t, std::uint32_t>> types = {
        {"char", {1, 1}},  {"int8", {1, 1}},    {"uchar", {2, 1}},  {"uint8", {2, 1}},
        {"short", {3, 2}}, {"int16", {3, 2}},   {"ushort", {4, 2}}, {"uint16", {4, 2}},
        {"int", {5, 4}},   {"int32", {5, 4}},   {"uint", {6, 4}},   {"uint32", {6, 4}},
        {"float", {7, 4}}, {"float32", {7, 4}}, {"double", {8, 8}}, {"double64", {8, 8}},
    };
    const std::string error = "Error parsing ply, line: " + std::to_string(lineNumber);
    if (!m_hasVertex) {
        return refuse(2, error);
    }
    char first = 0;
    char second = 0;
    std::string type;
    std::string name;
    line >> first >> std::ws >> type;
    if (!isWhitespace(first)) {
        return refuse(2, error);
    }
    if (type == "list") {
        return refuse(2, error + " List not supported");
    }
    line >> second >> std::ws >> name >> std::ws;
    if (!isWhitespace(second)) {
        return refuse(2, error);
    }
    const auto found = types.find(type);
    if (found != types.end()) {
        pcl::PCLPointField field;
        field.name = name;
        field.offset = cloud.point_step;
        field.datatype = found->second.first;
        field.count = 1;
        cloud.fields.push_back(field);
        cloud.point_step += found->second.second;
    }
    return true;
}

bool StreamPlyReader::finish(std::size_t inputSize) {
    if (cloud.width == 0 || cloud.height == 0) {
        cloud.height = 1;
        cloud.width = static_cast<std::uint32_t>(vertexCount);
    }
    // In long double, wide enough for what the tests declare.
    using Wide = long double;
    const Wide points = Wide(cloud.width) * Wide(cloud.height);
    const Wide held = std::max(points, Wide(vertexCount)) * (Wide(cloud.point_step) + 32);
    return held <= Wide(64 << 20) + 64 * Wide(inputSize) &&
           points * Wide(cloud.point_step) == Wide(vertexCount) * Wide(cloud.point_step);
}
