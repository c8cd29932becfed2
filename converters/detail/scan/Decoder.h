#pragma once

#include "converters/Scan.h"
#include "converters/ScanLayout.h"
#include "converters/detail/input/ByteWindow.h"
#include "converters/detail/scan/Columns.h"
#include "converters/detail/scan/Header.h"
#include "converters/detail/scan/RecordSource.h"
#include "converters/detail/scan/Roles.h"
#include "converters/detail/scan/TextRecords.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace converters::scan {

/// What points are read into.
enum class Target {
    /// The scalar properties of the vertices.
    records,
    /// The same, in types that a pcl::PCLPointField can have.
    fields,
    /// pcl::PointXYZI.
    points
};

/// Reads a scan from a window in blocks. Faults are thrown.
class Decoder {
public:
    Decoder(input::ByteWindow window, ScanOptions options);
    /// Its parts refer to each other.
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    /// Takes the header, the elements before the vertices, and the first points when the shift is
    /// to follow from them.
    void open();

    /// Chooses what read() fills; to be called once, behind open().
    void chooseTarget(Target target);

    /// Reads the next points.
    /// @param to    room for `most` records of the layout
    /// @return how many; 0 when all have been read and what is behind them has been checked
    std::size_t read(unsigned char* to, std::size_t most);

    /// Most points that there can be in what is left of the file, if its size is known.
    std::optional<std::uint64_t> mostPoints() const;

    /// That of the records, or of the chosen target.
    const ScanLayout& layout() const { return m_layout; }
    const ScanReport& report() const { return m_report; }
    ScanReport takeReport() { return std::move(m_report); }

private:
    const ScanElement& vertices() const { return m_report.elements[m_report.vertexElement]; }
    void adoptHeader();
    void adoptRowsAndColumns();
    void refuseTextAsBinary();
    void refuseDoubtfulPoints();
    void refuseSuspiciousRest(const std::string& size) const;
    void stepOver(const ScanElement& element);
    std::unique_ptr<RecordSource> makeSource();
    void chooseShift();
    Column columnOf(std::size_t property, ScalarType toType, std::size_t to) const;
    double shiftOf(std::size_t property) const;
    bool isCoordinate(std::size_t property) const;
    void layOutRecords(bool asFields);
    void layOutPoints();
    std::size_t readBlock(unsigned char* to, std::size_t most);
    void fillMissing(unsigned char* to, std::size_t count) const;
    void countPlaces(const unsigned char* records, std::size_t count);
    void finish();
    void checkRest();
    void noteLosses();
    void tick();
    template <typename Work>
    void guarded(Work work);

    input::ByteWindow m_window;
    ScanOptions m_options;
    Header m_header;
    ScanReport m_report;
    Roles m_roles;
    std::optional<TextRecords> m_text;
    std::optional<BinaryRecords> m_binary;
    std::unique_ptr<RecordSource> m_source;
    ScanLayout m_layout;
    std::optional<ColumnCopier> m_copier;
    /// Coordinates of floating type, in the layout.
    std::vector<ScanField> m_places;
    std::vector<unsigned char> m_isMissing;
    bool m_needsIntensity = false;
    /// Points that are taken already, for the shift to follow from them.
    std::uint64_t m_sampled = 0;
    std::uint64_t m_pointsLeft = 0;
    std::uint64_t m_told = 0;
    bool m_hasFinished = false;
};

} // namespace converters::scan
