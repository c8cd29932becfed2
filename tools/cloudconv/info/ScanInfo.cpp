#include "tools/cloudconv/info/ScanInfo.h"

#include "converters/ScanReader.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/PointOutput.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/info/CoordinateRanges.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using converters::ReadResult;
using converters::ScalarType;
using converters::ScanElement;
using converters::ScanField;
using converters::ScanProperty;
using converters::ScanPropertyUse;
using converters::ScanReader;
using converters::ScanReport;
using Json = nlohmann::ordered_json;

/// The number of which a float is the nearest one, as people write it: 0.1, not 0.100000001.
double shortest(float value) {
    constexpr std::size_t longest = 64;
    std::array<char, longest> text = {};
    std::to_chars(text.data(), text.data() + text.size() - 1, value);
    return std::strtod(text.data(), nullptr);
}

/// A field, and the range of its values.
struct MeasuredField {
    ScanField field;
    Range range;

    Json json() const {
        if (range.isEmpty() || field.type != ScalarType::float32) {
            return range.json();
        }
        return {shortest(static_cast<float>(range.least())),
                shortest(static_cast<float>(range.most()))};
    }
};

const char* nameOf(ScanPropertyUse use) {
    switch (use) {
    case ScanPropertyUse::x:
        return "x";
    case ScanPropertyUse::y:
        return "y";
    case ScanPropertyUse::z:
        return "z";
    case ScanPropertyUse::intensity:
        return "intensity";
    case ScanPropertyUse::kept:
        return "kept";
    case ScanPropertyUse::dropped:
        break;
    }
    return "dropped";
}

const char* fateOf(const ScanProperty& property) {
    switch (property.use) {
    case ScanPropertyUse::kept:
        return "kept";
    case ScanPropertyUse::dropped:
        return property.countType.has_value() ? "stepped over: a list" : "stepped over";
    case ScanPropertyUse::x:
    case ScanPropertyUse::y:
    case ScanPropertyUse::z:
    case ScanPropertyUse::intensity:
        break;
    }
    return "read";
}

std::string typeOf(const ScanProperty& property) {
    const std::string type = nameOf(property.type);
    return property.countType.has_value()
               ? std::string("list ") + nameOf(*property.countType) + ' ' + type
               : type;
}

Json elementsOf(const ScanReport& report) {
    Json elements = Json::array();
    for (const ScanElement& element : report.elements) {
        Json fields = Json::array();
        for (const ScanProperty& property : element.properties) {
            fields.push_back({{"name", property.name},
                              {"type", typeOf(property)},
                              {"fate", fateOf(property)},
                              {"use", nameOf(property.use)}});
        }
        elements.push_back(
            {{"name", element.name}, {"count", element.count}, {"fields", std::move(fields)}});
    }
    return elements;
}

class Description {
public:
    explicit Description(const InfoOptions& options)
        : m_name(inputName(options.input)), m_input(options.input), m_progress(options.quiet),
          m_reader(source(), readOptions(), m_input.expectedSize()) {}

    Json json() {
        ReadResult result = m_reader.open();
        if (result) {
            chooseFields();
            result = measure();
        }
        if (!result && m_start != "ply") {
            throw FileError(m_name, result.reason);
        }
        const ScanReport& report = m_reader.report();
        const bool knowsFormat = result || !report.elements.empty();
        Json description = {{"file", m_name},
                            {"format", "PLY"},
                            {"bytes", std::max<std::uint64_t>(m_bytes, m_input.expectedSize())},
                            {"encoding", knowsFormat ? Json(nameOf(report.format)) : Json()},
                            {"readable", static_cast<bool>(result)}};
        if (result) {
            describePoints(report, description);
        } else {
            description["reason"] = result.reason;
        }
        description["notes"] = report.notes;
        description["elements"] = elementsOf(report);
        return description;
    }

private:
    converters::ByteSource source() {
        return [this](void* bytes, std::size_t room) {
            const std::size_t count = m_input.readSome(bytes, room);
            constexpr std::size_t start = 3;
            m_start.append(static_cast<const char*>(bytes),
                           std::min(count, start - m_start.size()));
            m_bytes += count;
            return count;
        };
    }

    converters::ScanOptions readOptions() {
        constexpr double parts = 1000.0;
        m_progress.begin("describing " + m_name,
                         m_input.expectedSize() == 0 ? 0 : static_cast<std::size_t>(parts));
        converters::ScanOptions options;
        options.progress = [this](double done) {
            m_progress.reached(static_cast<std::size_t>(done * parts));
            return true;
        };
        return options;
    }

    void chooseFields() {
        const auto coordinates = coordinatesOf(m_reader.layout());
        for (std::size_t axis = 0; axis < coordinates.size(); ++axis) {
            m_fields[axis].field = coordinates[axis];
        }
        const ScanReport& report = m_reader.report();
        for (const ScanProperty& property : report.elements[report.vertexElement].properties) {
            if (property.use == ScanPropertyUse::intensity) {
                for (const ScanField& field : m_reader.layout().fields) {
                    m_fields.back().field =
                        field.name == property.name ? field : m_fields.back().field;
                }
            }
        }
    }

    ReadResult measure() {
        constexpr std::size_t blockSize = 16384;
        const std::size_t recordSize = m_reader.layout().recordSize;
        std::vector<unsigned char> records(blockSize * recordSize);
        const std::size_t measured = m_reader.report().hasIntensity ? 4 : 3;
        std::size_t count = 0;
        ReadResult result = m_reader.read(records.data(), blockSize, count);
        while (result && count > 0) {
            for (std::size_t field = 0; field < measured; ++field) {
                measure(m_fields[field], records.data(), count, recordSize);
            }
            result = m_reader.read(records.data(), blockSize, count);
        }
        return result;
    }

    static void measure(MeasuredField& measured, const unsigned char* records, std::size_t count,
                        std::size_t recordSize) {
        for (std::size_t i = 0; i < count; ++i) {
            measured.range.add(valueOf(records + i * recordSize, measured.field));
        }
    }

    void describePoints(const ScanReport& report, Json& description) const {
        description["points"] = report.points;
        description["width"] = report.width;
        description["height"] = report.height;
        description["organised"] = report.height > 1;
        description["points_without_place"] = report.pointsWithoutPlace;
        description["share_without_place"] = report.points == 0
                                                 ? 0.0
                                                 : static_cast<double>(report.pointsWithoutPlace) /
                                                       static_cast<double>(report.points);
        description["bounds"] = {
            {"x", m_fields[0].json()}, {"y", m_fields[1].json()}, {"z", m_fields[2].json()}};
        description["intensity"] = m_fields[3].json();
    }

    std::string m_name;
    InputFile m_input;
    Progress m_progress;
    std::string m_start;
    std::uint64_t m_bytes = 0;
    ScanReader m_reader;
    /// x, y, z and the intensity.
    std::array<MeasuredField, 4> m_fields;
};

} // namespace

nlohmann::ordered_json describeScan(const InfoOptions& options) {
    return Description(options).json();
}
