#include "converters/detail/scan/PointFormats.h"

#include "converters/detail/scan/Columns.h"
#include "converters/detail/scan/NumberPrinter.h"
#include "dxfeditor/text/PointDrawing.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace converters::scan {
namespace {

/// Appends a line of a point for each record, numbers separated by `separator`.
class Lines {
public:
    Lines(const ScanLayout& layout, const ScanWriteOptions& options, char separator)
        : m_layout(layout), m_printer(options.digits), m_separator(separator) {}

    void add(const unsigned char* records, std::size_t count, std::string& bytes) const {
        const std::size_t longest = m_layout.fields.size() * (longestNumber + 1) + 1;
        for (std::size_t i = 0; i < count; ++i, records += m_layout.recordSize) {
            const std::size_t begin = bytes.size();
            bytes.resize(begin + longest);
            char* out = &bytes[begin];
            for (const ScanField& field : m_layout.fields) {
                out = m_printer.print(records + field.offset, field.type, out);
                *out++ = m_separator;
            }
            // In the place of the last separator.
            out -= m_layout.fields.empty() ? 0 : 1;
            *out++ = '\n';
            bytes.resize(static_cast<std::size_t>(out - bytes.data()));
        }
    }

private:
    const ScanLayout& m_layout;
    NumberPrinter m_printer;
    char m_separator;
};

/// A text for a line of its own, or a word in one.
std::string cleaned(std::string_view text, bool isWord) {
    std::string result(text);
    for (char& c : result) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isControl = byte < 0x20 || byte == 0x7F;
        c = isWord ? (isControl || byte == ' ' ? '_' : c) : (isControl ? ' ' : c);
    }
    return isWord && result.empty() ? "_" : result;
}

class Ply : public PointFormat {
public:
    Ply(const ScanLayout& layout, const ScanWriteOptions& options, bool isAscii)
        : m_layout(layout), m_options(options), m_isAscii(isAscii) {}

    void begin(std::uint64_t count, std::string& bytes) override {
        bytes += "ply\nformat ";
        bytes += nameOf(m_isAscii ? ScanFormat::ascii : ScanFormat::binaryLittleEndian);
        bytes += " 1.0\n";
        for (const std::string& comment : m_options.comments) {
            bytes += "comment " + cleaned(comment, false) + '\n';
        }
        if (m_options.width != 0 || m_options.height != 0) {
            bytes += "obj_info num_cols " + std::to_string(m_options.width) +
                     "\nobj_info num_rows " + std::to_string(m_options.height) + '\n';
        }
        bytes += "element vertex " + std::to_string(count) + '\n';
        for (const ScanField& field : m_layout.fields) {
            bytes += std::string("property ") + nameOf(field.type) + ' ' +
                     cleaned(field.name, true) + '\n';
        }
        bytes += "end_header\n";
    }

protected:
    const ScanLayout& m_layout;
    const ScanWriteOptions& m_options;

private:
    bool m_isAscii;
};

class AsciiPly : public Ply {
public:
    AsciiPly(const ScanLayout& layout, const ScanWriteOptions& options)
        : Ply(layout, options, true), m_lines(layout, options, ' ') {}

    void add(const unsigned char* records, std::size_t count, std::string& bytes) override {
        m_lines.add(records, count, bytes);
    }

private:
    Lines m_lines;
};

class BinaryPly : public Ply {
public:
    BinaryPly(const ScanLayout& layout, const ScanWriteOptions& options)
        : Ply(layout, options, false),
          m_copier(columnsOf(layout), __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__) {
        for (const ScanField& field : layout.fields) {
            m_size += sizeOf(field.type);
        }
    }

