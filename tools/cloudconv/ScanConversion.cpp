#include "tools/cloudconv/ScanConversion.h"

#include "converters/ScanReader.h"
#include "converters/ScanWriter.h"
#include "tools/cloudconv/FileError.h"
#include "tools/cloudconv/InputFile.h"
#include "tools/cloudconv/Notes.h"
#include "tools/cloudconv/OutputFile.h"
#include "tools/cloudconv/PointOutput.h"
#include "tools/cloudconv/Progress.h"
#include "tools/cloudconv/Wording.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

using converters::ScalarType;
using converters::ScanField;
using converters::ScanLayout;
using converters::ScanProperty;
using converters::ScanPropertyUse;
using converters::ScanReader;
using converters::ScanReport;
using converters::ScanWriter;

/// Points read at once: some megabytes of any layout.
constexpr std::size_t blockSize = 32768;

using Records = std::vector<unsigned char>;

/// A scan on its way from one file to another.
class Conversion {
public:
    Conversion(const ConvertOptions& options, FileFormat to)
        : m_options(options), m_to(to), m_name(inputName(options.input)), m_input(options.input),
          m_progress(options.quiet), m_notes(m_name), m_reader(source(), readOptions(), size()) {
        checkReplacement(m_input, options.output, options.force);
        check(m_reader.open());
    }

    void run() {
        chooseLayout();
        OutputFile file(m_options.output);
        ScanWriter writer(sinkTo(file), m_layout, pointOutputOf(m_to, m_options.ascii),
                          writeOptions());
        writer.begin(m_reader.report().points);
        for (std::size_t count = readBlock(); count > 0; count = readBlock()) {
            static_cast<void>(writer.write(m_block.data(), prepare(count)));
        }
        static_cast<void>(writer.finish());
        file.commit();
        m_progress.end();
        if (!m_options.quiet) {
            tell();
            m_notes.print();
        }
    }

private:
    converters::ByteSource source() {
        return [this](void* bytes, std::size_t room) { return m_input.readSome(bytes, room); };
    }

    std::size_t size() const { return m_input.expectedSize(); }

    converters::ScanOptions readOptions() {
        constexpr double parts = 1000.0;
        // The size of a pipe is not known, and then no part of it is.
        m_progress.begin("converting " + m_name, size() == 0 ? 0 : static_cast<std::size_t>(parts));
        converters::ScanOptions options = m_options.scan;
        options.progress = [this](double done) {
            m_progress.reached(static_cast<std::size_t>(done * parts));
            return true;
        };
        return options;
    }

    void check(const converters::ReadResult& result) const {
        if (!result) {
            throw FileError(m_name, result.reason);
        }
    }

    /// Whether the points are read as x, y, z and intensity alone.
    bool isXyzi() const { return m_options.xyzi; }

    void chooseLayout() {
        m_layout = isXyzi() ? converters::layoutOfPointXYZI() : m_reader.layout();
        m_readSize = isXyzi() ? sizeof(pcl::PointXYZI) : m_layout.recordSize;
        if (m_options.intensity.has_value() || !m_options.scan.intensity.empty()) {
            addIntensity();
        }
        m_block.resize(blockSize * std::max(m_readSize, m_layout.recordSize));
    }

    /// A field for an intensity that is not simply that of the file.
    void addIntensity() {
        const auto named = [](const ScanField& field) { return field.name == "intensity"; };
        auto& fields = m_layout.fields;
        if (!isXyzi() && !m_options.scan.intensity.empty()) {
            const auto chosen =
                std::find_if(fields.begin(), fields.end(), [&](const ScanField& field) {
                    return field.name == m_options.scan.intensity;
                });
            if (chosen != fields.end()) {
                m_chosen = *chosen;
            }
        }
        fields.erase(std::remove_if(fields.begin(), fields.end(), named), fields.end());
        if (isXyzi()) {
            fields.push_back(converters::layoutOfPointXYZI().fields.back());
        } else {
            fields.push_back({"intensity", ScalarType::float32, m_layout.recordSize});
            m_layout.recordSize += sizeof(float);
        }
    }

    converters::ScanWriteOptions writeOptions() const {
        const ScanReport& report = m_reader.report();
        converters::ScanWriteOptions options;
        options.digits = m_options.digits;
        options.width = report.width;
        options.height = report.height;
        options.comments = report.comments;
        return options;
    }

