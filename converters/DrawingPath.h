#pragma once

#include "converters/ByteSource.h"
#include "converters/Export.h"
#include "converters/ReadResult.h"

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The path of a drawing: its true geometry, as contours to follow with a tool.
///
/// readPath() takes any DXF drawing, text or binary, of any release: blocks, ellipses, bulges,
/// splines and mirrored entities included. What the drawing shows and a path cannot hold (text,
/// hatches, hidden layers) is listed, not dropped. fromDxf() is another thing: the walk by fixed
/// rules that existing programs rely on.
///
/// PathReader reads the same path a few contours at a time.
namespace converters {

/// A unit of length, by its number in a drawing's $INSUNITS.
enum class LengthUnit : std::uint8_t {
    none = 0,
    inch = 1,
    foot = 2,
    mile = 3,
    millimetre = 4,
    centimetre = 5,
    metre = 6,
    kilometre = 7,
    microinch = 8,
    mil = 9,
    yard = 10,
    angstrom = 11,
    nanometre = 12,
    micrometre = 13,
    decimetre = 14,
    decametre = 15,
    hectometre = 16,
    gigametre = 17,
    astronomicalUnit = 18,
    lightYear = 19,
    parsec = 20,
    surveyFoot = 21
};

/// The length of a unit in metres; 0 for LengthUnit::none.
CONVERTERS_EXPORT double metresPer(LengthUnit unit);

/// The kinds of entity that a path is made of.
enum class PathEntityKind : std::uint8_t {
    point,
    line,
    arc,
    circle,
    ellipse,
    lwpolyline,
    polyline,
    spline
};

/// The kind as a DXF file spells it: "LWPOLYLINE". A string of static duration.
CONVERTERS_EXPORT const char* nameOf(PathEntityKind kind);

/// An entity of the drawing that a contour is made of. An entity inside a block is there once for
/// each time that it is drawn.
struct PathEntity {
    /// Its handle (group 5), a hexadecimal number in the file; 0 where it has none.
    std::uint64_t handle;
    /// The handle of the outermost INSERT that draws it; 0 where it is in no block or the INSERT
    /// has none.
    std::uint64_t insert;
    /// Index into PathReport::layers: where it is drawn, so that layer "0" in a block is the layer
    /// of the INSERT.
    std::uint32_t layer;
    /// What it is.
    PathEntityKind kind;
};

/// What a piece of a contour is, exactly.
enum class PathCurveKind : std::uint8_t {
    /// A point by itself: a POINT, or an entity without extent.
    point,
    /// The straight line between the two ends of the piece.
    line,
    /// A circular arc: PathContours::arcs.
    arc,
    /// An elliptic arc: PathContours::ellipticArcs.
    ellipticArc,
    /// A B-spline: PathContours::splines.
    spline
};

/// A part of a contour that is one exact curve, from one of the contour's points to a later one.
/// The last point of a piece is the first of the next.
struct PathPiece {
    /// Index into PathContours::points of its first point.
    std::size_t firstPoint;
    /// Index into PathContours::points of its last point.
    std::size_t lastPoint;
    /// Index into arcs, ellipticArcs or splines; 0 for points and lines.
    std::uint32_t curve;
    /// Index into PathContours::entities.
    std::uint32_t entity;
    /// What it is.
    PathCurveKind kind;
};

/// A circular arc in space, walked from its start to its end.
struct PathArc {
    /// Of its circle.
    cv::Point3_<double> centre;
    /// Unit vector; the arc turns counter-clockwise about it.
    cv::Point3_<double> normal;
    /// Above 0.
    double radius;
    /// Radians, above 0 and at most 2 pi (a full circle).
    double sweep;
};

/// An elliptic arc: centre + cos(t) major + sin(t) minor, for t from `start` to `start` + `sweep`.
struct PathEllipticArc {
    /// Of its ellipse.
    cv::Point3_<double> centre;
    /// The longer half axis.
    cv::Point3_<double> major;
    /// The shorter half axis, perpendicular to the longer one.
    cv::Point3_<double> minor;
    /// In radians.
    double start;
    /// In radians, above 0 and at most 2 pi.
    double sweep;
};

/// A B-spline, walked from knots[degree] to knots[controlPoints.size()].
struct PathSpline {
    /// At least 1.
    std::size_t degree;
    /// Do not fall; controlPoints.size() + degree + 1 of them.
    std::vector<double> knots;
    /// More than `degree`.
    std::vector<cv::Point3_<double>> controlPoints;
    /// One for each control point, all positive; empty where all are 1.
    std::vector<double> weights;
};

/// A layer of the drawing.
struct PathLayer {
    /// UTF-8.
    std::string name;
    /// The AutoCAD colour index, 1 to 255; 7 (black or white) where the drawing has none.
    std::uint16_t colour;
    /// Whether it is switched off.
    bool off;
    /// Whether it is frozen.
    bool frozen;
};

/// A stretch of the path that is walked without lifting the tool.
struct PathContour {
    /// Index into PathContours::points of its first point.
    std::size_t firstPoint;
    /// Index behind its last point.
    std::size_t endPoint;
    /// Index into PathContours::pieces of its first piece.
    std::size_t firstPiece;
    /// Index behind its last piece.
    std::size_t endPiece;
    /// Index into PathContours::entities of its first entity. An entity without extent that lies on
    /// an end of another is of that one's contour, and has no piece.
    std::size_t firstEntity;
    /// Index behind its last entity.
    std::size_t endEntity;
    /// Along its exact curves, in units of the result.
    double length;
    /// Index into PathReport::layers: that of its first entity.
    std::uint32_t layer;
    /// The colour of its first entity, 0xRRGGBB, where the drawing gives one in these terms; -1
    /// otherwise.
    std::int32_t trueColour;
    /// The AutoCAD colour index of its first entity, 1 to 255, by layer and by block resolved.
    std::uint16_t colour;
    /// Whether it returns to its start; its last point is then an exact copy of its first.
    bool closed;
};

/// Why something that the drawing holds is not in the path as it is drawn.
enum class LeftOutReason : std::uint8_t {
    /// Text, tables, dimensions, leaders, hatches, images: nothing to follow.
    annotation,
    /// Faces, meshes and solids.
    mesh,
    /// A RAY or an XLINE.
    infinite,
    /// Multiple lines, proxies and kinds that are not known.
    unknownKind,
    layerOff,
    layerFrozen,
    /// Invisible by itself (group 60), or drawn by an INSERT that is.
    invisible,
    paperSpace,
    /// Not among the layers asked for.
    layerNotAsked,
    blockMissing,
    /// The block is another file.
    blockExternal,
    blockHoldsItself,
    /// An INSERT with a clipping boundary: it is in the path, but as a whole.
    drawnUnclipped,
    /// Values that are missing or contradict each other, or a scale that leaves no extent.
    broken
};

/// The reason in words: "on a layer that is off". A string of static duration.
CONVERTERS_EXPORT const char* nameOf(LeftOutReason reason);

/// Entities of one kind, on one layer, left out for one reason.
struct LeftOut {
    /// As the file spells it: "MTEXT".
    std::string kind;
    /// UTF-8; the layer that the entity is drawn on.
    std::string layer;
    /// How many; each one once for each time that it would be drawn, but what an INSERT would have
    /// drawn counts as that INSERT where that is what was left out.
    std::uint64_t number;
    /// Why.
    LeftOutReason reason;
};

/// Contours of a drawing. Flat arrays, so that a million entities take little memory: a contour
/// names ranges of the others.
struct PathContours {
    /// The points of all contours, one contour after another.
    std::vector<cv::Point3_<double>> points;
    /// In the order in which they are walked.
    std::vector<PathContour> contours;
    /// Of all contours, one contour after another.
    std::vector<PathPiece> pieces;
    /// What pieces of that kind name.
    std::vector<PathArc> arcs;
    /// What pieces of that kind name.
    std::vector<PathEllipticArc> ellipticArcs;
    /// What pieces of that kind name.
    std::vector<PathSpline> splines;
    /// Of all contours, one contour after another.
    std::vector<PathEntity> entities;
};

/// What there is to say of a path besides its contours.
struct PathReport {
    /// All that the drawing names, in the order of its table.
    std::vector<PathLayer> layers;
    /// In the order in which the kinds came up.
    std::vector<LeftOut> leftOut;
    /// What the reader had to assume, in words for a person: "the drawing names no unit; its
    /// numbers are taken as millimetres".
    std::vector<std::string> notes;
    /// The unit of the drawing.
    LengthUnit drawingUnit = LengthUnit::none;
    /// The unit of the coordinates.
    LengthUnit unit = LengthUnit::none;
    /// The lowest corner of the box around all points; without meaning when there are none.
    cv::Point3_<double> lowest;
    /// The highest corner of that box.
    cv::Point3_<double> highest;
    /// Of all contours.
    double length = 0;
    /// Of the straight ways from the end of each contour to the start of the next.
    double wayLength = 0;
};

/// The path of a drawing: all its contours.
struct DrawingPath : PathContours, PathReport {};

/// In which order and direction contours are walked.
enum class PathOrder : std::uint8_t {
    /// Contours in the order of their first entity, and in its direction.
    drawn,
    /// The ways between contours made short, beginning near the origin; contours may be reversed,
    /// closed ones start elsewhere.
    nearest,
    /// Contours inside others before these, nearest among equals: as cutters need it.
    insideFirst
};

/// How the coordinates of the result lie.
enum class PathAxes : std::uint8_t {
    /// (x, y, z) as in the drawing.
    drawing,
    /// (x, 0, y), those of fromDxf(): heights are dropped.
    plain
};

/// How near ends are that become one point, in units of the drawing, where nobody says otherwise.
constexpr double defaultJoinDistance = 0.001;

/// How a drawing becomes a path. Lengths are in units of the result.
struct PathOptions {
    /// The most that a chord may leave its curve; above 0. By default 0.01 mm, or 0.01 where no
    /// unit is known. However large it is, chords keep the length of a curve to a hundredth.
    std::optional<double> tolerance;
    /// The most between neighbouring points, of straight lines, too; above 0. By default without
    /// limit.
    std::optional<double> step;
    /// Ends of entities closer than this are one point; 0 joins equal ends only, and so do two
    /// entities that are shorter than this. By default defaultJoinDistance, 0.001, units of the
    /// drawing.
    std::optional<double> joinDistance;
    /// The unit of the result; none: that of the drawing.
    LengthUnit unit = LengthUnit::none;
    /// Multiplies coordinates, after units; above 0.
    double scale = 1;
    /// Names of layers to take, in UTF-8. Case does not matter; "*" stands for any text, "?" for a
    /// character. No names: all layers.
    std::vector<std::string> layers;
    /// Names of layers to leave out, in the same terms.
    std::vector<std::string> exceptLayers;
    /// Takes what is invisible and what is on layers that are off or frozen.
    bool hidden = false;
    /// Takes paper space, in its own coordinates.
    bool paperSpace = false;
    /// How the coordinates of the result lie.
    PathAxes axes = PathAxes::drawing;
    /// In which order contours are walked.
    PathOrder order = PathOrder::drawn;
    /// A path of more points is refused, before memory is asked for more than two million.
    std::size_t maximumPoints = 100'000'000;
    /// The same for entities, when all blocks are drawn.
    std::size_t maximumEntities = 100'000'000;
    /// Called now and then, on the caller's thread, with the part of the work that is done, 0 to 1;
    /// false stops the work, which is then a failure.
    std::function<bool(double done)> progress;
};

/// Reads the path of a DXF drawing.
///
/// @param bytes    the file, text of any release and line end, or binary; read during the call only
/// @param size     how many bytes
/// @param path     replaced by the path; untouched when the result is a failure
/// @param options  what is followed, and how closely
/// @return success, also of a drawing in which nothing is drawn. A failure, with its reason, for
///         what is no DXF file, for a binary file cut short, for options out of range, for more
///         points or entities than allowed, and when `progress` stops it.
/// @throws std::bad_alloc when the path does not fit into memory; `path` is untouched
CONVERTERS_EXPORT ReadResult readPath(const void* bytes, std::size_t size, DrawingPath& path,
                                      const PathOptions& options = {});

/// Reads the path of a DXF file, of which no more than a small part is in memory at a time. Pipes
/// will do: the file is read once, from its start to its end.
///
/// @param file     the file's path
/// @param path     as above
/// @param options  as above
/// @return as above; a failure also when the file cannot be opened or read
CONVERTERS_EXPORT ReadResult readPath(const std::filesystem::path& file, DrawingPath& path,
                                      const PathOptions& options = {});

/// Reads the path of a DXF file that comes piece by piece.
///
/// @param source   asked for the bytes in their order
/// @param path     as above
/// @param options  as above
/// @param size     of the whole file, for progress and for memory to have ready; 0 where it is not
///                 known
/// @return as above
/// @throws what the source throws, and std::bad_alloc; `path` is untouched
CONVERTERS_EXPORT ReadResult readPath(const ByteSource& source, DrawingPath& path,
                                      const PathOptions& options = {}, std::uint64_t size = 0);

} // namespace converters