    void add(const unsigned char* records, std::size_t count, std::string& bytes) override {
        const std::size_t begin = bytes.size();
        bytes.resize(begin + count * m_size);
        m_copier.copy({records, m_layout.recordSize},
                      reinterpret_cast<unsigned char*>(&bytes[begin]), m_size, count);
    }

private:
    static std::vector<Column> columnsOf(const ScanLayout& layout) {
        std::vector<Column> columns;
        std::size_t offset = 0;
        for (const ScanField& field : layout.fields) {
            columns.push_back({field.offset, field.type, offset, field.type});
            offset += sizeOf(field.type);
        }
        return columns;
    }

    ColumnCopier m_copier;
    std::size_t m_size = 0;
};

class Csv : public PointFormat {
public:
    Csv(const ScanLayout& layout, const ScanWriteOptions& options)
        : m_layout(layout), m_lines(layout, options, ',') {}

    void begin(std::uint64_t, std::string& bytes) override {
        for (std::size_t i = 0; i < m_layout.fields.size(); ++i) {
            bytes += (i == 0 ? "" : ",") + quotedIfNeeded(m_layout.fields[i].name);
        }
        bytes += '\n';
    }

    void add(const unsigned char* records, std::size_t count, std::string& bytes) override {
        m_lines.add(records, count, bytes);
    }

private:
    static std::string quotedIfNeeded(const std::string& name) {
        if (name.find_first_of(",\"\r\n") == std::string::npos) {
            return name;
        }
        std::string result = "\"";
        for (const char c : name) {
            result.append(c == '"' ? 2 : 1, c);
        }
        return result + '"';
    }

    const ScanLayout& m_layout;
    Lines m_lines;
};

class Xyz : public PointFormat {
public:
    Xyz(const ScanLayout& layout, const ScanWriteOptions& options)
        : m_lines(layout, options, ' ') {}

    void begin(std::uint64_t, std::string&) override {}

    void add(const unsigned char* records, std::size_t count, std::string& bytes) override {
        m_lines.add(records, count, bytes);
    }

private:
    Lines m_lines;
};

class Drawing : public PointFormat {
public:
    explicit Drawing(const ScanLayout& layout) : m_recordSize(layout.recordSize) {
        constexpr std::string_view names[] = {"x", "y", "z", "X", "Y", "Z"};
        for (const ScanField& field : layout.fields) {
            const auto* found = std::find(std::begin(names), std::end(names), field.name);
            const auto index = static_cast<std::size_t>(found - std::begin(names));
            // Small letters go before capital ones.
            if (index < 3 || (index < 6 && !m_axes[index - 3])) {
                m_axes[index % 3] = field;
            }
        }
    }

    bool isPossible() const override { return m_axes[0] && m_axes[1] && m_axes[2]; }

    void begin(std::uint64_t, std::string& bytes) override { bytes += m_drawing.beginning(); }

    void add(const unsigned char* records, std::size_t count, std::string& bytes) override {
        const auto axis = [&](std::size_t i, const unsigned char* record) {
            return numberAt(record + m_axes[i]->offset, m_axes[i]->type);
        };
        for (std::size_t i = 0; i < count; ++i, records += m_recordSize) {
            m_drawing.append({axis(0, records), axis(1, records), axis(2, records)}, bytes);
        }
    }

    void end(std::string& bytes) override { bytes += m_drawing.end(); }

private:
    std::size_t m_recordSize;
    std::array<std::optional<ScanField>, 3> m_axes;
    dxfeditor::PointDrawing m_drawing;
};

} // namespace

std::unique_ptr<PointFormat> makePointFormat(ScanOutput output, const ScanLayout& layout,
                                             const ScanWriteOptions& options) {
    switch (output) {
    case ScanOutput::plyBinary:
        return std::make_unique<BinaryPly>(layout, options);
    case ScanOutput::plyAscii:
        return std::make_unique<AsciiPly>(layout, options);
    case ScanOutput::csv:
        return std::make_unique<Csv>(layout, options);
    case ScanOutput::xyz:
        return std::make_unique<Xyz>(layout, options);
    case ScanOutput::dxf:
        break;
    }
    return std::make_unique<Drawing>(layout);
}

} // namespace converters::scan
