#include "tools/cloudconv/preview/ScanContents.h"

#include "converters/ScanReader.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/Progress.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

namespace {

using converters::ScalarType;
using converters::ScanField;
using converters::ScanPropertyUse;
using converters::ScanReader;
using converters::ScanReport;

template <typename Number>
double numberAt(const unsigned char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return static_cast<double>(number);
}

double valueAt(const unsigned char* record, const ScanField& field) {
    const unsigned char* const bytes = record + field.offset;
    switch (field.type) {
    case ScalarType::int8:
        return numberAt<std::int8_t>(bytes);
    case ScalarType::uint8:
        return numberAt<std::uint8_t>(bytes);
    case ScalarType::int16:
        return numberAt<std::int16_t>(bytes);
    case ScalarType::uint16:
        return numberAt<std::uint16_t>(bytes);
    case ScalarType::int32:
        return numberAt<std::int32_t>(bytes);
    case ScalarType::uint32:
        return numberAt<std::uint32_t>(bytes);
    case ScalarType::int64:
        return numberAt<std::int64_t>(bytes);
    case ScalarType::uint64:
        return numberAt<std::uint64_t>(bytes);
    case ScalarType::float32:
        return numberAt<float>(bytes);
    case ScalarType::float64:
        return numberAt<double>(bytes);
    }
    return 0.0;
}

/// Where the numbers of a point are in a record.
struct PointFields {
    std::array<ScanField, 3> place;
    std::optional<ScanField> intensity;
    /// Red, green and blue: all, or none.
    std::vector<ScanField> colour;
};

/// The field of a name; nothing when there is none.
std::optional<ScanField> fieldOf(const ScanReader& reader, const std::string& name) {
    const auto& fields = reader.layout().fields;
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const ScanField& field) { return field.name == name; });
    return found == fields.end() ? std::nullopt : std::optional<ScanField>(*found);
}

std::vector<ScanField> colourFieldsOf(const ScanReader& reader) {
    using Names = std::array<const char*, 3>;
    for (const Names& names : {Names{"red", "green", "blue"}, Names{"r", "g", "b"},
                               Names{"diffuse_red", "diffuse_green", "diffuse_blue"}}) {
        std::vector<ScanField> fields;
        for (const char* const name : names) {
            if (const std::optional<ScanField> field = fieldOf(reader, name); field.has_value()) {
                fields.push_back(*field);
            }
        }
        if (fields.size() == names.size()) {
            return fields;
        }
    }
    return {};
}

PointFields fieldsOf(const ScanReader& reader) {
    PointFields fields;
    const ScanReport& report = reader.report();
    for (const converters::ScanProperty& property :
         report.elements[report.vertexElement].properties) {
        const std::optional<ScanField> field = fieldOf(reader, property.name);
        const auto axis = static_cast<std::size_t>(property.use);
        if (field.has_value() && axis < fields.place.size()) {
            fields.place.at(axis) = *field;
        } else if (field.has_value() && property.use == ScanPropertyUse::intensity) {
            fields.intensity = *field;
        }
    }
    fields.colour = colourFieldsOf(reader);
    return fields;
}

/// A part of a colour as 0 to 255: what has a point goes from 0 to 1, longer numbers use their
/// range.
std::uint32_t partAt(const unsigned char* record, const ScanField& field) {
    constexpr double most = 255.0;
    const double value = valueAt(record, field);
    const bool isShare = field.type == ScalarType::float32 || field.type == ScalarType::float64;
    const double part = isShare                            ? value * most
                        : field.type == ScalarType::uint16 ? value / 257.0
                                                           : value;
    return std::isfinite(part)
               ? static_cast<std::uint32_t>(std::lround(std::min(std::max(part, 0.0), most)))
               : 0;
}

void addPoint(PreviewScan& scan, const unsigned char* record, const PointFields& fields) {
    const auto place = [&](std::size_t axis) {
        return static_cast<float>(valueAt(record, fields.place.at(axis)));
    };
    const float intensity = fields.intensity.has_value()
                                ? static_cast<float>(valueAt(record, *fields.intensity))
                                : 0.0F;
    scan.cloud.push_back({place(0), place(1), place(2), intensity});
    if (!fields.colour.empty()) {
        std::uint32_t colour = 0;
        for (const ScanField& field : fields.colour) {
            colour = colour << 8 | partAt(record, field);
        }
        scan.colours.push_back(colour);
    }
}

class Reading {
public:
    Reading(const std::string& name, ScanReader& reader) : m_name(name), m_reader(reader) {}

    PreviewScan read() {
        constexpr std::size_t blockSize = 16384;
        check(m_reader.open());
        const PointFields fields = fieldsOf(m_reader);
        const std::size_t size = m_reader.layout().recordSize;
        std::vector<unsigned char> block(blockSize * size);
        PreviewScan scan;
        std::size_t count = 0;
        do {
            check(m_reader.read(block.data(), blockSize, count));
            for (std::size_t i = 0; i < count; ++i) {
                addPoint(scan, block.data() + i * size, fields);
            }
        } while (count > 0);
        addReport(scan);
        return scan;
    }

private:
    void check(const converters::ReadResult& result) const {
        if (!result) {
            throw FileError(m_name, result.reason);
        }
    }

    void addReport(PreviewScan& scan) const {
        const ScanReport& report = m_reader.report();
        scan.cloud.width = static_cast<std::uint32_t>(report.width);
        scan.cloud.height = static_cast<std::uint32_t>(report.height);
        scan.hasIntensity = report.hasIntensity;
        scan.shift = {report.shift.x, report.shift.y, report.shift.z};
        scan.notes = report.notes;
    }

    const std::string& m_name;
    ScanReader& m_reader;
};

} // namespace

PreviewScan previewScanOf(const std::string& name, const std::vector<unsigned char>& bytes,
                          const std::string& intensity, Progress& progress) {
    converters::ScanOptions options;
    options.intensity = intensity;
    options.automaticShift = true;
    options.progress = progress.beginParts("reading points of " + name);
    ScanReader reader(bytes.data(), bytes.size(), options);
    return Reading(name, reader).read();
}
