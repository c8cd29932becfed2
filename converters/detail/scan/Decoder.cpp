#include "converters/detail/scan/Decoder.h"

#include "converters/detail/scan/AutomaticShift.h"
#include "converters/detail/scan/BinaryDoubts.h"
#include "converters/detail/scan/Elements.h"
#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/Wording.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace converters::scan {
namespace {

/// Bytes between two calls of the progress callback.
constexpr std::uint64_t progressBytes = std::uint64_t{1} << 20;

/// A ten-thousandth: a tenth of a millimetre in metres.
constexpr double notableLoss = 1e-4;

bool isFloating(ScalarType type) {
    return type == ScalarType::float32 || type == ScalarType::float64;
}

bool isFinite(const cv::Point3_<double>& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

template <typename Number>
void markMissing(const unsigned char* numbers, std::size_t stride, unsigned char* isMissing,
                 std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        Number number;
        std::memcpy(&number, numbers + i * stride, sizeof number);
        // 0 but for nan and infinities.
        const Number rest = number - number;
        isMissing[i] = static_cast<unsigned char>(isMissing[i] | (rest == 0 ? 0 : 1));
    }
}

} // namespace

Decoder::Decoder(input::ByteWindow window, ScanOptions options)
    : m_window(std::move(window)), m_options(std::move(options)) {}

/// Runs a part of the work on the body. An odd line in the header may be what its faults come from.
template <typename Work>
void Decoder::guarded(Work work) {
    try {
        work();
    } catch (Fault& fault) {
        if (m_header.oddLine) {
            fault.result.reason += "; line " + std::to_string(m_header.oddLine->line) +
                                   " of the header: " + m_header.oddLine->fault;
        }
        throw;
    }
}

void Decoder::open() {
    if (m_options.shift && !isFinite(*m_options.shift)) {
        refuse("the shift is not finite");
    }
    m_header = readHeader(m_window);
    adoptHeader();
    guarded([&] {
        refuseTextAsBinary();
        if (m_report.format == ScanFormat::ascii) {
            m_window.countLinesFrom(m_header.bodyLine);
            m_text.emplace(m_window);
        } else if (m_header.endsWithPairs) {
            m_window.countLineFeeds();
        }
        for (std::size_t i = 0; i < m_report.vertexElement; ++i) {
            stepOver(m_report.elements[i]);
        }
        refuseDoubtfulPoints();
        m_source = makeSource();
        chooseShift();
    });
    layOutRecords(false);
}

void Decoder::adoptHeader() {
    m_report.elements = std::move(m_header.elements);
    m_report.comments = std::move(m_header.comments);
    m_report.objInfo = std::move(m_header.objInfo);
    if (!m_header.vertices) {
        refuse("the file has no element 'vertex'");
    }
    m_report.vertexElement = *m_header.vertices;
    const bool hasRecords = std::any_of(m_report.elements.begin(), m_report.elements.end(),
                                        [](const ScanElement& each) { return each.count != 0; });
    if (!m_header.format && hasRecords) {
        refuse("the header has no format: it does not say how the numbers are stored");
    }
    m_report.format = m_header.format.value_or(ScanFormat::binaryLittleEndian);
    m_report.points = vertices().count;
    m_pointsLeft = m_report.points;
    m_roles = assignRoles(m_report.elements[m_report.vertexElement], m_options.intensity);
    m_report.hasIntensity = m_roles.intensity.has_value();
    if (m_report.points == 0) {
        m_report.notes.emplace_back("the file declares 0 vertices");
    }
    if (m_header.oddLine) {
        m_report.notes.push_back("line " + std::to_string(m_header.oddLine->line) + ": " +
                                 m_header.oddLine->fault + "; it was passed over");
    }
    adoptRowsAndColumns();
}

void Decoder::adoptRowsAndColumns() {
    const std::uint64_t columns = m_header.columns;
    const std::uint64_t rows = m_header.rows;
    const bool areGiven = columns != 0 && rows != 0;
    const bool fit =
        areGiven && m_report.points % columns == 0 && m_report.points / columns == rows;
    m_report.width = fit ? columns : m_report.points;
    m_report.height = fit ? rows : 1;
    if (areGiven && !fit) {
        m_report.notes.push_back("the header speaks of " + grouped(columns) + " columns and " +
                                 grouped(rows) + " rows, which is not the number of points, " +
                                 grouped(m_report.points) + "; the points are one row");
    }
}