    std::size_t readBlock() {
        std::size_t count = 0;
        if (isXyzi()) {
            m_points.resize(blockSize);
            check(m_reader.read(m_points.data(), blockSize, count));
            std::memcpy(m_block.data(), m_points.data(), count * sizeof(pcl::PointXYZI));
        } else {
            check(m_reader.read(m_block.data(), blockSize, count));
        }
        return count;
    }

    /// Makes the records that are written of those that were read; of a drawing those that have a
    /// place.
    ///
    /// @return how many there are
    std::size_t prepare(std::size_t count) {
        if (m_layout.recordSize != m_readSize) {
            widen(count);
        }
        if (m_options.intensity.has_value() || m_chosen.has_value()) {
            for (std::size_t i = 0; i < count; ++i) {
                setIntensity(m_block.data() + i * m_layout.recordSize);
            }
        }
        return m_to == FileFormat::Dxf ? dropPlaceless(count) : count;
    }

    void widen(std::size_t count) {
        for (std::size_t i = count; i-- > 0;) {
            std::memmove(m_block.data() + i * m_layout.recordSize, m_block.data() + i * m_readSize,
                         m_readSize);
        }
    }

    void setIntensity(unsigned char* record) const {
        const float value = m_options.intensity.has_value()
                                ? *m_options.intensity
                                : static_cast<float>(valueOf(record, *m_chosen));
        std::memcpy(record + m_layout.fields.back().offset, &value, sizeof value);
    }

    std::size_t dropPlaceless(std::size_t count) {
        const auto coordinates = coordinatesOf(m_layout);
        std::size_t kept = 0;
        for (std::size_t i = 0; i < count; ++i) {
            unsigned char* const record = m_block.data() + i * m_layout.recordSize;
            if (std::all_of(coordinates.begin(), coordinates.end(), [&](const ScanField& field) {
                    return std::isfinite(valueOf(record, field));
                })) {
                std::memmove(m_block.data() + kept++ * m_layout.recordSize, record,
                             m_layout.recordSize);
            }
        }
        m_written += kept;
        return kept;
    }

    /// Says what the output does not show.
    void tell() {
        const ScanReport& report = m_reader.report();
        if (report.points == 0) {
            m_notes.add("the file declares no points, nor does " + outputName(m_options.output));
        }
        tellWhatIsDropped(report);
        if (m_to == FileFormat::Dxf && m_written < report.points) {
            m_notes.add(::leftOutText(static_cast<std::size_t>(report.points - m_written)) +
                        " (nan or infinite)");
        }
        for (const std::string& note : report.notes) {
            m_notes.add(note + optionFor(note));
        }
    }

    /// The option that helps against what a note of the reader tells.
    static std::string optionFor(const std::string& note) {
        constexpr char ofShift[] = "a shift would keep them";
        return note.find(ofShift) == std::string::npos ? "" : " (--shift auto)";
    }

    void tellWhatIsDropped(const ScanReport& report) {
        std::string names;
        std::string elements;
        for (std::size_t i = 0; i < report.elements.size(); ++i) {
            const converters::ScanElement& element = report.elements[i];
            if (i != report.vertexElement) {
                elements +=
                    (elements.empty() ? "" : ", ") +
                    counted(static_cast<std::size_t>(element.count), element.name, element.name);
                continue;
            }
            for (const ScanProperty& property : element.properties) {
                if (isDropped(property)) {
                    names += (names.empty() ? "" : ", ") + property.name;
                }
            }
        }
        if (!names.empty() && report.points > 0) {
            m_notes.add("dropped properties: " + names);
        }
        if (!elements.empty()) {
            m_notes.add("dropped elements: " + elements);
        }
    }

    bool isDropped(const ScanProperty& property) const {
        if (property.use == ScanPropertyUse::x || property.use == ScanPropertyUse::y ||
            property.use == ScanPropertyUse::z) {
            return false;
        }
        return property.countType.has_value() || property.use == ScanPropertyUse::dropped ||
               m_to == FileFormat::Dxf || (isXyzi() && property.use != ScanPropertyUse::intensity);
    }

    const ConvertOptions& m_options;
    FileFormat m_to;
    std::string m_name;
    InputFile m_input;
    Progress m_progress;
    Notes m_notes;
    ScanReader m_reader;
    ScanLayout m_layout;
    std::size_t m_readSize = 0;
    /// The field that becomes the intensity.
    std::optional<ScanField> m_chosen;
    Records m_block;
    std::vector<pcl::PointXYZI, Eigen::aligned_allocator<pcl::PointXYZI>> m_points;
    std::uint64_t m_written = 0;
};

} // namespace

void convertScan(const ConvertOptions& options, FileFormat to) {
    Conversion(options, to).run();
}
