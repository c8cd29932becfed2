#pragma once

#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/EntityGroups.h"
#include "converters/detail/drawing/geometry/SplineDefinition.h"

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

namespace converters::drawing {

/// A vertex of a polyline, as its groups say it.
struct PolylineVertex {
    double x = 0;
    double y = 0;
    double z = 0;
    double bulge = 0;
    std::int64_t flags = 0;
};

/// Whose contents are read: those of the drawing itself, of its paper, or of a block.
enum class ContentsOf : std::uint8_t { drawing, paperSpace, block };

/// Makes the entities of a drawing of what their groups say; what is broken is counted instead.
///
/// Blocks and stretches are made one after another: what is added belongs to the last one begun.
class EntityBuilder {
public:
    explicit EntityBuilder(Drawing& drawing) : m_drawing(drawing) {}

    void beginContents(ContentsOf owner);
    bool isInBlock() const { return m_owner == ContentsOf::block; }
    /// Ends them: the ranges of what was added.
    Contents endContents();

    void addPoint(const EntityGroups& groups);
    void addLine(const EntityGroups& groups);
    void addCircle(const EntityGroups& groups);
    void addArc(const EntityGroups& groups);
    void addEllipse(const EntityGroups& groups);
    void addLwPolyline(const EntityGroups& groups, const std::vector<PolylineVertex>& vertices);
    void addPolyline(const EntityGroups& groups, const std::vector<PolylineVertex>& vertices);
    /// @param kind  as the file spells it
    void addSpline(const EntityGroups& groups, std::string_view kind, SplineDefinition definition);
    void addInsert(const EntityGroups& groups);

    /// Counts an entity that draws nothing to follow.
    void addNotDrawn(const EntityAttributes& attributes, std::string_view kind,
                     LeftOutReason reason);

private:
    void add(EntityKind kind, const EntityGroups& groups, std::size_t data, int flags = 0);
    bool appendNumbers(EntityKind kind, const EntityGroups& groups,
                       std::initializer_list<double> numbers);
    void addPlanePolyline(EntityKind kind, const EntityGroups& groups,
                          const std::vector<PolylineVertex>& vertices, double elevation);
    void addSpacePolyline(const EntityGroups& groups, const std::vector<PolylineVertex>& vertices);
    void addBroken(EntityKind kind, const EntityGroups& groups);
    int flagsOf(const EntityAttributes& attributes) const;

    Drawing& m_drawing;
    Contents m_contents;
    ContentsOf m_owner = ContentsOf::drawing;
    std::vector<PolylineVertex> m_curveVertices;
    /// Where in Drawing::notDrawn a kind, layer, reason and flags are counted.
    std::map<std::tuple<std::uint32_t, std::uint32_t, LeftOutReason, std::uint8_t>, std::size_t>
        m_notDrawnNumbers;
};

} // namespace converters::drawing