/// A body of numbers in text, read as binary, would give points of nonsense. That floats happen to
/// have no other bytes than those of such a text is out of the question.
void Decoder::refuseTextAsBinary() {
    constexpr std::size_t sample = 256;
    const bool mayBe = m_report.format != ScanFormat::ascii && m_report.points != 0 &&
                       isFloating(vertices().properties[*m_roles.x].type);
    if (!mayBe) {
        return;
    }
    m_window.need(sample);
    if (isNumberText({m_window.begin(), std::min(m_window.available(), sample)})) {
        refuse(std::string("the header says ") + nameOf(m_report.format) +
               ", but what follows is text");
    }
}

/// Looks at the first points, whose coordinates may tell that they are none.
void Decoder::refuseDoubtfulPoints() {
    const bool mayBe = !m_text && m_report.points != 0 && !hasLists(vertices()) &&
                       isFloating(vertices().properties[*m_roles.x].type);
    constexpr std::uint64_t sample = 64;
    const auto count = static_cast<std::size_t>(std::min(sample, m_report.points));
    const std::size_t size = scalarBytes(vertices());
    if (!mayBe || !m_window.need(count * size)) {
        return;
    }
    const std::string format = nameOf(m_report.format);
    if (isConvertedText({m_window.begin(), count * size})) {
        refuse("the header says " + format +
               ", but what follows are characters in UTF-8: the file was converted as if it were "
               "text");
    }
    const RecordBytes records{reinterpret_cast<const unsigned char*>(m_window.begin()), size};
    if (areOfOtherByteOrder(vertices(), records, count, isSwapped(m_report.format))) {
        refuse("the header says " + format +
               ", but the coordinates make sense in the other byte order only");
    }
}

void Decoder::stepOver(const ScanElement& element) {
    constexpr std::uint64_t recordsAtOnce = 16384;
    const auto all = [&](auto& records) {
        for (std::uint64_t left = element.count; left != 0;) {
            const std::uint64_t count = std::min(left, recordsAtOnce);
            records.stepOver(count);
            left -= count;
            tick();
        }
    };
    // Records of nothing: however many, they are not there.
    if (element.properties.empty()) {
        return;
    }
    if (m_text) {
        m_text->begin(element);
        all(*m_text);
    } else {
        BinaryRecords records(m_window, element, m_report.format);
        all(records);
    }
}

std::unique_ptr<RecordSource> Decoder::makeSource() {
    if (m_text) {
        m_text->begin(vertices());
        return std::make_unique<GatheredSource<TextRecords>>(*m_text, scalarBytes(vertices()));
    }
    if (!hasLists(vertices())) {
        return std::make_unique<FixedSource>(m_window, vertices());
    }
    m_binary.emplace(m_window, vertices(), m_report.format);
    return std::make_unique<GatheredSource<BinaryRecords>>(*m_binary, scalarBytes(vertices()));
}

void Decoder::chooseShift() {
    if (m_options.shift) {
        m_report.shift = *m_options.shift;
        return;
    }
    if (!m_options.automaticShift || m_report.points == 0) {
        return;
    }
    constexpr std::uint64_t usualPoints = 65536;
    constexpr std::size_t mostBytes = std::size_t{16} << 20;
    const std::size_t size = scalarBytes(vertices());
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(
        {m_report.points, usualPoints, std::max<std::size_t>(mostBytes / size, 1)}));
    auto replayed = std::make_unique<ReplayedSource>(std::move(m_source), size, count);

    std::vector<Column> columns;
    std::array<ScalarType, 3> types{};
    std::vector<cv::Point3_<double>> points(count);
    for (const std::size_t property : {*m_roles.x, *m_roles.y, *m_roles.z}) {
        types[columns.size()] = vertices().properties[property].type;
        columns.push_back(columnOf(property, ScalarType::float64, 8 * columns.size()));
    }
    ColumnCopier(columns, isSwapped(m_report.format))
        .copy(replayed->records(), reinterpret_cast<unsigned char*>(points.data()),
              sizeof points[0], count);
    m_report.shift = automaticShift(points, types);
    m_source = std::move(replayed);
    m_sampled = count;
}

