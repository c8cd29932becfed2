#include "converters/DrawingPath.h"

#include "converters/detail/drawing/Chains.h"
#include "converters/detail/drawing/PathSettings.h"
#include "converters/detail/drawing/PathWriter.h"
#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/Refusal.h"
#include "converters/detail/drawing/Reordering.h"
#include "converters/detail/drawing/dxf/BlockGraph.h"
#include "converters/detail/drawing/dxf/DrawingParser.h"
#include "converters/detail/drawing/dxf/Expansion.h"
#include "converters/detail/drawing/dxf/LayerTable.h"
#include "converters/detail/drawing/dxf/LeftOutTable.h"
#include "converters/detail/drawing/dxf/Text.h"
#include "converters/detail/drawing/geometry/Vector.h"
#include "converters/detail/input/FileSource.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace converters {

namespace {

using namespace drawing;
using input::ByteWindow;

/// Where the stages of the work end, of 1; by what they take for drawings of plain entities.
constexpr double endOfParsing = 0.6;
constexpr double endOfExpansion = 0.65;
constexpr double endOfJoining = 0.75;
/// Of reading, where contours are put into another order than the drawing's.
constexpr double endOfReading = 0.25;

/// What is not read yet, and what is read already, takes no memory.
constexpr std::size_t windowCapacity = std::size_t{1} << 15;

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

/// Adds up the lengths of the contours and of the ways between them.
void addLengths(DrawingPath& path) {
    const PathContour* before = nullptr;
    for (const PathContour& contour : path.contours) {
        path.length += contour.length;
        if (before != nullptr) {
            path.wayLength +=
                distance(path.points[before->endPoint - 1], path.points[contour.firstPoint]);
        }
        before = &contour;
    }
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

DrawingPath readPath(ByteWindow file, const PathOptions& options) {
    checkOptions(options);
    const Progress whole(options.progress);
    const Progress progress = whole.part(0, options.order == PathOrder::drawn ? 1 : endOfReading);
    Drawing drawing = parseDrawing(std::move(file), progress.part(0, endOfParsing));
    DrawingPath path;
    const PathSettings settings = settingsFor(drawing, options, drawing.notes);
    const TextDecoder decoder(drawing.header);
    LayerTable layers(drawing, decoder, options);
    const BlockGraph graph(drawing, decoder);
    addNotes(graph, drawing.notes);
    LeftOutTable leftOut;

    Expansion expansion = expand(drawing, graph, layers, settings.map, options, leftOut,
                                 progress.part(endOfParsing, endOfExpansion));
    const std::vector<ChainLink> links =
        joinToChains(drawing, expansion, layers, settings.joinDistance, leftOut,
                     progress.part(endOfExpansion, endOfJoining));
    writeContours({drawing, expansion, layers, links}, settings, path,
                  progress.part(endOfJoining, 1));

    reorder(path, options.order, whole.part(endOfReading, 1));

    path.drawingUnit = settings.drawingUnit;
    path.unit = settings.unit;
    path.leftOut = listOf(leftOut, drawing, layers, decoder);
    path.layers = layers.takeLayers();
    path.notes = std::move(drawing.notes);
    addLengths(path);
    whole.report(1);
    return path;
}

template <typename OpenWindow>
ReadResult readFrom(OpenWindow openWindow, DrawingPath& path, const PathOptions& options) {
    try {
        DrawingPath read = readPath(openWindow(), options);
        path = std::move(read);
        return {true, {}, 0};
    } catch (Refusal& refusal) {
        return {false, std::move(refusal.reason), refusal.line};
    }
}

} // namespace

double metresPer(LengthUnit unit) {
    constexpr double inch = 0.0254;
    constexpr double foot = 12 * inch;
    constexpr std::array<double, 22> metres = {0,
                                               inch,
                                               foot,
                                               5280 * foot,
                                               1e-3,
                                               1e-2,
                                               1,
                                               1e3,
                                               inch * 1e-6,
                                               inch * 1e-3,
                                               3 * foot,
                                               1e-10,
                                               1e-9,
                                               1e-6,
                                               0.1,
                                               10,
                                               100,
                                               1e9,
                                               149597870700.0,
                                               9460730472580800.0,
                                               3.0856775814913673e16,
                                               1200.0 / 3937.0};
    const auto number = static_cast<std::size_t>(unit);
    return number < metres.size() ? metres[number] : 0;
}

const char* nameOf(PathEntityKind kind) {
    switch (kind) {
    case PathEntityKind::point:
        return "POINT";
    case PathEntityKind::line:
        return "LINE";
    case PathEntityKind::arc:
        return "ARC";
    case PathEntityKind::circle:
        return "CIRCLE";
    case PathEntityKind::ellipse:
        return "ELLIPSE";
    case PathEntityKind::lwpolyline:
        return "LWPOLYLINE";
    case PathEntityKind::polyline:
        return "POLYLINE";
    case PathEntityKind::spline:
        return "SPLINE";
    }
    return "";
}

const char* nameOf(LeftOutReason reason) {
    switch (reason) {
    case LeftOutReason::annotation:
        return "annotation";
    case LeftOutReason::mesh:
        return "a mesh or a solid";
    case LeftOutReason::infinite:
        return "an infinite line";
    case LeftOutReason::unknownKind:
        return "of a kind that is not followed";
    case LeftOutReason::layerOff:
        return "on a layer that is off";
    case LeftOutReason::layerFrozen:
        return "on a frozen layer";
    case LeftOutReason::invisible:
        return "invisible";
    case LeftOutReason::paperSpace:
        return "in paper space";
    case LeftOutReason::layerNotAsked:
        return "on a layer not asked for";
    case LeftOutReason::blockMissing:
        return "of a missing block";
    case LeftOutReason::blockExternal:
        return "of a block in another file";
    case LeftOutReason::blockHoldsItself:
        return "of a block that holds itself";
    case LeftOutReason::drawnUnclipped:
        return "drawn without its clipping boundary";
    case LeftOutReason::broken:
        return "broken";
    }
    return "";
}

ReadResult readPath(const void* bytes, std::size_t size, DrawingPath& path,
                    const PathOptions& options) {
    return readFrom([=] { return ByteWindow(bytes, size); }, path, options);
}

ReadResult readPath(const ByteSource& source, DrawingPath& path, const PathOptions& options,
                    std::uint64_t size) {
    return readFrom([&] { return ByteWindow(source, size, windowCapacity); }, path, options);
}

ReadResult readPath(const std::filesystem::path& file, DrawingPath& path,
                    const PathOptions& options) {
    const auto refuse = [&](const std::string& reason) {
        throw Refusal{file.string() + ": " + reason};
    };
    return readFrom([&] { return input::openFile(file, refuse, windowCapacity); }, path, options);
}

} // namespace converters
