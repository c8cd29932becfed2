#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/dxf/NameTable.h"
#include "converters/detail/drawing/geometry/Affine.h"
#include "converters/detail/drawing/geometry/Curve.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A drawing as its file holds it: blocks and entities, nothing transformed, nothing sampled.
namespace converters::drawing {

/// The kinds of entity that draw something to follow.
enum class EntityKind : std::uint8_t {
    point,
    line,
    arc,
    circle,
    ellipse,
    lwpolyline,
    /// A POLYLINE in a plane, and one in space.
    polyline,
    polyline3d,
    spline,
    insert
};

/// How an entity is drawn, apart from its shape. Bits of Entity::flags.
namespace entityFlag {
/// Group 60.
constexpr std::uint8_t invisible = 1;
constexpr std::uint8_t paperSpace = 2;
/// Three numbers before all others are its extrusion; else that is (0, 0, 1).
constexpr std::uint8_t extruded = 4;
/// Of a polyline.
constexpr std::uint8_t closed = 8;
/// Of a polyline: a bulge for each vertex behind the vertices.
constexpr std::uint8_t bulged = 16;
} // namespace entityFlag

constexpr std::uint16_t colourByBlock = 0;
constexpr std::uint16_t colourByLayer = 256;
constexpr std::int32_t noTrueColour = -1;

/// An entity that draws something. What its shape needs is behind Drawing::numbers[data], by kind:
///
///     point       x y z
///     line        x y z of its start, x y z of its end
///     circle      x y z of the centre, radius
///     arc         the same, start angle, end angle (degrees)
///     ellipse     x y z of the centre, x y z of the major half axis, ratio, start, end (radians)
///     lwpolyline, polyline   number of vertices, elevation; x y of each; the bulge of each
///     polyline3d  number of vertices; x y z of each
///
/// A spline is Drawing::splines[data], an insert Drawing::inserts[data].
struct Entity {
    std::uint64_t handle;
    std::size_t data;
    /// Number in Drawing::layerNames.
    std::uint32_t layer;
    /// 0xRRGGBB or noTrueColour.
    std::int32_t trueColour;
    /// Index 1 to 255, colourByBlock or colourByLayer.
    std::uint16_t colour;
    EntityKind kind;
    std::uint8_t flags;
};

/// What an INSERT draws, and where.
struct Insert {
    InsertPlacement placement;
    /// Number in Drawing::blockNames.
    std::uint32_t block;
    /// At least 1; 1 in a direction whose spacing is 0, where all would be drawn in one place.
    std::uint32_t columns;
    std::uint32_t rows;
    double columnSpacing;
    double rowSpacing;
    /// Handle of its extension dictionary; 0 where it has none.
    std::uint64_t dictionary;
};

/// Entities that draw nothing to follow: so many of a kind, on a layer.
struct NotDrawn {
    /// Number in Drawing::kindNames.
    std::uint32_t kind;
    /// Number in Drawing::layerNames.
    std::uint32_t layer;
    std::uint64_t number;
    LeftOutReason reason;
    /// entityFlag::invisible, entityFlag::paperSpace.
    std::uint8_t flags;
    /// Which of Drawing::entities comes behind the first of them.
    std::size_t nextEntity;
};

/// What a block or a stretch of the drawing itself holds: ranges of Drawing::entities and
/// Drawing::notDrawn.
struct Contents {
    std::size_t firstEntity = 0;
    std::size_t endEntity = 0;
    std::size_t firstNotDrawn = 0;
    std::size_t endNotDrawn = 0;

    bool isEmpty() const { return firstEntity == endEntity && firstNotDrawn == endNotDrawn; }
};

struct Block {
    /// Number in Drawing::blockNames.
    std::uint32_t name;
    Point base;
    Contents contents;
    /// Its contents are another file.
    bool isExternal;
};

/// An entry of the table of layers.
struct LayerEntry {
    /// Number in Drawing::layerNames.
    std::uint32_t name;
    std::uint16_t colour;
    std::int32_t trueColour;
    bool off;
    bool frozen;
};

/// What the header says.
struct Header {
    /// "AC1015"; empty where it is not there.
    std::string release;
    /// "ANSI_1252"; empty where it is not there.
    std::string codePage;
    /// $INSUNITS; 0 where it is not there.
    std::int64_t units = 0;
    /// Whether $MEASUREMENT is there and says imperial.
    bool isImperial = false;
};

struct Drawing {
    Header header;
    NameTable layerNames;
    NameTable blockNames;
    NameTable kindNames;
    std::vector<LayerEntry> layers;
    std::vector<Block> blocks;
    /// What is drawn itself, in the order of the file.
    std::vector<Contents> stretches;
    std::vector<Entity> entities;
    std::vector<NotDrawn> notDrawn;
    std::vector<double> numbers;
    std::vector<BSpline> splines;
    std::vector<Insert> inserts;
    /// The extension dictionaries that hold a clipping boundary, sorted.
    std::vector<std::uint64_t> clippingDictionaries;
    /// What the reader had to assume, in words.
    std::vector<std::string> notes;
};

/// The vertices of a polyline, the control points of a spline; 1 for other entities.
inline std::size_t verticesOf(const Entity& entity, const Drawing& drawing) {
    switch (entity.kind) {
    case EntityKind::lwpolyline:
    case EntityKind::polyline:
    case EntityKind::polyline3d: {
        const bool isExtruded = (entity.flags & entityFlag::extruded) != 0;
        return static_cast<std::size_t>(drawing.numbers[entity.data + (isExtruded ? 3 : 0)]);
    }
    case EntityKind::spline:
        return drawing.splines[entity.data].controlPoints.size();
    default:
        return 1;
    }
}

} // namespace converters::drawing