bool Decoder::isCoordinate(std::size_t property) const {
    return property == m_roles.x || property == m_roles.y || property == m_roles.z;
}

double Decoder::shiftOf(std::size_t property) const {
    return property == m_roles.x   ? m_report.shift.x
           : property == m_roles.y ? m_report.shift.y
           : property == m_roles.z ? m_report.shift.z
                                   : 0;
}

Column Decoder::columnOf(std::size_t property, ScalarType toType, std::size_t to) const {
    return {scalarOffsets(vertices())[property],
            vertices().properties[property].type,
            to,
            toType,
            shiftOf(property),
            isCoordinate(property)};
}

void Decoder::layOutRecords(bool asFields) {
    const auto hasEightBytes = [](ScalarType type) {
        return type == ScalarType::int64 || type == ScalarType::uint64;
    };
    const std::vector<std::size_t> offsets = scalarOffsets(vertices());
    std::vector<Column> columns;
    m_layout = {};
    m_places.clear();
    for (std::size_t i = 0; i < vertices().properties.size(); ++i) {
        const ScanProperty& property = vertices().properties[i];
        if (property.use == ScanPropertyUse::dropped) {
            continue;
        }
        const bool becomesWide = (asFields && hasEightBytes(property.type)) ||
                                 (shiftOf(i) != 0 && !isFloating(property.type));
        const ScalarType type = becomesWide ? ScalarType::float64 : property.type;
        columns.push_back(
            {offsets[i], property.type, m_layout.recordSize, type, shiftOf(i), isCoordinate(i)});
        m_layout.fields.push_back({property.name, type, m_layout.recordSize});
        if (isCoordinate(i) && isFloating(type)) {
            m_places.push_back(m_layout.fields.back());
        }
        m_layout.recordSize += sizeOf(type);
    }
    m_copier.emplace(std::move(columns), isSwapped(m_report.format));
}

void Decoder::layOutPoints() {
    m_layout = layoutOfPointXYZI();
    m_places.assign(m_layout.fields.begin(), m_layout.fields.begin() + 3);
    m_needsIntensity = !m_roles.intensity;
    std::vector<Column> columns;
    const std::optional<std::size_t> properties[] = {m_roles.x, m_roles.y, m_roles.z,
                                                     m_roles.intensity};
    for (std::size_t i = 0; i < std::size(properties); ++i) {
        if (properties[i]) {
            columns.push_back(
                columnOf(*properties[i], ScalarType::float32, m_layout.fields[i].offset));
        }
    }
    m_copier.emplace(std::move(columns), isSwapped(m_report.format));
    for (ScanProperty& property : m_report.elements[m_report.vertexElement].properties) {
        property.use =
            property.use == ScanPropertyUse::kept ? ScanPropertyUse::dropped : property.use;
    }
}

void Decoder::chooseTarget(Target target) {
    if (target == Target::points) {
        layOutPoints();
    } else {
        layOutRecords(target == Target::fields);
    }
}

std::optional<std::uint64_t> Decoder::mostPoints() const {
    const std::optional<std::uint64_t> bytes = m_window.bytesLeft();
    const std::uint64_t least = leastBytes(vertices(), m_report.format);
    if (!bytes || least == 0) {
        return std::nullopt;
    }
    // The last number of a text needs no blank behind.
    return m_sampled + (*bytes + 1) / least;
}

std::size_t Decoder::read(unsigned char* to, std::size_t most) {
    std::size_t done = 0;
    guarded([&] {
        while (done < most && m_pointsLeft != 0) {
            done += readBlock(to + done * m_layout.recordSize, most - done);
            tick();
        }
        if (done == 0 && !m_hasFinished) {
            finish();
        }
    });
    return done;
}

