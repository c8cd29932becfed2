#include "tests/support/RandomScan.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

using converters::ScalarType;
using converters::ScanElement;
using converters::ScanFormat;
using converters::ScanProperty;

constexpr ScalarType allTypes[] = {ScalarType::int8,    ScalarType::uint8,   ScalarType::int16,
                                   ScalarType::uint16,  ScalarType::int32,   ScalarType::uint32,
                                   ScalarType::float32, ScalarType::float64, ScalarType::int64,
                                   ScalarType::uint64};

std::vector<std::string> namesOfType(ScalarType type) {
    switch (type) {
    case ScalarType::int8:
        return {"char", "int8"};
    case ScalarType::uint8:
        return {"uchar", "uint8"};
    case ScalarType::int16:
        return {"short", "int16"};
    case ScalarType::uint16:
        return {"ushort", "uint16"};
    case ScalarType::int32:
        return {"int", "int32"};
    case ScalarType::uint32:
        return {"uint", "uint32"};
    case ScalarType::int64:
        return {"int64"};
    case ScalarType::uint64:
        return {"uint64"};
    case ScalarType::float32:
        return {"float", "float32"};
    default:
        return {"double", "double64", "float64"};
    }
}

template <typename Value>
Value ofBits(std::uint64_t bits) {
    Value value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

template <typename Integer>
double anyInteger(Random& random) {
    using Limits = std::numeric_limits<Integer>;
    // What a double holds exactly.
    constexpr std::uint64_t most = sizeof(Integer) == 8 ? std::uint64_t{1} << 53 : 0;
    if (most != 0) {
        const auto value = static_cast<double>(random() % most);
        return Limits::is_signed && random.oneIn(2) ? -value : value;
    }
    if (random.oneIn(10)) {
        return static_cast<double>(random.oneIn(2) ? Limits::min() : Limits::max());
    }
    return static_cast<double>(static_cast<Integer>(random()));
}

double anyNumber(Random& random, ScalarType type) {
    switch (type) {
    case ScalarType::int8:
        return anyInteger<std::int8_t>(random);
    case ScalarType::uint8:
        return anyInteger<std::uint8_t>(random);
    case ScalarType::int16:
        return anyInteger<std::int16_t>(random);
    case ScalarType::uint16:
        return anyInteger<std::uint16_t>(random);
    case ScalarType::int32:
        return anyInteger<std::int32_t>(random);
    case ScalarType::uint32:
        return anyInteger<std::uint32_t>(random);
    case ScalarType::int64:
        return anyInteger<std::int64_t>(random);
    case ScalarType::uint64:
        return anyInteger<std::uint64_t>(random);
    case ScalarType::float32: {
        const auto value =
            random.oneIn(3)
                ? ofBits<float>(random())
                : static_cast<float>(static_cast<double>(random.below(2000000)) / 1000.0 - 1000);
        return std::isnan(value) ? std::nan("") : static_cast<double>(value);
    }
    default: {
        const auto value =
            random.oneIn(3) ? ofBits<double>(random())
                            : static_cast<double>(random.below(std::uint64_t{1} << 53)) / 1e9 - 1e6;
        return std::isnan(value) ? std::nan("") : value;
    }
    }
}

template <typename Number>
void append(std::string& text, double value, bool isSwapped) {
    const auto number = static_cast<Number>(value);
    std::string bytes(reinterpret_cast<const char*>(&number), sizeof number);
    if (isSwapped) {
        std::reverse(bytes.begin(), bytes.end());
    }
    text += bytes;
}

std::string spelled(Random& random, double value, ScalarType type, bool isPlain) {
    char text[64];
    if (std::isnan(value)) {
        return random.pick(std::vector<std::string>{"nan", "NaN", "-nan", "NAN"});
    }
    if (type == ScalarType::float32) {
        std::snprintf(text, sizeof text, random.oneIn(2) ? "%.9g" : "%.8e", value);
    } else if (type == ScalarType::float64) {
        std::snprintf(text, sizeof text, random.oneIn(2) ? "%.17g" : "%.16E", value);
    } else {
        std::snprintf(text, sizeof text,
                      !isPlain && random.oneIn(20) && std::abs(value) < 1e6 ? "%.1f" : "%.0f",
                      value);
    }
    return text;
}

/// Makes the file.
class Maker {
public:
    Maker(Random& random, const RandomScanRules& rules) : m_random(random), m_rules(rules) {}

    RandomScan make() {
        chooseElements();
        writeHeader();
        m_scan.body = m_scan.lastNumber = m_scan.file.size();
        for (const ScanElement& element : m_elements) {
            writeRecords(element);
        }
        return std::move(m_scan);
    }

private:
    void chooseElements();
    ScanElement anyElement(const std::string& name);
    ScanElement vertices();
    ScanProperty anyProperty(const std::string& name);
    void writeHeader();
    void endLine();
    std::string blank();
    void writeRecords(const ScanElement& element);
    void writeRecord(const ScanElement& element, std::vector<double>* numbers);
    void writeNumber(double value, ScalarType type);

    bool isAscii() const { return m_scan.format == ScanFormat::ascii; }

    Random& m_random;
    RandomScanRules m_rules;
    RandomScan m_scan;
    std::vector<ScanElement> m_elements;
    std::string m_lineEnd = "\n";
};

ScanProperty Maker::anyProperty(const std::string& name) {
    ScanProperty property{};
    property.name = name;
    do {
        property.type = m_random.pick(allTypes);
        // Characters in place of numbers, and names that are not known.
    } while (m_rules.forFromPly && (property.type >= ScalarType::int64 ||
                                    (isAscii() && property.type <= ScalarType::uint8)));
    if (!m_rules.forFromPly && m_random.oneIn(5)) {
        property.countType = m_random.pick(allTypes);
    }
    return property;
}

ScanElement Maker::anyElement(const std::string& name) {
    ScanElement element{name, m_random.below(std::uint64_t{8}), {}};
    const std::size_t count = m_random.below(std::size_t{5});
    for (std::size_t i = 0; i < count; ++i) {
        element.properties.push_back(anyProperty("p" + std::to_string(i)));
    }
    return element;
}

ScanElement Maker::vertices() {
    ScanElement element{"vertex", 1 + m_random.below(std::uint64_t{m_rules.mostVertices}), {}};
    for (const char* name : {"x", "y", "z", "intensity"}) {
        ScanProperty property{};
        property.name = name;
        property.type =
            m_rules.forFromPly || m_random.oneIn(2) ? ScalarType::float32 : m_random.pick(allTypes);
        if (!m_rules.forFromPly && element.properties.size() < 3 && m_random.oneIn(8)) {
            property.name[0] = static_cast<char>(property.name[0] - 'a' + 'A');
        }
        if (property.name != "intensity" || m_rules.forFromPly || !m_random.oneIn(4)) {
            element.properties.push_back(property);
        }
    }
    const std::size_t more = m_random.below(std::size_t{4});
    for (std::size_t i = 0; i < more; ++i) {
        element.properties.insert(
            element.properties.begin() +
                static_cast<std::ptrdiff_t>(m_random.below(element.properties.size() + 1)),
            anyProperty("s" + std::to_string(i)));
    }
    return element;
}

void Maker::chooseElements() {
    constexpr ScanFormat formats[] = {ScanFormat::ascii, ScanFormat::binaryLittleEndian,
                                      ScanFormat::binaryBigEndian};
    m_scan.format = formats[m_random.below(m_rules.forFromPly ? 2u : 3u)];
    const auto others = [&](const std::string& name) {
        for (std::size_t i = m_rules.forFromPly ? 0 : m_random.below(std::size_t{3}); i > 0; --i) {
            m_elements.push_back(anyElement(name + std::to_string(i)));
        }
    };
    others("before");
    m_elements.push_back(vertices());
    others("behind");
    if (m_random.oneIn(3)) {
        m_lineEnd = m_rules.forFromPly || m_random.oneIn(2) ? "\r\n" : "\r";
    }
}

void Maker::endLine() {
    m_scan.file += (m_random.oneIn(20) ? " " : "") + m_lineEnd;
    if (m_random.oneIn(20)) {
        m_scan.file += "comment made at random" + m_lineEnd;
    }
}

std::string Maker::blank() {
    return m_random.oneIn(10) ? m_random.pick(std::vector<std::string>{"  ", "\t", " \t "}) : " ";
}

void Maker::writeHeader() {
    std::string& file = m_scan.file;
    file = "ply" + m_lineEnd + "format" + blank() + nameOf(m_scan.format) + " 1.0";
    endLine();
    for (const ScanElement& element : m_elements) {
        file += "element" + blank() + element.name + " " + std::to_string(element.count);
        endLine();
        for (const ScanProperty& property : element.properties) {
            std::vector<std::string> names = namesOfType(property.type);
            names.resize(m_rules.forFromPly ? std::min<std::size_t>(names.size(), 2)
                                            : names.size());
            file += "property" + blank();
            if (property.countType) {
                file += "list " + m_random.pick(namesOfType(*property.countType)) + " ";
            }
            file += m_random.pick(names) + blank() + property.name;
            endLine();
        }
        if (element.name == "vertex") {
            m_scan.width = element.count;
            m_scan.height = 1;
            if (element.count % 2 == 0 && m_random.oneIn(2)) {
                m_scan.height = 2;
                m_scan.width /= 2;
                file += "obj_info num_rows 2" + m_lineEnd + "obj_info num_cols " +
                        std::to_string(m_scan.width) + m_lineEnd;
            }
        }
    }
    file += "end_header" + m_lineEnd;
}

void Maker::writeRecords(const ScanElement& element) {
    const bool areVertices = element.name == "vertex";
    for (std::uint64_t i = 0; i < element.count; ++i) {
        std::vector<double> numbers;
        writeRecord(element, &numbers);
        if (areVertices) {
            m_scan.vertices.push_back(numbers);
        }
    }
    if (areVertices) {
        for (const ScanProperty& property : element.properties) {
            if (!property.countType) {
                m_scan.properties.push_back(property);
            }
        }
    }
}

void Maker::writeRecord(const ScanElement& element, std::vector<double>* numbers) {
    for (const ScanProperty& property : element.properties) {
        if (!property.countType) {
            numbers->push_back(anyNumber(m_random, property.type));
            writeNumber(numbers->back(), property.type);
            continue;
        }
        const auto items = m_random.below(std::size_t{5});
        writeNumber(static_cast<double>(items), *property.countType);
        for (std::size_t i = 0; i < items; ++i) {
            writeNumber(anyNumber(m_random, property.type), property.type);
        }
    }
    if (isAscii() && !element.properties.empty()) {
        m_scan.file += m_lineEnd;
    }
}

void Maker::writeNumber(double value, ScalarType type) {
    std::string& file = m_scan.file;
    m_scan.lastNumber = file.size();
    if (isAscii()) {
        const std::string number = spelled(m_random, value, type, m_rules.forFromPly);
        // fromPly() has no other separators.
        file += number + (m_rules.forFromPly || !m_random.oneIn(50) ? blank() : m_lineEnd);
        return;
    }
    const bool isSwapped = m_scan.format == ScanFormat::binaryBigEndian;
    switch (type) {
    case ScalarType::int8:
        return append<std::int8_t>(file, value, isSwapped);
    case ScalarType::uint8:
        return append<std::uint8_t>(file, value, isSwapped);
    case ScalarType::int16:
        return append<std::int16_t>(file, value, isSwapped);
    case ScalarType::uint16:
        return append<std::uint16_t>(file, value, isSwapped);
    case ScalarType::int32:
        return append<std::int32_t>(file, value, isSwapped);
    case ScalarType::uint32:
        return append<std::uint32_t>(file, value, isSwapped);
    case ScalarType::int64:
        return append<std::int64_t>(file, value, isSwapped);
    case ScalarType::uint64:
        return append<std::uint64_t>(file, value, isSwapped);
    case ScalarType::float32:
        return append<float>(file, value, isSwapped);
    default:
        return append<double>(file, value, isSwapped);
    }
}

} // namespace

RandomScan randomScan(Random& random, const RandomScanRules& rules) {
    return Maker(random, rules).make();
}
