#include "converters/DrawingPath.h"

#include "converters/detail/drawing/DrawingInput.h"
#include "converters/detail/drawing/PathDecoder.h"
#include "converters/detail/drawing/Refusal.h"

#include <array>
#include <string>
#include <utility>

namespace converters {

namespace {

template <typename OpenWindow>
ReadResult readFrom(OpenWindow openWindow, DrawingPath& path, const PathOptions& options) {
    try {
        DrawingPath read;
        drawing::PathDecoder decoder(openWindow(), options);
        decoder.write(read, drawing::PathWriter::all);
        static_cast<PathReport&>(read) = decoder.takeReport();
        path = std::move(read);
        return {true, {}, 0};
    } catch (drawing::Refusal& refusal) {
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
    return readFrom([=] { return drawing::windowOn(bytes, size); }, path, options);
}

ReadResult readPath(const ByteSource& source, DrawingPath& path, const PathOptions& options,
                    std::uint64_t size) {
    return readFrom([&] { return drawing::windowOn(source, size); }, path, options);
}

ReadResult readPath(const std::filesystem::path& file, DrawingPath& path,
                    const PathOptions& options) {
    return readFrom([&] { return drawing::windowOn(file); }, path, options);
}

} // namespace converters
