#include "converters/detail/drawing/PathDecoder.h"

#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/PathSettings.h"
#include "converters/detail/drawing/Reordering.h"
#include "converters/detail/drawing/dxf/BlockGraph.h"
#include "converters/detail/drawing/dxf/DrawingParser.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/dxf/LayerTable.h"
#include "converters/detail/drawing/dxf/LeftOutTable.h"
#include "converters/detail/drawing/dxf/Text.h"
#include "converters/detail/drawing/geometry/Vector.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace converters::drawing {

namespace {

/// Where the stages of the work end, of 1; by what they take for drawings of plain entities.
constexpr double endOfParsing = 0.6;
constexpr double endOfExpansion = 0.65;
constexpr double endOfJoining = 0.75;
/// Of reading, where contours are put into another order than the drawing's.
constexpr double endOfReading = 0.25;

Progress progressOfReading(const PathOptions& options) {
    return Progress(options.progress).part(0, options.order == PathOrder::drawn ? 1 : endOfReading);
}

const PathOptions& checked(const PathOptions& options) {
    checkOptions(options);
    return options;
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

std::vector<LeftOut> listOf(const LeftOutTable& table, const Drawing& drawing,
                            const LayerTable& layers, const TextDecoder& decoder) {
    std::vector<LeftOut> list;
    for (const LeftOutTable::Entry& entry : table.entries()) {
        list.push_back({upperCase(decoder.decoded(drawing.kindNames.names()[entry.kind])),
                        layers[entry.layer].name, entry.number, entry.reason});
    }
    return list;
}

/// Says that blocks of one name are not all drawn.
void addNotes(const BlockGraph& graph, std::vector<std::string>& notes) {
    const std::uint64_t blocks = graph.shadowedBlocks();
    if (blocks == 1) {
        notes.emplace_back("1 block has the name of an earlier one; the earlier one is drawn");
    } else if (blocks > 1) {
        notes.push_back(std::to_string(blocks) +
                        " blocks have names of earlier ones; the earlier ones are drawn");
    }
}

} // namespace

/// What contours are written from.
struct PathDecoder::Joined {
    Drawing drawing;
    PathSettings settings;
    TextDecoder decoder{drawing.header};
    LayerTable layers;
    Expansion expansion;
    std::vector<ChainLink> links;
    std::optional<PathWriter> writer;

    Joined(Drawing&& parsed, const PathOptions& options);

    std::vector<LeftOut> join(const PathOptions& options, const Progress& progress);
};

PathDecoder::Joined::Joined(Drawing&& parsed, const PathOptions& options)
    : drawing(std::move(parsed)), settings(settingsFor(drawing, options, drawing.notes)),
      layers(drawing, decoder, options) {}

/// @return what is left out
std::vector<LeftOut> PathDecoder::Joined::join(const PathOptions& options,
                                               const Progress& progress) {
    LeftOutTable leftOut;
    const BlockGraph graph(drawing, decoder);
    addNotes(graph, drawing.notes);
    expansion = expand(drawing, graph, layers, settings.map, options, leftOut,
                       progress.part(endOfParsing, endOfExpansion));
    links = joinToChains(drawing, expansion, layers, settings.joinDistance, leftOut,
                         progress.part(endOfExpansion, endOfJoining));
    writer.emplace(JoinedDrawing{drawing, expansion, layers, links}, settings);
    return listOf(leftOut, drawing, layers, decoder);
}

PathDecoder::PathDecoder(input::ByteWindow file, const PathOptions& options)
    : m_options(checked(options)), m_progress(progressOfReading(options)),
      m_joined(std::make_unique<Joined>(
          parseDrawing(std::move(file), m_progress.part(0, endOfParsing)), options)) {
    m_report.leftOut = m_joined->join(options, m_progress);
    m_report.layers = m_joined->layers.takeLayers();
    m_report.notes = std::move(m_joined->drawing.notes);
    m_report.drawingUnit = m_joined->settings.drawingUnit;
    m_report.unit = m_joined->settings.unit;
}

PathDecoder::~PathDecoder() = default;

void PathDecoder::write(PathContours& contours, std::size_t enough) {
    const bool isReordered = m_options.order != PathOrder::drawn;
    const Progress whole(m_options.progress);
    PathWriter& writer = *m_joined->writer;
    writer.write(contours, isReordered ? PathWriter::all : enough,
                 m_progress.part(endOfJoining, 1));
    if (isReordered) {
        reorder(contours, m_options.order, whole.part(endOfReading, 1));
    }
    if (writer.isAtEnd()) {
        whole.report(1);
    }
    addLengths(contours);
    m_report.lowest = writer.bounds().lowest;
    m_report.highest = writer.bounds().highest;
}

/// Adds up the lengths of the contours and of the ways between them.
void PathDecoder::addLengths(const PathContours& contours) {
    for (const PathContour& contour : contours.contours) {
        m_report.length += contour.length;
        if (m_end) {
            m_report.wayLength += distance(*m_end, contours.points[contour.firstPoint]);
        }
        m_end = contours.points[contour.endPoint - 1];
    }
}

std::uint64_t PathDecoder::countPoints() const {
    return m_joined->writer->countPoints(m_progress.part(endOfJoining, 1));
}

} // namespace converters::drawing