/// Reads points that stay in the processor's first cache.
std::size_t Decoder::readBlock(unsigned char* to, std::size_t most) {
    constexpr std::size_t blockBytes = 16384;
    const std::size_t size = std::max(m_layout.recordSize, scalarBytes(vertices()));
    const std::size_t room = std::max<std::size_t>(blockBytes / size, 1);
    std::size_t count = 0;
    const RecordBytes records = m_source->next(
        static_cast<std::size_t>(std::min<std::uint64_t>({most, room, m_pointsLeft})), count);
    m_copier->copy(records, to, m_layout.recordSize, count);
    fillMissing(to, count);
    countPlaces(to, count);
    m_pointsLeft -= count;
    return count;
}

void Decoder::fillMissing(unsigned char* to, std::size_t count) const {
    if (!m_needsIntensity) {
        return;
    }
    constexpr float none = 0;
    to += m_layout.fields[3].offset;
    for (std::size_t i = 0; i < count; ++i, to += m_layout.recordSize) {
        std::memcpy(to, &none, sizeof none);
    }
}

void Decoder::countPlaces(const unsigned char* records, std::size_t count) {
    m_isMissing.assign(count, 0);
    for (const ScanField& field : m_places) {
        const unsigned char* const numbers = records + field.offset;
        if (field.type == ScalarType::float32) {
            markMissing<float>(numbers, m_layout.recordSize, m_isMissing.data(), count);
        } else {
            markMissing<double>(numbers, m_layout.recordSize, m_isMissing.data(), count);
        }
    }
    for (const unsigned char each : m_isMissing) {
        m_report.pointsWithoutPlace += each;
    }
}

void Decoder::finish() {
    for (std::size_t i = m_report.vertexElement + 1; i < m_report.elements.size(); ++i) {
        stepOver(m_report.elements[i]);
    }
    checkRest();
    noteLosses();
    m_hasFinished = true;
    if (m_options.progress && !m_options.progress(1)) {
        refuse("stopped");
    }
}

void Decoder::checkRest() {
    m_report.bytesBehind =
        m_text ? m_text->takeRest() : m_window.skip(std::numeric_limits<std::uint64_t>::max());
    if (m_report.bytesBehind == 0) {
        return;
    }
    const bool isOne = m_report.bytesBehind == 1;
    const std::string size = grouped(m_report.bytesBehind) + (m_text ? " character" : " byte") +
                             (isOne ? "" : "s") + " behind the last element";
    if (m_header.oddLine) {
        refuse((isOne ? "there is " : "there are ") + size);
    }
    refuseSuspiciousRest(size);
    m_report.notes.push_back(size + (isOne ? " was left out" : " were left out"));
}

/// Bytes behind the last element are harmless, unless they tell that those before are not what
/// they were taken for.
void Decoder::refuseSuspiciousRest(const std::string& size) const {
    if (m_text) {
        return;
    }
    if (m_window.lineFeedsBehindReturns() == m_report.bytesBehind) {
        refuse("the body has as many bytes too many as line feeds, each of them behind a carriage "
               "return: the file was copied as if it were text");
    }
    // By chance, a few bytes are hardly ever as many for each vertex.
    constexpr std::uint64_t least = 100;
    const std::uint64_t each = m_report.points < least ? 0 : m_report.bytesBehind / m_report.points;
    if (each != 0 && each < scalarBytes(vertices()) &&
        each * m_report.points == m_report.bytesBehind) {
        refuse("there are " + size + ", " + grouped(each) +
               " for each vertex: the header lacks a property, or names a smaller type");
    }
}

void Decoder::noteLosses() {
    m_report.largestLoss = m_copier->largestLoss();
    if (std::isinf(m_report.largestLoss)) {
        m_report.notes.emplace_back(
            "coordinates beyond the range of 32-bit floats have become infinite");
    } else if (m_report.largestLoss > notableLoss) {
        m_report.notes.push_back("coordinates differ by up to " + shortly(m_report.largestLoss) +
                                 " from the file's for having become 32-bit floats; a shift would "
                                 "keep them");
    }
}

void Decoder::tick() {
    if (m_text) {
        m_text->settle();
    }
    if (m_options.progress && m_window.position() - m_told >= progressBytes) {
        m_told = m_window.position();
        if (!m_options.progress(m_window.done())) {
            refuse("stopped");
        }
    }
}

} // namespace converters::scan
